#include "tools/vxsh/commands.h"

#include <cstdio>
#include <filesystem>
#include <string>

#include "platform/os/terminal.h"
#include "vx/journal.h"

#include "tools/vxsh/messages.h"
#include "tools/vxsh/model.h"
#include "tools/vxsh/number.h"
#include "tools/vxsh/parameter_file.h"
#include "tools/vxsh/report.h"
#include "tools/vxsh/session.h"
#include "tools/vxsh/whole_file.h"

namespace vxsh {

namespace {

/** Smaller files are done before a person could read how far they are. */
constexpr size_t longFile = 20'000;

void complain(const std::string &message)
{
    std::fprintf(stderr, "vxsh: error: %s\n", message.c_str());
}

/** A line of the terminal that tells how far the work is, and is gone at the end. */
class ProgressLine {
public:
    explicit ProgressLine(size_t total)
        : total_(total), shown_(total >= longFile && vx::os::isTerminal(stderr))
    {
    }

    ~ProgressLine()
    {
        if (shown_)
            std::fprintf(stderr, "\r%*s\r", static_cast<int>(width_), "");
    }

    ProgressLine(const ProgressLine &) = delete;
    ProgressLine &operator=(const ProgressLine &) = delete;

    void show(size_t count)
    {
        if (!shown_)
            return;
        std::string text = "vxsh: " + formatCount(count) + " of " + formatCount(total_) + " parameters";
        width_ = text.size();
        std::fprintf(stderr, "\r%s", text.c_str());
    }

private:
    size_t total_;
    bool shown_;
    size_t width_ = 0;
};

bool openJournal(const std::string &file)
{
    std::string path = toolkitPath(std::filesystem::absolute(file).string());
    if (VxJnlPathSet(path.c_str()) == 0)
        return true;
    complain(Messages::takeLine("the journal " + file + " cannot be written"));
    return false;
}

bool writeJournal(const std::string &file, const Model &model)
{
    for (const Parameter &parameter : model.parameters()) {
        if (VxJnlPrint((definitionLine(parameter) + "  # " + summary(parameter)).c_str())) {
            complain(Messages::takeLine("the journal " + file + " cannot be written"));
            return false;
        }
    }
    return true;
}

int report(const std::string &source, const ParameterFile &file, const Model &model, bool csv)
{
    std::fputs((csv ? commaSeparated(model) : table(model)).c_str(), stdout);
    std::fflush(stdout);
    size_t failedCount = failures(model) + file.refused.size();
    if (failedCount == 0)
        return done;
    std::fputs(problems(source, file, model).c_str(), stderr);
    std::fprintf(stderr, "vxsh: %s of %s parameters failed\n", formatCount(failedCount).c_str(),
                 formatCount(model.parameters().size() + file.refused.size()).c_str());
    return failed;
}

}

int runFile(const Options &options)
{
    const std::string &name = options.arguments.front();
    std::string bytes;
    if (std::string reason = readWholeFile(name, bytes); !reason.empty()) {
        complain(name + ": " + reason);
        return failed;
    }
    if (!options.journal.empty() && !openJournal(options.journal))
        return failed;

    ParameterFile file = readParameters(bytes);
    Model model;
    for (Definition &definition : file.definitions)
        model.define(std::move(definition));
    {
        ProgressLine line(model.parameters().size());
        model.evaluate([&](size_t count) { line.show(count); });
    }
    int status = report(name == "-" ? "stdin" : name, file, model, options.csv);
    if (!options.journal.empty() && !writeJournal(options.journal, model))
        return failed;
    return status;
}

}
