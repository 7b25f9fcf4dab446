#include "expr/parser.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "expr/number.h"
#include "expr/units.h"
#include "text/codepage.h"
#include "vx/debug.h"
#include "vx/mem.h"
#include "vx/str.h"

namespace vx::expr {

namespace {

VsCnsGenSlot numberSlot(double value) noexcept
{
    VsCnsGenSlot slot{};
    slot.kind = kind::number;
    slot.value.num = value;
    slot.unit = -1;
    return slot;
}

void freeText(VsCnsGenSlot &slot) noexcept
{
    if (ownsText(slot))
        VxMemFree(&slot.value.ptr);
    slot.kind = kind::none;
}

Place from(int32_t begin, const Place &last) noexcept
{
    return {begin, last.offset + last.length - begin};
}

int32_t operationCode(char operation) noexcept
{
    switch (operation) {
    case '+': return op::add;
    case '-': return op::subtract;
    case '*': return op::multiply;
    case '/': return op::divide;
    case '^': return op::power;
    case '<': return op::less;
    case '>': return op::greater;
    case '=': return op::equal;
    case '&': return op::both;
    default: return op::either;
    }
}

}

Parser::Parser(std::string_view text, Tokenizer::Mode mode, Places *places) noexcept
    : tokens_(text, mode), text_(text.data()), places_(places), trace_(tracing())
{
}

Parser::~Parser()
{
    while (!pending_.empty()) {
        VxGenExFree(&pending_.top().node);
        pending_.pop();
    }
    if (current_.slot.kind == kind::tree) {
        auto *tree = static_cast<VsCnsGenOp *>(current_.slot.value.ptr);
        VxGenExFree(&tree);
    }
    freeText(current_.slot);
}

VsCnsGenOp *Parser::parse()
{
    State state = State::operand;
    while (state != State::done && state != State::failed) {
        if (int32_t number = tokens_.next())
            state = failAtToken(number);
        else if (state == State::operand || state == State::unsignedOperand)
            state = readOperand(state == State::operand);
        else
            state = readOperation(state == State::operation);
    }
    if (state == State::failed || (current_.slot.kind != kind::tree && !wrapLeaf()))
        return nullptr;
    current_.slot.kind = kind::none;
    return static_cast<VsCnsGenOp *>(current_.slot.value.ptr);
}

// ---------------------------------------------------------------- operands

Parser::State Parser::readOperand(bool signs)
{
    const Token &token = tokens_.token();
    switch (token.type) {
    case TokenType::number: return leafNumber();
    case TokenType::name: constant_ = false; return leafText(kind::variable);
    case TokenType::text: return leafText(kind::text);
    case TokenType::function: return openCall();
    case TokenType::operation:
        if (token.operation == '(')
            return openGroup();
        if (signs && (token.operation == '-' || token.operation == '+' || token.operation == '!'))
            return openSign();
        return failAtToken(error::operandExpected);
    case TokenType::end: break;
    }
    return token.unreadable ? failAtToken(error::operandExpected) : missingOperand();
}

Parser::State Parser::leafNumber()
{
    current_ = {numberSlot(numberValue(tokens_.token().text)), placeOf(tokens_.token())};
    return State::operation;
}

Parser::State Parser::leafText(int32_t kind)
{
    const Token &token = tokens_.token();
    if (!newText(kind, token.text, current_.slot))
        return outOfMemory();
    current_.place = placeOf(token);
    return State::operation;
}

Parser::State Parser::openGroup()
{
    return open(Pending::group, none) ? State::operand : State::failed;
}

Parser::State Parser::openSign()
{
    Pending *sign = open(Pending::sign, unary);
    if (!sign)
        return State::failed;
    sign->operation = tokens_.token().operation;
    return State::unsignedOperand;
}

Parser::State Parser::openCall()
{
    const Function &function = *tokens_.token().function;
    Pending *call = open(Pending::call, none);
    if (!call)
        return State::failed;
    call->outerEnd = tokens_.end();
    call->open = tokens_.position();
    if (!splitArguments(*call, function.argc))
        return State::failed;
    call->node = newNode(function.op, function.argc, call->place, call->record);
    if (!call->node)
        return outOfMemory();
    if (trace_)
        traceNode("GeEx_fun_value: Add funct = ", function.op);
    return function.argc == 0 ? endArgument() : beginArgument();
}

/** Find the closing parenthesis of a call and the commas between its arguments. */
bool Parser::splitArguments(Pending &call, int32_t argc)
{
    int32_t depth = 1, commas = 0;
    const char *arguments = call.open + 1;
    int64_t room = std::min<int64_t>(call.outerEnd - arguments, mostArgumentBytes + 1);
    const char *limit = arguments + room;
    const char *p = arguments;
    for (; p != limit; ++p) {
        // None of the three is a trail byte in any code page.
        depth += *p == '(' ? 1 : *p == ')' ? -1 : 0;
        if (depth == 0)
            break;
        if (*p == ',' && depth == 1 && commas < argc - 1)
            call.comma[commas++] = static_cast<uint16_t>(p - call.open);
    }
    if (p == limit) {
        fail(error::missingParenthesis, call.place);
        return false;
    }
    call.close = static_cast<uint16_t>(p - call.open);
    if (commas < argc - 1) {
        fail(error::operandExpected, {offsetOf(p), 1});
        return false;
    }
    return true;
}

Parser::State Parser::beginArgument()
{
    const Pending &call = pending_.top();
    const char *begin = call.open + 1 + (call.argument == 0 ? 0 : call.comma[call.argument - 1]);
    bool isLast = call.argument + 1 == call.node->argc;
    tokens_.setRange(begin, call.open + (isLast ? call.close : call.comma[call.argument]));
    return State::operand;
}

Parser::State Parser::endArgument()
{
    Pending &call = pending_.top();
    if (call.node->argc > 0) {
        setOperand(call.node, call.record, call.argument);
        if (++call.argument < call.node->argc)
            return beginArgument();
    }
    const char *behind = call.open + call.close + 1;
    tokens_.setRange(behind, call.outerEnd);
    complete(call.node);
    current_.place = {call.begin, offsetOf(behind) - call.begin};
    close();
    return State::operation;
}

Parser::State Parser::missingOperand()
{
    if (pending_.empty())
        return fail(error::operandExpected, placeOf(tokens_.token()), true);
    const Pending &top = pending_.top();
    if (top.kind == Pending::group)
        return fail(error::missingParenthesis, top.place);
    if (top.kind != Pending::call)
        return fail(error::missingOperand, top.place);
    if (top.node->op != op::substr || top.argument == 0)
        return fail(error::operandExpected, placeOf(tokens_.token()), true);
    current_ = {numberSlot(0.0), placeOf(tokens_.token())};
    return endArgument();
}

// ---------------------------------------------------------------- operators

Parser::State Parser::readOperation(bool powers)
{
    const Token &token = tokens_.token();
    if (token.type == TokenType::end && !token.unreadable)
        return closeRange();
    if (token.type != TokenType::operation)
        return leftOver();
    switch (token.operation) {
    case '^': return powers ? pushBinary(op::power, power) : leftOver();
    case '.': return suffix();
    case '*':
    case '/': return reduce(product) ? pushBinary(operationCode(token.operation), product) : State::failed;
    case '+':
    case '-': return reduce(sum) ? pushBinary(operationCode(token.operation), sum) : State::failed;
    case '<':
    case '>':
    case '=':
        if (!reduce(sum))
            return State::failed;
        if (atTop(Pending::binary) && pending_.top().binding == comparison)
            return leftOver();
        return pushBinary(operationCode(token.operation), comparison);
    case '&':
    case '|': return reduce(logical) ? pushBinary(operationCode(token.operation), logical) : State::failed;
    case 't': return thenOperation();
    case 'e': return elseOperation();
    case ')': return closeGroup();
    default: return leftOver();
    }
}

Parser::State Parser::pushBinary(int32_t op, Binding binding)
{
    Pending *binary = open(Pending::binary, binding);
    if (!binary)
        return State::failed;
    binary->begin = current_.place.offset;
    binary->node = newNode(op, 2, binary->place, binary->record);
    if (!binary->node)
        return outOfMemory();
    setOperand(binary->node, binary->record, 0);
    return binding == power ? State::unsignedOperand : State::operand;
}

Parser::State Parser::suffix()
{
    if (!reduce(unary))
        return State::failed;
    Place dot = placeOf(tokens_.token());
    if (int32_t number = tokens_.next())
        return failAtToken(number);
    VsCnsGenSlot unit;
    if (!newText(kind::unit, tokens_.token().text, unit))
        return outOfMemory();
    double factor;
    if (UnitLookup(textOf(unit), &factor, nullptr) == 0) {
        freeText(unit);
        return State::operationNoPower;
    }
    int32_t record;
    Place place = from(dot.offset, placeOf(tokens_.token()));
    VsCnsGenOp *node = newNode(op::unit, 2, place, record);
    if (!node) {
        freeText(unit);
        return outOfMemory();
    }
    constant_ = false;
    int32_t begin = current_.place.offset;
    setOperand(node, record, 0);
    node->slot[1] = unit;
    complete(node);
    current_.place = from(begin, place);
    return State::operationNoPower;
}

Parser::State Parser::thenOperation()
{
    if (!reduce(logical))
        return State::failed;
    Pending *part = open(Pending::thenPart, none);
    if (!part)
        return State::failed;
    part->begin = current_.place.offset;
    part->node = newNode(op::conditional, 3, part->place, part->record);
    if (!part->node)
        return outOfMemory();
    setOperand(part->node, part->record, 0);
    return State::operand;
}

Parser::State Parser::elseOperation()
{
    if (!reduce(logical))
        return State::failed;
    while (atTop(Pending::elsePart))
        if (!reduceTop())
            return State::failed;
    if (!atTop(Pending::thenPart))
        return leftOver();
    Pending &part = pending_.top();
    setOperand(part.node, part.record, 1);
    part.kind = Pending::elsePart;
    part.place = placeOf(tokens_.token());
    return State::operand;
}

Parser::State Parser::closeGroup()
{
    if (!reduce(logical) || !reduceConditionals())
        return State::failed;
    if (!atTop(Pending::group))
        return leftOver();
    current_.place = from(pending_.top().begin, placeOf(tokens_.token()));
    close();
    return State::operation;
}

Parser::State Parser::closeRange()
{
    if (!reduce(logical) || !reduceConditionals())
        return State::failed;
    if (pending_.empty())
        return State::done;
    if (atTop(Pending::group))
        return fail(error::missingParenthesis, pending_.top().place);
    return endArgument();
}

Parser::State Parser::leftOver()
{
    for (int32_t i = pending_.size(); i-- > 0;) {
        if (pending_[i].kind == Pending::group)
            return failAtToken(error::missingParenthesis);
        if (pending_[i].kind == Pending::call)
            break;
    }
    return failAtToken(error::leftOver);
}

// ---------------------------------------------------------------- reductions

/** Complete the pending operators that bind at least so tightly. */
bool Parser::reduce(Binding least)
{
    while (!pending_.empty() && pending_.top().binding >= least)
        if (!reduceTop())
            return false;
    return true;
}

bool Parser::reduceConditionals()
{
    while (atTop(Pending::thenPart) || atTop(Pending::elsePart))
        if (!reduceTop())
            return false;
    return true;
}

bool Parser::reduceTop()
{
    Pending &top = pending_.top();
    if (top.kind == Pending::sign)
        return reduceSign(top);
    int32_t slot = top.kind == Pending::elsePart ? 2 : 1;
    Place whole = from(top.begin, current_.place);
    setOperand(top.node, top.record, slot);
    if (top.kind == Pending::thenPart)
        top.node->slot[2] = numberSlot(0.0);
    complete(top.node);
    current_.place = whole;
    close();
    return true;
}

bool Parser::reduceSign(const Pending &sign)
{
    Place whole = from(sign.begin, current_.place);
    if (sign.operation == '-' && current_.slot.kind == kind::number) {
        current_.slot.value.num = -current_.slot.value.num;
    } else if (sign.operation != '+') {
        bool minus = sign.operation == '-';
        int32_t record;
        VsCnsGenOp *node = newNode(minus ? op::multiply : op::negate, minus ? 2 : 1, sign.place, record);
        if (!node) {
            outOfMemory();
            return false;
        }
        if (minus)
            node->slot[0] = numberSlot(-1.0);
        setOperand(node, record, minus ? 1 : 0);
        complete(node);
    }
    current_.place = whole;
    close();
    return true;
}

/** The node has all its operands: it is the current operand now. */
void Parser::complete(VsCnsGenOp *node) noexcept
{
    current_.slot = VsCnsGenSlot{};
    current_.slot.kind = kind::tree;
    current_.slot.value.ptr = node;
}

/** A formula that is one primary becomes a lone leaf. */
bool Parser::wrapLeaf()
{
    int32_t record;
    VsCnsGenOp *leaf = newNode(op::leaf, 1, current_.place, record);
    if (!leaf) {
        outOfMemory();
        return false;
    }
    setOperand(leaf, record, 0);
    current_.slot.value.ptr = leaf;
    return true;
}

// ---------------------------------------------------------------- pieces

Parser::Pending *Parser::open(Pending::Kind kind, Binding binding)
{
    bool nests = binding == none || binding == power;
    if (nests && openLevels_ == mostOpenLevels) {
        failAtToken(error::tooDeep);
        return nullptr;
    }
    Pending *pending = pending_.push();
    if (!pending) {
        outOfMemory();
        return nullptr;
    }
    openLevels_ += nests;
    pending->kind = kind;
    pending->binding = binding;
    pending->argument = 0;
    pending->node = nullptr;
    pending->place = placeOf(tokens_.token());
    pending->begin = pending->place.offset;
    pending->record = -1;
    return pending;
}

void Parser::close() noexcept
{
    const Pending &top = pending_.top();
    openLevels_ -= top.binding == none || top.binding == power;
    pending_.pop();
}

VsCnsGenOp *Parser::newNode(int32_t op, int32_t argc, const Place &place, int32_t &record)
{
    record = -1;
    if (places_) {
        try {
            places_->push_back({nullptr, place, {}});
        } catch (const std::bad_alloc &) {
            return nullptr;
        }
        record = static_cast<int32_t>(places_->size()) - 1;
    }
    void *block = nullptr;
    if (VxMemAllocZero(sizeof(VsCnsGenOp), &block) != 0)
        return nullptr;
    auto *node = static_cast<VsCnsGenOp *>(block);
    node->op = op;
    node->argc = argc;
    if (record >= 0)
        (*places_)[static_cast<size_t>(record)].node = node;
    if (trace_ && op < op::firstGeometric && !functionName(op))
        traceNode("GeEx_oper: Add op = ", op);
    return node;
}

/** The current operand goes into a slot of the node, leaves with all they hold. */
void Parser::setOperand(VsCnsGenOp *node, int32_t record, int32_t slot)
{
    node->slot[slot] = current_.slot;
    current_.slot.kind = kind::none;
    if (record >= 0)
        (*places_)[static_cast<size_t>(record)].operand[slot] = current_.place;
}

bool Parser::newText(int32_t kind, std::string_view text, VsCnsGenSlot &slot)
{
    void *block = nullptr;
    if (VxMemAlloc(textBufferSize, &block) != 0)
        return false;
    size_t length = text.size();
    if (length >= textBufferSize)
        length = text::boundaryBefore(text::codePage(), text.data(), textBufferSize - 1);
    auto *buffer = static_cast<char *>(block);
    std::memcpy(buffer, text.data(), length);
    buffer[length] = '\0';
    slot = VsCnsGenSlot{};
    slot.kind = kind;
    slot.value.ptr = buffer;
    slot.unit = -1;
    return true;
}

void Parser::traceNode(const char *label, int32_t op) const
{
    VxFprintf(VgToolsDbgFileDesc, "%s%s. \n", label, printedName(op));
}

Parser::State Parser::fail(int32_t number, const Place &place, bool silent) noexcept
{
    failure_ = {number, silent, place};
    return State::failed;
}

Parser::State Parser::failAtToken(int32_t number) noexcept
{
    return fail(number, placeOf(tokens_.token()));
}

Parser::State Parser::outOfMemory() noexcept
{
    return fail(error::unreported, placeOf(tokens_.token()), true);
}

}
