// Formulas typical of the parameters of parts: parsed, evaluated, and both.

#include <array>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

#include <benchmark/benchmark.h>
#include <muParser.h>

#include <ExprIntrp_GenExp.hxx>
#include <Expr_Array1OfNamedUnknown.hxx>
#include <Expr_GeneralExpression.hxx>
#include <Expr_NamedUnknown.hxx>
#include <Expr_UnknownIterator.hxx>
#include <TColStd_Array1OfReal.hxx>

#include "vx/eval.h"
#include "vx/parse.h"
#include "vx/tools.h"

namespace {

struct Formula {
    const char *text; ///< as the toolkit and muParser read it; angles in radians
    const char *occ;  ///< as Open CASCADE reads it
};

// Spellings differ only where a parser knows no other name for a function.
constexpr Formula formulas[] = {
    {"width*height-2*wall*wall", nullptr},
    {"(teeth+2)*module", nullptr},
    {"pi*diameter^2/4*length", nullptr},
    {"sqrt(width^2+height^2)+wall/2", nullptr},
    {"module*teeth*cos(angle)/2", nullptr},
    {"2*length+pi*(diameter+wall)/2+(diameter-wall)^2/(4*length)", nullptr},
    {"length-2*(radius+wall)+pi*angle*(radius+0.44*wall)/180",
     "length-2*(radius+wall)+pi*angle*(radius+0.44*wall)/180"},
    {"7.85e-6*width*height*length*(1-0.05)", "0.00000785*width*height*length*(1-0.05)"},
    {"offset+sin(angle)*radius-tan(angle/2)*wall+1.25", nullptr},
};

struct Variable {
    const char *name;
    double value;
};

constexpr Variable variables[] = {
    {"width", 120.0},         {"height", 80.0},  {"wall", 3.0},   {"teeth", 24.0},  {"module", 2.5},
    {"diameter", 60.0},       {"length", 250.0}, {"angle", 0.35}, {"radius", 12.0}, {"offset", 5.5},
    {"pi", 3.14159265358979},
};

const char *occText(const Formula &formula)
{
    return formula.occ ? formula.occ : formula.text;
}

/** The host's variables, found by name as a host would. */
uint32_t supply(const char *name, void *, void *, VxDimNum *record)
{
    for (const Variable &variable : variables) {
        if (std::strcmp(variable.name, name) != 0)
            continue;
        *record = {variable.value, 0.0, 0.0, 0.0, 1.0};
        return 0;
    }
    return 1;
}

void useRadians()
{
    VgfVarGetVal = supply;
    VgCdValIsRad = 1;
}

VsCnsGenOp *parsed(const char *text, benchmark::State &state)
{
    VsCnsGenOp *tree = nullptr;
    int32_t constant = 0;
    if (VxParseGeEx(text, &constant, &tree) != 0)
        state.SkipWithError(text);
    return tree;
}

Handle(Expr_GeneralExpression) parsedByOcc(const char *text, benchmark::State &state)
{
    Handle(ExprIntrp_GenExp) generator = ExprIntrp_GenExp::Create();
    generator->Process(text);
    if (!generator->IsDone()) {
        state.SkipWithError(text);
        return {};
    }
    return generator->Expression();
}

void parse_vx(benchmark::State &state)
{
    for (auto _ : state)
        for (const Formula &formula : formulas) {
            VsCnsGenOp *tree = parsed(formula.text, state);
            benchmark::DoNotOptimize(tree);
            VxGenExFree(&tree);
        }
}
BENCHMARK(parse_vx)->Name("expr_parse/vx");

void parse_occ(benchmark::State &state)
{
    Handle(ExprIntrp_GenExp) generator = ExprIntrp_GenExp::Create();
    for (auto _ : state)
        for (const Formula &formula : formulas) {
            generator->Process(occText(formula));
            if (!generator->IsDone())
                state.SkipWithError(formula.text);
            benchmark::DoNotOptimize(generator->Expression().get());
        }
}
BENCHMARK(parse_occ)->Name("expr_parse/ExprIntrp");

void parseEvaluate_vx(benchmark::State &state)
{
    useRadians();
    for (auto _ : state)
        for (const Formula &formula : formulas) {
            VsCnsGenOp *tree = parsed(formula.text, state);
            VxDimNum result = {0.0, 0.0, 0.0, 0.0, 1.0};
            if (VxGenExEvalRcrs(tree, nullptr, nullptr, &result) != 0)
                state.SkipWithError(formula.text);
            benchmark::DoNotOptimize(result);
            VxGenExFree(&tree);
        }
}
BENCHMARK(parseEvaluate_vx)->Name("expr_parse_evaluate/vx");

void parseEvaluate_muParser(benchmark::State &state)
{
    std::array<double, std::size(variables)> values;
    mu::Parser parser;
    for (size_t i = 0; i < values.size(); ++i) {
        values[i] = variables[i].value;
        parser.DefineVar(variables[i].name, &values[i]);
    }
    for (auto _ : state)
        for (const Formula &formula : formulas) {
            parser.SetExpr(formula.text);
            benchmark::DoNotOptimize(parser.Eval());
        }
}
BENCHMARK(parseEvaluate_muParser)->Name("expr_parse_evaluate/muParser");

/** The formulas with their variables written out as numbers: no call-backs. */
std::string withNumbers(const char *text)
{
    std::string formula = text;
    for (const Variable &variable : variables) {
        std::string out(formula.size() * 12 + 64, '\0');
        char number[32];
        std::snprintf(number, sizeof number, "%.15g", variable.value);
        VxParseVarReplace(variable.name, number, formula.c_str(), out.data());
        formula = out.c_str();
    }
    return formula;
}

void evaluate_vx(benchmark::State &state)
{
    useRadians();
    std::array<VsCnsGenOp *, std::size(formulas)> trees;
    for (size_t i = 0; i < trees.size(); ++i)
        trees[i] = parsed(withNumbers(formulas[i].text).c_str(), state);
    for (auto _ : state)
        for (VsCnsGenOp *tree : trees) {
            VxDimNum result = {0.0, 0.0, 0.0, 0.0, 1.0};
            if (VxGenExEvalRcrs(tree, nullptr, nullptr, &result) != 0)
                state.SkipWithError("evaluation");
            benchmark::DoNotOptimize(result);
        }
    for (VsCnsGenOp *&tree : trees)
        VxGenExFree(&tree);
}
BENCHMARK(evaluate_vx)->Name("expr_evaluate/vx");

/** A formula and its unknowns with their values, as Open CASCADE evaluates it. */
struct OccFormula {
    Handle(Expr_GeneralExpression) tree;
    std::unique_ptr<Expr_Array1OfNamedUnknown> unknowns;
    std::unique_ptr<TColStd_Array1OfReal> values;
};

/** It folds formulas of numbers as it reads them, and nothing would be left to evaluate: its names stay. */
OccFormula prepareOcc(const char *text, benchmark::State &state)
{
    OccFormula formula{parsedByOcc(text, state), nullptr, nullptr};
    int count = 0;
    for (Expr_UnknownIterator it(formula.tree); it.More(); it.Next())
        ++count;
    formula.unknowns = std::make_unique<Expr_Array1OfNamedUnknown>(1, count);
    formula.values = std::make_unique<TColStd_Array1OfReal>(1, count);
    int at = 1;
    for (Expr_UnknownIterator it(formula.tree); it.More(); it.Next(), ++at) {
        (*formula.unknowns)(at) = it.Value();
        for (const Variable &variable : variables)
            if (it.Value()->GetName() == variable.name)
                (*formula.values)(at) = variable.value;
    }
    return formula;
}

void evaluate_occ(benchmark::State &state)
{
    std::array<OccFormula, std::size(formulas)> prepared;
    for (size_t i = 0; i < prepared.size(); ++i)
        prepared[i] = prepareOcc(occText(formulas[i]), state);
    for (auto _ : state)
        for (const OccFormula &formula : prepared)
            benchmark::DoNotOptimize(formula.tree->Evaluate(*formula.unknowns, *formula.values));
}
BENCHMARK(evaluate_occ)->Name("expr_evaluate/ExprIntrp");

}
