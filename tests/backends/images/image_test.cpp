#include "images/image.h"

#include <sys/resource.h>
#include <zlib.h>

#include <algorithm>
#include <functional>
#include <random>

#include "backends/images/pictures.h"
#include "helpers/logged.h"

namespace ZIRK::tests {
namespace {

using helpers::LogsOneError;

/// What the files of tests/images show, 29 x 19: smooth, so that lossy formats keep it.
Rgba Gradient(int x, int y) {
  const int r = 255 * x / 28, g = 255 * y / 18;
  return {r, g, 255 - (r + g) / 2, 255 * (x + y) / (28 + 18)};
}

// What becomes of it, by kind of file.
constexpr auto kAll = [](Rgba c) { return c; };
constexpr auto kOpaque = [](Rgba c) { return Rgba{c.r, c.g, c.b, 255}; };
constexpr auto kGrey = [](Rgba c) { return Rgba{c.r, c.r, c.r, 255}; };
constexpr auto kGreyAlpha = [](Rgba c) { return Rgba{c.r, c.r, c.r, c.a}; };
constexpr auto kPrinted = [](Rgba c) { return Rgba{c.r * 4 / 5, c.g * 4 / 5, c.b * 4 / 5, 255}; };

const struct Sample {
  const char* file;
  Rgba (*kind)(Rgba);
  int tolerance = 0;  ///< Steps per channel that the kind's losses may cost.
  int block = 1;      ///< Pixels a side that share one colour.
} kSamples[] = {
    {"rgba8.png", kAll},
    {"rgba8interlaced.png", kAll},
    {"greyalpha16.png", kGreyAlpha},
    {"palette8.png", kAll, 0, 4},
    {"rgb.jpg", kOpaque, 14},
    {"progressive.jpg", kOpaque, 14},
    {"grey.jpg", kGrey, 3},
    {"cmyk.jpg", kPrinted, 5},  // Inks as they are, the next one inverted.
    {"cmykinverted.jpg", kPrinted, 5},
#ifdef ZIRK_HAVE_WEBP
    {"lossless.webp", kAll},
#endif
};

TEST(Image, ShowsEverySampleInItsOwnSizeAndSmaller) {
  for (const Sample& sample : kSamples) {
    const auto colour = [&](int x, int y) {
      return sample.kind(Gradient(x - x % sample.block, y - y % sample.block));
    };
    const Pixels original(29, 19, [&](int x, int y) { return Argb(colour(x, y)); });
    const Pixels expected(29, 19, [&](int x, int y) { return Premultiplied(colour(x, y)); });
    const std::string path = std::string(ZIRK_TEST_IMAGES) + sample.file;
    const Bytes bytes = ReadSample(sample.file);
    for (const auto mode : {VuScaleMode::Nearest, VuScaleMode::Bilinear}) {
      SCOPED_TRACE(path);
      EXPECT_LE(Difference(Shown(Image::Open(path.c_str()), 29, 19, mode), expected),
                sample.tolerance);
      // The ways to a smaller picture differ by format: whole or by rows, or from larger steps.
      EXPECT_LE(Difference(Shown(Open(bytes), 5, 3, mode), Scaled(original, 5, 3, mode)),
                sample.tolerance);
    }
  }
}

TEST(Image, MultipliesByAlphaWithExactRounding) {
  const auto every = [](int x, int y) { return Rgba{x, 255 - x, x ^ y, y}; };
  const Pixels original(256, 256, [&](int x, int y) { return Argb(every(x, y)); });
  const Pixels expected(256, 256, [&](int x, int y) { return Premultiplied(every(x, y)); });
  EXPECT_EQ(Difference(Scaled(original, 256, 256, VuScaleMode::Nearest), expected), 0);
}

TEST(Image, FitsABoxThatASurfaceCanFill) {
  const auto image = Image::Open(ZIRK_TEST_IMAGES "rgba8.png");
  EXPECT_EQ(image->FittedSize(1, 50, VuDisplayMode::Fit)->height, 1);
  EXPECT_TRUE(LogsOneError("rgba8.png: 16385 x 1 pixels", [&] {
    EXPECT_FALSE(image->FittedSize(16385, 1, VuDisplayMode::Stretch));
  }));
}

TEST(BrokenImage, IsReportedByPathAndReason) {
  const std::string longPath = std::string(3000, 'd') + "/last.png";
  const struct {
    const char *path, *message;
  } cases[] = {{nullptr, "cannot read (null): there is no path"},
               {ZIRK_TEST_IMAGES "no.png", "images/no.png: No such file or directory"},
               {ZIRK_TEST_IMAGES, "images/: Is a directory"},
               {"/dev/null", "cannot read /dev/null: there is nothing in it"},
               {ZIRK_TEST_IMAGES "README.md", "README.md: it is in no known image format"},
               {longPath.c_str(), "d/last.png: File name too long"}};
  for (const auto& c : cases)
    EXPECT_TRUE(
        LogsOneError(c.message, [&] { EXPECT_FALSE(Decode(Image::Open(c.path), 9, 9, {})); }));
}

/// The name of a picture in memory.
std::string NameOf(const Bytes& file) {
  return "image in memory (" + std::to_string(file.size()) + " bytes)";
}

/// Writes a big-endian number of `size` bytes.
void Put(Bytes& bytes, size_t at, size_t size, uint64_t value) {
  for (; size > 0; value >>= 8) bytes[at + --size] = static_cast<uint8_t>(value);
}

/// Sets a PNG's width, with the check sum that goes with it.
void SetPngWidth(Bytes& png, uint32_t width) {
  Put(png, 16, 4, width);
  Put(png, 29, 4, crc32(0, &png[12], 17));
}

constexpr size_t kJpegHeight = 163;  // Where rgb.jpg has its height.

void RepeatLastScan(Bytes& b) {
  constexpr uint8_t kStartOfScan[] = {0xFF, 0xDA};
  const Bytes scan(std::find_end(b.begin(), b.end(), kStartOfScan, kStartOfScan + 2), b.end() - 2);
  for (int i = 0; i < 100; ++i) b.insert(b.end() - 2, scan.begin(), scan.end());
}

TEST(BrokenImage, IsReportedBySizeAndReason) {
  const struct {
    const char *sample, *reason;
    std::function<void(Bytes&)> spoil;
  } cases[] = {
      {"rgba8.png", "IDAT: CRC error", [](Bytes& b) { b[b.size() - 13] ^= 1; }},
      {"rgba8.png", "20000 x 19 pixels", [](Bytes& b) { SetPngWidth(b, 20000); }},
      {"rgba8.png", "", [](Bytes& b) { SetPngWidth(b, 16384); }},
      {"rgb.jpg", "Empty JPEG image", [](Bytes& b) { Put(b, kJpegHeight, 2, 0); }},
      {"rgb.jpg", "29 x 20000 pixels", [](Bytes& b) { Put(b, kJpegHeight, 2, 20000); }},
      {"rgb.jpg", "Corrupt JPEG data: bad Huffman code",
       [](Bytes& b) { Put(b, b.size() - 100, 8, 0xFF00FF00FF00FF00); }},
      {"progressive.jpg", "too many scans", RepeatLastScan},
  };
  for (const auto& c : cases) {
    Bytes bytes = ReadSample(c.sample);
    c.spoil(bytes);
    EXPECT_TRUE(LogsOneError("cannot read " + NameOf(bytes) + ": " + c.reason,
                             [&] { EXPECT_FALSE(Decode(Open(bytes), 29, 19, {})); }));
  }
}

TEST(BrokenImage, TakesNoMemoryForWhatItClaims) {
  const auto peak = [] {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;  // KiB
  };
  for (const char* const chunk : {"pCAL", "sCAL", "eXIf", "iCCP", "zTXt", "teSt"}) {
    Bytes bytes = ReadSample("rgba8.png");
    bytes.resize(57);
    Put(bytes, 33, 4, 0x3FFFFFFF);
    std::copy_n(chunk, 4, &bytes[37]);
    const long before = peak();
    EXPECT_TRUE(LogsOneError("it ends too early", [&] { EXPECT_FALSE(Open(bytes)); })) << chunk;
    EXPECT_LT(peak() - before, 16 << 10) << chunk;
  }
}

TEST(Image, KeepsToTheMemoryThatItIsGiven) {
  constexpr uint8_t kProgressive[] = {0xFF, 0xC2};
  const struct {
    const char *sample, *reason;
    std::function<void(Bytes&)> enlarge;
  } cases[] = {
      {"progressive.jpg", "Backing store not supported",
       [&](Bytes& b) {
         const auto frame = std::search(b.begin(), b.end(), kProgressive, kProgressive + 2);
         Put(b, static_cast<size_t>(frame - b.begin()) + 5, 2, 5000);
       }},
#ifdef ZIRK_HAVE_WEBP
      {"lossless.webp", "the file is larger than memory allows", [](Bytes& b) { Put(b, 7, 1, 1); }}
#endif
  };
  for (const auto& c : cases) {
    Bytes bytes = ReadSample(c.sample);
    for (const bool enlarged : {false, true}) {
      if (enlarged) c.enlarge(bytes);
      auto image = Open(bytes);
      image->LimitMemory(64 << 10);
      const auto decode = [&] { return Decode(std::move(image), 29, 19, {}).has_value(); };
      if (enlarged)
        EXPECT_TRUE(LogsOneError(c.reason, [&] { EXPECT_FALSE(decode()); }));
      else
        EXPECT_TRUE(decode()) << c.sample;
    }
  }
}

TEST(BrokenImage, FailsWithOneLineWhereverItIsCut) {
  for (const Sample& sample : kSamples) {
    const Bytes whole = ReadSample(sample.file);
    for (size_t cut = 4; cut < whole.size() - 1; cut += whole.size() / 16) {
      const Bytes bytes(whole.data(), whole.data() + cut);
      for (const int side : {19, 1})  // One pixel needs but one row.
        EXPECT_TRUE(
            LogsOneError(NameOf(bytes), [&] { EXPECT_FALSE(Decode(Open(bytes), side, side, {})); }))
            << sample.file << " cut at " << cut;
    }
  }
}

}  // namespace
}  // namespace ZIRK::tests
