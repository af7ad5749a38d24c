// Smooth edges and text, which the model does not know to the last bit: every backend is compared
// with one set of pictures. `ZIRK_UPDATE_GOLDEN=1` in the environment writes the pictures anew
// instead, by the first backend.

#include <zirk/kit/pictures.h>

#include <cstdlib>
#include <filesystem>
#include <tuple>

#include "gallery/scenes.h"
#include "helpers/rows.h"
#include "scenes/backends.h"

namespace ZIRK::scenes {
namespace {

using kit::Compare;

struct Row {
  const char* scene;
  /// Largest difference of a channel, of 255, for the backend that the pictures are from, and for
  /// the others.
  int own = 1, others = 3;
};

constexpr Row kRows[] = {
    {.scene = "turned_rectangles"},
    {.scene = "turned"},
    {.scene = "sub_pixel"},
    {.scene = "masked"},
    {.scene = "kit_shapes", .others = 2},
    {.scene = "kit_lines", .others = 2},
    {.scene = "kit_gradients", .others = 2},
    // Releases of FreeType smooth edges a little differently.
    {.scene = "text", .own = 8, .others = 8},
    {.scene = "text_boxes", .own = 8, .others = 8},
};
constexpr double kMean = 0.5;

std::unique_ptr<VuBitmap> Drawn(VuGraphics& graphics, const gallery::Scene& scene) {
  std::unique_ptr<VuBitmap> target = NewTarget(graphics, gallery::kWidth, gallery::kHeight);
  target->Clear(VuColor{0xFF182838});
  scene.draw(graphics, *target);
  return target;
}

using Parameter = std::tuple<const char*, Row>;

class Golden : public testing::TestWithParam<Parameter> {};

std::string NameOf(const testing::TestParamInfo<Parameter>& test) {
  return std::string(std::get<0>(test.param)) + "_" + std::get<1>(test.param).scene;
}

INSTANTIATE_TEST_SUITE_P(Scenes, Golden,
                         testing::Combine(testing::ValuesIn(kBackends), testing::ValuesIn(kRows)),
                         NameOf);
TEST_P(Golden, Scene) {
  const auto& [backend, row] = GetParam();
  const std::unique_ptr<VuGraphics> graphics = Open(backend);
  ASSERT_TRUE(graphics || MayBeMissing(backend));
  if (!graphics) GTEST_SKIP() << backend << " does not run here";
  const std::unique_ptr<VuBitmap> drawn = Drawn(*graphics, gallery::SceneCalled(row.scene));

  const std::string file = std::string(ZIRK_GOLDEN) + row.scene + ".png";
  const char* const update = std::getenv("ZIRK_UPDATE_GOLDEN");
  if (update && update == std::string("1") && IsReference(backend)) {
    ASSERT_TRUE(kit::SavePng(*drawn, file.c_str()));
    GTEST_SKIP() << "wrote " << file;
  }
  const auto reader = Open(kBackends[0]);
  const std::unique_ptr<VuBitmap> golden(reader->CreateBitmapFromFile(file.c_str()));
  ASSERT_TRUE(golden) << "make it with ZIRK_UPDATE_GOLDEN=1, and look at it";
  const std::unique_ptr<VuBitmap> picture(
      reader->CreateBitmap(gallery::kWidth, gallery::kHeight, VuPixelFormat::ARGB8888));
  const auto difference = Compare(*drawn, *golden, picture.get());
  ASSERT_TRUE(difference);

  const int worst = IsReference(backend) ? row.own : row.others;
  if (difference->worst <= worst && difference->mean <= kMean) return;
  const std::string stem = std::string(row.scene) + "_" + backend;
  kit::SavePng(*drawn, (stem + "_drawn.png").c_str());
  kit::SavePng(*picture, (stem + "_difference.png").c_str());
  const VuPoint at = difference->worstAt;
  FAIL() << "worst difference " << difference->worst << " (" << worst << " allowed) at (" << at.x
         << ", " << at.y << "), mean " << difference->mean << " (" << kMean << " allowed); see "
         << stem << "_drawn.png and _difference.png in " << std::filesystem::current_path();
}

/// The backend of examples/backend draws all scenes but those of picture files and narrow formats.
std::vector<gallery::Scene> ScenesOfExample() {
  std::vector<gallery::Scene> scenes;
  for (const gallery::Scene& scene : gallery::Scenes())
    if (scene.name != std::string("images") && scene.name != std::string("formats"))
      scenes.push_back(scene);
  return scenes;
}

class Example : public testing::TestWithParam<gallery::Scene> {};
INSTANTIATE_TEST_SUITE_P(, Example, testing::ValuesIn(ScenesOfExample()), helpers::RowName);

TEST_P(Example, DrawsAsTheFirstBackendDoes) {
  const auto first = Open(kBackends[0]), example = Open("Plain");
  ASSERT_TRUE(example);
  // It counts the coverage of slanted edges at few points.
  const auto difference = Compare(*Drawn(*example, GetParam()), *Drawn(*first, GetParam()));
  ASSERT_TRUE(difference);
  EXPECT_LE(difference->worst, 12);
  EXPECT_LE(difference->mean, kMean);
}

}  // namespace
}  // namespace ZIRK::scenes
