// A stream of commands to a screen and three bitmaps. Each command has kCommand bytes: its kind,
// and its arguments.

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>

#include "comparison.h"
#include "input.h"

using namespace ZIRK;

namespace {

constexpr size_t kCommand = 48;
constexpr size_t kMostCommands = 64;
constexpr unsigned kSide = 96;
/// The largest coordinate that may be on a surface.
constexpr unsigned kMostCoordinate = 64;
/// Surfaces to draw on; the first is a screen.
constexpr unsigned kSurfaces = 4;

constexpr auto kText = std::to_array<const char*>(
    {"Va", "\xC3\x89t\xC3\xA9 42", "\xF0\x9F\x98\x80 \xFF\xC3", "", nullptr, "a\nb\t\x7F", "...",
     "WWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWW"});

VuTVector2D<float> Vector(fuzz::Input& input) {
  const float x = input.Number();
  return {x, input.Number()};
}

VuPoint Point(fuzz::Input& input) {
  const int x = input.Coordinate();
  return {x, input.Coordinate()};
}

VuRect Rect(fuzz::Input& input) {
  const VuPoint corner = Point(input);
  const VuPoint extent = Point(input);
  return {corner.x, corner.y, extent.x, extent.y};
}

/// A scale, in half of the cases close to 1, so that something is visible.
VuTVector2D<float> Scale(fuzz::Input& input) {
  const auto factors = Vector(input);
  if (input.Below(2)) return factors;
  return {1 + factors.x() / 32, 1 + factors.y() / 32};
}

VuTransform Transform(fuzz::Input& input) {
  const auto move = Vector(input);
  const auto scale = Scale(input);
  return {move.x(), move.y(), scale.x(), scale.y(), input.Number() * 24};
}

/// A matrix: often the identity, otherwise one step of one kind, or any affine matrix.
VuTMatrix2D<float> Matrix(fuzz::Input& input) {
  const uint8_t steps = input.Byte();
  VuTMatrix2D<float> matrix;
  if (steps & 16) return matrix;
  if (steps & 1) matrix.translate(Vector(input));
  if (steps & 2) matrix.rotate(input.Number());
  if (steps & 4) matrix.scale(Scale(input));
  if (steps & 8) matrix.rotate(input.Number());
  return matrix;
}

class Stage {
 public:
  explicit Stage(VuGraphics& context) : context_(context) {
    for (unsigned i = 0; i < kSurfaces; ++i) Create(i, 40, 30, VuPixelFormat::ARGB8888);
    font_.reset(VuFont::CreateFont(ZIRK_FUZZ_FONT, 0, 14));
  }

  /// Carries out a command. Returns the index of the surface that it changed.
  unsigned Do(fuzz::Input input);
  VuBitmap& Surface(unsigned at) { return *surfaces_[at]; }

 private:
  /// The coordinates of a mask: none, or four corners.
  class Corners {
   public:
    explicit Corners(fuzz::Input& input) : given_(input.Below(2) != 0) {
      if (given_)
        for (auto& corner : corners_) corner = Vector(input);
    }
    VuTVector2D<float>* Get() { return given_ ? corners_.data() : nullptr; }

   private:
    bool given_;
    std::array<VuTVector2D<float>, 4> corners_;
  };

  void Create(unsigned at, int width, int height, VuPixelFormat format) {
    // There may be only one screen at a time, so the old one is deleted first.
    surfaces_[at].reset();
    surfaces_[at].reset(at == 0 ? context_.CreateScreen(width, height, true, 0, false, format)
                                : context_.CreateBitmap(width, height, format));
    if (!surfaces_[at]) surfaces_[at].reset(context_.CreateBitmap(1, 1, VuPixelFormat::ARGB8888));
    // A mask or a source without any alpha would draw nothing.
    surfaces_[at]->Clear(0xE0204080 + 0x101010 * at);
  }
  VuBitmap& Pick(fuzz::Input& input) { return *surfaces_[input.Below(kSurfaces)]; }

  void Resize(fuzz::Input& input, unsigned at);
  void SetState(fuzz::Input& input, VuBitmap& on);
  void SetFont(fuzz::Input& input);
  void DrawPoint(fuzz::Input& input, VuBitmap& on);
  void DrawLine(fuzz::Input& input, VuBitmap& on);
  void DrawRect(fuzz::Input& input, VuBitmap& on);
  void DrawObject(fuzz::Input& input, VuBitmap& on);
  void DrawPartOfPixel(fuzz::Input& input, VuBitmap& on);
  void DrawText(fuzz::Input& input, VuBitmap& on);
  void UseLock(fuzz::Input& input, VuBitmap& on);
  void MovePixels(fuzz::Input& input, VuBitmap& on);
  void EndFrame(fuzz::Input& input, VuBitmap& on);

  VuGraphics& context_;
  std::unique_ptr<VuFont> font_;
  std::array<std::unique_ptr<VuBitmap>, kSurfaces> surfaces_;
};

unsigned Stage::Do(fuzz::Input input) {
  const unsigned command = input.Below(12);
  const unsigned at = input.Below(kSurfaces);
  VuBitmap& on = *surfaces_[at];
  switch (command) {
    case 0:
      Resize(input, at);
      break;
    case 1:
      SetFont(input);
      break;
    case 2:
      on.Clear(input.Word());
      break;
    case 3:
      SetState(input, on);
      break;
    case 4:
      DrawPoint(input, on);
      break;
    case 5:
      DrawLine(input, on);
      break;
    case 6:
      DrawRect(input, on);
      break;
    case 7:
      DrawObject(input, on);
      break;
    case 8:
      DrawPartOfPixel(input, on);
      break;
    case 9:
      DrawText(input, on);
      break;
    case 10:
      UseLock(input, on);
      break;
    default:
      input.Below(2) ? MovePixels(input, on) : EndFrame(input, on);
      break;
  }
  return at;
}

/// Requests unknown formats and empty sizes too. A screen without a size would be as large as a
/// display.
void Stage::Resize(fuzz::Input& input, unsigned at) {
  const int least = at == 0 ? 1 : 0;
  const int width = std::max<int>(input.Below(kSide + 1), least);
  const int height = std::max<int>(input.Below(kSide + 1), least);
  Create(at, width, height, static_cast<VuPixelFormat>(input.Below(7)));
}

void Stage::SetState(fuzz::Input& input, VuBitmap& on) {
  const auto factor = [&input] { return static_cast<VuBlendingFactor>(input.Below(16)); };
  const uint8_t what = input.Byte();
  if ((what & 65) == 65) on.SetClippingRect(Rect(input));
  if (what & 2) on.SetBlendEnabled(input.Below(2) != 0);
  if (what & 4) on.SetScaleMode(static_cast<VuScaleMode>(input.Below(3)));
  if (what & 8) on.SetBlendColor(input.Word());
  const std::array factors{factor(), factor(), factor(), factor()};
  if (what & 16) on.SetBlendingFunc(factors[0], factors[1]);
  if (what & 32) on.SetBlendingFunc(factors[0], factors[1], factors[2], factors[3]);
}

void Stage::SetFont(fuzz::Input& input) {
  const uint8_t what = input.Byte();
  const int size = input.Below(40);
  if (what & 1) font_.reset(VuFont::CreateFontEx(ZIRK_FUZZ_FONT, 0, size, what & 2, what & 4));
  if (what & 8) font_->SetOutlineType(static_cast<VuFont::OutlineType>(input.Below(5)));
  if (what & 16) font_->SetOutlineThickness(input.Number());
}

void Stage::DrawPoint(fuzz::Input& input, VuBitmap& on) {
  const uint8_t form = input.Below(5);
  const VuBitmap& mask = Pick(input);
  const VuPoint point = Point(input);
  const float size = input.Number();
  const VuColor color = input.Word();
  const auto maskAt = Vector(input);
  switch (form) {
    case 0:
      return on.DrawPoint(point, size, color);
    case 1:
      return on.DrawPoint(point, size, color, Transform(input));
    case 2:
      return on.DrawPoint(point, size, color, Transform(input), mask, maskAt);
    case 3:
      return on.DrawPoint(point, size, color, Matrix(input));
    default:
      return on.DrawPoint(point, size, color, Matrix(input), mask, maskAt);
  }
}

void Stage::DrawLine(fuzz::Input& input, VuBitmap& on) {
  const uint8_t form = input.Below(5);
  const VuBitmap& mask = Pick(input);
  const VuPoint from = Point(input), to = Point(input);
  const VuColor color = input.Word();
  Corners corners(input);
  switch (form) {
    case 0:
      return on.DrawLine(from, to, color);
    case 1:
      return on.DrawLine(from, to, color, Transform(input));
    case 2:
      return on.DrawLine(from, to, color, Transform(input), mask, corners.Get());
    case 3:
      return on.DrawLine(from, to, color, Matrix(input));
    default:
      return on.DrawLine(from, to, color, Matrix(input), mask, corners.Get());
  }
}

void Stage::DrawRect(fuzz::Input& input, VuBitmap& on) {
  const uint8_t form = input.Below(5);
  const VuBitmap& mask = Pick(input);
  const VuRect rect = Rect(input);
  const VuColor color = input.Word();
  Corners corners(input);
  switch (form) {
    case 0:
      return on.DrawRect(rect, color);
    case 1:
      return on.DrawRect(rect, color, Transform(input));
    case 2:
      return on.DrawRect(rect, color, Transform(input), mask, corners.Get());
    case 3:
      return on.DrawRect(rect, color, Matrix(input));
    default:
      return on.DrawRect(rect, color, Matrix(input), mask, corners.Get());
  }
}

/// The source may be the surface itself, and so may the mask.
void Stage::DrawObject(fuzz::Input& input, VuBitmap& on) {
  const uint8_t form = input.Below(6);
  const VuBitmap& source = Pick(input);
  const VuBitmap& mask = Pick(input);
  const VuRect to = Rect(input), part = Rect(input);
  const VuColor color = input.Word();
  Corners corners(input);
  switch (form) {
    case 0:
      return on.DrawObject(to, source);
    case 1:
      return on.DrawObject(to, source, part);
    case 2:
      return on.DrawObject(to, source, part, Transform(input), color);
    case 3:
      return on.DrawObject(to, source, part, Matrix(input), color);
    case 4:
      return on.DrawObject(to, source, part, Transform(input), color, mask, corners.Get());
    default:
      return on.DrawObject(to, source, part, Matrix(input), color, mask, corners.Get());
  }
}

void Stage::DrawPartOfPixel(fuzz::Input& input, VuBitmap& on) {
  const bool masked = input.Below(2) != 0;
  const VuBitmap& source = Pick(input);
  const VuBitmap& mask = Pick(input);
  const auto from = Vector(input), to = Vector(input), partFrom = Vector(input),
             partTo = Vector(input);
  const VuTRect2D<float> rect(from, to), part(partFrom, partTo);
  const VuColor color = input.Word();
  Corners corners(input);
  const VuTMatrix2D<float> matrix = Matrix(input);
  if (masked)
    on.DrawObject(rect, source, part, matrix, color, mask, corners.Get());
  else
    on.DrawObject(rect, source, part, matrix, color);
}

void Stage::DrawText(fuzz::Input& input, VuBitmap& on) {
  const uint8_t form = input.Below(4);
  const char* text = kText[input.Below(kText.size())];
  const VuBitmap& mask = Pick(input);
  const VuPoint at = Point(input);
  const VuColor color = input.Word();
  const VuRect box = input.Below(2) ? Rect(input) : VuRect{};
  Corners corners(input);
  switch (form) {
    case 0:
      return on.DrawText(*font_, text, at, color);
    case 1:
      return on.DrawText(*font_, text, at, color, Transform(input));
    case 2:
      return on.DrawText(*font_, text, at, color, Matrix(input));
    default:
      return on.DrawText(*font_, text, at, color, Matrix(input), mask, corners.Get(), box);
  }
}

/// Every byte of the rows of a locked surface can be written.
void Stage::UseLock(fuzz::Input& input, VuBitmap& on) {
  const bool write = input.Below(2) != 0;
  if (!on.Lock(write)) return;
  const VuBitmapInfo info = on.GetInfo();
  const uint8_t value = input.Byte();
  auto* bytes = static_cast<uint8_t*>(info.pixels);
  if (write) std::fill_n(bytes, size_t(info.pitch) * size_t(info.height), value);
  if (on.Lock(write)) std::abort();
  if (!on.Unlock() || on.Unlock()) std::abort();
}

void Stage::MovePixels(fuzz::Input& input, VuBitmap& on) {
  static std::array<uint8_t, size_t{4} * kMostCoordinate * kMostCoordinate> pixels;
  const uint8_t form = input.Below(3);
  const VuBitmap& source = Pick(input);
  const VuRect rect = Rect(input);
  if (form == 0) on.GetPixels(rect, pixels.data());
  if (form == 1) on.SetPixels(rect, pixels.data(), 4 * kMostCoordinate);
  if (form == 2) on.CopyPixels(Point(input), source, rect);
}

void Stage::EndFrame(fuzz::Input& input, VuBitmap& on) {
  switch (input.Below(4)) {
    case 0:
      return on.Flush();
    case 1:
      return on.Finish();
    case 2:
      return on.Clear();
    default:
      return on.SwapBuffers();
  }
}

/// A context of the other backend that the environment names, or null.
VuGraphics* OtherContext() {
  static const char* const name = getenv("ZIRK_FUZZ_COMPARE");
  static const std::unique_ptr<VuGraphics> context(name ? fuzz::NewContext(name) : nullptr);
  return context.get();
}

/// Compares the result of one command with that of FB. Both started with the same pixels.
void Compare(VuBitmap& expected, VuBitmap& drawn, unsigned command) {
  const VuBitmapInfo a = expected.GetInfo(), b = drawn.GetInfo();
  if (a.width == b.width && a.height == b.height && a.format == b.format) {
    if (fuzz::LookTheSame(expected, drawn)) return fuzz::Replace(drawn, expected);
  }
  std::fprintf(stderr, "command %u: %d x %d of format %d differs from %d x %d of format %d\n",
               command, b.width, b.height, static_cast<int>(b.format), a.width, a.height,
               static_cast<int>(a.format));
  std::abort();
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Stage stage(fuzz::Context());
  VuGraphics* context = OtherContext();
  const auto other = context ? std::make_unique<Stage>(*context) : nullptr;
  size = std::min(size, kCommand * kMostCommands);
  for (size_t at = 0; at < size; at += kCommand) {
    const fuzz::Input input(data + at, std::min(kCommand, size - at));
    const unsigned drawn = stage.Do(input);
    if (!other) continue;
    other->Do(input);
    Compare(stage.Surface(drawn), other->Surface(drawn), data[at] % 12u);
  }
  return 0;
}
