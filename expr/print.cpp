#include "expr/small_stack.h"
#include "expr/tree.h"
#include "vx/str.h"

using namespace vx::expr;

namespace {

struct Frame {
    const VsCnsGenOp *node;
    int32_t next;
};

void printName(const VsCnsGenOp &node)
{
    const char *name = printedName(node.op);
    VxPrintf("%s", name ? name : " Invalid_OpTyp");
}

void printLabel(const VsCnsGenOp &node, int32_t slot)
{
    if (node.op == op::conditional && slot > 0)
        VxPrintf(slot == 1 ? " _then" : " _else");
}

void printLeaf(const VsCnsGenSlot &slot)
{
    if (slot.kind == kind::number)
        VxPrintf(" %f", slot.value.num);
    else if (ownsText(slot) && slot.value.ptr)
        VxPrintf(" %s", textOf(slot));
    else
        VxPrintf(" Invalid_Primary");
}

bool isPrintable(const VsCnsGenOp &node)
{
    return node.argc >= 0 && node.argc <= 3;
}

}

uint32_t VxGenExPrint(const VsCnsGenOp *tree)
{
    if (!tree) {
        VxPrintf("Parse Tree Empty.\n");
        return 0;
    }
    SmallStack<Frame, 32> frames;
    frames.push({tree, 0});
    while (!frames.empty()) {
        Frame &frame = frames.top();
        const VsCnsGenOp &node = *frame.node;
        if (!isPrintable(node)) {
            VxPrintf("Invalid Operation.\n");
            frames.pop();
            continue;
        }
        if (frame.next == 0)
            printName(node);
        if (frame.next == node.argc) {
            frames.pop();
            continue;
        }
        int32_t slot = frame.next++;
        printLabel(node, slot);
        const VsCnsGenOp *child = node.slot[slot].kind == kind::tree ? childOf(node.slot[slot]) : nullptr;
        if (!child) {
            printLeaf(node.slot[slot]);
            continue;
        }
        VxPrintf("\n[%d]", frames.size());
        if (!frames.push({child, 0}))
            return 1;
    }
    VxPrintf("\n");
    return 0;
}
