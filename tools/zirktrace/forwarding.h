#pragma once

#include <algorithm>
#include <iosfwd>
#include <tuple>
#include <utility>

#include "recorder.h"

/// @file
/// Calls an operation of the real object and records it.

namespace ZIRK::trace {

/// The real surface and the Id of a surface of the program.
struct KnownSurface {
  VuBitmapImpl* real = nullptr;
  Id id = Id::None;
  bool isOurs = true;  ///< Whether a trace can name it, as it can null.
};
KnownSurface Know(VuBitmapImpl* surface);

/// Wraps a surface that the context's real backend has made. Returns the surface for the program
/// and the value for the trace. Null stays null.
std::pair<VuBitmapImpl*, CreatedValue> Wrap(VuBitmapImpl* real, Id context);
std::pair<VuScreenImpl*, CreatedValue> Wrap(VuScreenImpl* real, Id context);

template <class W>
struct GivenAs {
  using Type = W;
};
template <class W>
concept HasGiven = requires {
  typename W::Given;
};
template <HasGiven W>
struct GivenAs<W> {
  using Type = typename W::Given;
};
template <>
struct GivenAs<VuScreenDescription> {
  using Type = const VuScreenDescription&;
};
/// The C++ type of a row's parameter or result.
template <class W>
using Given = typename GivenAs<W>::Type;

/// Converts an argument for the real operation.
template <class W, class T>
decltype(auto) Pass(T& given) {
  if constexpr (std::is_same_v<W, Source> || std::is_same_v<W, Mask>)
    return Know(given).real;
  else
    return (given);
}

/// Returns whether a trace can name an argument.
template <class W, class T>
bool CanRecord(const T& given) {
  if constexpr (std::is_same_v<W, Source> || std::is_same_v<W, Mask>)
    return Know(given).isOurs;
  else if constexpr (std::is_same_v<W, Font>)
    return dynamic_cast<const VuFontAtlas*>(given) != nullptr;
  else
    return true;
}

/// Converts an argument to its value in the trace. `next` is the argument after it.
template <class W, class T, class Next>
Value<W> ToValue(const T& given, const Next& next) {
  Recorder& recorder = Recorder::Get();
  if constexpr (std::is_same_v<W, Source> || std::is_same_v<W, Mask>) {
    return Know(given).id;
  } else if constexpr (std::is_same_v<W, Font>) {
    return recorder.FontOf(given);
  } else if constexpr (std::is_same_v<W, File>) {
    return {given, recorder.ContentOfFile(given)};
  } else if constexpr (std::is_same_v<W, Data>) {
    return given ? recorder.ContentOf(AsRow({static_cast<const uint8_t*>(given), next})) : Id::None;
  } else if constexpr (std::is_same_v<W, Layers>) {
    const auto count =
        given && next > 0 ? std::min<size_t>(static_cast<size_t>(next), kMostLayers) : 0;
    return {given, given + count};
  } else if constexpr (std::is_same_v<Value<W>, std::monostate>) {
    return {};
  } else if constexpr (std::is_pointer_v<T> && !std::is_same_v<W, Text>) {
    Value<W> points;
    points.isThere = given != nullptr;
    if (given) std::copy_n(given, points.points.size(), points.points.begin());
    return points;
  } else {
    return given;
  }
}

/// Records an operation after its call. `results` are the values that it returned.
template <class... W, size_t... Index, class... Given, class... Results>
void RecordCall(Operation operation, Id object, std::index_sequence<Index...>,
                const std::tuple<Given&...>& given, Results... results) {
  Recorder& recorder = Recorder::Get();
  if (!recorder.IsOn() || !(CanRecord<W>(std::get<Index>(given)) && ...)) return;
  [[maybe_unused]] constexpr size_t kLast = sizeof...(W) - 1;
  recorder.Write(operation, object,
                 ToValue<W>(std::get<Index>(given), std::get<std::min(Index + 1, kLast)>(given))...,
                 results...);
}

/// Calls the real operation and records it as the object's `operation`.
template <class Result, class... W, class Call, class... Given>
auto Forward(Operation operation, Result (*)(W...), Id object, const Call& call, Given&... given) {
  constexpr std::index_sequence_for<W...> kIndices;
  const std::tuple<Given&...> all(given...);
  if constexpr (std::is_void_v<Result>) {
    call(Pass<W>(given)...);
    RecordCall<W...>(operation, object, kIndices, all);
  } else {
    auto result = call(Pass<W>(given)...);
    if constexpr (std::is_same_v<Result, NewBitmap> || std::is_same_v<Result, NewScreen>) {
      const auto [surface, created] = Wrap(result, object);
      RecordCall<W...>(operation, object, kIndices, all, created);
      return surface;
    } else {
      RecordCall<W...>(operation, object, kIndices, all, result);
      return result;
    }
  }
}

}  // namespace ZIRK::trace

// Parameters and arguments of the operation in a row.

#define ZIRK_TRACE_PARAMETERS_0()
#define ZIRK_TRACE_PARAMETERS_1(A) Given<A> a
#define ZIRK_TRACE_PARAMETERS_2(A, B) Given<A> a, Given<B> b
#define ZIRK_TRACE_PARAMETERS_3(A, B, C) Given<A> a, Given<B> b, Given<C> c
#define ZIRK_TRACE_PARAMETERS_4(A, B, C, D) ZIRK_TRACE_PARAMETERS_3(A, B, C), Given<D> d
#define ZIRK_TRACE_PARAMETERS_5(A, B, C, D, E) ZIRK_TRACE_PARAMETERS_4(A, B, C, D), Given<E> e
#define ZIRK_TRACE_PARAMETERS_6(A, B, C, D, E, F) ZIRK_TRACE_PARAMETERS_5(A, B, C, D, E), Given<F> f
#define ZIRK_TRACE_PARAMETERS_7(A, B, C, D, E, F, G) \
  ZIRK_TRACE_PARAMETERS_6(A, B, C, D, E, F), Given<G> g
#define ZIRK_TRACE_PARAMETERS_8(A, B, C, D, E, F, G, H) \
  ZIRK_TRACE_PARAMETERS_7(A, B, C, D, E, F, G), Given<H> h
#define ZIRK_TRACE_ARGUMENTS_0
#define ZIRK_TRACE_ARGUMENTS_1 , a
#define ZIRK_TRACE_ARGUMENTS_2 , a, b
#define ZIRK_TRACE_ARGUMENTS_3 , a, b, c
#define ZIRK_TRACE_ARGUMENTS_4 , a, b, c, d
#define ZIRK_TRACE_ARGUMENTS_5 , a, b, c, d, e
#define ZIRK_TRACE_ARGUMENTS_6 , a, b, c, d, e, f
#define ZIRK_TRACE_ARGUMENTS_7 , a, b, c, d, e, f, g
#define ZIRK_TRACE_ARGUMENTS_8 , a, b, c, d, e, f, g, h

/// Overrides the operation in a row, in a class that has the object as `real_` and its Id as `id_`.
#define ZIRK_TRACE_OVERRIDE(number, name, method, result, isConst, count, parameters) \
  ZIRK_TRACE_OVERRIDE_BY(real_, name, method, result, isConst, count, parameters)
/// Does the same with an expression for the object.
#define ZIRK_TRACE_OVERRIDE_BY(real, name, method, result, isConst, count, parameters) \
  Given<result> method(ZIRK_TRACE_PARAMETERS_##count parameters) isConst override {    \
    return Forward(Operation::name, static_cast<result(*) parameters>(nullptr), id_,   \
                   [this](auto&&... passed) {                                          \
                     return (real)->method(passed...);                                 \
                   } ZIRK_TRACE_ARGUMENTS_##count);                                    \
  }
