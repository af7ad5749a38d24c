#include <gmock/gmock.h>
#include <zirk/zirk.h>

#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "helpers/fonts.h"
#include "helpers/logged.h"
#include "helpers/rows.h"
#include "helpers/threads.h"

namespace ZIRK {
namespace {

using helpers::FontFile;
using helpers::LoggedAt;

const std::string kRegular = FontFile("sans.ttf"), kBold = FontFile("sansbold.ttf"),
                  kOblique = FontFile("sansoblique.ttf"), kCollection = FontFile("collection.ttc"),
                  kAgain = FontFile("./sansbold.ttf");
constexpr const char* kSans = "ZIRK Test Sans";

/// What the factory was last asked for: file, face and size.
std::string opened;
VuFont* Note(const char* path, int faceIndex, int pixelSize) {
  opened = path + (' ' + std::to_string(faceIndex) + ' ' + std::to_string(pixelSize));
  return nullptr;
}

/// The file that a request is given; empty for none.
std::string Found(VuFontRegistry& registry, const char* family, bool bold, bool italic) {
  opened.clear();
  EXPECT_EQ(registry.GetFont(family, 7, bold, italic), nullptr);
  return opened.substr(0, opened.find(" 0 7"));
}

struct Request {
  const char* name;
  std::vector<std::string> files;
  const char* family = kSans;
  bool bold = false, italic = false;
  std::string found = "";
};
class BestFace : public helpers::Rows<Request> {};

TEST_P(BestFace, OfTheFamily) {
  const std::unique_ptr<VuFontRegistry> registry(VuFontRegistry::Create(&Note));
  for (const std::string& file : GetParam().files) EXPECT_TRUE(registry->Register(file.c_str()));
  const auto& [name, files, family, bold, italic, found] = GetParam();
  EXPECT_EQ(Found(*registry, family, bold, italic), found);
}

const std::vector<std::string> kAll = {kRegular, kBold, kOblique}, kTwo = {kRegular, kCollection};
ROWS(BestFace,  //
     {.name = "regular", .files = kAll, .found = kRegular},
     {.name = "bold", .files = kAll, .bold = true, .found = kBold},
     {.name = "oblique", .files = kAll, .italic = true, .found = kOblique},
     {.name = "no_bold", .files = {kOblique, kRegular}, .bold = true, .found = kRegular},
     {.name = "only_bold", .files = {kBold}, .italic = true, .found = kBold},
     {.name = "bold_before_italic", .files = kAll, .bold = true, .italic = true, .found = kBold},
     {.name = "first_of_equals", .files = {kAgain, kBold}, .bold = true, .found = kAgain},
     {.name = "other_case", .files = kAll, .family = "zirk test sans"},
     {.name = "part_of_the_name", .files = kAll, .family = "ZIRK Test"},
     {.name = "typographic_name", .files = {kBold}, .family = "ZIRK Test Superfamily"},
     {.name = "collection", .files = kTwo, .family = "ZIRK Test One", .found = kCollection},
     {.name = "not_its_second_face", .files = kTwo, .family = "ZIRK Test Two"});

TEST(FontRegistry, UnregisteredByTheVeryPath) {
  VuFontRegistry registry(&Note);
  for (const std::string& file : {kBold, kRegular, kBold}) registry.Register(file.c_str());
  const std::string longer = kBold + "2";
  for (const char* const other : {"none", longer.c_str(), static_cast<const char*>(nullptr)})
    EXPECT_EQ(LoggedAt(7, [&] { registry.Unregister(other); }), "");
  EXPECT_EQ(Found(registry, kSans, true, false), kBold);
  registry.Unregister(kBold.c_str());
  EXPECT_EQ(Found(registry, kSans, true, false), kRegular);
}

TEST(FontRegistry, WithoutAFactory) {
  std::unique_ptr<VuFont> font;
  {
    const std::unique_ptr<VuFontRegistry> registry(VuFontRegistry::Create());
    registry->Register(kRegular.c_str());
    std::string asked;
    VuFont::SetFontOverride([&](const char* path, int, int size, bool bold, bool italic) {
      asked = path + (' ' + std::to_string(size)) + (bold ? " bold" : "") + (italic ? " it" : "");
      return nullptr;
    });
    EXPECT_EQ(registry->GetFont(kSans, 9, true, true), nullptr);
    EXPECT_EQ(asked, kRegular + " 9 bold it");
    EXPECT_EQ(registry->GetFont(kSans, 9, false, true), nullptr);
    EXPECT_EQ(asked, kRegular + " 9 it");
    VuFont::SetFontOverride(nullptr);
    font.reset(registry->GetFont(kSans, 48, false, false));
  }
  EXPECT_EQ(font->GetOneLineHeight(), 58);
}

TEST(FontRegistry, Log) {
  VuFontRegistry registry(&Note);
  EXPECT_EQ(LoggedAt(7, [&] { EXPECT_TRUE(registry.Register(kBold.c_str())); }),
            "<ZIRK.info>: FTFontRegistry: inspecting file: " + kBold +
                "\n<ZIRK.info>: face: (0,ZIRK Test Sans,Bold,italic:0,bold:1)\n"
                "<ZIRK.info>: asc:1901, desc:-483, height:2384, bbox(-891,2241,-489,1914)\n"
                "<ZIRK.info>: done inspecting file: " +
                kBold + "\n<ZIRK.info>: FTFontRegistry: Added font " + kBold + "\n");
  for (const auto& [path, error] : {std::pair(FontFile("README.md"), "2"), {"none", "1"}})
    EXPECT_EQ(LoggedAt(4, [&, p = path] { EXPECT_FALSE(registry.Register(p.c_str())); }),
              "<ZIRK.error>: FTFontRegistry: error #" + std::string(error) +
                  " opening font\n<ZIRK.error>: FTFontRegistry: Corrupt or invalid font file: " +
                  path + "\n");
  const std::string match = "<ZIRK.info>: FTFontRegistry: found best match ";
  EXPECT_EQ(LoggedAt(6, [&] { delete registry.GetFont("sans", 9, true, false); }),
            match +
                "(-1,,,italic:0,bold:0)\n"
                "<ZIRK.error>: FTFontRegistry: Cannot find font family <sans> bold 1 italic 0\n");
  EXPECT_EQ(LoggedAt(7, [&] { delete registry.GetFont(kSans, 9, false, true); }),
            match + "(0,ZIRK Test Sans,Bold,italic:0,bold:1)\n");
}

TEST(FontRegistry, AFontWithoutNamesIsOfTheEmptyFamily) {
  const std::vector<unsigned char> font = helpers::FontBytes("bitmap.bdf");
  std::string text(font.begin(), font.end());
  const size_t name = text.find("FAMILY_NAME");
  text.replace(name, text.find('\n', name) - name, "COMMENT none");
  const std::string path = testing::TempDir() + "/zirk_nameless.bdf";
  std::ofstream(path) << text;
  VuFontRegistry registry(&Note);
  EXPECT_TRUE(registry.Register(path.c_str()));
  EXPECT_EQ(Found(registry, "", false, false), path);
}

TEST(FontRegistry, NullNamesAreThrownBackWithoutTheLock) {
  VuFontRegistry registry(&Note);
  EXPECT_THROW(registry.Register(nullptr), std::logic_error);
  EXPECT_THROW(delete registry.GetFont(nullptr, 1, false, false), std::logic_error);
  EXPECT_TRUE(registry.Register(kRegular.c_str()));
}

TEST(FontRegistry, SanitizedFontsComeAndGoWhileTheyAreAskedFor) {
  const helpers::Tunables restored;
  LogLevel = 2;
  VuFontRegistry registry([](const char*, int, int) -> VuFont* { return nullptr; });
  const auto use = [&](bool asks) {
    if (asks)
      delete registry.GetFont(kSans, 9, false, false);
    else
      registry.Unregister(kRegular.c_str());
  };
  helpers::InRounds(
      20, [&](int) { registry.Register(kRegular.c_str()); }, use);
}

}  // namespace
}  // namespace ZIRK
