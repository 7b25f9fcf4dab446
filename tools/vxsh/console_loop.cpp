#include "tools/vxsh/commands.h"

#include <cstdio>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <system_error>

#include "platform/os/terminal.h"

#include "tools/vxsh/console.h"
#include "tools/vxsh/line_editor.h"
#include "tools/vxsh/session.h"

namespace vxsh {

namespace {

constexpr const char *historyName = "vxsh_history";

/** Where the history is kept; empty where the user has no folder that can be written. */
std::string historyFile()
{
    std::filesystem::path folder = userFolder();
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    return folder.empty() || error ? "" : (folder / historyName).string();
}

void print(const Reply &reply)
{
    std::fputs(reply.out.c_str(), stdout);
    std::fflush(stdout);
    std::fputs(reply.err.c_str(), stderr);
}

int converse()
{
    std::puts("The toolkit's console: a parameter is NAME = FORMULA; 'help' tells more.");
    LineEditor editor(historyFile());
    Console console;
    while (std::optional<std::string> line = editor.read()) {
        Reply reply = console.answer(*line);
        print(reply);
        if (reply.quit)
            return done;
    }
    std::fputc('\n', stdout);
    return done;
}

/** Lines of another program: no prompt, and a failure counts. */
int obey()
{
    Console console;
    int status = done;
    for (std::string line; std::getline(std::cin, line);) {
        Reply reply = console.answer(line);
        print(reply);
        if (!reply.err.empty())
            status = failed;
        if (reply.quit)
            break;
    }
    return status;
}

}

int runConsole(const Options &)
{
    return vx::os::isTerminal(stdin) ? converse() : obey();
}

}
