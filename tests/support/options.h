#pragma once

#include <cstring>
#include <map>
#include <string>

#include "talm/config.hpp"

namespace vx::test {

/** Options as a test sets them, by the end of their keys; in force while it lives. */
struct Options final : IConfigMgr {
    Options() { TalmSetConfigMgr(this); }
    ~Options() { TalmSetConfigMgr(nullptr); }
    Options(const Options &) = delete;
    Options &operator=(const Options &) = delete;

    uint32_t GetValue(const char *key, char **text, bool) override
    {
        *text = nullptr;
        for (const auto &[name, value] : values)
            if (std::string(key).ends_with(name))
                *text = strdup(value.c_str());
        return *text ? 0 : 1;
    }
    uint32_t SetValue(const char *, const char *) override { return 1; }
    bool Load(int32_t) override { return false; }

    std::map<std::string, std::string> values;
};

}
