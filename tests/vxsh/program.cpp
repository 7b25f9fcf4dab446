#include "tests/vxsh/program.h"

#include <sys/wait.h>

namespace vx::test {

Outcome vxsh(const Texts &arguments, const std::string &input, const std::string &folder)
{
    TempFolder streams;
    streams.write("in", input);
    auto quoted = [](const std::string &word) {
        std::string text = "'";
        for (char c : word)
            text += c == '\'' ? "'\\''" : std::string(1, c);
        return text + "'";
    };
    std::string command = folder.empty() ? "" : "cd " + quoted(folder) + " && ";
    command += quoted(VXSH_PROGRAM);
    for (const std::string &argument : arguments)
        command += ' ' + quoted(argument);
    const std::string place = streams.native().string();
    command += " <" + place + "/in >" + place + "/out 2>" + place + "/err";
    int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, streams.read("out"), streams.read("err")};
}

}
