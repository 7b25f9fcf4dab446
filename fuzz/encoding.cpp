// Foreign bytes through every conversion of vx/lang.h, in a code page that the
// first byte picks. What must hold for any bytes is checked, not only survived.

#include "fuzz/fuzz.h"
#include "tests/text/conversions.h"

using namespace vx::test;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    vx::text::setCodePage(everyCodePage[data[0] % std::size(everyCodePage)], 0);
    require(conversionsAgree(textFrom(1, data, size)));
    return 0;
}
