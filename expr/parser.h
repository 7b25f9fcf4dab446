#pragma once

// From a formula's text to its tree.
//
// An operator-precedence parser whose pending operators stand on a stack of
// its own: how deep a formula nests never shows on the thread's stack. Levels,
// from the lowest precedence to the highest:
//
//   conditional  or-level ["then" conditional ["else" conditional]]
//   or-level     comparison {("&" | "|") comparison}
//   comparison   sum [("<" | ">" | "=") sum]
//   sum          product {("+" | "-") product}
//   product      suffixed {("*" | "/") suffixed}
//   suffixed     unary {"." unit}
//   unary        ["+" | "-" | "!"] power
//   power        group ["^" power]
//   group        "(" conditional ")", a number, name, text or call
//
// Arguments of calls are formulas of their own, parsed where they stand.

#include <cstdint>
#include <string_view>
#include <vector>

#include "expr/small_stack.h"
#include "expr/tokenizer.h"
#include "expr/tree.h"

namespace vx::expr {

namespace error {
enum Number : int32_t {
    unreported = 1, ///< no memory, which the allocator has told, or an empty formula
    malformedNumber = 46,
    missingOperand = 47,
    missingParenthesis = 48,
    operandExpected = 49,
    tooDeep = 51,
    leftOver = 52
};
}

/** Groups, calls, powers and parts of conditionals that may be open at once. */
constexpr int32_t mostOpenLevels = 1000;

/** A call's arguments are at most this many bytes of text. */
constexpr int32_t mostArgumentBytes = 511;

/** Bytes of a formula. */
struct Place {
    int32_t offset;
    int32_t length;
};

/** Where a node came from: its operator or function name, and its operands. */
struct NodePlace {
    const VsCnsGenOp *node;
    Place operation;
    Place operand[3];
};
using Places = std::vector<NodePlace>;

/** Why and where a parse failed. */
struct ParseFailure {
    int32_t number = 0;
    /** Not worth a message: an empty formula or argument, or a refusal that is already reported. */
    bool silent = false;
    Place place{};
};

class Parser {
public:
    /** `places`, when given, receives a record for each node. */
    Parser(std::string_view text, Tokenizer::Mode mode, Places *places = nullptr) noexcept;
    ~Parser();
    Parser(const Parser &) = delete;
    Parser &operator=(const Parser &) = delete;

    /** The tree, the caller's to free with VxGenExFree; null when failure() says why. Called once. */
    VsCnsGenOp *parse();

    const ParseFailure &failure() const noexcept { return failure_; }

    /** Neither a name nor a unit was met. */
    bool constant() const noexcept { return constant_; }

private:
    enum class State { operand, unsignedOperand, operation, operationNoPower, done, failed };

    // Higher binds tighter; parts of conditionals and brackets are never reduced by an operator.
    enum Binding : uint8_t {
        none = 0,
        logical = 1,
        comparison = 2,
        sum = 3,
        product = 4,
        unary = 6,
        power = 7
    };

    struct Operand {
        VsCnsGenSlot slot;
        Place place;
    };

    /** An operator, bracket or part of a conditional that waits for its last operand. */
    struct Pending {
        enum Kind : uint8_t { binary, sign, thenPart, elsePart, group, call };
        Kind kind;
        Binding binding;
        char operation;       ///< of a sign
        uint8_t argument;     ///< of a call: the one that is read
        uint16_t comma[2];    ///< of a call: from its parenthesis
        uint16_t close;       ///< of a call: from its parenthesis
        VsCnsGenOp *node;     ///< with the operands so far; null for a group and a sign
        const char *outerEnd; ///< of a call: where the text around it ends
        const char *open;     ///< of a call: its parenthesis
        Place place;          ///< of the operator
        int32_t begin;        ///< offset at which the whole operation begins
        int32_t record;       ///< in places_, or -1
    };

    State readOperand(bool signs);
    State readOperation(bool powers);
    State leafNumber();
    State leafText(int32_t kind);
    State openGroup();
    State openSign();
    State openCall();
    State pushBinary(int32_t op, Binding binding);
    State suffix();
    State thenOperation();
    State elseOperation();
    State closeGroup();
    State closeRange();
    State beginArgument();
    State endArgument();
    State missingOperand();
    State leftOver();

    bool splitArguments(Pending &call, int32_t argc);
    bool reduce(Binding least);
    bool reduceTop();
    bool reduceSign(const Pending &sign);
    bool reduceConditionals();
    void complete(VsCnsGenOp *node) noexcept;
    bool wrapLeaf();

    Pending *open(Pending::Kind kind, Binding binding);
    void close() noexcept;
    VsCnsGenOp *newNode(int32_t op, int32_t argc, const Place &place, int32_t &record);
    void setOperand(VsCnsGenOp *node, int32_t record, int32_t slot);
    bool newText(int32_t kind, std::string_view text, VsCnsGenSlot &slot);
    void traceNode(const char *label, int32_t op) const;

    State fail(int32_t number, const Place &place, bool silent = false) noexcept;
    State failAtToken(int32_t number) noexcept;
    State outOfMemory() noexcept;
    bool atTop(Pending::Kind kind) noexcept { return !pending_.empty() && pending_.top().kind == kind; }
    int32_t offsetOf(const char *p) const noexcept { return static_cast<int32_t>(p - text_); }
    Place placeOf(const Token &token) const noexcept
    {
        return {offsetOf(token.begin), static_cast<int32_t>(token.end - token.begin)};
    }

    Tokenizer tokens_;
    const char *text_;
    Places *places_;
    bool constant_ = true;
    bool trace_;
    int32_t openLevels_ = 0;
    /** The operand last completed; its kind is none while there is none. */
    Operand current_{};
    ParseFailure failure_;
    SmallStack<Pending, 12> pending_;
};

}
