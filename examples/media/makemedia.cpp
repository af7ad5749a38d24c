// Makes the pictures of the examples: a balloon with transparent surroundings, and what looks like
// a photograph of a mountain lake. See README.md.

#include <png.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

// libjpeg's header expects size_t and FILE to be declared.
#include <jpeglib.h>

namespace {

struct Rgb {
  float r, g, b;
};

Rgb operator+(Rgb a, Rgb b) {
  return {a.r + b.r, a.g + b.g, a.b + b.b};
}
Rgb operator*(Rgb a, float k) {
  return {a.r * k, a.g * k, a.b * k};
}
Rgb Mix(Rgb a, Rgb b, float t) {
  return a * (1 - t) + b * t;
}
float Clamp01(float v) {
  return std::clamp(v, 0.0f, 1.0f);
}
/// A smooth step from 0 at `from` to 1 at `to`; either may be larger.
float SmoothStep(float from, float to, float v) {
  const float t = Clamp01((v - from) / (to - from));
  return t * t * (3 - 2 * t);
}
uint8_t ToByte(float v) {
  return static_cast<uint8_t>(std::lround(255 * Clamp01(v)));
}

// --- Noise --------------------------------------------------------------------------------------

/// A pseudo-random number in 0..1 for a grid point.
float Hash(int x, int y, uint32_t seed) {
  uint32_t h = static_cast<uint32_t>(x) * 0x9E3779B1u ^ static_cast<uint32_t>(y) * 0x85EBCA77u ^
               seed * 0xC2B2AE3Du;
  h = (h ^ h >> 15) * 0x2C1B3C6Du;
  h = (h ^ h >> 12) * 0x297A2D39u;
  return static_cast<float>((h ^ h >> 15) >> 8) / 16777216.0f;
}

float Noise(float x, float y, uint32_t seed) {
  const float fx = std::floor(x), fy = std::floor(y);
  const int ix = static_cast<int>(fx), iy = static_cast<int>(fy);
  const float tx = SmoothStep(0, 1, x - fx), ty = SmoothStep(0, 1, y - fy);
  const auto mix = [](float a, float b, float t) { return a + (b - a) * t; };
  return mix(mix(Hash(ix, iy, seed), Hash(ix + 1, iy, seed), tx),
             mix(Hash(ix, iy + 1, seed), Hash(ix + 1, iy + 1, seed), tx), ty);
}

/// Noise of ever finer grain, in 0..1.
float Fractal(float x, float y, int octaves, uint32_t seed) {
  float sum = 0, total = 0, weight = 1;
  for (int i = 0; i < octaves; ++i, x *= 2, y *= 2, weight *= 0.5f) {
    sum += weight * Noise(x, y, seed + static_cast<uint32_t>(i));
    total += weight;
  }
  return sum / total;
}

// --- The lake -----------------------------------------------------------------------------------

constexpr int kLakeWidth = 960, kLakeHeight = 600;
constexpr float kShore = 0.70f;                ///< Height of the water line, from the top.
constexpr float kSunX = 0.64f, kSunY = 0.27f;  ///< Position of the sun's centre.
constexpr float kAspect = float(kLakeWidth) / float(kLakeHeight);

/// One range of mountains: its position, and how much haze there is before it.
struct Range {
  float base, height, frequency, haze;
  uint32_t seed;
};

constexpr std::array<Range, 5> kRanges = {{
    {0.56f, 0.22f, 1.9f, 0.74f, 11},
    {0.60f, 0.24f, 2.4f, 0.52f, 29},
    {0.645f, 0.17f, 3.3f, 0.32f, 37},
    {0.68f, 0.11f, 5.2f, 0.16f, 51},
    {0.71f, 0.06f, 10.0f, 0.04f, 73},
}};

Rgb Sky(float x, float y) {
  const Rgb zenith{0.13f, 0.20f, 0.46f}, middle{0.60f, 0.42f, 0.62f}, horizon{1.00f, 0.72f, 0.50f};
  const float t = Clamp01(y / 0.58f);
  Rgb color =
      t < 0.55f ? Mix(zenith, middle, t / 0.55f) : Mix(middle, horizon, (t - 0.55f) / 0.45f);
  const float dx = (x - kSunX) * kAspect, dy = y - kSunY;
  const float distance = std::sqrt(dx * dx + dy * dy);
  const float cloud = SmoothStep(0.50f, 0.78f, Fractal(x * 3.2f + 4, y * 11.0f, 6, 5)) *
                      (1 - SmoothStep(0.3f, 0.6f, y));
  color = Mix(color, Mix({0.95f, 0.66f, 0.62f}, {1.0f, 0.9f, 0.78f}, std::exp(-2.5f * distance)),
              0.75f * cloud);
  color = color + Rgb{1.0f, 0.62f, 0.30f} * (0.55f * std::exp(-5.0f * distance));
  return Mix(color, {1.0f, 0.97f, 0.88f}, 1 - SmoothStep(0.046f, 0.052f, distance));
}

float RidgeOf(const Range& range, float x) {
  const float u = x * range.frequency + static_cast<float>(range.seed);
  // Folding the noise makes peaks of its middle.
  float peaks = 0, weight = 0.55f, frequency = 1;
  for (uint32_t i = 0; i < 7; ++i, weight *= 0.48f, frequency *= 2.1f)
    peaks += weight * (1 - std::abs(2 * Noise(u * frequency, 0.5f, range.seed + i) - 1));
  return range.base - range.height * peaks;
}

/// Ranges of dark rock behind each other, with mist in the valleys and the sun's colour in the
/// mist.
Rgb Land(const Range& range, float x, float y, float ridge) {
  const float depth = y - ridge;
  const float nearSun = std::exp(-2.6f * std::abs(x - kSunX));
  const float rock = Fractal(x * 60 + depth * 30, y * 90, 5, range.seed + 100);
  const Rgb stone = Mix({0.03f, 0.05f, 0.11f}, {0.19f, 0.17f, 0.26f}, rock);
  const Rgb rim = Rgb{0.85f, 0.42f, 0.22f} * (0.5f * nearSun * std::exp(-90 * depth));
  const Rgb haze = Mix({0.40f, 0.36f, 0.62f}, {1.0f, 0.66f, 0.50f}, nearSun);
  const float mist =
      range.haze + (0.9f * depth + 0.10f * Fractal(x * 5, y * 26, 4, 400)) * (0.25f + range.haze);
  return Mix(stone + rim, haze, Clamp01(mist));
}

/// The colour of the scene above the water.
Rgb Scene(float x, float y) {
  for (size_t i = kRanges.size(); i-- > 0;) {
    const float ridge = RidgeOf(kRanges[i], x);
    if (y >= ridge) return Land(kRanges[i], x, y, ridge);
  }
  return Sky(x, y);
}

Rgb Water(float x, float y) {
  const float depth = (y - kShore) / (1 - kShore);
  const float wave =
      Fractal(x * 22 / (0.25f + depth), 170 * std::sqrt(depth + 0.002f), 4, 300) - 0.5f;
  const float mirrored = kShore - (y - kShore) * 1.25f + wave * 0.05f * (0.3f + depth);
  Rgb color = Scene(x + wave * 0.012f, std::max(0.0f, mirrored)) * 0.72f;
  color = Mix(color, {0.07f, 0.13f, 0.26f}, 0.18f + 0.45f * depth);
  const float glitter =
      std::exp(-18 * std::abs(x - kSunX) / (0.5f + depth)) * SmoothStep(0.06f, 0.22f, wave);
  return color + Rgb{1.0f, 0.70f, 0.42f} * (0.9f * glitter);
}

Rgb LakePixel(int px, int py) {
  Rgb sum{0, 0, 0};
  for (int i = 0; i < 4; ++i) {
    const float x =
        (static_cast<float>(px) + 0.25f + 0.5f * static_cast<float>(i % 2)) / kLakeWidth;
    const float y =
        (static_cast<float>(py) + 0.25f + 0.5f * static_cast<float>(i / 2)) / kLakeHeight;
    sum = sum + (y < kShore ? Scene(x, y) : Water(x, y)) * 0.25f;
  }
  const float grain = 0.018f * (Hash(px, py, 999) - 0.5f);
  const float x = static_cast<float>(px) / kLakeWidth - 0.5f;
  const float y = static_cast<float>(py) / kLakeHeight - 0.5f;
  return (sum + Rgb{grain, grain, grain}) * (1 - 0.55f * (x * x + y * y));
}

bool WriteLake(const std::string& path) {
  FILE* const file = std::fopen(path.c_str(), "wb");
  if (!file) return false;
  jpeg_compress_struct jpeg{};
  jpeg_error_mgr errors;
  jpeg.err = jpeg_std_error(&errors);
  jpeg_create_compress(&jpeg);
  jpeg_stdio_dest(&jpeg, file);
  jpeg.image_width = kLakeWidth;
  jpeg.image_height = kLakeHeight;
  jpeg.input_components = 3;
  jpeg.in_color_space = JCS_RGB;
  jpeg_set_defaults(&jpeg);
  jpeg_set_quality(&jpeg, 88, TRUE);
  jpeg_start_compress(&jpeg, TRUE);
  std::vector<uint8_t> row(size_t{3} * kLakeWidth);
  for (int y = 0; y < kLakeHeight; ++y) {
    for (int x = 0; x < kLakeWidth; ++x) {
      const Rgb color = LakePixel(x, y);
      uint8_t* const out = row.data() + ptrdiff_t{3} * x;
      out[0] = ToByte(color.r);
      out[1] = ToByte(color.g);
      out[2] = ToByte(color.b);
    }
    JSAMPROW rows[] = {row.data()};
    jpeg_write_scanlines(&jpeg, rows, 1);
  }
  jpeg_finish_compress(&jpeg);
  jpeg_destroy_compress(&jpeg);
  return std::fclose(file) == 0;
}

// --- The balloon --------------------------------------------------------------------------------

constexpr int kBalloonWidth = 240, kBalloonHeight = 320;
constexpr float kTop = 8, kRadius = 108, kMouth = 246, kMouthHalfWidth = 20;
constexpr float kMiddle = kTop + kRadius;

struct Rgba {
  Rgb color;
  float alpha;
};

/// Half the envelope's width at height `y`, in pixels; negative outside.
float HalfWidth(float y) {
  if (y < kTop || y > kMouth) return -1;
  if (y <= kMiddle) return std::sqrt(kRadius * kRadius - (kMiddle - y) * (kMiddle - y));
  const float t = (y - kMiddle) / (kMouth - kMiddle);
  const float round = std::cos(t * 1.5707963f);
  return kMouthHalfWidth + (kRadius - kMouthHalfWidth) * (0.55f * round + 0.45f * (1 - t * t));
}

Rgba EnvelopeAt(float x, float y, float halfWidth) {
  const float across = x / halfWidth;
  const float longitude = std::asin(std::clamp(across, -1.0f, 1.0f));
  const float gore = longitude / 3.1415927f * 12 + 0.5f;
  const bool isLight = static_cast<int>(std::floor(gore)) % 2 == 0;
  const float seam = std::abs(gore - std::round(gore));
  const float down = (y - kTop) / (kMouth - kTop);
  const bool isBand = down > 0.50f && down < 0.60f;
  Rgb color = isLight != isBand ? Rgb{1.0f, 0.98f, 0.94f} : Rgb{0.62f, 0.60f, 0.64f};
  const float nx = across, ny = (y - kMiddle) / (kRadius * 1.3f);
  const float nz = std::sqrt(std::max(0.0f, 1 - nx * nx - ny * ny));
  const float light = 0.42f + 0.62f * Clamp01(-0.50f * nx - 0.46f * ny + 0.73f * nz);
  const float shine = std::pow(Clamp01(-0.42f * nx - 0.45f * ny + 0.79f * nz), 22.0f);
  color = color * light * (0.86f + 0.14f * SmoothStep(0.0f, 0.10f, seam));
  return {Mix(color, {1, 1, 1}, 0.35f * shine), 1};
}

Rgba BalloonAt(float px, float py) {
  const float x = px - kBalloonWidth / 2.0f;
  const float halfWidth = HalfWidth(py);
  if (halfWidth > 0 && std::abs(x) <= halfWidth) return EnvelopeAt(x, py, halfWidth);
  const float ropeAt = kMouthHalfWidth - (py - kMouth) * 0.12f;
  if (py > kMouth && py < 284 && std::abs(std::abs(x) - ropeAt) < 1.1f)
    return {{0.30f, 0.24f, 0.22f}, 0.9f};
  const bool isRim = py >= 282 && py < 288;
  const float basket = isRim ? 18.0f : 16.5f - (py - 288) * 0.10f;
  if (py < 282 || py >= 312 || std::abs(x) > basket) return {{0, 0, 0}, 0};
  const bool isWeave = (static_cast<int>(px / 4) + static_cast<int>(py / 4)) % 2 == 0;
  const Rgb wicker = isRim ? Rgb{0.46f, 0.28f, 0.16f}
                           : (isWeave ? Rgb{0.72f, 0.47f, 0.26f} : Rgb{0.58f, 0.36f, 0.19f});
  return {wicker * (1.0f - 0.3f * (x / basket + 1) / 2), 1};
}

std::array<uint8_t, 4> BalloonPixel(int px, int py) {
  constexpr int kSide = 5;
  Rgb sum{0, 0, 0};
  float alpha = 0;
  for (int i = 0; i < kSide * kSide; ++i) {
    const float x = static_cast<float>(px) + (static_cast<float>(i % kSide) + 0.5f) / kSide;
    const float y = static_cast<float>(py) + (static_cast<float>(i / kSide) + 0.5f) / kSide;
    const Rgba sample = BalloonAt(x, y);
    sum = sum + sample.color * sample.alpha;
    alpha += sample.alpha;
  }
  if (alpha == 0) return {0, 0, 0, 0};
  const Rgb color = sum * (1 / alpha);
  return {ToByte(color.r), ToByte(color.g), ToByte(color.b), ToByte(alpha / (kSide * kSide))};
}

bool WriteBalloon(const std::string& path) {
  std::vector<std::array<uint8_t, 4>> pixels;
  for (int y = 0; y < kBalloonHeight; ++y)
    for (int x = 0; x < kBalloonWidth; ++x) pixels.push_back(BalloonPixel(x, y));
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = kBalloonWidth;
  image.height = kBalloonHeight;
  image.format = PNG_FORMAT_RGBA;
  return png_image_write_to_file(&image, path.c_str(), 0, pixels.data(), 0, nullptr) != 0;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string folder = argc > 1 ? argv[1] : ".";
  if (WriteLake(folder + "/lake.jpg") && WriteBalloon(folder + "/balloon.png")) return 0;
  std::fprintf(stderr, "cannot write into %s\n", folder.c_str());
  return 1;
}
