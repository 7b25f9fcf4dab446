#include "expr/tree.h"

#include "expr/functions.h"
#include "expr/small_stack.h"
#include "vx/mem.h"
#include "vx/str.h"

namespace vx::expr {

namespace {

// While a tree is freed, the slot that led down to a child holds the way up.
constexpr int32_t wayUp = -1;

VsCnsGenSlot *slotOfKind(VsCnsGenOp *node, int32_t kind) noexcept
{
    int32_t argc = node->argc < 0 ? 0 : node->argc > 3 ? 3 : node->argc;
    for (int32_t i = 0; i < argc; ++i)
        if (node->slot[i].kind == kind)
            return &node->slot[i];
    return nullptr;
}

void freeNode(VsCnsGenOp *node) noexcept
{
    int32_t argc = node->argc < 0 ? 0 : node->argc > 3 ? 3 : node->argc;
    for (int32_t i = 0; i < argc; ++i)
        if (ownsText(node->slot[i]))
            VxMemFree(&node->slot[i].value.ptr);
    void *block = node;
    VxMemFree(&block);
}

// By reversing the pointers on the way down, so that a tree of any shape is
// freed without memory and without recursion (H. Schorr, W. Waite, 1967).
void freeTree(VsCnsGenOp *node) noexcept
{
    VsCnsGenOp *parent = nullptr;
    for (;;) {
        if (VsCnsGenSlot *slot = slotOfKind(node, kind::tree)) {
            auto *child = static_cast<VsCnsGenOp *>(slot->value.ptr);
            slot->kind = kind::none;
            if (!child)
                continue;
            slot->kind = wayUp;
            slot->value.ptr = parent;
            parent = node;
            node = child;
            continue;
        }
        freeNode(node);
        if (!parent)
            return;
        node = parent;
        if (VsCnsGenSlot *slot = slotOfKind(node, wayUp)) {
            slot->kind = kind::none;
            parent = static_cast<VsCnsGenOp *>(slot->value.ptr);
        }
    }
}

}

const char *operationName(int32_t code) noexcept
{
    switch (code) {
    case op::add: return "+";
    case op::subtract: return "-";
    case op::multiply: return "*";
    case op::divide: return "/";
    case op::power: return "^";
    case op::conditional: return "then";
    case op::less: return "<";
    case op::greater: return ">";
    case op::equal: return "=";
    case op::negate: return "!";
    case op::both: return "&";
    case op::either: return "|";
    case op::unit: return "unit";
    default: break;
    }
    const char *name = functionName(code);
    return name ? name : "";
}

const char *printedName(int32_t code) noexcept
{
    switch (code) {
    case op::leaf: return "EVAL";
    case op::asin: return "arcSin";
    case op::acos: return "arcCos";
    case op::atan: return "arcTan";
    case op::log: return "log10";
    case op::conditional: return "if";
    default: break;
    }
    const char *name = operationName(code);
    return *name ? name : nullptr;
}

}

using namespace vx::expr;

uint32_t VxGenExFree(VsCnsGenOp **tree)
{
    if (!tree)
        return 1;
    if (*tree)
        freeTree(*tree);
    *tree = nullptr;
    return 0;
}
