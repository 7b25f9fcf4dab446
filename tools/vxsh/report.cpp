#include "tools/vxsh/report.h"

#include <algorithm>
#include <vector>

#include "tools/vxsh/diagnostic.h"
#include "tools/vxsh/number.h"

namespace vxsh {

namespace {

using HESKET::Talm::Tool::Evaluation::TsPoint;
using HESKET::Talm::Tool::Evaluation::TsVector;

constexpr std::string_view columnGap = "  ";
constexpr std::string_view failedText = "(failed)";

template <typename Triple> std::string tripleText(const Triple &t)
{
    return formatNumber(t.x()) + ' ' + formatNumber(t.y()) + ' ' + formatNumber(t.z());
}

struct ValueText : boost::static_visitor<std::string> {
    std::string operator()(double number) const { return formatNumber(number); }
    std::string operator()(const TsVector &vector) const { return tripleText(vector); }
    std::string operator()(const TsPoint &point) const { return tripleText(point); }
    std::string operator()(const std::string &text) const { return text; }
};

const Unit *unitOf(const Parameter &parameter)
{
    return parameter.unit ? &*parameter.unit : nullptr;
}

std::string padded(const std::string &text, size_t width, bool right)
{
    std::string fill(width - std::min(width, displayWidth(text)), ' ');
    return right ? fill + text : text + fill;
}

struct Row {
    std::string name, value, unit;
    bool number = false;
};

std::vector<Row> rows(const Model &model)
{
    std::vector<Row> all;
    all.reserve(model.parameters().size());
    for (const Parameter &parameter : model.parameters()) {
        bool number = parameter.evaluated && parameter.result.isNumber();
        all.push_back({printable(parameter.definition.name),
                       parameter.evaluated ? printable(valueText(parameter)) : std::string(failedText),
                       unitText(parameter), number});
    }
    return all;
}

std::string line(const Row &row, size_t nameWidth, size_t valueWidth)
{
    std::string text = padded(row.name, nameWidth, false);
    text += columnGap;
    text += padded(row.value, row.unit.empty() && !row.number ? 0 : valueWidth, row.number);
    if (!row.unit.empty())
        text.append(columnGap).append(row.unit);
    return text + '\n';
}

std::string field(const std::string &text)
{
    if (text.find_first_of(",\"\r\n") == std::string::npos)
        return text;
    std::string quoted = "\"";
    for (char c : text)
        quoted.append(c == '"' ? 2 : 1, c);
    return quoted + '"';
}

}

std::string valueText(const Result &result, const Unit *unit)
{
    if (result.isNumber())
        return formatNumber(numberIn(result, unit));
    return boost::apply_visitor(ValueText(), result.value);
}

std::string unitText(const Result &result, const Unit *unit)
{
    if (!result.isNumber())
        return "";
    return unit ? unit->name : baseUnit(result.quantity);
}

std::string valueText(const Parameter &parameter)
{
    return parameter.evaluated ? valueText(parameter.result, unitOf(parameter)) : "";
}

std::string unitText(const Parameter &parameter)
{
    return parameter.evaluated ? unitText(parameter.result, unitOf(parameter)) : parameter.definition.unit;
}

std::string table(const Model &model)
{
    Row heading{"name", "value", "unit", true};
    std::vector<Row> all = rows(model);
    size_t nameWidth = displayWidth(heading.name);
    size_t valueWidth = displayWidth(heading.value);
    for (const Row &row : all) {
        nameWidth = std::max(nameWidth, displayWidth(row.name));
        // Texts begin where the numbers do; they do not push the units away.
        if (row.number)
            valueWidth = std::max(valueWidth, displayWidth(row.value));
    }
    std::string text = line(heading, nameWidth, valueWidth);
    for (const Row &row : all)
        text += line(row, nameWidth, valueWidth);
    return text;
}

std::string commaSeparated(const Model &model)
{
    std::string text = "name,value,unit\n";
    for (const Parameter &parameter : model.parameters())
        text += field(parameter.definition.name) + ',' + field(valueText(parameter)) + ',' +
                field(unitText(parameter)) + '\n';
    return text;
}

std::string summary(const Parameter &parameter)
{
    std::string unit = unitText(parameter);
    return parameter.definition.name + " = " +
           (parameter.evaluated ? valueText(parameter) : std::string(failedText)) +
           (parameter.evaluated && !unit.empty() ? ' ' + unit : "");
}

std::string definitionLine(const Parameter &parameter)
{
    const Definition &definition = parameter.definition;
    return asReference(definition.name) + (definition.unit.empty() ? "" : " : " + definition.unit) + " = " +
           definition.formula();
}

std::string problems(std::string_view source, const ParameterFile &file, const Model &model)
{
    struct Entry {
        const Definition *definition;
        const Problem *problem;
    };
    std::vector<Entry> entries;
    for (const RefusedLine &line : file.refused)
        entries.push_back({&line.definition, &line.problem});
    for (const Parameter &parameter : model.parameters())
        if (parameter.failure && parameter.definition.number != 0)
            entries.push_back({&parameter.definition, &*parameter.failure});
    std::sort(entries.begin(), entries.end(),
              [](const Entry &a, const Entry &b) { return a.definition->number < b.definition->number; });
    std::string text;
    for (auto [definition, problem] : entries)
        text += renderProblem(source, definition->line, definition->number, *problem);
    return text;
}

size_t failures(const Model &model)
{
    auto isFailure = [](const Parameter &parameter) { return !parameter.evaluated; };
    return static_cast<size_t>(
        std::count_if(model.parameters().begin(), model.parameters().end(), isFailure));
}

}
