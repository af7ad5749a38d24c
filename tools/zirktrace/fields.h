#pragma once

#include <array>
#include <bit>
#include <concepts>
#include <cstdint>
#include <cstring>
#include <span>
#include <tuple>
#include <type_traits>
#include <variant>
#include <vector>

#include "operations.h"

/// @file Writes and reads the fields of a record. Transfer() lists the scalars of each type once;
/// an archive writes, reads or prints them.

namespace ZIRK::trace {

// Values that consist of several scalars.

struct FileValue {
  const char* path = nullptr;
  Id content = Id::None;
};
struct CreatedValue {
  Id id = Id::None;  ///< None if nothing was made.
  int32_t width = 0, height = 0;
  VuPixelFormat format{};
};
template <int N>
struct PointsValue {
  bool isThere = false;
  std::array<VuTVector2D<float>, N> points{};
};
/// The largest number of layers in a record; further layers are dropped.
constexpr size_t kMostLayers = 256;

template <class W>
struct ValueOf {
  using Type = W;
};
template <class W>
concept HasValue = requires {
  typename W::Value;
};
template <HasValue W>
struct ValueOf<W> {
  using Type = typename W::Value;
};
template <>
struct ValueOf<void> {
  using Type = std::monostate;
};
/// The type of a row's parameter or result in a trace.
template <class W>
using Value = typename ValueOf<W>::Type;

/// Returns the bytes of a pixel, or 0 if the format is invalid.
constexpr uint32_t BytesPerPixel(VuPixelFormat format) {
  switch (format) {
    case VuPixelFormat::ARGB8888:
    case VuPixelFormat::XRGB8888:
      return 4;
    case VuPixelFormat::RGB565:
    case VuPixelFormat::ARGB4444:
    case VuPixelFormat::ARGB1555:
      return 2;
    case VuPixelFormat::A8:
      return 1;
  }
  return 0;
}

// The scalars of each type.

template <class T>
concept ScalarField = std::is_arithmetic_v<T>;

template <class Archive, ScalarField T>
void Transfer(Archive& archive, T& value) {
  archive.Scalar(value);
}
template <class Archive, class T>
requires(std::is_enum_v<T> && !std::is_same_v<T, Id>) void Transfer(Archive& archive, T& value) {
  auto number = static_cast<std::underlying_type_t<T>>(value);
  archive.Scalar(number);
  value = static_cast<T>(number);
}
template <class Archive>
void Transfer(Archive& archive, Id& value) {
  archive.Number(value);
}
template <class Archive>
void Transfer(Archive& archive, const char*& value) {
  archive.Characters(value);
}
template <class Archive>
void Transfer(Archive&, std::monostate&) {}
template <class Archive>
void Transfer(Archive& archive, VuColor& value) {
  archive.Color(value.argb);
}
template <class Archive>
void Transfer(Archive& archive, VuPoint& value) {
  archive.Group(value.x, value.y);
}
template <class Archive>
void Transfer(Archive& archive, VuRect& value) {
  archive.Group(value.x, value.y, value.width, value.height);
}
template <class Archive>
void Transfer(Archive& archive, VuTransform& value) {
  archive.Group(value.translateX, value.translateY, value.scaleX, value.scaleY, value.rotation);
}
/// Leaves out the address of the pixels, which is meaningless outside the process.
template <class Archive>
void Transfer(Archive& archive, VuBitmapInfo& value) {
  archive.Group(value.width, value.height, value.format, value.pitch);
}
template <class Archive>
void Transfer(Archive& archive, VuScreenDescription& value) {
  archive.Group(value.width, value.height, value.index, value.buffers, value.format, value.option);
}
template <class Archive>
void Transfer(Archive& archive, LayerDescription& value) {
  archive.Group(value.layer, value.source, value.destination, value.order, value.opacity,
                value.enabled, value.blended);
}
template <class Archive>
void Transfer(Archive& archive, VuTVector2D<float>& value) {
  float x = value.x(), y = value.y();
  archive.Group(x, y);
  value = {x, y};
}
template <class Archive>
void Transfer(Archive& archive, VuTRect2D<float>& value) {
  VuTVector2D<float> min = value.minPoint(), max = value.maxPoint();
  archive.Group(min, max);
  value.set(min, max);
}
/// Transfers the nine elements row by row, and the flags for the kinds of transform in the matrix.
template <class Archive>
void Transfer(Archive& archive, VuTMatrix2D<float>& value) {
  struct Parts {
    std::array<float, 9> m;
    uint8_t flags;
    std::array<uint8_t, 3> unused;
  };
  auto parts = std::bit_cast<Parts>(value);
  auto& m = parts.m;
  archive.Group(m[0], m[1], m[2], m[3], m[4], m[5], m[6], m[7], m[8], parts.flags);
  value = std::bit_cast<VuTMatrix2D<float>>(parts);
}
template <class Archive>
void Transfer(Archive& archive, FileValue& value) {
  archive.Group(value.path, value.content);
}
template <class Archive>
void Transfer(Archive& archive, CreatedValue& value) {
  archive.Group(value.id, value.width, value.height, value.format);
}
template <class Archive, int N>
void Transfer(Archive& archive, PointsValue<N>& value) {
  Transfer(archive, value.isThere);
  if (!value.isThere) return;
  std::apply([&](auto&... point) { archive.Group(point...); }, value.points);
}
template <class Archive>
void Transfer(Archive& archive, std::vector<LayerDescription>& value) {
  auto count = static_cast<uint32_t>(value.size());
  Transfer(archive, count);
  if (count > kMostLayers) return archive.Refuse();
  value.resize(count);
  for (LayerDescription& layer : value) Transfer(archive, layer);
}

/// An archive that writes fields, lowest byte first, into memory that is reused for the next
/// record.
class Encoder {
 public:
  void Clear() { size_ = 0; }
  std::span<const uint8_t> Bytes() const { return {bytes_.data(), size_}; }

  template <class T>
  void Scalar(T value) {
    static_assert(std::endian::native == std::endian::little);
    Put(&value, sizeof value);
  }
  void Color(uint32_t argb) { Scalar(argb); }
  void Number(Id id) { Scalar(id); }
  /// Writes the length including the final 0, or a length of 0 for null, and the characters.
  void Characters(const char* text) {
    const size_t length = text ? std::strlen(text) + 1 : 0;
    Scalar(static_cast<uint32_t>(length));
    Put(text, length);
  }
  template <class... T>
  void Group(T&... values) {
    (Transfer(*this, values), ...);
  }
  void Refuse() {}

 private:
  void Put(const void* from, size_t size) {
    if (bytes_.size() - size_ < size) bytes_.resize((size_ + size) * 2);
    if (size > 0) std::memcpy(bytes_.data() + size_, from, size);
    size_ += size;
  }

  std::vector<uint8_t> bytes_ = std::vector<uint8_t>(1024);
  size_t size_ = 0;
};

/// An archive that reads fields. After an error, it reads zeros. Strings point into the bytes.
class Decoder {
 public:
  explicit Decoder(std::span<const uint8_t> bytes) : rest_(bytes) {}

  /// Returns whether no error occurred and no bytes are left.
  bool IsDone() const { return isRight_ && rest_.empty(); }
  bool IsRight() const { return isRight_; }
  std::span<const uint8_t> Rest() const { return rest_; }

  template <class T>
  void Scalar(T& value) {
    std::array<uint8_t, sizeof value> raw{};
    if (const uint8_t* const bytes = Take(raw.size())) std::memcpy(raw.data(), bytes, raw.size());
    if constexpr (std::same_as<T, bool>)
      value = raw[0] != 0;
    else
      value = std::bit_cast<T>(raw);
  }
  void Color(uint32_t& argb) { Scalar(argb); }
  void Number(Id& id) { Scalar(id); }
  void Characters(const char*& text) {
    uint32_t length = 0;
    Scalar(length);
    text = nullptr;
    if (length == 0) return;
    const uint8_t* const bytes = Take(length);
    if (bytes && bytes[length - 1] == 0)
      text = reinterpret_cast<const char*>(bytes);
    else
      Refuse();
  }
  template <class... T>
  void Group(T&... values) {
    (Transfer(*this, values), ...);
  }
  void Refuse() { isRight_ = false; }

 private:
  const uint8_t* Take(size_t count) {
    if (rest_.size() < count) Refuse();
    if (!isRight_) return nullptr;
    const uint8_t* const bytes = rest_.data();
    rest_ = rest_.subspan(count);
    return bytes;
  }

  std::span<const uint8_t> rest_;
  bool isRight_ = true;
};

/// Calls `use.operator()<Result, W...>` with the operation's result and parameter types. In a
/// record, the object's Id comes before them. Returns false if the operation is unknown.
template <class Use>
bool WithFields(Operation operation, const Use& use) {
  const auto call = [&use]<class Result, class... W>(Result (*)(W...)) {
    use.template operator()<Result, W...>();
  };
  switch (operation) {
#define X(number, name, method, result, isConst, count, parameters) \
  case Operation::name:                                             \
    call(static_cast<result(*) parameters>(nullptr));               \
    return true;
    ZIRK_TRACE_OPERATIONS(X)
#undef X
#define X(number, name, fields)                 \
  case Operation::name:                         \
    call(static_cast<void(*) fields>(nullptr)); \
    return true;
    ZIRK_TRACE_EVENTS(X)
#undef X
  }
  return false;
}

}  // namespace ZIRK::trace
