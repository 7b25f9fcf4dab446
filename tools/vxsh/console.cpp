#include "tools/vxsh/console.h"

#include "tools/vxsh/diagnostic.h"
#include "tools/vxsh/number.h"
#include "tools/vxsh/report.h"
#include "tools/vxsh/whole_file.h"

namespace vxsh {

namespace {

constexpr std::string_view source = "vxsh";

constexpr const char *helpLines =
    R"(NAME = FORMULA            defines a parameter, or changes it and what depends on it
NAME : UNIT = FORMULA     the same, with its value in a unit
NAME                      shows a parameter
FORMULA                   evaluates a formula
list                      shows every parameter
save FILE, load FILE      writes the parameters to a file, reads them from one
help                      shows this
quit                      ends; so does the end of the input

width : mm = 3.in
area = width*(width - 5.mm)
sin(30) + [a name with operators: bracketed]
)";

Reply refusal(std::string_view line, const Problem &problem)
{
    return {.out = "", .err = renderProblem(source, line, 0, problem)};
}

Reply refusal(const std::string &message)
{
    return {.out = "", .err = std::string(source) + ": error: " + message + '\n'};
}

std::string counted(size_t count)
{
    return formatCount(count) + (count == 1 ? " parameter" : " parameters");
}

/** The words of the line: a first word and the rest. */
struct Words {
    std::string_view first, rest;

    explicit Words(std::string_view line)
    {
        size_t end = std::min(line.find_first_of(" \t"), line.size());
        first = line.substr(0, end);
        rest = trimmed(line.substr(end));
    }
};

}

Reply Console::answer(const std::string &line)
{
    std::string_view content = trimmed(line);
    if (content.empty() || content.front() == '#')
        return {};
    if (looksLikeDefinition(content))
        return define(line);
    Words words(content);
    if (content == "quit" || content == "exit")
        return {.out = "", .err = "", .quit = true};
    if (content == "help")
        return {.out = helpLines, .err = ""};
    if (content == "list")
        return {.out = table(model_), .err = ""};
    if (words.first == "save" || words.first == "load") {
        std::string file(words.rest);
        if (file.empty())
            return refusal(std::string(words.first) + " needs the name of a file");
        return words.first == "save" ? save(file) : load(file);
    }
    return evaluate(line);
}

Reply Console::define(const std::string &line)
{
    Definition definition;
    std::optional<Problem> problem = readDefinition(line, definition);
    if (!problem)
        problem = Model::misreading(definition);
    if (problem)
        return refusal(definition.line, *problem);
    Model::Index changed = model_.define(std::move(definition));
    Reply reply;
    for (Model::Index index : model_.evaluateFrom(changed))
        tell(index, reply);
    return reply;
}

void Console::tell(Model::Index index, Reply &reply) const
{
    const Parameter &parameter = model_.at(index);
    if (parameter.failure)
        reply.err += renderProblem(source, parameter.definition.line, 0, *parameter.failure);
    else
        reply.out += summary(parameter) + '\n';
}

Reply Console::evaluate(const std::string &line)
{
    std::string text(trimmed(line));
    Formula formula;
    std::optional<Problem> problem = formula.parse(text);
    if (problem)
        return refusal(text, *problem);
    std::vector<std::string> names = formula.variables();
    if (const Parameter *asked = names.size() == 1 ? model_.parameter(names.front()) : nullptr;
        asked && (text == names.front() || text == asReference(names.front()))) {
        Reply reply{.out = definitionLine(*asked) + '\n', .err = ""};
        tell(model_.indexOf(*asked), reply);
        return reply;
    }
    Result result;
    problem = model_.missing(names, text);
    if (!problem)
        problem = formula.evaluate(model_, nullptr, result);
    if (problem)
        return refusal(text, *problem);
    std::string unit = unitText(result, nullptr);
    return {.out = valueText(result, nullptr) + (unit.empty() ? "" : " " + unit) + '\n', .err = ""};
}

Reply Console::save(const std::string &file) const
{
    std::string text;
    for (const Parameter &parameter : model_.parameters())
        text += definitionLine(parameter) + '\n';
    if (std::string reason = writeWholeFile(file, text); !reason.empty())
        return refusal(file + ": " + reason);
    return {.out = counted(model_.parameters().size()) + " saved to " + file + '\n', .err = ""};
}

Reply Console::load(const std::string &file)
{
    std::string bytes;
    if (std::string reason = readWholeFile(file, bytes); !reason.empty())
        return refusal(file + ": " + reason);
    ParameterFile read = readParameters(bytes);
    size_t count = read.definitions.size();
    model_.forgetLines();
    for (Definition &definition : read.definitions)
        model_.define(std::move(definition));
    model_.evaluate();
    return {.out = counted(count) + " read from " + file + '\n', .err = problems(file, read, model_)};
}

}
