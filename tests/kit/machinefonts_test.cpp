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
  const struct {
    std::string_view family;
    bool bold, italic;
    const char* file;
    int faceIndex = 0;
  } cases[] = {
      {"ZIRK Test Sans", false, false, "sans.ttf"},
      {"ZIRK Test Sans", true, false, "sansbold.ttf"},
      {"ZIRK Test Sans", false, true, "sansoblique.ttf"},
      {std::string_view("ZIRK Test CJK and more").substr(0, 13), true, true, "cjk.ttf"},
      {"ZIRK Test Two", false, false, "collection.ttc", 1},
      {"sans-serif", true, false, "sansbold.ttf"},
  };
  for (const auto& c : cases) {
    const auto found = FindFont(c.family, c.bold, c.italic);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->path, helpers::FontFile(c.file));
    EXPECT_EQ(found->faceIndex, c.faceIndex);
  }
  EXPECT_TRUE(FindFont("no such family")) << "as fontconfig has it";
}

}  // namespace
}  // namespace ZIRK::kit
