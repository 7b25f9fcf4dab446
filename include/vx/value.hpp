#ifndef VX_VALUE_HPP
#define VX_VALUE_HPP

/**
 * @file
 * The values of formulas: number, vector, point, text; and what is thrown
 * while one is evaluated.
 */

#include <cstdint>
#include <string>

#include <boost/variant.hpp>

#include "vx/types.h"

namespace HESKET::Talm::Tool::Evaluation {

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
    TsVector &operator/=(double number);
    TsVector &operator*=(const TsVector &other);
    TsVector &operator+=(const TsVector &other);
    TsVector &operator-=(const TsVector &other);

private:
    double x_, y_, z_;
};

using VxEvalValue = boost::variant<double, TsVector, TsPoint, std::string>;

VX_API const char *KindName(int32_t kind);

class VX_API Error {
public:
    virtual std::string Text() const;
    virtual ~Error();
};

class VX_API ErrorUndefineVariable : public Error {
public:
    explicit ErrorUndefineVariable(std::string variable);
    ~ErrorUndefineVariable() override;
    std::string Text() const override;

    std::string name;
};

class VX_API ErrorUnmatchOperand : public Error {
public:
    ErrorUnmatchOperand(int32_t leftKind, int32_t rightKind);
    ~ErrorUnmatchOperand() override;
    std::string Text() const override;

    int32_t left, right;
};

using VxVarGetValObjFn = uint32_t (*)(const char *name, VxEvalValue *value);

extern VX_API VxVarGetValObjFn VgfVarGetValObj;

VX_API void VxCbVarGetValObj(VxVarGetValObjFn fn);

}

#endif
