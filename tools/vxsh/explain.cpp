#include "tools/vxsh/explain.h"

#include <initializer_list>

#include "vx/err.h"
#include "vx/msg.h"
#include "vx/tools.h"

#include "tools/vxsh/messages.h"

namespace vxsh {

namespace {

constexpr int32_t outOfMemory = 1;
constexpr int32_t notEvaluable = 50;
constexpr int32_t unmatchedKinds = 80;
constexpr int32_t undefinedVariable = 81;
constexpr int32_t dimensions = 83;
constexpr int32_t firstOfArguments = 186;
constexpr int32_t lastOfArguments = 191;

std::string withoutFullStop(std::string text)
{
    if (text.ends_with('.'))
        text.pop_back();
    return text;
}

/** The sentence with texts in place of its "%s". */
std::string filled(std::string text, std::initializer_list<const char *> arguments)
{
    size_t at = 0;
    for (const char *argument : arguments) {
        at = text.find("%s", at);
        if (at == std::string::npos)
            break;
        text.replace(at, 2, argument);
        at += std::string(argument).size();
    }
    return text;
}

/** What the numbers' sentences do not say of themselves. */
std::string particulars(const VxExprDiag &diag)
{
    const std::string operation = diag.operation;
    switch (diag.number) {
    case notEvaluable: return operation.empty() ? "" : " (" + operation + ')';
    case dimensions:
        if (operation == "unit")
            return ": " + std::string(diag.left) + " in a unit of " + diag.right;
        return ": " + std::string(diag.left) + ' ' + operation + ' ' + diag.right;
    case unitMismatch: return ": " + std::string(diag.left) + ", not " + diag.right;
    default: return "";
    }
}

}

std::string sentence(int32_t number)
{
    char text[512] = "";
    int32_t severity = 0;
    if (number < firstOfArguments && VxErrGet(VxToolsErrID(), number, &severity, text, sizeof text) == 0)
        return withoutFullStop(text);
    return withoutFullStop(VxMsg(VxToolsMsgID(), number));
}

Problem explained(const VxExprDiag &diag)
{
    Messages::take();
    Problem problem{"", {static_cast<size_t>(diag.offset), static_cast<size_t>(diag.length)}};
    if (diag.number == outOfMemory)
        problem.message = "There is not enough memory";
    else if (diag.number == unmatchedKinds)
        problem.message = filled(sentence(diag.number), {diag.left, diag.right});
    else if (diag.number == undefinedVariable)
        problem.message = filled(sentence(diag.number), {diag.name});
    else if (diag.number >= firstOfArguments && diag.number <= lastOfArguments)
        problem.message = std::string(diag.operation) + ": " + sentence(diag.number);
    else
        problem.message = sentence(diag.number) + particulars(diag);
    problem.message += '.';
    return problem;
}

}
