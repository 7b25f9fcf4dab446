#include "tools/vxsh/model.h"

#include <algorithm>

#include "tools/vxsh/name_scan.h"
#include "tools/vxsh/number.h"
#include "tools/vxsh/order.h"

namespace vxsh {

namespace {

constexpr size_t progressStep = 1024;

/** Longer circles are not named in full by each of their members. */
constexpr size_t namedInCircle = 12;

std::string quoted(const std::string &name)
{
    return '\'' + name + '\'';
}

/** A place in the formula as a place in the line. */
Problem inLine(Problem problem, const Definition &definition)
{
    problem.place.at += definition.formulaAt.at;
    return problem;
}

Problem problemAtName(const Definition &definition, const std::string &name, std::string message)
{
    return inLine({std::move(message), placeOfName(definition.formula(), name)}, definition);
}

/** Fills what can be known of a parameter without evaluating it: what is wrong, or nothing. */
std::optional<Problem> readFormula(Parameter &parameter)
{
    const Definition &definition = parameter.definition;
    Formula formula;
    if (auto problem = formula.parse(definition.formula()))
        return inLine(std::move(*problem), definition);
    parameter.needs = formula.variables();
    if (!definition.unit.empty() && !(parameter.unit = findUnit(definition.unit)))
        return Problem{"There is no unit " + quoted(definition.unit) + '.', definition.unitAt};
    return std::nullopt;
}

/** The circle as the parameter at `from` meets it; a very long one is told in short. */
std::string circleMessage(const std::vector<std::string> &names, size_t from)
{
    if (names.size() == 1)
        return "It depends on itself.";
    std::string message = "It depends on itself in a circle: " + names[from];
    size_t steps = names.size() <= namedInCircle ? names.size() : namedInCircle;
    for (size_t step = 1; step <= steps; ++step)
        message += " -> " + names[(from + step) % names.size()];
    if (steps < names.size())
        message += " -> ... (" + formatCount(names.size()) + " parameters)";
    return message;
}

}

Model::Index Model::define(Definition definition)
{
    auto [entry, fresh] = byName_.try_emplace(definition.name, static_cast<Index>(parameters_.size()));
    Index index = entry->second;
    if (fresh) {
        parameters_.emplace_back();
    } else {
        for (const std::string &name : parameters_[index].needs)
            std::erase(users_[name], index);
        parameters_[index] = {};
    }
    Parameter &parameter = parameters_[index];
    parameter.definition = std::move(definition);
    parameter.misread = readFormula(parameter);
    for (const std::string &name : parameter.needs)
        users_[name].push_back(index);
    return index;
}

void Model::forgetLines()
{
    for (Parameter &parameter : parameters_)
        parameter.definition.number = 0;
}

std::optional<Problem> Model::misreading(const Definition &definition)
{
    Parameter parameter;
    parameter.definition = definition;
    return readFormula(parameter);
}

void Model::evaluate(const Progress &progress)
{
    std::vector<Index> all(parameters_.size());
    for (Index i = 0; i < all.size(); ++i)
        all[i] = i;
    evaluateSet(all, progress);
}

std::vector<Model::Index> Model::evaluateFrom(Index changed)
{
    return evaluateSet(dependents(changed), {});
}

const Parameter *Model::parameter(const std::string &name) const
{
    auto entry = byName_.find(name);
    return entry == byName_.end() ? nullptr : &parameters_[entry->second];
}

const Result *Model::find(const char *name) const
{
    const Parameter *found = parameter(name);
    return found && found->evaluated ? &found->result : nullptr;
}

std::optional<Problem> Model::missing(const std::vector<std::string> &names, std::string_view formula) const
{
    for (const std::string &name : names) {
        const Parameter *needed = parameter(name);
        if (!needed)
            return Problem{quoted(name) + " is not defined.", placeOfName(formula, name)};
        if (!needed->evaluated)
            return Problem{"It depends on " + quoted(name) + ", which failed.", placeOfName(formula, name)};
    }
    return std::nullopt;
}

/** The parameter and all that need it, however far away, lowest first. */
std::vector<Model::Index> Model::dependents(Index changed) const
{
    std::vector<bool> seen(parameters_.size());
    std::vector<Index> found{changed};
    seen[changed] = true;
    for (size_t at = 0; at < found.size(); ++at) {
        auto users = users_.find(parameters_[found[at]].definition.name);
        if (users == users_.end())
            continue;
        for (Index user : users->second) {
            if (!seen[user])
                found.push_back(user);
            seen[user] = true;
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

/** Everything outside `set` keeps its result. */
std::vector<Model::Index> Model::evaluateSet(const std::vector<Index> &set, const Progress &progress)
{
    std::unordered_map<Index, uint32_t> position;
    for (uint32_t i = 0; i < set.size(); ++i) {
        position.emplace(set[i], i);
        parameters_[set[i]].evaluated = false;
        parameters_[set[i]].failure = parameters_[set[i]].misread;
    }
    std::vector<std::vector<uint32_t>> needs(set.size());
    for (size_t i = 0; i < set.size(); ++i) {
        for (const std::string &name : parameters_[set[i]].needs) {
            auto needed = byName_.find(name);
            if (needed == byName_.end())
                continue;
            if (auto inSet = position.find(needed->second); inSet != position.end())
                needs[i].push_back(inSet->second);
        }
    }

    DependencyOrder order = dependencyOrder(needs);
    failCircles(order, set);
    std::vector<Index> done;
    done.reserve(set.size());
    for (const Circle &circle : order.circles)
        for (const auto *members : {&circle.path, &circle.others})
            for (uint32_t member : *members)
                done.push_back(set[member]);
    for (uint32_t next : order.sequence) {
        evaluateOne(parameters_[set[next]]);
        done.push_back(set[next]);
        if (progress && done.size() % progressStep == 0)
            progress(done.size());
    }
    return done;
}

void Model::failCircles(const DependencyOrder &order, const std::vector<Index> &set)
{
    for (const Circle &circle : order.circles) {
        std::vector<std::string> names;
        for (uint32_t member : circle.path)
            names.push_back(parameters_[set[member]].definition.name);
        for (size_t i = 0; i < names.size(); ++i) {
            Parameter &parameter = parameters_[set[circle.path[i]]];
            parameter.failure =
                problemAtName(parameter.definition, names[(i + 1) % names.size()], circleMessage(names, i));
        }
        for (uint32_t other : circle.others) {
            Parameter &parameter = parameters_[set[other]];
            parameter.failure =
                Problem{"It depends on itself by way of the circle of " + quoted(names.front()) + '.',
                        parameter.definition.formulaAt};
        }
    }
}

void Model::evaluateOne(Parameter &parameter)
{
    if (parameter.failure)
        return;
    const Definition &definition = parameter.definition;
    std::string text = definition.formula();
    Formula formula;
    std::optional<Problem> problem = missing(parameter.needs, text);
    if (!problem)
        problem = formula.parse(text);
    if (!problem)
        problem = formula.evaluate(*this, parameter.unit ? &*parameter.unit : nullptr, parameter.result);
    if (problem)
        parameter.failure = inLine(std::move(*problem), definition);
    else
        parameter.evaluated = true;
}

}
