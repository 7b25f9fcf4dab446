#include "tools/vxsh/commands.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <string>

#include "vx/parse.hpp"
#include "vx/tools.h"

#include "tools/vxsh/diagnostic.h"
#include "tools/vxsh/messages.h"
#include "tools/vxsh/model.h"
#include "tools/vxsh/number.h"
#include "tools/vxsh/report.h"

namespace vxsh {

namespace {

int fail(std::string_view line, const Problem &problem)
{
    std::fputs(renderProblem("vxsh", line, 0, problem).c_str(), stderr);
    return failed;
}

int fail(const std::string &message)
{
    std::fprintf(stderr, "vxsh: error: %s\n", message.c_str());
    return failed;
}

/** Variables from --set, in any order; false after telling what is wrong with one. */
bool defineVariables(const Options &options, Model &model)
{
    for (const std::string &text : options.sets) {
        Definition definition;
        if (auto problem = readDefinition(text, definition)) {
            fail(definition.line, *problem);
            return false;
        }
        model.define(std::move(definition));
    }
    model.evaluate();
    for (const Parameter &parameter : model.parameters())
        if (parameter.failure)
            fail(parameter.definition.line, *parameter.failure);
    return failures(model) == 0;
}

/** The formula of the command, parsed, with the variables that it needs. */
struct Request {
    Model model;
    Formula formula;
    const std::string *text = nullptr;

    bool read(const Options &options)
    {
        text = &options.arguments.front();
        if (!defineVariables(options, model))
            return false;
        std::optional<Problem> problem = formula.parse(*text);
        if (!problem)
            problem = model.missing(formula.variables(), *text);
        if (problem)
            fail(*text, *problem);
        return !problem;
    }
};

int eval(const Options &options)
{
    Request request;
    if (!request.read(options))
        return failed;
    std::optional<Unit> unit;
    if (!options.unit.empty() && !(unit = findUnit(options.unit)))
        return fail("There is no unit '" + options.unit + "'; see 'vxsh units'.");
    Result result;
    if (auto problem = request.formula.evaluate(request.model, unit ? &*unit : nullptr, result))
        return fail(*request.text, *problem);
    if (!result.isNumber())
        return fail(*request.text,
                    {"The formula gives a " + kindName(result) + ", not a number; see 'vxsh value'.",
                     {0, request.text->size()}});
    std::printf("%s\n", valueText(result, unit ? &*unit : nullptr).c_str());
    return done;
}

int value(const Options &options)
{
    Request request;
    if (!request.read(options))
        return failed;
    Result result;
    if (auto problem = request.formula.evaluate(request.model, nullptr, result))
        return fail(*request.text, *problem);
    std::printf("%s %s\n", kindName(result).c_str(), valueText(result, nullptr).c_str());
    return done;
}

int tree(const Options &options)
{
    Formula formula;
    if (auto problem = formula.parse(options.arguments[0]))
        return fail(options.arguments[0], *problem);
    VxGenExPrint(formula.tree());
    return done;
}

int names(const Options &options)
{
    Formula formula;
    if (auto problem = formula.parse(options.arguments[0]))
        return fail(options.arguments[0], *problem);
    for (const std::string &name : formula.variables())
        std::printf("%s\n", name.c_str());
    return done;
}

int replace(const Options &options)
{
    const std::string &name = options.arguments[0], &text = options.arguments[1],
                      &formula = options.arguments[2];
    size_t most = formula.size() / std::max<size_t>(name.size(), 1) * text.size() + formula.size() + 1;
    std::string out(most, '\0');
    if (VxParseVarReplace(name.c_str(), text.c_str(), formula.c_str(), out.data()))
        return fail(formula, {"The formula does not refer to '" + name + "'.", {0, formula.size()}});
    std::printf("%s\n", out.c_str());
    return done;
}

int derive(const Options &options)
{
    constexpr int32_t by = 1;
    Request request;
    if (!request.read(options))
        return failed;
    request.formula.number(options.by, by);
    double derivative = 0;
    if (auto problem = request.formula.derivative(request.model, by, derivative))
        return fail(*request.text, *problem);
    std::printf("%s\n", formatNumber(derivative).c_str());
    return done;
}

std::string_view className(int32_t unitClass)
{
    constexpr std::string_view names[] = {"",     "",       "length",           "angle", "mass", "density",
                                          "area", "volume", "moment of inertia"};
    return unitClass >= 0 && unitClass < static_cast<int32_t>(std::size(names)) ? names[unitClass] : "";
}

int listUnits()
{
    const char *name = nullptr;
    double factor = 1;
    int32_t unitClass = 0;
    std::printf("%-10s %-16s %s\n", "unit", "factor", "class");
    for (int32_t i = 0; VxUnitTableGet(i, &name, &factor, &unitClass); ++i)
        std::printf("%-10s %-16s %s\n", name, formatNumber(factor).c_str(), className(unitClass).data());
    return done;
}

}

int runCommand(const Options &options)
{
    VgCdValIsRad = options.radians ? 1 : 0;
    switch (options.command) {
    case Command::eval: return eval(options);
    case Command::value: return value(options);
    case Command::tree: return tree(options);
    case Command::names: return names(options);
    case Command::replace: return replace(options);
    case Command::derive: return derive(options);
    case Command::units: return listUnits();
    case Command::run: return runFile(options);
    case Command::console: return runConsole(options);
    }
    return wrongUsage;
}

}
