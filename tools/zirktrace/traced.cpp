#include "traced.h"

#include <typeinfo>

namespace ZIRK::trace {

namespace {

/// Reads the real surface's information without a record: the program did not ask for it.
template <class Traced, class Base>
std::pair<Base*, CreatedValue> WrapAs(Base* real, Id context) {
  if (!real) return {};
  const VuBitmapInfo info = real->GetInfo();
  const CreatedValue created{Recorder::Get().NewId(), info.width, info.height, info.format};
  return {new Traced(real, context, created), created};
}

}  // namespace

std::pair<VuBitmapImpl*, CreatedValue> Wrap(VuBitmapImpl* real, Id context) {
  return WrapAs<TracedBitmap>(real, context);
}

std::pair<VuScreenImpl*, CreatedValue> Wrap(VuScreenImpl* real, Id context) {
  return WrapAs<TracedScreen>(real, context);
}

KnownSurface Know(VuBitmapImpl* surface) {
  if (!surface) return {};
  // The usual case needs no search in the class hierarchy.
  if (typeid(*surface) == typeid(TracedBitmap)) {
    const auto& bitmap = static_cast<const TracedBitmap&>(*surface);
    return {bitmap.Real(), bitmap.GetId()};
  }
  if (const auto* const screen = dynamic_cast<const TracedScreen*>(surface))
    return {screen->Real(), screen->GetId()};
  return {surface, Id::None, false};
}

}  // namespace ZIRK::trace
