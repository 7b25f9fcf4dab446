#ifndef VX_VALUE_HPP
#define VX_VALUE_HPP

/**
 * @file
 * The values of formulas: number, vector, point, text; and what is thrown
 * while one is evaluated.
 *
 * Kinds that go together, N number, V vector, P point, S text; all else is an
 * ErrorUnmatchOperand:
 *
 *   N + - * / N    a number; dimensions are checked, zero divides to infinity
 *   V + - * V      V, component by component
 *   P + - V        P
 *   P - P          V
 *   N * V, V * N, V / N
 *   S + S
 *
 * The exceptions never leave the toolkit: VxGenExEval turns them into 1.
 */

#include <cstdint>
#include <string>

#include <boost/variant.hpp>

#include "vx/types.h"

namespace HESKET::Talm::Tool::Evaluation {

/** A position. */
class VX_API TsPoint {
public:
    TsPoint(double x, double y, double z);
    TsPoint(const TsPoint &other);
    TsPoint &operator=(const TsPoint &other);
    ~TsPoint();

    double x() const;
    double y() const;
    double z() const;

private:
    double x_, y_, z_;
};

/** A direction or displacement. */
class VX_API TsVector {
public:
    TsVector(double x, double y, double z);
    TsVector(const TsVector &other);
    TsVector &operator=(const TsVector &other);
    ~TsVector();

    double x() const;
    double y() const;
    double z() const;

    TsVector &operator*=(double number);
    /** Without a test for zero. */
    TsVector &operator/=(double number);
    /** Component by component: neither the dot nor the cross product. */
    TsVector &operator*=(const TsVector &other);
    TsVector &operator+=(const TsVector &other);
    TsVector &operator-=(const TsVector &other);

private:
    double x_, y_, z_;
};

/** A value; its kind is which() + 1. */
using VxEvalValue = boost::variant<double, TsVector, TsPoint, std::string>;

/** "None", "Number", "Vector", "Point", "String" for 0 to 4, else "". */
VX_API const char *KindName(int32_t kind);

/** An evaluation failed. */
class VX_API Error {
public:
    /** What to tell the user; "error" where nothing closer is known. */
    virtual std::string Text() const;
    virtual ~Error();
};

/** Nobody supplies a variable: error 81. */
class VX_API ErrorUndefineVariable : public Error {
public:
    explicit ErrorUndefineVariable(std::string variable);
    ~ErrorUndefineVariable() override;
    std::string Text() const override;

    std::string name;
};

/** Two kinds do not go together: error 80. */
class VX_API ErrorUnmatchOperand : public Error {
public:
    ErrorUnmatchOperand(int32_t leftKind, int32_t rightKind);
    ~ErrorUnmatchOperand() override;
    std::string Text() const override;

    int32_t left, right;
};

/** Supplies a variable, or a geometric call, as a value: 0 when it does. */
using VxVarGetValObjFn = uint32_t (*)(const char *name, VxEvalValue *value);

extern VX_API VxVarGetValObjFn VgfVarGetValObj;

/** Sets VgfVarGetValObj; null for none. */
VX_API void VxCbVarGetValObj(VxVarGetValObjFn fn);

}

#endif
