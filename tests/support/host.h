#pragma once

#include <map>

#include "talm/base.hpp"

namespace vx::test {

/** Functions and variables of the host until the end of the scope. */
class Host {
public:
    Host() = default;
    ~Host()
    {
        for (auto [number, set] : set_)
            (base().*set)(number, nullptr);
    }
    Host(const Host &) = delete;
    Host &operator=(const Host &) = delete;

    /** Install a function; a lambda will do. */
    template <typename Function> void operator()(int32_t number, Function function)
    {
        install(number, &Base::SetFunction, reinterpret_cast<void *>(+function));
    }
    void operator()(int32_t number, std::nullptr_t) { install(number, &Base::SetFunction, nullptr); }

    void variable(int32_t number, const void *address)
    {
        install(number, &Base::SetVariable, const_cast<void *>(address));
    }

private:
    using Base = HESKET::Talm::Ap::Base;
    using Set = void (Base::*)(int32_t, void *);

    static Base &base() { return Base::Instance(); }
    void install(int32_t number, Set set, void *address)
    {
        (base().*set)(number, address);
        set_.emplace(number, set);
    }

    std::multimap<int32_t, Set> set_;
};

}
