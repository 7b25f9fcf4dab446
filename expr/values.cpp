#include "vx/value.hpp"

#include <utility>

#include "vx/err.h"
#include "vx/str.h"
#include "vx/tools.h"

namespace HESKET::Talm::Tool::Evaluation {

namespace {

constexpr int32_t textSize = 1152; ///< the longest name in the longest sentence
constexpr int32_t unmatchedOperands = 80;
constexpr int32_t undefinedVariable = 81;

/** The sentence of an error number; false when it cannot be had. */
bool sentence(int32_t number, char (&format)[textSize])
{
    int32_t severity = 0;
    format[0] = '\0';
    return VxErrGet(VxToolsErrID(), number, &severity, format, textSize) == 0;
}

}

TsPoint::TsPoint(double x, double y, double z) : x_(x), y_(y), z_(z) {}
TsPoint::TsPoint(const TsPoint &other) = default;
TsPoint &TsPoint::operator=(const TsPoint &other) = default;
TsPoint::~TsPoint() = default;

double TsPoint::x() const
{
    return x_;
}
double TsPoint::y() const
{
    return y_;
}
double TsPoint::z() const
{
    return z_;
}

TsVector::TsVector(double x, double y, double z) : x_(x), y_(y), z_(z) {}
TsVector::TsVector(const TsVector &other) = default;
TsVector &TsVector::operator=(const TsVector &other) = default;
TsVector::~TsVector() = default;

double TsVector::x() const
{
    return x_;
}
double TsVector::y() const
{
    return y_;
}
double TsVector::z() const
{
    return z_;
}

TsVector &TsVector::operator*=(double number)
{
    x_ *= number;
    y_ *= number;
    z_ *= number;
    return *this;
}

TsVector &TsVector::operator/=(double number)
{
    x_ /= number;
    y_ /= number;
    z_ /= number;
    return *this;
}

TsVector &TsVector::operator*=(const TsVector &other)
{
    x_ *= other.x_;
    y_ *= other.y_;
    z_ *= other.z_;
    return *this;
}

TsVector &TsVector::operator+=(const TsVector &other)
{
    x_ += other.x_;
    y_ += other.y_;
    z_ += other.z_;
    return *this;
}

TsVector &TsVector::operator-=(const TsVector &other)
{
    x_ -= other.x_;
    y_ -= other.y_;
    z_ -= other.z_;
    return *this;
}

const char *KindName(int32_t kind)
{
    static constexpr const char *names[] = {"None", "Number", "Vector", "Point", "String"};
    constexpr int32_t count = sizeof names / sizeof *names;
    return kind >= 0 && kind < count ? names[kind] : "";
}

Error::~Error() = default;

std::string Error::Text() const
{
    return "error";
}

ErrorUndefineVariable::ErrorUndefineVariable(std::string variable) : name(std::move(variable)) {}
ErrorUndefineVariable::~ErrorUndefineVariable() = default;

std::string ErrorUndefineVariable::Text() const
{
    char format[textSize], text[textSize];
    if (!sentence(undefinedVariable, format))
        return Error::Text();
    VxSprintf(text, sizeof text, format, name.c_str());
    return text;
}

ErrorUnmatchOperand::ErrorUnmatchOperand(int32_t leftKind, int32_t rightKind)
    : left(leftKind), right(rightKind)
{
}
ErrorUnmatchOperand::~ErrorUnmatchOperand() = default;

std::string ErrorUnmatchOperand::Text() const
{
    char format[textSize], text[textSize];
    if (!sentence(unmatchedOperands, format))
        return Error::Text();
    VxSprintf(text, sizeof text, format, KindName(left), KindName(right));
    return text;
}

VxVarGetValObjFn VgfVarGetValObj = nullptr;

void VxCbVarGetValObj(VxVarGetValObjFn fn)
{
    VgfVarGetValObj = fn;
}

}
