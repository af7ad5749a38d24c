#include "coverage.h"

#include <algorithm>
#include <cstring>

#include "visit.h"

namespace ZIRK::trace {

namespace {

/// Numbers of this class's bitmaps. White ones come after the others.
enum Own : uint32_t { kScratch, kFirstBackground, kSecondBackground, kFirstWhite };
constexpr size_t kMostWhites = 64;

/// Two backgrounds that stay different under any blending that does not replace them.
constexpr uint32_t kBackgrounds[] = {0x00000000, 0x99FFFFFF};

bool SetsState(Operation operation) {
  switch (operation) {
    case Operation::SetClippingRect:
    case Operation::SetBlendingFunc:
    case Operation::SetBlendingFuncs:
    case Operation::SetBlendEnabled:
    case Operation::SetBlendColor:
      return true;
    default:
      return false;
  }
}

/// Copies the fields of an object's operation for another object, with each value as changed by
/// `change`.
template <class Change>
Encoder Rewrite(const Record& record, Id object, const Change& change) {
  Encoder encoder;
  VisitFields(record, [&]<class W>(W* type, Value<W>& value) {
    if constexpr (std::is_same_v<W, Id>) value = object;
    change(type, value);
    Transfer(encoder, value);
  });
  return encoder;
}

/// Returns the last field of this type.
template <class T>
T FieldOf(const Record& record) {
  T found{};
  VisitFields(record, [&]<class W>(W*, const Value<W>& value) {
    if constexpr (std::is_same_v<W, T>) found = value;
  });
  return found;
}

/// Returns the largest part of a surface that an operation can draw on.
VuRect LimitOf(Operation operation, const VuBitmap& target) {
  switch (operation) {
    case Operation::Clear:
    case Operation::ClearTo:
    case Operation::CopyPixels:
      return target.GetBounds();
    default:
      return Inside(target.GetClippingRect(), target.GetBounds());
  }
}

}  // namespace

VuRect Inside(const VuRect& rect, const VuRect& bounds) {
  const auto cut = [](int64_t from, int64_t extent, int64_t size) {
    const int64_t begin = std::clamp<int64_t>(from, 0, size);
    return std::pair(static_cast<int>(begin),
                     static_cast<int>(std::clamp<int64_t>(from + extent, begin, size) - begin));
  };
  const auto [x, width] = cut(rect.x, rect.width, bounds.width);
  const auto [y, height] = cut(rect.y, rect.height, bounds.height);
  return width > 0 && height > 0 ? VuRect{x, y, width, height} : VuRect{0, 0, 0, 0};
}

uint64_t Written::Count() const {
  return pixels.size() - static_cast<uint64_t>(std::count(pixels.begin(), pixels.end(), 0));
}

void Coverage::Follow(const Record& record) {
  own_.Follow(record);
  if (record.operation == Operation::Close) states_.erase(ObjectOf(record));
  if (!SetsState(record.operation)) return;
  auto& states = states_[ObjectOf(record)];
  // The later of the two operations applies.
  if (record.operation == Operation::SetBlendingFunc) states.erase(Operation::SetBlendingFuncs);
  states[record.operation].assign(record.fields.begin(), record.fields.end());
}

bool Coverage::Find(const Record& record, Written& written) {
  written = {};
  const VuBitmap* const target = player_.Find(ObjectOf(record));
  if (!target) return true;
  const VuRect bounds = target->GetBounds();
  const auto all = [&](const VuRect& part) {
    written.part = part;
    written.pixels.assign(static_cast<size_t>(part.width) * static_cast<size_t>(part.height), 1);
    return true;
  };
  switch (record.operation) {
    case Operation::Clear:
    case Operation::ClearTo:
      return all(bounds);
    case Operation::SetPixels:
      if (!FieldOf<bool>(record)) return true;
      [[fallthrough]];
    case Operation::PixelsWritten:
      return all(Inside(FieldOf<VuRect>(record), bounds));
    default:
      written.part = LimitOf(record.operation, *target);
  }
  return DrawWhite(record, *target, written);
}

/// Draws in opaque white on a transparent surface. Pixels that are not transparent afterwards were
/// written.
bool Coverage::DrawWhite(const Record& record, const VuBitmap& target, Written& written) {
  const VuRect bounds = target.GetBounds(), part = written.part;
  if (part.width == 0) return true;
  VuBitmap* const scratch = own_.Get(kScratch, bounds.width, bounds.height, VuPixelFormat::A8);
  if (!scratch) return false;
  scratch->Clear();
  scratch->SetClippingRect(part);
  if (!PlayOn(own_.IdOf(kScratch), record, true)) return false;
  written.pixels.resize(static_cast<size_t>(part.width) * static_cast<size_t>(part.height));
  return scratch->GetPixels(part, written.pixels.data());
}

/// Draws the operation unchanged on two backgrounds. If the results are equal, the background does
/// not matter.
bool Coverage::FindReplaced(const Record& record, Written& written) {
  written = {};
  const VuBitmap* const target = player_.Find(ObjectOf(record));
  if (!target) return true;
  written.part = LimitOf(record.operation, *target);
  if (written.part.width == 0) return true;
  Drawn a, b;
  if (!DrawOver(0, record, *target, written.part, a) ||
      !DrawOver(1, record, *target, written.part, b))
    return false;
  const size_t size = BytesPerPixel(target->GetInfo().format);
  written.pixels.resize(a.after.size() / size);
  for (size_t i = 0; i < written.pixels.size(); ++i) {
    const auto same = [&](const std::vector<uint8_t>& one, const std::vector<uint8_t>& other) {
      return std::memcmp(&one[i * size], &other[i * size], size) == 0;
    };
    if (same(a.after, b.after))
      written.pixels[i] = kReplaced;
    else if (!same(a.before, a.after) || !same(b.before, b.after))
      written.pixels[i] = kBlended;
  }
  return true;
}

bool Coverage::DrawOver(size_t background, const Record& record, const VuBitmap& target,
                        const VuRect& part, Drawn& drawn) {
  const auto which = static_cast<uint32_t>(kFirstBackground + background);
  const VuBitmapInfo info = target.GetInfo();
  own_.Drop(which);  // This drops its state too.
  VuBitmap* const own = own_.Get(which, info.width, info.height, info.format);
  if (!own) return false;
  const auto read = [&](std::vector<uint8_t>& pixels) {
    pixels.resize(size_t{BytesPerPixel(info.format)} * static_cast<size_t>(part.width) *
                  static_cast<size_t>(part.height));
    return own->GetPixels(part, pixels.data());
  };
  own->Clear(kBackgrounds[background]);
  if (!read(drawn.before)) return false;
  for (const auto& [operation, fields] : states_[ObjectOf(record)]) {
    Record state;
    state.operation = operation;
    state.fields = fields;
    if (!PlayOn(own_.IdOf(which), state, false)) return false;
  }
  return PlayOn(own_.IdOf(which), record, false) && read(drawn.after);
}

/// Plays an operation on another surface, in opaque white if `isWhite` is set.
bool Coverage::PlayOn(Id target, const Record& record, bool isWhite) {
  bool isComplete = true;
  const auto whiten = [&]<class W>(W*, Value<W>& value) {
    if (!isWhite) return;
    if constexpr (std::is_same_v<W, VuColor>) value = 0xFFFFFFFF;
    if constexpr (std::is_same_v<W, Source>) {
      value = WhiteLike(value);
      isComplete = value != Id::None;
    }
  };
  const Encoder fields = Rewrite(record, target, whiten);
  Record changed = record;
  changed.fields = fields.Bytes();
  return isComplete && player_.Play(changed);
}

/// Returns an opaque white bitmap of the size of a source, or `source` if it does not exist.
Id Coverage::WhiteLike(Id source) {
  const VuBitmap* const bitmap = player_.Find(source);
  if (!bitmap) return source;
  const VuRect bounds = bitmap->GetBounds();
  if (whites_.size() >= kMostWhites) {
    for (const auto& [size, which] : whites_) own_.Drop(which);
    whites_.clear();
  }
  const auto next = static_cast<uint32_t>(kFirstWhite + whites_.size());
  const uint32_t which = whites_.try_emplace({bounds.width, bounds.height}, next).first->second;
  VuBitmap* const white = own_.Get(which, bounds.width, bounds.height, VuPixelFormat::A8);
  if (!white) return Id::None;
  white->Clear(0xFFFFFFFF);
  white->SetScaleMode(bitmap->GetScaleMode());
  return own_.IdOf(which);
}

}  // namespace ZIRK::trace
