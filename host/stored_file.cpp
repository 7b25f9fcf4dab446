#include "host/stored_file.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <memory>
#include <string_view>
#include <system_error>
#include <thread>

#include "host/option_file.h"

namespace fs = std::filesystem;

namespace talm {

namespace {

struct CloseFile {
    void operator()(std::FILE *file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

bool writeWhole(const fs::path &path, std::string_view text)
{
    File file(std::fopen(path.string().c_str(), "wb"));
    if (!file)
        return false;
    bool written = std::fwrite(text.data(), 1, text.size(), file.get()) == text.size();
    return std::fclose(file.release()) == 0 && written;
}

/** A file that only one process can make stands beside the option file while one writes it. */
class WriteLock {
public:
    explicit WriteLock(const fs::path &file) : path_(file)
    {
        using namespace std::chrono_literals;
        path_ += ".lock";
        for (int attempt = 0; attempt < 1000; ++attempt) {
            errno = 0;
            held_ = File(std::fopen(path_.string().c_str(), "wbx")) != nullptr;
            if (held_ || errno != EEXIST)
                return;
            removeIfAbandoned();
            std::this_thread::sleep_for(5ms);
        }
    }
    ~WriteLock()
    {
        std::error_code ignored;
        if (held_)
            fs::remove(path_, ignored);
    }
    WriteLock(const WriteLock &) = delete;
    WriteLock &operator=(const WriteLock &) = delete;

    bool held() const { return held_; }

private:
    /** A writer is done in milliseconds; a lock of some seconds' age was left behind by a crash. */
    void removeIfAbandoned() const
    {
        using namespace std::chrono_literals;
        std::error_code failed;
        auto made = fs::last_write_time(path_, failed);
        if (!failed && fs::file_time_type::clock::now() - made > 3s)
            fs::remove(path_, failed);
    }

    fs::path path_;
    bool held_ = false;
};

/** Put `text` in the place of a file, so that at each moment the old or the new one stands there whole. */
bool replaceFile(const fs::path &path, std::string_view text)
{
    std::error_code failed;
    fs::path fresh = path;
    fresh += ".new";
    if (!writeWhole(fresh, text))
        return fs::remove(fresh, failed), false;
    if (auto old = fs::status(path, failed); !failed && fs::exists(old))
        fs::permissions(fresh, old.permissions(), failed);
    fs::rename(fresh, path, failed);
    if (!failed)
        return true;
    std::error_code ignored;
    fs::remove(fresh, ignored);
    return false;
}

/** The file itself where the name is a link, so that the link outlives a change. */
fs::path target(const fs::path &path)
{
    std::error_code failed;
    fs::path real = fs::canonical(path, failed);
    return failed ? path : real;
}

}

std::optional<std::string> readWhole(const fs::path &path)
{
    File file(std::fopen(path.string().c_str(), "rb"));
    if (!file)
        return std::nullopt;
    std::string text;
    char piece[4096];
    for (size_t n; (n = std::fread(piece, 1, sizeof piece, file.get())) > 0;)
        text.append(piece, n);
    if (std::ferror(file.get()))
        return std::nullopt;
    return text;
}

bool storeOption(const fs::path &named, std::string_view key, std::string_view value)
{
    std::error_code failed;
    fs::path path = target(named);
    fs::create_directories(path.parent_path(), failed);
    WriteLock lock(path);
    if (!lock.held())
        return false;
    auto text = fs::status(path, failed).type() == fs::file_type::not_found ? "" : readWhole(path);
    return text && replaceFile(path, withOption(*text, key, value));
}

}
