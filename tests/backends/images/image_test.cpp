#include "images/image.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "backends/common/oneerror.h"
#include "backends/images/samples.h"
#include "images/imagestream.h"

namespace ZIRK::tests {
namespace {

using backends::Image;
using backends::ImageSource;

uint32_t Premultiplied(const Rgba& c) {
  const auto channel = [&](int v) { return static_cast<uint32_t>((v * c.a + 127) / 255); };
  return static_cast<uint32_t>(c.a) << 24 | channel(c.r) << 16 | channel(c.g) << 8 | channel(c.b);
}

int WorstChannel(uint32_t a, uint32_t b) {
  int worst = 0;
  for (const int shift : {0, 8, 16, 24})
    worst = std::max(worst, std::abs(Channel(a, shift) - Channel(b, shift)));
  return worst;
}

class SampleTest : public testing::TestWithParam<Sample> {
 protected:
  const std::string path_ = std::string(ZIRK_TEST_IMAGES) + GetParam().file;
};

TEST_P(SampleTest, ShowsItsPictureFromFileAndMemory) {
  const std::vector<uint8_t> bytes = ReadSample(GetParam().file);
  for (const auto& source : {ImageSource(path_.c_str()), ImageSource(bytes.data(), bytes.size())}) {
    const Pixels pixels = DecodeTo(source, kPictureWidth, kPictureHeight, VuScaleMode::Bilinear);
    for (int y = 0; y < kPictureHeight; ++y) {
      for (int x = 0; x < kPictureWidth; ++x) {
        const uint32_t expected = Premultiplied(GetParam().picture(x, y));
        ASSERT_LE(WorstChannel(pixels.At(x, y), expected), GetParam().tolerance)
            << source.Name() << " at " << x << ", " << y << std::hex << ": " << pixels.At(x, y)
            << ", expected " << expected;
      }
    }
  }
}

// The ways to a smaller picture differ by format: whole or by rows, or from larger steps.
TEST_P(SampleTest, ShrinksLikeTheSamePictureInAnyFormat) {
  Pixels original(kPictureWidth, kPictureHeight);
  for (int y = 0; y < kPictureHeight; ++y)
    for (int x = 0; x < kPictureWidth; ++x) {
      const Rgba c = GetParam().picture(x, y);
      original.data[static_cast<size_t>(y * kPictureWidth + x)] =
          static_cast<uint32_t>(c.a << 24 | c.r << 16 | c.g << 8 | c.b);
    }
  const std::vector<uint8_t> png = EncodePng(original);
  for (const auto mode : {VuScaleMode::Nearest, VuScaleMode::Bilinear}) {
    const Pixels expected = DecodeTo(ImageSource(png.data(), png.size()), 5, 3, mode);
    const Pixels actual = DecodeTo(ImageSource(path_.c_str()), 5, 3, mode);
    for (size_t i = 0; i < expected.data.size(); ++i)
      EXPECT_LE(WorstChannel(actual.data[i], expected.data[i]), GetParam().tolerance)
          << "pixel " << i << " in mode " << static_cast<int>(mode);
  }
}

TEST_P(SampleTest, KeepsToTheRowsItIsGiven) {
  Pixels wide(kPictureWidth + 3, kPictureHeight);
  backends::PixelRows rows = wide.Rows();
  rows.width = kPictureWidth;
  const auto image = Image::Open(ImageSource(path_.c_str()));
  ASSERT_TRUE(image && image->Decode(rows, VuScaleMode::Nearest));
  const Pixels tight =
      DecodeTo(ImageSource(path_.c_str()), kPictureWidth, kPictureHeight, VuScaleMode::Nearest);
  for (int y = 0; y < kPictureHeight; ++y)
    for (int x = 0; x < wide.width; ++x)
      ASSERT_EQ(wide.At(x, y), x < kPictureWidth ? tight.At(x, y) : 0xDEADBEEF) << x << ", " << y;
}

INSTANTIATE_TEST_SUITE_P(Samples, SampleTest, testing::ValuesIn(kSamples),
                         [](const auto& c) { return NameOf(c.param.file); });

TEST(Image, MultipliesByAlphaWithExactRounding) {
  Pixels original(256, 256);  // Every alpha with every value.
  for (uint32_t i = 0; i < 65536; ++i) original.data[i] = i << 16 | (i & 255) << 8 | (i & 255);
  const std::vector<uint8_t> png = EncodePng(original);
  const Pixels pixels =
      DecodeTo(ImageSource(png.data(), png.size()), 256, 256, VuScaleMode::Nearest);
  for (int a = 0; a < 256; ++a)
    for (int v = 0; v < 256; ++v)
      ASSERT_EQ(pixels.At(v, a), Premultiplied({v, v, v, a})) << v << " at alpha " << a;
}

// Samples fit into one piece of a stream; these do not. Nor does their name tell the format.
TEST(Image, IsReadInPieces) {
  Pixels noise(120, 120);
  uint32_t seed = 1;
  for (uint32_t& pixel : noise.data) pixel = 0xFF000000u | (seed = seed * 1664525 + 1013904223);
  const TempFile file(EncodePng(noise));
  EXPECT_EQ(DecodeTo(ImageSource(file.Path()), 120, 120, VuScaleMode::Nearest).data, noise.data);
}

TEST(Image, MayBeginWithMuchElse) {
  std::vector<uint8_t> bytes = ReadSample("rgb.jpg");
  std::vector<uint8_t> comment(60002);
  Put(comment, 0, 4, 0xFFFE0000u | 60000);
  bytes.insert(bytes.begin() + 2, comment.begin(), comment.end());
  const TempFile file(bytes);
  EXPECT_EQ(DecodeTo(ImageSource(file.Path()), 5, 5, VuScaleMode::Nearest).data,
            DecodeTo(ImageSource(ZIRK_TEST_IMAGES "rgb.jpg"), 5, 5, VuScaleMode::Nearest).data);
}

TEST(ImageStream, JoinsThePiecesOfAFile) {
  std::vector<uint8_t> bytes(50000);
  for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<uint8_t>(i * i >> 7);
  const TempFile file(bytes);
  backends::ImageStream stream{ImageSource(file.Path())};
  std::vector<uint8_t> joined(20000);
  ASSERT_TRUE(stream.Read(joined.data(), joined.size()));
  const auto rest = stream.TakeUpTo(1000000);
  joined.insert(joined.end(), rest.data, rest.data + rest.size);
  EXPECT_EQ(joined, bytes);
  EXPECT_FALSE(stream.Read(joined.data(), 1));
}

struct FitCase {
  const char* name;
  int width, height;
  VuDisplayMode mode;
  int fittedWidth, fittedHeight;
};

class FittedSize : public testing::TestWithParam<FitCase> {};

TEST_P(FittedSize, IsThatOfTheDisplayMode) {
  const FitCase& c = GetParam();
  const auto image = Image::Open(ImageSource(ZIRK_TEST_IMAGES "rgb8.png"));
  const auto size = image->FittedSize(c.width, c.height, c.mode);
  ASSERT_TRUE(size);
  EXPECT_EQ(size->width, c.fittedWidth);
  EXPECT_EQ(size->height, c.fittedHeight);
}

const FitCase kFitCases[] = {
    {"NoBox", 0, 50, VuDisplayMode::Fit, 29, 19},
    {"Stretch", 10, 50, VuDisplayMode::Stretch, 10, 50},
    {"Fit", 58, 50, VuDisplayMode::Fit, 58, 38},
    {"FitLessThanARow", 1, 50, VuDisplayMode::Fit, 1, 1},
    {"Natural", 100, 100, VuDisplayMode::Natural, 29, 19},
    {"UnknownMode", 7, 8, static_cast<VuDisplayMode>(-5), 7, 8},
    {"FillBeyondAnyBox", 16384, 16384, VuDisplayMode::Fill, 29, 19},
};
INSTANTIATE_TEST_SUITE_P(Modes, FittedSize, testing::ValuesIn(kFitCases),
                         [](const auto& c) { return c.param.name; });

TEST(Image, FitsNoBoxThatNoSurfaceCanFill) {
  const auto image = Image::Open(ImageSource(ZIRK_TEST_IMAGES "rgb8.png"));
  EXPECT_TRUE(LogsOneError("rgb8.png: 16385 x 1 pixels", [&] {
    EXPECT_FALSE(image->FittedSize(16385, 1, VuDisplayMode::Stretch));
  }));
}

}  // namespace
}  // namespace ZIRK::tests
