// Expansion of foreign bytes: whatever they are, the result is that of zlib
// fed one byte at a time. Three bytes in front choose the room and the damage.

#include <cstring>

#include "fuzz/fuzz.h"
#include "tests/session/one_byte_zlib.h"
#include "vx/compress.h"
#include "vx/escape.h"
#include "vx/mem.h"

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    VgEscapeFlag = 1; // keeps the error log silent
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 4)
        return 0;
    int32_t room = data[0] < 128 ? 0 : (data[0] - 127) * 16;
    vx::test::Bytes source(data + 3, data + size);
    if (data[0] % 2) {
        // Noise seldom gets past zlib's header: make a stream of it, and damage that.
        std::vector<intptr_t> progress;
        source = *vx::test::deflateOneByte(source, progress);
        source[data[1] % source.size()] ^= data[2];
    }
    auto expected = vx::test::inflateOneByte(source, room ? static_cast<size_t>(room) : 8 * source.size());
    bool nothing = !expected || expected->empty(); // no block is that small

    void *block = nullptr;
    int32_t produced = room;
    bool failed = VxLibInflate(source.data(), static_cast<int32_t>(source.size()), &block, &produced) != 0;
    bool same = failed ? nothing
                       : !nothing && static_cast<size_t>(produced) == expected->size() &&
                             std::memcmp(block, expected->data(), expected->size()) == 0;
    VxMemFree(&block);
    require(same);
    return 0;
}
