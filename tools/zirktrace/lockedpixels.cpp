#include "lockedpixels.h"

#include <algorithm>
#include <cstring>

#include "rows.h"

namespace ZIRK::trace {

namespace {

/// The columns of bytes that changed in a row, from `begin` up to `end`. None if `end` is 0.
struct Span {
  size_t begin = 0, end = 0;
};

bool Differ(const uint8_t* a, const uint8_t* b, size_t begin, size_t end) {
  return begin < end && std::memcmp(a + begin, b + begin, end - begin) != 0;
}

uint64_t Word(const uint8_t* bytes) {
  uint64_t word;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

/// Returns the first byte before `end` that differs, or `end` if none does.
size_t FirstDifference(const uint8_t* a, const uint8_t* b, size_t end) {
  size_t at = 0;
  while (at + sizeof(uint64_t) <= end && Word(a + at) == Word(b + at)) at += sizeof(uint64_t);
  while (at < end && a[at] == b[at]) ++at;
  return at;
}

/// Returns the end of the last byte from `begin` on that differs, or `begin` if none does.
size_t EndOfDifference(const uint8_t* a, const uint8_t* b, size_t begin, size_t end) {
  constexpr size_t kWord = sizeof(uint64_t);
  while (begin + kWord <= end && Word(a + end - kWord) == Word(b + end - kWord)) end -= kWord;
  while (begin < end && a[end - 1] == b[end - 1]) --end;
  return end;
}

/// Adds the differences in a row. Returns whether there are any.
bool Extend(Span& changed, const uint8_t* now, const uint8_t* before, size_t size) {
  if (changed.end == 0) {
    changed.begin = FirstDifference(now, before, size);
    if (changed.begin == size) return false;
    changed.end = EndOfDifference(now, before, changed.begin, size);
    return true;
  }
  const bool isWider = Differ(now, before, 0, changed.begin);
  const bool isLonger = Differ(now, before, changed.end, size);
  if (isWider) changed.begin = FirstDifference(now, before, changed.begin);
  if (isLonger) changed.end = EndOfDifference(now, before, changed.end, size);
  return isWider || isLonger || Differ(now, before, changed.begin, changed.end);
}

}  // namespace

void LockedPixels::Begin(const VuBitmapInfo& info) {
  // Some backends do not give access to their pixels.
  hasBegun_ = info.pixels && info.pitch > 0;
  if (!hasBegun_) return;
  const Rows rows = RowsOf(info, {0, 0, info.width, info.height});
  if (isKnown_ && pixels_.size() == rows.size * rows.count) return;
  pixels_.resize(rows.size * rows.count);
  for (size_t y = 0; y < rows.count; ++y)
    std::memcpy(pixels_.data() + y * rows.size, rows.first + y * rows.pitch, rows.size);
}

VuRect LockedPixels::End(const VuBitmapInfo& info) {
  hasBegun_ = false;
  const Rows rows = RowsOf(info, {0, 0, info.width, info.height});
  Span changed;
  size_t top = 0, bottom = 0;
  for (size_t y = 0; y < rows.count; ++y) {
    const bool isFirst = changed.end == 0;
    if (!Extend(changed, rows.first + y * rows.pitch, pixels_.data() + y * rows.size, rows.size))
      continue;
    if (isFirst) top = y;
    bottom = y + 1;
  }
  for (size_t y = top; y < bottom; ++y)
    std::memcpy(pixels_.data() + y * rows.size + changed.begin,
                rows.first + y * rows.pitch + changed.begin, changed.end - changed.begin);
  // A surface that is locked a second time is likely to be locked in each frame. Copies of other
  // surfaces would waste memory.
  isKnown_ = ++locks_ > 1;
  if (!isKnown_) pixels_ = {};
  const size_t pixel = BytesPerPixel(info.format);
  const size_t left = changed.begin / pixel, right = (changed.end + pixel - 1) / pixel;
  return {static_cast<int>(left), static_cast<int>(top), static_cast<int>(right - left),
          static_cast<int>(bottom - top)};
}

}  // namespace ZIRK::trace
