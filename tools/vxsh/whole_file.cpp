#include "tools/vxsh/whole_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace vxsh {

namespace {

struct Close {
    void operator()(std::FILE *stream) const { std::fclose(stream); }
};
using Stream = std::unique_ptr<std::FILE, Close>;

std::string reason()
{
    return std::strerror(errno);
}

std::string readAll(std::FILE *stream, std::string &bytes)
{
    char piece[65536];
    for (size_t n; (n = std::fread(piece, 1, sizeof piece, stream)) > 0;)
        bytes.append(piece, n);
    return std::ferror(stream) ? reason() : "";
}

bool writeAll(Stream stream, const std::string &bytes)
{
    bool written = std::fwrite(bytes.data(), 1, bytes.size(), stream.get()) == bytes.size();
    return std::fclose(stream.release()) == 0 && written;
}

}

std::string readWholeFile(const std::string &name, std::string &bytes)
{
    bytes.clear();
    if (name == "-")
        return readAll(stdin, bytes);
    Stream stream(std::fopen(name.c_str(), "rb"));
    return stream ? readAll(stream.get(), bytes) : reason();
}

std::string writeWholeFile(const std::string &name, const std::string &bytes)
{
    std::string fresh = name + ".new";
    Stream stream(std::fopen(fresh.c_str(), "wb"));
    if (!stream)
        return reason();
    if (writeAll(std::move(stream), bytes) && std::rename(fresh.c_str(), name.c_str()) == 0)
        return "";
    std::string why = reason();
    std::remove(fresh.c_str());
    return why;
}

}
