// What the matrix's flags save: each operation on matrices of different kinds, beside the same
// operation done with all nine elements. None may allocate.

#include <benchmark/benchmark.h>
#include <zirk/vumatrix2d.h>
#include <zirk/vurect2d.h>

#include <algorithm>
#include <string>

#include "plainmatrix.h"
#include "support/allocations.h"

namespace ZIRK::bench {

namespace {

using Matrix = VuTMatrix2D<float>;
using Vector = VuTVector2D<float>;
using Rect = VuTRect2D<float>;

/// `Operand` is either kind of matrix.
template <typename Operand, typename Apply>
void Measure(benchmark::State& state, const Operand& operand, Apply apply) {
  Operand matrix = operand;
  const int before = support::Allocations();
  for (auto _ : state) {
    benchmark::DoNotOptimize(matrix);
    auto result = apply(matrix);
    benchmark::DoNotOptimize(result);
  }
  if (support::Allocations() != before) state.SkipWithError("memory was allocated");
}

struct Kind {
  const char* name;
  VuTransform transform;
};

const Kind kKinds[] = {
    {"identity", {}},
    {"translation", {3, 4, 1, 1, 0}},
    {"scale", {0, 0, 2, 3, 0}},
    {"general", {3, 4, 2, 3, 30}},
};

template <typename Operand, typename Apply>
void Enlist(const std::string& operation, const char* kind, const Operand& operand, Apply apply) {
  benchmark::RegisterBenchmark(
      ("Geometry" + operation + "/" + kind).c_str(),
      [operand, apply](benchmark::State& state) { Measure(state, operand, apply); });
}

template <typename Apply>
void EnlistKinds(const std::string& operation, Apply apply) {
  for (const Kind& kind : kKinds) Enlist(operation, kind.name, Matrix(kind.transform), apply);
}

PlainMatrix ToPlain(const Matrix& m) {
  PlainMatrix plain;
  std::copy_n(m.get(), plain.m.size(), plain.m.begin());
  return plain;
}

/// The library's operation on each kind of matrix, and the same with full arithmetic.
template <typename Apply, typename ApplyPlain>
bool Compare(const std::string& operation, Apply apply, ApplyPlain applyPlain) {
  EnlistKinds(operation, apply);
  Enlist(operation, "full", ToPlain(Matrix(kKinds[3].transform)), applyPlain);
  return true;
}

/// A step is made on a copy, of which both kinds have one.
template <typename Step>
bool CompareStep(const std::string& operation, Step step) {
  const auto onCopy = [step](auto m) {
    step(m);
    return m;
  };
  return Compare(operation, onCopy, onCopy);
}

constexpr Vector kPoint(5, 6);
constexpr Rect kRect(5, 6, 70, 80);

[[maybe_unused]] const bool kRegistered[] = {
    Compare(
        "Multiply", [](const Matrix& m) { return m * m; },
        [](const PlainMatrix& m) { return m * m; }),
    CompareStep("Translate",
                [](auto& m) {
                  m.translate({5, 6});
                }),
    CompareStep("Scale",
                [](auto& m) {
                  m.scale({2, 3});
                }),
    CompareStep("Rotate", [](auto& m) { m.rotate(0.5f); }),
    Compare(
        "Inverse", [](const Matrix& m) { return m.inverse(); },
        [](const PlainMatrix& m) { return m.inverse(); }),
    Compare(
        "TransformVector", [](const Matrix& m) { return m.transformVector(kPoint); },
        [](const PlainMatrix& m) { return m.transformVector(kPoint); }),
    Compare(
        "RectTransform", [](const Matrix& m) { return kRect.transform(m); },
        [](const PlainMatrix& m) { return m.transform(kRect); }),
};

}  // namespace

}  // namespace ZIRK::bench
