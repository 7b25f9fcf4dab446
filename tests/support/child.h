#pragma once

// Bodies that need a process of their own: a second holder of a file, a user
// without the rights that root has.

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <list>
#include <stdexcept>

namespace vx::test {

constexpr unsigned nobody = 65534;

/** Go on as a user who owns nothing, when this is root. For child processes: there is no way back. */
inline void dropRights()
{
    if (geteuid() == 0 && (setegid(nobody) != 0 || seteuid(nobody) != 0))
        _exit(3);
}

/** A process forked off this one. */
class Child {
public:
    template <typename Body> explicit Child(Body body)
    {
        pid_ = fork();
        if (pid_ < 0)
            throw std::runtime_error("cannot fork");
        if (pid_ == 0)
            _exit(body() ? 0 : 1);
    }

    ~Child() { succeeded(); }
    Child(const Child &) = delete;
    Child &operator=(const Child &) = delete;

    /** Wait for its end; whether the body answered true. */
    bool succeeded()
    {
        if (pid_ > 0) {
            waitpid(pid_, &status_, 0);
            pid_ = 0;
        }
        return WIFEXITED(status_) && WEXITSTATUS(status_) == 0;
    }

private:
    pid_t pid_;
    int status_ = -1;
};

/** Whether `body` answers true in a process of its own. */
template <typename Body> bool inChild(Body body)
{
    return Child(body).succeeded();
}

/** Whether body(0), body(1), ... answer true in so many processes at the same time. */
template <typename Body> bool inChildren(int count, Body body)
{
    std::list<Child> children;
    for (int i = 0; i < count; ++i)
        children.emplace_back([&] { return body(i); });
    return std::ranges::count_if(children, &Child::succeeded) == count;
}

}
