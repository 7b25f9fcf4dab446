#pragma once

// Results as people and programs read them.

#include <string>
#include <string_view>

#include "tools/vxsh/model.h"
#include "tools/vxsh/parameter_file.h"

namespace vxsh {

/** A result as a text: a number with 15 digits in its unit, "1 2 3" for a vector or point, or the text. */
std::string valueText(const Result &result, const Unit *unit);

/** The unit that valueText() gave the number in; empty where it has none. */
std::string unitText(const Result &result, const Unit *unit);

std::string valueText(const Parameter &parameter);
std::string unitText(const Parameter &parameter);

/** Name, value and unit in columns under a heading; "(failed)" for what has no value. Whole lines. */
std::string table(const Model &model);

/** The same as comma-separated values (RFC 4180, but lines end with LF); no value for what failed. */
std::string commaSeparated(const Model &model);

/** One line: "name = value unit". */
std::string summary(const Parameter &parameter);

/** How a file line would define it: "name : unit = formula". */
std::string definitionLine(const Parameter &parameter);

/** Everything that is wrong with a file and the parameters that its lines define, in their order. */
std::string problems(std::string_view source, const ParameterFile &file, const Model &model);

/** Parameters without a value. */
size_t failures(const Model &model);

}
