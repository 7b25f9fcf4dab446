#pragma once

// What compression and expansion mean: zlib with one byte in and one byte out
// per call. Slow and plain; the toolkit's functions are held against it.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <zlib.h>

namespace vx::test {

using Bytes = std::vector<unsigned char>;

/** The compressed bytes; the progress values go to `progress`. */
inline std::optional<Bytes> deflateOneByte(const Bytes &source, std::vector<intptr_t> &progress)
{
    z_stream stream{};
    if (deflateInit(&stream, 9) != Z_OK)
        return {};
    Bytes out(deflateBound(&stream, static_cast<uLong>(source.size())));
    stream.next_in = const_cast<Bytef *>(source.data());
    stream.next_out = out.data();
    intptr_t last = 80;
    int result = Z_OK;
    while (result == Z_OK) {
        bool more = stream.total_in < source.size();
        stream.avail_in = more;
        stream.avail_out = 1;
        result = deflate(&stream, more ? Z_NO_FLUSH : Z_FINISH);
        auto now = static_cast<intptr_t>(80 + 20 * stream.total_in / source.size());
        if (now > last)
            progress.push_back(last = now);
    }
    out.resize(stream.total_out);
    deflateEnd(&stream);
    return result == Z_STREAM_END ? std::optional(out) : std::nullopt;
}

/** What comes out of `source`, at most `size` bytes; nothing when the source is damaged. */
inline std::optional<Bytes> inflateOneByte(const Bytes &source, size_t size)
{
    z_stream stream{};
    if (inflateInit(&stream) != Z_OK)
        return {};
    Bytes out(size);
    stream.next_in = const_cast<Bytef *>(source.data());
    stream.next_out = out.data();
    int result = Z_OK;
    while (result == Z_OK && stream.total_out < size && stream.total_in < source.size()) {
        stream.avail_in = stream.avail_out = 1;
        result = inflate(&stream, Z_NO_FLUSH);
    }
    out.resize(stream.total_out);
    inflateEnd(&stream);
    return result == Z_OK || result == Z_STREAM_END ? std::optional(out) : std::nullopt;
}

}
