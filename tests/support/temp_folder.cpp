#include "tests/support/temp_folder.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>

namespace vx::test {

TempFolder::TempFolder()
{
    std::random_device random;
    auto base = std::filesystem::temp_directory_path();
    do
        path_ = base / ("vx-" + std::to_string(random()));
    while (!std::filesystem::create_directory(path_));
}

TempFolder::~TempFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string TempFolder::text(std::string_view name) const
{
    std::string text = path_.string();
    if (!name.empty())
        text.append("/").append(name);
    for (char &c : text)
        if (c == '/')
            c = '\\';
    return text;
}

void TempFolder::write(std::string_view name, std::string_view bytes) const
{
    auto file = path_ / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream stream(file, std::ios::binary);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!stream.flush())
        throw std::runtime_error("cannot write " + file.string());
}

std::string TempFolder::read(std::string_view name) const
{
    std::ifstream stream(path_ / name, std::ios::binary);
    if (!stream)
        throw std::runtime_error("cannot read " + std::string(name));
    return {std::istreambuf_iterator<char>(stream), {}};
}

Environment::Environment(const char *name, const char *value) : name_(name)
{
    const char *old = std::getenv(name);
    had_ = old != nullptr;
    if (old)
        old_ = old;
    if (value)
        setenv(name, value, 1);
    else
        unsetenv(name);
}

Environment::~Environment()
{
    if (had_)
        setenv(name_.c_str(), old_.c_str(), 1);
    else
        unsetenv(name_.c_str());
}

}
