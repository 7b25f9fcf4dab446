// vxsh, the console host of the toolkit: reads the command line, starts the
// toolkit, and hands over to the command.

#include <cstdio>
#include <exception>
#include <new>

#include "vx/tools.h"

#include "tools/vxsh/commands.h"
#include "tools/vxsh/session.h"

namespace {

using namespace vxsh;

int complain(const UsageError &error)
{
    std::fprintf(stderr, "vxsh: %s\n%s\nTry 'vxsh%s%s --help'.\n", error.message.c_str(),
                 usageLine(error.topic).c_str(), error.topic.empty() ? "" : " ", error.topic.c_str());
    return wrongUsage;
}

int work(const Options &options)
{
    Session session;
    if (!session.failure().empty()) {
        std::fprintf(stderr, "vxsh: error: %s\n", session.failure().c_str());
        return failed;
    }
    for (const std::string &text : Messages::take())
        std::fprintf(stderr, "vxsh: warning: %s\n", text.c_str());
    return runCommand(options);
}

int act(const std::vector<std::string> &arguments)
{
    auto read = readOptions(arguments);
    if (auto *error = std::get_if<UsageError>(&read))
        return complain(*error);
    if (auto *help = std::get_if<HelpWanted>(&read)) {
        std::fputs(helpText(help->topic).c_str(), stdout);
        return done;
    }
    if (std::holds_alternative<VersionWanted>(read)) {
        std::printf("vxsh %s\n%s\n", VXSH_VERSION, GetVerNum());
        return done;
    }
    return work(std::get<Options>(read));
}

/** A result that could not be written is no result. */
int flushed(int status)
{
    if (std::fflush(stdout) == 0 && !std::ferror(stdout))
        return status;
    std::fputs("vxsh: error: the output cannot be written\n", stderr);
    return failed;
}

}

int main(int argc, char **argv)
{
    try {
        return flushed(act({argv + (argc > 0), argv + argc}));
    } catch (const std::bad_alloc &) {
        std::fputs("vxsh: error: out of memory\n", stderr);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "vxsh: error: %s\n", error.what());
    }
    return failed;
}
