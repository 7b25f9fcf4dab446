#include "talm/base.hpp"

#include <atomic>

int32_t TsCadVer = 3200;

namespace HESKET::Talm::Ap {

namespace {

constexpr int32_t entries = 1024;

struct Registry {
    std::atomic<void *> functions[entries];
    std::atomic<void *> variables[entries];
};

constinit Registry registry{};

void *get(const std::atomic<void *> (&table)[entries], int32_t number)
{
    return number >= 0 && number < entries ? table[number].load() : nullptr;
}

void set(std::atomic<void *> (&table)[entries], int32_t number, void *address)
{
    if (number >= 0 && number < entries)
        table[number] = address;
}

}

Base &Base::Instance()
{
    static Base instance;
    return instance;
}

void *Base::Function(int32_t number) const
{
    return get(registry.functions, number);
}

void *Base::Variable(int32_t number) const
{
    return get(registry.variables, number);
}

void Base::SetFunction(int32_t number, void *function)
{
    set(registry.functions, number, function);
}

void Base::SetVariable(int32_t number, void *address)
{
    set(registry.variables, number, address);
}

}

using HESKET::Talm::Ap::Base;

void *ApBase(void)
{
    return &Base::Instance();
}

void *ApBaseGetVariable(int32_t number)
{
    return Base::Instance().Variable(number);
}

void *ApBaseGetFunction(int32_t number)
{
    return Base::Instance().Function(number);
}
