#include "fb/rowconverter.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "geometry/surfaceformat.h"
#include "software/pixelbuffer.h"

namespace ZIRK::backends {

namespace {

using Channel = DeviceLayout::Channel;

struct KnownLayout {
  pixman_format_code_t format;
  unsigned bitsPerPixel;
  Channel red, green, blue, alpha;
};

constexpr KnownLayout kKnownLayouts[] = {
    {PIXMAN_x8r8g8b8, 32, {16, 8}, {8, 8}, {0, 8}, {0, 0}},
    {PIXMAN_a8r8g8b8, 32, {16, 8}, {8, 8}, {0, 8}, {24, 8}},
    {PIXMAN_x8b8g8r8, 32, {0, 8}, {8, 8}, {16, 8}, {0, 0}},
    {PIXMAN_a8b8g8r8, 32, {0, 8}, {8, 8}, {16, 8}, {24, 8}},
    {PIXMAN_r8g8b8x8, 32, {24, 8}, {16, 8}, {8, 8}, {0, 0}},
    {PIXMAN_r8g8b8a8, 32, {24, 8}, {16, 8}, {8, 8}, {0, 8}},
    {PIXMAN_b8g8r8x8, 32, {8, 8}, {16, 8}, {24, 8}, {0, 0}},
    {PIXMAN_b8g8r8a8, 32, {8, 8}, {16, 8}, {24, 8}, {0, 8}},
    {PIXMAN_r8g8b8, 24, {16, 8}, {8, 8}, {0, 8}, {0, 0}},
    {PIXMAN_b8g8r8, 24, {0, 8}, {8, 8}, {16, 8}, {0, 0}},
    {PIXMAN_r5g6b5, 16, {11, 5}, {5, 6}, {0, 5}, {0, 0}},
    {PIXMAN_b5g6r5, 16, {0, 5}, {5, 6}, {11, 5}, {0, 0}},
    {PIXMAN_x1r5g5b5, 16, {10, 5}, {5, 5}, {0, 5}, {0, 0}},
    {PIXMAN_a1r5g5b5, 16, {10, 5}, {5, 5}, {0, 5}, {15, 1}},
    {PIXMAN_x1b5g5r5, 16, {0, 5}, {5, 5}, {10, 5}, {0, 0}},
    {PIXMAN_a1b5g5r5, 16, {0, 5}, {5, 5}, {10, 5}, {15, 1}},
    {PIXMAN_x4r4g4b4, 16, {8, 4}, {4, 4}, {0, 4}, {0, 0}},
    {PIXMAN_a4r4g4b4, 16, {8, 4}, {4, 4}, {0, 4}, {12, 4}},
    {PIXMAN_x4b4g4r4, 16, {0, 4}, {4, 4}, {8, 4}, {0, 0}},
    {PIXMAN_a4b4g4r4, 16, {0, 4}, {4, 4}, {8, 4}, {12, 4}},
};

bool Same(const Channel& a, const Channel& b) {
  return a.length == b.length && (a.length == 0 || a.offset == b.offset);
}

std::optional<pixman_format_code_t> FormatOf(const DeviceLayout& layout) {
  const auto known =
      std::find_if(std::begin(kKnownLayouts), std::end(kKnownLayouts), [&](const KnownLayout& k) {
        return k.bitsPerPixel == layout.bitsPerPixel && Same(k.red, layout.red) &&
               Same(k.green, layout.green) && Same(k.blue, layout.blue) &&
               Same(k.alpha, layout.alpha);
      });
  if (known == std::end(kKnownLayouts)) return std::nullopt;
  return known->format;
}

bool IsUsable(const fb_bitfield& field, unsigned bitsPerPixel) {
  return field.msb_right == 0 && field.length <= 16 && field.offset <= bitsPerPixel &&
         field.length <= bitsPerPixel - field.offset;
}

Channel ChannelOf(const fb_bitfield& field) {
  return {field.offset, field.length};
}

/// The highest `length` bits of an 8-bit value, which is repeated if `length` exceeds 8.
uint32_t Resize(uint32_t value, unsigned length) {
  return (value << 8 | value) >> (16 - length);
}

uint32_t Place(uint32_t value, const Channel& channel) {
  return channel.length == 0 ? 0 : Resize(value, channel.length) << channel.offset;
}

/// Whether the pixels of a surface have exactly the device's bytes.
bool AreSameBytes(pixman_format_code_t source, const DeviceLayout& device) {
  if (!device.format) return false;
  if (*device.format == source) return true;
  return *device.format == PIXMAN_x8r8g8b8 && source == PIXMAN_a8r8g8b8;
}

}  // namespace

uint32_t DeviceLayout::Pack(uint32_t argb) const {
  return Place(argb >> 24, alpha) | Place(argb >> 16 & 255, red) | Place(argb >> 8 & 255, green) |
         Place(argb & 255, blue);
}

std::optional<DeviceLayout> LayoutOf(const fb_var_screeninfo& mode,
                                     const fb_fix_screeninfo& fixed) {
  const unsigned bits = mode.bits_per_pixel;
  if (bits != 32 && bits != 24 && bits != 16) return std::nullopt;
  if (fixed.type != FB_TYPE_PACKED_PIXELS) return std::nullopt;
  if (fixed.visual != FB_VISUAL_TRUECOLOR && fixed.visual != FB_VISUAL_DIRECTCOLOR)
    return std::nullopt;
  for (const fb_bitfield* field : {&mode.red, &mode.green, &mode.blue}) {
    if (field->length == 0 || !IsUsable(*field, bits)) return std::nullopt;
  }
  if (!IsUsable(mode.transp, bits)) return std::nullopt;

  DeviceLayout layout{bits,
                      ChannelOf(mode.red),
                      ChannelOf(mode.green),
                      ChannelOf(mode.blue),
                      ChannelOf(mode.transp),
                      std::nullopt};
  layout.format = FormatOf(layout);
  // Packing writes whole words, and three bytes are not one.
  if (!layout.format && bits == 24) return std::nullopt;
  return layout;
}

DeviceLayout LayoutOf(pixman_format_code_t format) {
  const auto* const known =
      std::find_if(std::begin(kKnownLayouts), std::end(kKnownLayouts),
                   [&](const KnownLayout& layout) { return layout.format == format; });
  return {known->bitsPerPixel, known->red, known->green, known->blue, known->alpha, format};
}

RowConverter::RowConverter(const DeviceLayout& layout, int width, int rows)
    : layout_(layout),
      width_(width),
      converted_(static_cast<size_t>(width) * static_cast<size_t>(rows)) {
  // Formats that Pixman cannot write are packed from 32-bit pixels.
  convertedImage_.reset(pixman_image_create_bits_no_clear(
      layout.format.value_or(PIXMAN_a8r8g8b8), width, rows, converted_.data(), width * 4));
  const pixman_color_t white = {0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF};
  white_.reset(pixman_image_create_solid_fill(&white));
}

bool RowConverter::SetSource(const uint8_t* pixels, int pitch, VuPixelFormat format, int width,
                             int height) {
  if (BytesPerPixel(format) == 0) return false;
  const pixman_format_code_t sourceFormat = PixmanFormat(format);
  pixels_ = pixels;
  pitch_ = pitch;
  isCoverage_ = format == VuPixelFormat::A8;
  sameLayout_ = AreSameBytes(sourceFormat, layout_);
  if (sameLayout_) return true;
  // Pixman's interface takes writable pixels, but it only reads a source.
  void* const bits = const_cast<uint8_t*>(pixels);
  source_.reset(pixman_image_create_bits_no_clear(sourceFormat, width, height,
                                                  static_cast<uint32_t*>(bits), pitch));
  return convertedImage_ && white_ && source_;
}

RowConverter::Block RowConverter::Convert(int x, int y, int columns, int rows) {
  if (sameLayout_)
    return {pixels_ + int64_t{y} * pitch_ + int64_t{x} * layout_.BytesPerPixel(),
            static_cast<size_t>(pitch_)};
  pixman_image_t* const color = isCoverage_ ? white_.get() : source_.get();
  pixman_image_t* const mask = isCoverage_ ? source_.get() : nullptr;
  pixman_image_composite32(PIXMAN_OP_SRC, color, mask, convertedImage_.get(), x, y, x, y, 0, 0,
                           columns, rows);
  if (!layout_.format)
    for (int row = 0; row < rows; ++row)
      Pack(&converted_[static_cast<size_t>(row * width_)], columns);
  return {reinterpret_cast<const uint8_t*>(converted_.data()), static_cast<size_t>(width_) * 4};
}

void RowConverter::Pack(uint32_t* row, int count) const {
  // A packed pixel is never longer than the original, so the row is packed in place.
  auto* const packed = reinterpret_cast<uint8_t*>(row);
  const size_t bytes = layout_.BytesPerPixel();
  for (int i = 0; i < count; ++i) {
    const uint32_t word = layout_.Pack(row[i]);
    if (bytes == 4) {
      row[i] = word;
    } else {
      const auto half = static_cast<uint16_t>(word);
      std::memcpy(packed + ptrdiff_t{2} * i, &half, sizeof half);
    }
  }
}

}  // namespace ZIRK::backends
