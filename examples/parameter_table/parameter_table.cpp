#include "examples/parameter_table/parameter_table.h"

#include <cstdint>
#include <cstdlib>

#include "vx/xdr.h"

namespace example {

namespace {

constexpr uint32_t mark = 0x56585054; // "VXPT"
constexpr uint32_t version = 1;
// What a file may promise at most. Memory for it is taken before it is read.
constexpr u_int longestText = 1000;
constexpr u_int mostRows = 100000;
constexpr u_int mostBytes = 64 << 20;

/** A stream that is ended with its scope. */
class Stream {
public:
    Stream(std::FILE *file, xdr_op direction) { xdrstdio_create(&xdr_, file, direction); }
    Stream(char *bytes, size_t size, xdr_op direction)
    {
        xdrmem_create(&xdr_, bytes, static_cast<u_int>(size), direction);
    }
    ~Stream() { xdr_destroy(&xdr_); }
    Stream(const Stream &) = delete;
    Stream &operator=(const Stream &) = delete;

    XDR *get() { return &xdr_; }

private:
    XDR xdr_;
};

// ---------------------------------------------------------------- one routine per type, for both directions

bool transfer(XDR *xdr, std::string &text)
{
    char *chars = xdr->x_op == XDR_ENCODE ? text.data() : nullptr;
    bool done = xdr_string(xdr, &chars, longestText);
    if (xdr->x_op == XDR_DECODE) {
        if (done)
            text = chars;
        std::free(chars);
    }
    return done;
}

bool transfer(XDR *xdr, Parameter &row)
{
    return transfer(xdr, row.name) && transfer(xdr, row.formula) && transfer(xdr, row.unit) &&
           xdr_double(xdr, &row.value);
}

bool transfer(XDR *xdr, ParameterTable &table)
{
    auto count = static_cast<uint32_t>(table.size());
    if (table.size() > mostRows || !xdr_uint32_t(xdr, &count) || count > mostRows)
        return false;
    // Row by row: a damaged count must not take memory for rows that are not there.
    for (uint32_t i = 0; i < count; ++i) {
        if (i == table.size())
            table.emplace_back();
        if (!transfer(xdr, table[i]))
            return false;
    }
    return true;
}

// ---------------------------------------------------------------- the file

struct Header {
    uint32_t mark = example::mark;
    uint32_t version = example::version;
    uint32_t sum = 0;
};

bool transfer(XDR *xdr, Header &header)
{
    return xdr_uint32_t(xdr, &header.mark) && xdr_uint32_t(xdr, &header.version) &&
           xdr_uint32_t(xdr, &header.sum);
}

/** @source Glenn Fowler, Landon Curt Noll, Phong Vo, "FNV hash" (FNV-1a, 32 bits) */
uint32_t checkSum(const std::vector<char> &bytes)
{
    uint32_t sum = 2166136261;
    for (char byte : bytes)
        sum = (sum ^ static_cast<unsigned char>(byte)) * 16777619;
    return sum;
}

/** At most what a text takes: its length, its bytes, and zeros up to a multiple of four. */
size_t encodedSize(const std::string &text)
{
    return 4 + text.size() + 3;
}

/** The table's rows as they stand in the file; empty for a table that is too large. */
std::vector<char> encoded(ParameterTable table)
{
    size_t size = 4;
    for (const Parameter &row : table)
        size += encodedSize(row.name) + encodedSize(row.formula) + encodedSize(row.unit) + 8;
    if (size > mostBytes)
        return {};
    std::vector<char> bytes(size);
    Stream stream(bytes.data(), bytes.size(), XDR_ENCODE);
    if (!transfer(stream.get(), table))
        return {};
    bytes.resize(xdr_getpos(stream.get()));
    return bytes;
}

}

const char *textOf(ReadResult result)
{
    switch (result) {
    case ReadResult::done: return "The table was read.";
    case ReadResult::noTable: return "The file is no parameter table.";
    case ReadResult::newerVersion: return "The table was written by a newer version.";
    default: return "The table is incomplete or damaged.";
    }
}

bool writeTable(std::FILE *file, const ParameterTable &table)
{
    std::vector<char> rows = encoded(table);
    if (rows.empty())
        return false;
    Header header;
    header.sum = checkSum(rows);
    Stream stream(file, XDR_ENCODE);
    char *bytes = rows.data();
    auto size = static_cast<u_int>(rows.size());
    return transfer(stream.get(), header) && xdr_bytes(stream.get(), &bytes, &size, mostBytes) &&
           std::fflush(file) == 0;
}

ReadResult readTable(std::FILE *file, ParameterTable &table)
{
    Stream stream(file, XDR_DECODE);
    Header header;
    if (!transfer(stream.get(), header) || header.mark != mark)
        return ReadResult::noTable;
    if (header.version > version)
        return ReadResult::newerVersion;
    if (header.version == 0)
        return ReadResult::damaged;
    char *bytes = nullptr;
    u_int size = 0;
    bool complete = xdr_bytes(stream.get(), &bytes, &size, mostBytes);
    std::vector<char> rows(bytes, bytes + (complete ? size : 0));
    std::free(bytes);
    if (!complete || checkSum(rows) != header.sum)
        return ReadResult::damaged;
    ParameterTable read;
    Stream rowStream(rows.data(), rows.size(), XDR_DECODE);
    if (!transfer(rowStream.get(), read))
        return ReadResult::damaged;
    table = std::move(read);
    return ReadResult::done;
}

}
