#include "vx/diagnose.h"
#include "vx/diagnose.hpp"

#include <algorithm>
#include <cstring>
#include <new>
#include <string>

#include "expr/parser.h"
#include "expr/report.h"
#include "expr/unit_result.h"
#include "expr/value_eval.h"
#include "text/codepage.h"
#include "vx/str.h"

using namespace vx::expr;
using namespace vx;

namespace {

template <size_t N> void copyCut(char (&out)[N], std::string_view text)
{
    size_t length = text.size();
    if (length >= N)
        length = text::boundaryBefore(text::codePage(), text.data(), N - 1);
    std::memcpy(out, text.data(), length);
    out[length] = '\0';
}

/** Owns a parsed formula. */
struct Tree {
    VsCnsGenOp *root = nullptr;
    Places places;

    Tree() = default;
    ~Tree() { VxGenExFree(&root); }
    Tree(const Tree &) = delete;
    Tree &operator=(const Tree &) = delete;

    const NodePlace *placeOf(const VsCnsGenOp *node) const
    {
        auto found =
            std::find_if(places.begin(), places.end(), [node](const NodePlace &p) { return p.node == node; });
        return node && found != places.end() ? &*found : nullptr;
    }
};

void setPlace(VxExprDiag &diag, const char *text, const Place &place)
{
    diag.offset = place.offset;
    diag.length = place.length;
    copyCut(diag.token, {text + place.offset, static_cast<size_t>(place.length)});
}

bool parse(const char *text, Tokenizer::Mode mode, bool quiet, Tree &tree, VxExprDiag &diag)
{
    Parser parser(text, mode, &tree.places);
    tree.root = parser.parse();
    if (tree.root)
        return true;
    const ParseFailure &failure = parser.failure();
    diag.number = failure.number;
    setPlace(diag, text, failure.place);
    if (!quiet)
        report(failure);
    return false;
}

void setDimensions(VxExprDiag &diag, const EvalFailure &failure)
{
    if (failure.number == error::unmatchedOperands) {
        using HESKET::Talm::Tool::Evaluation::KindName;
        copyCut(diag.left, KindName(failure.leftKind));
        copyCut(diag.right, KindName(failure.rightKind));
    } else if (failure.hasDimensions) {
        VxExprDimText(&failure.left, diag.left, sizeof diag.left);
        VxExprDimText(&failure.right, diag.right, sizeof diag.right);
    }
}

void setOperandPlaces(VxExprDiag &diag, const NodePlace &node)
{
    diag.leftOffset = node.operand[0].offset;
    diag.leftLength = node.operand[0].length;
    diag.rightOffset = node.operand[1].offset;
    diag.rightLength = node.operand[1].length;
}

void describe(const EvalFailure &failure, const char *text, const Tree &tree, VxExprDiag &diag)
{
    diag.number = failure.number;
    if (failure.node)
        copyCut(diag.operation, operationName(failure.node->op)); // none for a lone operand
    if (failure.name)
        copyCut(diag.name, failure.name);
    setDimensions(diag, failure);
    const NodePlace *node = tree.placeOf(failure.node);
    if (!node) {
        setPlace(diag, text, {0, static_cast<int32_t>(std::strlen(text))});
        return;
    }
    setOperandPlaces(diag, *node);
    bool known = failure.operand >= 0 && node->operand[failure.operand].length > 0;
    setPlace(diag, text, known ? node->operand[failure.operand] : node->operation);
}

/** Parse, run `evaluation(tree, failure)`, and tell what failed. */
template <typename Evaluation>
uint32_t diagnose(const char *text, int32_t quiet, VxExprDiag *diag, Evaluation evaluation)
{
    if (!diag)
        return 1;
    *diag = VxExprDiag{};
    if (!text)
        return 1;
    try {
        Tree tree;
        if (!parse(text, Tokenizer::Mode::plain, quiet != 0, tree, *diag))
            return 1;
        EvalFailure failure;
        if (evaluation(tree.root, failure))
            return 0;
        describe(failure, text, tree, *diag);
        if (!quiet)
            report(failure);
    } catch (const std::bad_alloc &) {
        diag->number = error::noMemory;
    }
    return 1;
}

}

uint32_t VxExprDiagParse(const char *text, int32_t extended, int32_t quiet, VxExprDiag *diag)
{
    if (!diag)
        return 1;
    *diag = VxExprDiag{};
    if (!text)
        return 1;
    try {
        Tree tree;
        auto mode = extended ? Tokenizer::Mode::extended : Tokenizer::Mode::plain;
        return parse(text, mode, quiet != 0, tree, *diag) ? 0 : 1;
    } catch (const std::bad_alloc &) {
        diag->number = error::noMemory;
        return 1;
    }
}

uint32_t VxExprDiagEval(const char *text, const char *unitName, void *ctx1, void *ctx2, int32_t quiet,
                        double *result, VxExprDiag *diag)
{
    if (!result)
        return 1;
    return diagnose(text, quiet, diag, [&](const VsCnsGenOp *tree, EvalFailure &failure) {
        if (evaluateInUnit(tree, unitName, ctx1, ctx2, *result, failure))
            return true;
        if (failure.number == error::unitMismatch && !failure.hasDimensions)
            failure.name = unitName;
        return false;
    });
}

uint32_t VxExprDiagEvalRcrs(const char *text, void *ctx1, void *ctx2, int32_t quiet, VxDimNum *record,
                            VxExprDiag *diag)
{
    if (!record)
        return 1;
    return diagnose(text, quiet, diag, [&](const VsCnsGenOp *tree, EvalFailure &failure) {
        return evaluate(tree, settingsFor(*record, ctx1, ctx2), *record, failure);
    });
}

uint32_t VxExprDiagEvalValue(const char *text, void *ctx1, void *ctx2, int32_t quiet, VxDimNum *number,
                             HESKET::Talm::Tool::Evaluation::VxEvalValue *value, VxExprDiag *diag)
{
    if (!number || !value)
        return 1;
    std::string undefined; // outlives the exception that brings it
    return diagnose(text, quiet, diag, [&](const VsCnsGenOp *tree, EvalFailure &failure) {
        try {
            evaluateValue(tree, ctx1, ctx2, *number, *value, failure);
            return true;
        } catch (const HESKET::Talm::Tool::Evaluation::ErrorUndefineVariable &error) {
            undefined = error.name;
            failure.name = undefined.c_str();
        } catch (const HESKET::Talm::Tool::Evaluation::Error &) {
        }
        return false;
    });
}

uint32_t VxExprDimText(const VxDimNum *record, char *text, int32_t size)
{
    if (!record || !text || size < 1)
        return 1;
    struct Part {
        const char *name;
        double exponent;
    };
    const Part parts[] = {
        {"length", record->len_exp}, {"angle", record->ang_exp}, {"mass", record->mass_exp}};
    char all[128] = ""; // room for three parts, so that this needs no memory
    for (const Part &part : parts) {
        if (isZero(part.exponent))
            continue;
        VxStrsCat(all, sizeof all, *all ? "*" : "", part.name);
        if (!isZero(part.exponent - 1.0)) {
            VxStrCat(all, "^", sizeof all);
            VxStrAddVal(all, sizeof all, part.exponent);
        }
    }
    return VxStrCpy(text, *all ? all : "dimensionless", size);
}
