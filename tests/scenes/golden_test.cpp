// Every scene by every backend, against one set of pictures. `ZIRK_UPDATE_GOLDEN=1` in the
// environment writes the pictures anew instead, with the first backend.

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <tuple>

#include "scenes/backends.h"
#include "scenes/scenes.h"
#include "support/difference.h"
#include "support/pngfile.h"

namespace ZIRK::scenes {
namespace {

using support::Compare;
using support::Difference;
using support::Picture;

bool UpdatesGolden() {
  const char* const value = std::getenv("ZIRK_UPDATE_GOLDEN");
  return value && std::string(value) == "1";
}

std::string GoldenFile(const Scene& scene) {
  return std::string(ZIRK_GOLDEN) + scene.name + ".png";
}

using Parameter = std::tuple<const char*, Scene>;

class Golden : public testing::TestWithParam<Parameter> {};

std::string NameOf(const testing::TestParamInfo<Parameter>& test) {
  return std::string(std::get<0>(test.param)) + "_" + std::get<1>(test.param).name;
}

INSTANTIATE_TEST_SUITE_P(Scenes, Golden,
                         testing::Combine(testing::ValuesIn(kBackends),
                                          testing::ValuesIn(Scenes())),
                         NameOf);

/// What the backend of examples/backend draws: no picture files, no narrow formats. It counts the
/// coverage of slanted edges at few points.
std::vector<Scene> PlainScenes() {
  std::vector<Scene> scenes;
  for (Scene scene : Scenes()) {
    const std::string name = scene.name;
    if (name == "images" || name == "formats") continue;
    scene.elsewhere = 12;
    scenes.push_back(scene);
  }
  return scenes;
}

INSTANTIATE_TEST_SUITE_P(Example, Golden,
                         testing::Combine(testing::Values("Plain"),
                                          testing::ValuesIn(PlainScenes())),
                         NameOf);

TEST_P(Golden, Scene) {
  const auto& [backend, scene] = GetParam();
  const std::unique_ptr<VuGraphics> graphics = Open(backend);
  ASSERT_TRUE(graphics || MayBeMissing(backend));
  if (!graphics) GTEST_SKIP() << backend << " does not run here";
  const std::unique_ptr<VuBitmap> target = NewTarget(*graphics, kWidth, kHeight);
  ASSERT_NE(target, nullptr);
  target->Clear(VuColor{0xFF182838});
  scene.draw(*graphics, *target);
  target->Finish();
  const Picture drawn = support::PictureOf(*target);

  const std::string file = GoldenFile(scene);
  if (UpdatesGolden() && IsReference(backend)) {
    ASSERT_TRUE(support::WritePng(file.c_str(), drawn));
    GTEST_SKIP() << "wrote " << file;
  }
  const std::optional<Picture> golden = support::ReadPng(file.c_str());
  ASSERT_TRUE(golden) << "make it with ZIRK_UPDATE_GOLDEN=1, and look at it";
  ASSERT_EQ(golden->pixels.size(), drawn.pixels.size());

  const double worst = IsReference(backend) ? scene.worst : std::max(scene.worst, scene.elsewhere);
  const Difference difference = Compare(drawn, *golden, worst);
  if (difference.worst <= worst && difference.mean <= scene.mean) return;
  const std::string stem = std::string(scene.name) + "_" + backend;
  support::WritePng((stem + "_drawn.png").c_str(), drawn);
  support::WritePng((stem + "_difference.png").c_str(), difference.picture);
  const size_t at = std::min(difference.firstPixel, drawn.pixels.size() - 1);
  FAIL() << "worst difference " << difference.worst << " (" << worst << " allowed), mean "
         << difference.mean << " (" << scene.mean << " allowed); first at (" << at % kWidth << ", "
         << at / kWidth << "): drawn " << std::hex << drawn.pixels[at] << ", golden "
         << golden->pixels[at] << "; see " << stem << "_drawn.png and _difference.png in "
         << std::filesystem::current_path();
}

}  // namespace
}  // namespace ZIRK::scenes
