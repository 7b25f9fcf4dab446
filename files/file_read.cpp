// Whole files: into memory, against each other, and line by line.

#include <algorithm>
#include <cstring>
#include <limits>
#include <string>

#include "files/file_handle.h"
#include "platform/os/os.h"
#include "text/codepage.h"
#include "vx/file.h"
#include "vx/mem.h"
#include "vx/str.h"

namespace vx::files {

namespace {

constexpr size_t pieceSize = 64 * 1024;
constexpr int32_t lineSize = 1024;

/** Bytes that grow in a block of VxMemAlloc's, with room for a zero byte behind them. */
class Block {
public:
    Block() = default;
    ~Block() { VxMemFree(&bytes_); }
    Block(const Block &) = delete;
    Block &operator=(const Block &) = delete;

    /** Room for this many bytes altogether; false when there is no memory, or no 31-bit size for them. */
    bool reserve(int64_t count)
    {
        constexpr int64_t most = std::numeric_limits<int32_t>::max() - 1;
        if (count <= capacity_)
            return true;
        if (count > most)
            return false;
        int32_t wanted = static_cast<int32_t>(std::min(std::max(count, int64_t{2} * capacity_), most));
        if (VxMemResize(wanted + 1, &bytes_))
            return false;
        capacity_ = wanted;
        return true;
    }

    char *end() const noexcept { return static_cast<char *>(bytes_) + count_; }
    size_t room() const noexcept { return static_cast<size_t>(capacity_ - count_); }
    int32_t count() const noexcept { return count_; }
    void add(size_t count) noexcept { count_ += static_cast<int32_t>(count); }

    void *release() noexcept
    {
        *end() = '\0';
        void *bytes = bytes_;
        bytes_ = nullptr;
        return bytes;
    }

private:
    void *bytes_ = nullptr;
    int32_t capacity_ = 0;
    int32_t count_ = 0;
};

/** Read until `piece` gives 0 bytes; it takes place and room, and answers false when it fails. */
template <typename Piece> bool readAll(Block &block, int64_t expected, Piece piece)
{
    if (!block.reserve(std::max<int64_t>(expected, 1)))
        return false;
    for (;;) {
        // The last, empty read must not make the block grow.
        char spare;
        size_t got = 0;
        bool full = block.room() == 0;
        if (!(full ? piece(&spare, 1, got) : piece(block.end(), block.room(), got)))
            return false;
        if (got == 0)
            return true;
        if (full) {
            if (!block.reserve(int64_t{block.count()} + 1))
                return false;
            *block.end() = spare;
        }
        block.add(got);
    }
}

void give(Block &block, void **data, int32_t *size) noexcept
{
    if (size)
        *size = block.count();
    *data = block.release();
}

bool readFile(const char *name, Block &block)
{
    FileHandle file;
    os::FileStatus status;
    if (!name || !file.openToRead(name) || os::handleStatus(file.get(), status) != os::Error::none)
        return false;
    return readAll(block, status.size, [&](char *place, size_t room, size_t &got) {
        return os::readHandle(file.get(), block.count(), place, room, got) == os::Error::none;
    });
}

/** One file of a comparison, a piece at a time. */
class Pieces {
public:
    bool open(const char *name) noexcept { return name && file_.openToRead(name); }

    /** Read the next piece whole, or what is left. */
    bool next() noexcept
    {
        size_ = 0;
        for (size_t got = 1; got > 0 && size_ < sizeof bytes_; size_ += got)
            if (os::readHandle(file_.get(), position_ + static_cast<int64_t>(size_), bytes_ + size_,
                               sizeof bytes_ - size_, got) != os::Error::none)
                return false;
        position_ += static_cast<int64_t>(size_);
        return true;
    }

    bool atEnd() const noexcept { return size_ == 0; }
    bool operator==(const Pieces &other) const noexcept
    {
        return size_ == other.size_ && std::memcmp(bytes_, other.bytes_, size_) == 0;
    }

private:
    FileHandle file_;
    char bytes_[pieceSize];
    size_t size_ = 0;
    int64_t position_ = 0;
};

constexpr size_t longestCharacter = 4;

/** Read on to the end of the line and keep what comes first of it; false when there is nothing. */
bool skipRest(FILE *stream, char (&first)[longestCharacter]) noexcept
{
    size_t kept = 0;
    for (int c = std::getc(stream); c != '\n' && c != EOF; c = std::getc(stream))
        if (kept < longestCharacter - 1)
            first[kept++] = static_cast<char>(c);
    first[kept] = '\0';
    return kept > 0;
}

/** How many bytes of a text are whole characters, when `behind` follows. */
size_t wholeCharacters(const char *text, size_t length, const char *behind) noexcept
{
    const text::CodePage &page = text::codePage();
    size_t whole = 0;
    while (length - whole > longestCharacter)
        whole += static_cast<size_t>(text::charBytes(page, text + whole));
    std::string end(text + whole, length - whole);
    end += behind;
    for (const char *p = end.c_str(); whole < length; p += text::charBytes(page, p)) {
        size_t next = whole + static_cast<size_t>(text::charBytes(page, p));
        if (next > length)
            break;
        whole = next;
    }
    return whole;
}

/** Cut a line end off a line. */
void dropLineEnd(char *line) noexcept
{
    size_t length = std::strlen(line);
    if (length == 0 || line[length - 1] != '\n')
        return;
    line[--length] = '\0';
    if (length > 0 && line[length - 1] == '\r')
        line[length - 1] = '\0';
}

/** What a buffer took of a line that is longer, or just as long. */
void cutLongLine(FILE *stream, char *line, size_t length) noexcept
{
    char rest[longestCharacter];
    if (skipRest(stream, rest))
        line[wholeCharacters(line, length, rest)] = '\0';
    else if (line[length - 1] == '\r')
        line[length - 1] = '\0';
}

bool isComment(const char *line) noexcept
{
    const text::CodePage &page = text::codePage();
    while (int space = text::spaceBytes(page, line))
        line += space;
    return *line == '\0' || *line == '#';
}

}

}

using namespace vx;
using namespace vx::files;

uint32_t VxFileToMem(const char *name, void **data, int32_t *size)
{
    if (!data || !size)
        return 1;
    *data = nullptr;
    *size = 0;
    Block block;
    if (!readFile(name, block))
        return 1;
    give(block, data, size);
    return 0;
}

uint32_t VxFileToMem2(FILE *stream, void **data, int32_t *size)
{
    if (!data || !size)
        return 1;
    *data = nullptr;
    *size = 0;
    Block block;
    if (!stream || !readAll(block, pieceSize, [&](char *place, size_t room, size_t &got) {
            got = std::fread(place, 1, room, stream);
            return got > 0 || !std::ferror(stream);
        }))
        return 1;
    give(block, data, size);
    return 0;
}

uint32_t VxFileRead(const char *name, char **text)
{
    if (!text)
        return 1;
    *text = nullptr;
    Block block;
    if (!readFile(name, block))
        return 1;
    *text = static_cast<char *>(block.release());
    return 0;
}

int32_t VxFileDiff(const char *a, const char *b)
{
    Pieces first;
    Pieces second;
    if (!first.open(a) || !second.open(b))
        return -1;
    do
        if (!first.next() || !second.next())
            return -1;
    while (first == second && !first.atEnd());
    return !(first == second);
}

int32_t VxFileGetLine(FILE *stream, char *line, int32_t size)
{
    if (!stream || !line || size < 2)
        return -1;
    size_t room = static_cast<size_t>(size);
    // A terminator that fgets put there tells that the buffer was filled.
    line[room - 1] = '!';
    if (!std::fgets(line, size, stream)) {
        line[0] = '\0';
        return -1;
    }
    if (line[room - 1] == '\0' && line[room - 2] != '\n')
        cutLongLine(stream, line, room - 1);
    else
        dropLineEnd(line);
    return 0;
}

int32_t VxFileNextLine(FILE *stream, char *line, int32_t size)
{
    while (VxFileGetLine(stream, line, size) == 0)
        if (!isComment(line))
            return 0;
    return -1;
}

uint32_t VxFileGoTo(FILE *stream, const char *text)
{
    if (!stream || !text || std::strlen(text) >= lineSize)
        return 1;
    char line[lineSize];
    int64_t start = 0;
    do {
        if (os::tellStream(stream, start) != os::Error::none || VxFileGetLine(stream, line, sizeof line))
            return 1;
    } while (std::strncmp(line, text, std::strlen(text)) != 0);
    return os::seekStream(stream, start, os::Origin::begin) != os::Error::none;
}
