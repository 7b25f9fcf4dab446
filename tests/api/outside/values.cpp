// The C++ side of the interface compiles and links from outside too.

#include "vx/escape.hpp"
#include "vx/eval.hpp"
#include "vx/lang.hpp"
#include "vx/parse.hpp"

std::vector<std::string> namesIn(const char *formula)
{
    VX::CommandRecover guard;
    HESKET::Talm::Tool::Evaluation::TsVector vector(1, 2, 3);
    vector *= 2.0;
    return VxParseVarInquire(formula);
}
