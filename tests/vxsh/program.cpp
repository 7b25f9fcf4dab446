#include "tests/vxsh/program.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vx::test {

namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE *)>;

// Files rather than pipes: a program that writes much to one stream and is
// not read on the other cannot hang the test.
File temporary()
{
    File file(std::tmpfile(), std::fclose);
    if (!file)
        throw std::runtime_error("no temporary file");
    return file;
}

std::string contents(std::FILE *file)
{
    std::rewind(file);
    std::string all;
    char piece[4096];
    for (size_t n; (n = std::fread(piece, 1, sizeof piece, file)) > 0;)
        all.append(piece, n);
    return all;
}

int waitFor(pid_t child)
{
    int status = 0;
    while (waitpid(child, &status, 0) < 0)
        if (errno != EINTR)
            throw std::runtime_error("the child is lost");
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

[[noreturn]] void become(const std::vector<char *> &argv, std::FILE *in, std::FILE *out, std::FILE *err,
                         const std::string &folder)
{
    if (!folder.empty() && chdir(folder.c_str()) != 0)
        _exit(126);
    dup2(fileno(in), 0);
    dup2(fileno(out), 1);
    dup2(fileno(err), 2);
    execv(argv[0], argv.data());
    _exit(127);
}

}

Outcome vxsh(const std::vector<std::string> &arguments, const std::string &input, const std::string &folder)
{
    File in = temporary(), out = temporary(), err = temporary();
    std::fwrite(input.data(), 1, input.size(), in.get());
    std::rewind(in.get());

    std::vector<std::string> words{VXSH_PROGRAM};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char *> argv;
    for (std::string &word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);

    pid_t child = fork();
    if (child < 0)
        throw std::runtime_error(std::strerror(errno));
    if (child == 0)
        become(argv, in.get(), out.get(), err.get(), folder);
    int status = waitFor(child);
    return {status, contents(out.get()), contents(err.get())};
}

}
