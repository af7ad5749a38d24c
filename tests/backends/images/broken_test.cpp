#include <gtest/gtest.h>
#include <zlib.h>

#include <cstdio>
#include <functional>
#include <random>

#include "backends/common/oneerror.h"
#include "backends/images/samples.h"

namespace ZIRK::tests {
namespace {

using backends::Image;
using backends::ImageSource;
using Bytes = std::vector<uint8_t>;

bool Loads(const ImageSource& source, int width = kPictureWidth, int height = kPictureHeight) {
  Pixels pixels(width, height);
  const auto image = Image::Open(source);
  return image && image->Decode(pixels.Rows(), VuScaleMode::Nearest);
}

struct BadFile {
  const char* name;
  const char* path;
  const char* reason;
};

class BadFiles : public testing::TestWithParam<BadFile> {};

TEST_P(BadFiles, AreReportedByNameAndReason) {
  const std::string name = GetParam().path ? GetParam().path : "(null)";
  EXPECT_TRUE(LogsOneError("cannot read " + name + ": " + GetParam().reason,
                           [] { EXPECT_FALSE(Loads(ImageSource(GetParam().path))); }));
}

const BadFile kBadFiles[] = {
    {"NullPath", nullptr, "there is no path"},
    {"Missing", ZIRK_TEST_IMAGES "missing.png", "No such file or directory"},
    {"Folder", ZIRK_TEST_IMAGES, "Is a directory"},
    {"Empty", "/dev/null", "there is nothing in it"},
    {"Text", ZIRK_TEST_IMAGES "README.md", "it is in no known image format"},
};
INSTANTIATE_TEST_SUITE_P(All, BadFiles, testing::ValuesIn(kBadFiles),
                         [](const auto& c) { return c.param.name; });

TEST(BadPath, IsCutSoThatTheReasonShows) {
  const std::string path = std::string(3000, 'd') + "/last.png";
  EXPECT_TRUE(LogsOneError("d/last.png: File name too long",
                           [&] { EXPECT_FALSE(Loads(ImageSource(path.c_str()))); }));
}

struct BadData {
  const char* name;
  const char* sample;
  const char* reason;
  std::function<void(Bytes&)> spoil;
};

/// Sets a PNG's width, with the check sum that goes with it.
void SetPngWidth(Bytes& png, uint32_t width) {
  Put(png, 16, 4, width);
  Put(png, 29, 4, static_cast<uint32_t>(crc32(0, &png[12], 17)));
}

/// Sets a JPEG's size in its baseline frame header.
void SetJpegSize(Bytes& jpeg, uint32_t width, uint32_t height) {
  size_t at = 0;
  while (jpeg[at] != 0xFF || jpeg[at + 1] != 0xC0) ++at;
  Put(jpeg, at + 5, 2, height);
  Put(jpeg, at + 7, 2, width);
}

class BadDataTest : public testing::TestWithParam<BadData> {};

TEST_P(BadDataTest, IsReportedWithItsReason) {
  Bytes bytes = ReadSample(GetParam().sample);
  GetParam().spoil(bytes);
  const std::string size = std::to_string(bytes.size());
  EXPECT_TRUE(LogsOneError("cannot read image in memory (" + size + " bytes): " + GetParam().reason,
                           [&] { EXPECT_FALSE(Loads(ImageSource(bytes.data(), bytes.size()))); }));
}

const BadData kBadData[] = {
    {"NoData", "rgb8.png", "there is nothing in it", [](Bytes& b) { b.clear(); }},
    {"Signature", "rgb8.png", "it is in no known image format", [](Bytes& b) { b[1] = 'p'; }},
    {"PngCheckSum", "rgb8.png", "IDAT: CRC error", [](Bytes& b) { b[b.size() - 13] ^= 1; }},
    {"PngNoWidth", "rgb8.png", "Invalid IHDR data", [](Bytes& b) { SetPngWidth(b, 0); }},
    {"PngTooWide", "rgb8.png", "20000 x 19 pixels", [](Bytes& b) { SetPngWidth(b, 20000); }},
    {"PngWiderThanItsData", "rgb8.png", "", [](Bytes& b) { SetPngWidth(b, 16384); }},
    {"JpegNoHeight", "rgb.jpg", "Empty JPEG image", [](Bytes& b) { SetJpegSize(b, 29, 0); }},
    {"JpegTooTall", "rgb.jpg", "29 x 20000 pixels", [](Bytes& b) { SetJpegSize(b, 29, 20000); }},
    {"JpegScan", "rgb.jpg", "Corrupt JPEG data",
     [](Bytes& b) { std::fill(b.end() - 100, b.end() - 50, uint8_t{0xFE}); }},
    {"JpegSecondStart", "rgb.jpg", "Invalid JPEG file structure", [](Bytes& b) { b[3] = 0xD8; }},
};
INSTANTIATE_TEST_SUITE_P(All, BadDataTest, testing::ValuesIn(kBadData),
                         [](const auto& c) { return c.param.name; });

class EverySample : public testing::TestWithParam<Sample> {};

TEST_P(EverySample, FailsWithOneLineWhereverItIsCut) {
  const Bytes whole = ReadSample(GetParam().file);
  const size_t n = whole.size();
  for (const size_t cut : {size_t{4}, size_t{14}, n / 4, n / 2, n * 9 / 10, n - 2}) {
    const Bytes bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(cut));
    for (const int size : {kPictureHeight, 1}) {  // One pixel needs but one row.
      EXPECT_TRUE(LogsOneError("image in memory",
                               [&] {
                                 EXPECT_FALSE(Loads(ImageSource(bytes.data(), bytes.size()),
                                                    kPictureWidth * size / kPictureHeight, size));
                               }))
          << "cut at " << cut;
    }
  }
}

// For the sanitizers: what comes out does not matter, that nothing breaks does.
TEST_P(EverySample, SurvivesFlippedBits) {
  const Bytes whole = ReadSample(GetParam().file);
  std::mt19937 random(20250117);
  const support::Tunables restored;
  LogLevel = 0;
  for (int round = 0; round < 300; ++round) {
    Bytes bytes = whole;
    for (auto flips = random() % 6 + 1; flips > 0; --flips)
      bytes[random() % bytes.size()] ^= static_cast<uint8_t>(1u << random() % 8);
    Pixels pixels(40, 7);
    if (const auto image = Image::Open(ImageSource(bytes.data(), bytes.size())))
      image->Decode(pixels.Rows(), static_cast<VuScaleMode>(round & 1));
  }
}

INSTANTIATE_TEST_SUITE_P(Samples, EverySample, testing::ValuesIn(kSamples),
                         [](const auto& c) { return NameOf(c.param.file); });

}  // namespace
}  // namespace ZIRK::tests
