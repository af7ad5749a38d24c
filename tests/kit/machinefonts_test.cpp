#include <gtest/gtest.h>
#include <zirk/kit/machinefonts.h>

#include <cstdlib>

#include "helpers/fonts.h"
#include "helpers/logged.h"

namespace ZIRK::kit {
namespace {

TEST(MachineFonts, AreFoundByFamilyAndStyle) {
  setenv("FONTCONFIG_FILE", helpers::FontFile("fonts.conf").c_str(), 1);
  const std::string log = helpers::LoggedAt(3, [] { FindFont("any"); });
  for (const char* const lack : {"libfontconfig.so.1 does not open", "without fontconfig"})
    if (log.find(lack) != std::string::npos) GTEST_SKIP() << log;
  const auto expect = [](std::string_view family, bool bold, bool italic, const char* file,
                         int faceIndex = 0) {
    const auto found = FindFont(family, bold, italic);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->path, helpers::FontFile(file));
    EXPECT_EQ(found->faceIndex, faceIndex);
  };
  expect("ZIRK Test Sans", false, false, "sans.ttf");
  expect("ZIRK Test Sans", true, false, "sansbold.ttf");
  expect("ZIRK Test Sans", false, true, "sansoblique.ttf");
  expect(std::string_view("ZIRK Test CJK and more").substr(0, 13), true, true, "cjk.ttf");
  expect("ZIRK Test Two", false, false, "collection.ttc", 1);
  expect("sans-serif", true, false, "sansbold.ttf");
  EXPECT_TRUE(FindFont("no such family")) << "as fontconfig has it";
}

}  // namespace
}  // namespace ZIRK::kit
