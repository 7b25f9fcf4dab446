#include "tools/vxsh/parameter_file.h"

#include <string>
#include <unordered_map>

namespace vxsh {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/** What is kept of a line that is too long to be one. */
constexpr size_t keptOfLongLine = 60;

class Reader {
public:
    ParameterFile read(std::string_view bytes)
    {
        if (bytes.starts_with(byteOrderMark))
            bytes.remove_prefix(byteOrderMark.size());
        while (!bytes.empty()) {
            size_t end = bytes.find('\n');
            readLine(bytes.substr(0, end));
            bytes.remove_prefix(end == std::string_view::npos ? bytes.size() : end + 1);
        }
        return std::move(file_);
    }

private:
    void readLine(std::string_view line)
    {
        ++number_;
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        if (std::string_view content = trimmed(line); content.empty() || content.front() == '#')
            return;
        if (line.size() > longestLine)
            return refuse({.line = std::string(line.substr(0, keptOfLongLine))},
                          {"The line is longer than " + std::to_string(longestLine) + " bytes.", {}});
        Definition definition;
        if (auto problem = readDefinition(std::string(line), definition))
            return refuse(std::move(definition), std::move(*problem));
        keep(std::move(definition));
    }

    void keep(Definition definition)
    {
        auto [known, fresh] = lines_.try_emplace(definition.name, number_);
        if (!fresh) {
            Problem problem{"'" + definition.name + "' is already defined at line " +
                                std::to_string(known->second) + '.',
                            definition.nameAt};
            return refuse(std::move(definition), std::move(problem));
        }
        definition.number = number_;
        file_.definitions.push_back(std::move(definition));
    }

    void refuse(Definition definition, Problem problem)
    {
        definition.number = number_;
        file_.refused.push_back({std::move(definition), std::move(problem)});
    }

    ParameterFile file_;
    std::unordered_map<std::string, size_t> lines_; ///< of the names
    size_t number_ = 0;
};

}

ParameterFile readParameters(std::string_view bytes)
{
    return Reader().read(bytes);
}

}
