// Pictures in files and in memory: decoded, brought to a size, cut off and broken.

#include "images/image.h"

#include <gtest/gtest.h>
#include <png.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "helpers/logged.h"
#include "images/imagestream.h"

namespace ZIRK::tests {
namespace {

using backends::Image;
using backends::ImageStream;
using helpers::LogsOneError;
using Bytes = std::vector<uint8_t>;

/// Channels of 0 to 255, not premultiplied.
struct Rgba {
  int r, g, b, a;
};

Bytes ReadSample(const std::string& file) {
  std::ifstream in(ZIRK_TEST_IMAGES + file, std::ios::binary);
  Bytes bytes{std::istreambuf_iterator<char>(in), {}};
  if (bytes.empty()) throw std::runtime_error("cannot read the sample " + file);
  return bytes;
}

/// The colour as 0xAARRGGBB.
uint32_t Argb(const Rgba& c) {
  return static_cast<uint32_t>(c.a) << 24 | static_cast<uint32_t>(c.r << 16 | c.g << 8 | c.b);
}

/// Every colour channel times alpha, rounded to nearest.
uint32_t Premultiplied(const Rgba& c) {
  const auto times = [&](int channel) { return (channel * c.a + 127) / 255; };
  return Argb({times(c.r), times(c.g), times(c.b), c.a});
}

/// 0xAARRGGBB words, with a gap behind every row that nothing should write to.
struct Pixels {
  Pixels(int w, int h, const std::function<uint32_t(int x, int y)>& colour = nullptr)
      : width(w), height(h), pitch(w + 3), data(static_cast<size_t>(pitch * h), 0xDEADBEEF) {
    for (int y = 0; y < h; ++y)
      for (int x = 0; x < w; ++x) At(x, y) = colour ? colour(x, y) : 0;
  }
  uint32_t& At(int x, int y) { return data[static_cast<size_t>(y * pitch + x)]; }

  int width, height, pitch;
  std::vector<uint32_t> data;
};

/// The largest difference of a channel, in the gaps too.
int Difference(const Pixels& a, const Pixels& b) {
  const auto* p = reinterpret_cast<const uint8_t*>(a.data.data());
  const auto* q = reinterpret_cast<const uint8_t*>(b.data.data());
  int worst = 0;
  for (size_t i = 0; i < a.data.size() * 4; ++i) worst = std::max(worst, std::abs(p[i] - q[i]));
  return worst;
}

std::unique_ptr<Image> Open(const Bytes& file) {
  return Image::Open(file.data(), file.size());
}

/// The picture brought to a size; no value if it cannot be decoded or is null.
std::optional<Pixels> Decode(std::unique_ptr<Image> image, int width, int height,
                             VuScaleMode mode) {
  Pixels pixels(width, height);
  if (!image || !image->Decode({pixels.data.data(), pixels.pitch * 4, width, height}, mode))
    return std::nullopt;
  return pixels;
}

/// The same, where a failure fails the test.
Pixels Shown(std::unique_ptr<Image> image, int width, int height, VuScaleMode mode) {
  const auto pixels = Decode(std::move(image), width, height, mode);
  EXPECT_TRUE(pixels);
  return pixels.value_or(Pixels(width, height));
}

/// Pixels brought to a size, by way of a PNG file. They are not premultiplied.
Pixels Scaled(const Pixels& original, int width, int height, VuScaleMode mode) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(original.width);
  image.height = static_cast<png_uint_32>(original.height);
  image.format = PNG_FORMAT_BGRA;
  png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
  Bytes file(size);
  EXPECT_TRUE(png_image_write_to_memory(&image, file.data(), &size, 0, original.data.data(),
                                        original.pitch * 4, nullptr));
  return Shown(Image::Open(file.data(), size), width, height, mode);
}

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
  int block = 1;      ///< Side of the squares that have one colour.
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
      // Formats become smaller in different ways: as a whole, row by row, or while they are
      // decoded.
      for (const int height : {3, 19})
        EXPECT_LE(
            Difference(Shown(Open(bytes), 5, height, mode), Scaled(original, 5, height, mode)),
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
  const auto expect = [](const char* path, const char* message) {
    EXPECT_TRUE(LogsOneError(message, [&] { EXPECT_FALSE(Decode(Image::Open(path), 9, 9, {})); }));
  };
  expect(nullptr, "cannot read (null): no path is given");
  expect(ZIRK_TEST_IMAGES "no.png", "images/no.png: No such file or directory");
  expect(ZIRK_TEST_IMAGES, "images/: Is a directory");
  expect("/dev/null", "cannot read /dev/null: it is empty");
  const std::string pipe = testing::TempDir() + "zirk_image_pipe" + std::to_string(getpid());
  mkfifo(pipe.c_str(), 0600);
  expect(pipe.c_str(), "it is empty");  // Rather than waiting for a writer.
  unlink(pipe.c_str());
  expect(ZIRK_TEST_IMAGES "README.md", "README.md: unknown image format");
  expect(longPath.c_str(), "d/last.png: File name too long");
}

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
  const auto expect = [](const char* sample, const char* reason, void (*spoil)(Bytes&)) {
    Bytes bytes = ReadSample(sample);
    spoil(bytes);
    EXPECT_TRUE(LogsOneError("cannot read " + NameOf(bytes) + ": " + reason,
                             [&] { EXPECT_FALSE(Decode(Open(bytes), 29, 19, {})); }));
  };
  expect("rgba8.png", "IDAT: CRC error", [](Bytes& b) { b[b.size() - 13] ^= 1; });
  expect("rgba8.png", "20000 x 19 pixels", [](Bytes& b) { SetPngWidth(b, 20000); });
  expect("rgba8.png", "", [](Bytes& b) { SetPngWidth(b, 16384); });
  expect("rgb.jpg", "Empty JPEG image", [](Bytes& b) { Put(b, kJpegHeight, 2, 0); });
  expect("rgb.jpg", "29 x 20000 pixels", [](Bytes& b) { Put(b, kJpegHeight, 2, 20000); });
  expect("rgb.jpg", "Corrupt JPEG data: bad Huffman code",
         [](Bytes& b) { Put(b, b.size() - 100, 8, 0xFF00FF00FF00FF00); });
  expect("progressive.jpg", "too many scans", RepeatLastScan);
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
    EXPECT_TRUE(LogsOneError("it is incomplete", [&] { EXPECT_FALSE(Open(bytes)); })) << chunk;
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
      for (const int side : {19, 1})  // One pixel needs only one row.
        EXPECT_TRUE(
            LogsOneError(NameOf(bytes), [&] { EXPECT_FALSE(Decode(Open(bytes), side, side, {})); }))
            << sample.file << " cut at " << cut;
    }
  }
}

TEST(ImageStream, ReadsAFileInPieces) {
  const Bytes plain = ReadSample("rgb.jpg");
  Bytes bytes = {0xFF, 0xD8, 0xFF, 0xFE, 60000 >> 8, 60000 & 255};  // A long comment.
  for (unsigned i = 2; i < 60000; ++i) bytes.push_back(static_cast<uint8_t>(i * i >> 7));
  bytes.insert(bytes.end(), plain.begin() + 2, plain.end());
  const std::string path = testing::TempDir() + "zirk-image-" + std::to_string(getpid());
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size()));

  const auto nextDescriptor = [] {
    const int next = dup(STDERR_FILENO);
    return close(next), next;
  };
  const int before = nextDescriptor();
  auto stream = std::make_unique<ImageStream>(path.c_str());
  Bytes joined(20000);
  EXPECT_TRUE(stream->Read(joined.data(), joined.size()));
  const auto rest = stream->TakeUpTo(1000000);
  std::copy_n(rest.data, rest.size, std::back_inserter(joined));
  EXPECT_EQ(joined, bytes);
  stream.reset();
  EXPECT_EQ(nextDescriptor(), before) << "the file is still open";
  // A decoder skips the comment.
  EXPECT_EQ(Shown(Image::Open(path.c_str()), 5, 5, {}).data, Shown(Open(plain), 5, 5, {}).data);
  unlink(path.c_str());
}

TEST(Resampler, AveragesACheckerboardToGreyEverywhere) {
  const auto field = [](int x, int y) { return (x + y) % 2 ? 0xFFFFFFFF : 0xFF000000; };
  const Pixels grey(8, 8, [](int, int) { return 0xFF808080; });
  for (const int size : {64, 61, 127})  // An eighth, and less even parts.
    EXPECT_LE(Difference(Scaled({size, size, field}, 8, 8, VuScaleMode::Bilinear), grey),
              size == 64 ? 0 : 4);
}

TEST(Resampler, KeepsAFlatColourExactly) {
  const auto flat = [](int, int) { return 0xFF01FE7F; };
  for (const int to : {1, 3, 7, 8, 13, 14, 100})
    for (const auto mode : {VuScaleMode::Nearest, VuScaleMode::Bilinear})
      EXPECT_EQ(Difference(Scaled({13, 13, flat}, to, to, mode), {to, to, flat}), 0);
}

TEST(Resampler, NeitherBleedsNorRingsAtAnEdgeOfAlpha) {
  const auto halves = [](int x, int) { return x < 6 ? 0xFFFF0000 : 0x0000FF00; };
  for (const int to : {5, 31}) {
    Pixels pixels = Scaled({13, 13, halves}, to, to, VuScaleMode::Bilinear);
    EXPECT_EQ(pixels.At(0, 0), 0xFFFF0000);
    EXPECT_EQ(pixels.At(to - 1, 0), 0u);
    for (int x = 0; x < to; ++x) {
      EXPECT_EQ(pixels.At(x, 0), (pixels.At(x, 0) >> 24) * 0x01010000) << "premultiplied red";
      EXPECT_LE(pixels.At(x, 0), pixels.At(std::max(x - 1, 0), 0));
    }
  }
}

TEST(Resampler, InterpolatesBetweenCentresOrTakesTheNearest) {
  const auto step = [](int x, int) { return x ? 0xFF0000C8 : 0xFF000000; };
  const uint32_t between[] = {0xFF000000, 0xFF000032, 0xFF000096, 0xFF0000C8};
  const Pixels expected(4, 2, [&](int x, int) { return between[x]; });
  EXPECT_EQ(Difference(Scaled({2, 1, step}, 4, 2, VuScaleMode::Bilinear), expected), 0);
  const auto stepDown = [=](int, int y) { return step(y, 0); };
  const Pixels below(2, 4, [&](int, int y) { return between[y]; });
  EXPECT_EQ(Difference(Scaled({1, 2, stepDown}, 2, 4, VuScaleMode::Bilinear), below), 0);

  constexpr auto numbered = [](int x, int y) { return Argb({0, x, y, 255}); };
  for (const auto& [from, sources] :
       {std::pair(3, std::vector{0, 0, 1, 1, 2, 2}), {4, {1, 3}}, {7, {1, 3, 5}}}) {
    const int to = static_cast<int>(sources.size());
    const Pixels scaled = Scaled({from, from, numbered}, to, to, VuScaleMode::Nearest);
    const auto nearest = [=, at = sources.data()](int x, int y) { return numbered(at[x], at[y]); };
    EXPECT_EQ(Difference(scaled, {to, to, nearest}), 0) << from << " to " << to;
  }
}

}  // namespace
}  // namespace ZIRK::tests
