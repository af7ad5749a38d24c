#include <gmock/gmock.h>

#include <cstdlib>
#include <string>

#include "helpers/rows.h"
#include "program.h"

namespace ZIRK {
namespace {

using testing::ContainsRegex;

/// Runs zirkinfo, in a folder for the tests' files. `prefix` sets the environment.
helpers::Result Zirkinfo(const std::string& arguments, const std::string& prefix = "") {
  setenv("FONTS", ZIRK_TEST_FONTS, 1);
  setenv("PLAIN", ZIRK_TEST_PLUGIN, 1);
  return helpers::Run(helpers::FolderOf("zirkinfo_test"), prefix + " " ZIRKINFO " " + arguments);
}

const helpers::Case kCases[] = {
    {"--version", 0, "^zirkinfo " ZIRK_VERSION "\n$"},
    {"--help", 0, "Exit status: 0"},
    {"-h", 0, "Exit status: 0"},
    {"--help >/dev/full", 1, "standard output: No space left"},

    // One line says what is wrong.
    {"--bogus", 2, "^zirkinfo: wrong option --bogus; [^\n]*\n$"},
    {"bogus", 2, "^zirkinfo: unknown command 'bogus'; [^\n]*\n$"},
    {"font", 2, "^zirkinfo: 'font' needs more operands; [^\n]*\n$"},
    {"font --size", 2, "^zirkinfo: --size needs an argument; [^\n]*\n$"},
    {"font --size 1.5 f", 2, "^zirkinfo: --size: '1.5' is not valid; [^\n]*\n$"},
    {"card --size 3 f.png", 2, "^zirkinfo: 'card' has no option --size; [^\n]*\n$"},
    {"card", 2, "^zirkinfo: 'card' needs a file to write, or --screen; [^\n]*\n$"},
    {"card a.png b.png", 2, "^zirkinfo: unexpected 'b.png'; [^\n]*\n$"},
    {"card a.jpg", 2, "^zirkinfo: 'a.jpg' does not end in .png; [^\n]*\n$"},
    {"compare --output a FB FB", 2, "^zirkinfo: 'a' does not end in .png; [^\n]*\n$"},
    {"card --hold 1 a.png", 2, "^zirkinfo: --hold goes with --screen; [^\n]*\n$"},
    {"card --no-text --font f a.png", 2, "^zirkinfo: either --font or --no-text; [^\n]*\n$"},
    {"compare FB", 2, "^zirkinfo: 'compare' needs more operands; [^\n]*\n$"},
    {"backends fb", 1, "^zirkinfo: no backend is called 'fb'\n$"},
    {"font nothing.ttf", 1, "^zirkinfo: nothing.ttf: face 0 cannot be opened\n$"},
    {"font $FONTS/README.md", 1, "^zirkinfo: .*README.md: face 0 cannot be opened\n$"},
    {"card --backend bogus --no-text a.png", 1, "^zirkinfo: bogus: does not open here\n$"},
    {"card --backend FB --no-text no/a.png", 1,
     "^zirkinfo: no/a.png: No such file or directory\n$"},
    {"card --backend FB --font no.ttf a.png", 1,
     "^zirkinfo: no.ttf: cannot be opened as a font\n$"},
    {"compare --no-text FB no.png", 1,
     "^zirkinfo: cannot read no.png: No such file or directory\n$"},
    {"compare --no-text FB text.png", 1, "^zirkinfo: cannot read text.png: [^\n]+\n$",
     "echo no picture >text.png;"},

    {"backends FB Stub", 0,
     "^version: " ZIRK_VERSION "\ndefault: Stub\n\nbackend: FB\nfile: libZIRKImplFB.so\n"
     "installed: yes\npath: /[^\n]*/libZIRKImplFB.so\nhas-backend: (yes|no)\n"
     "supported-backend: (yes|no)\nfeatures: 0x0\ndetails: 0x0\nopens: yes\ntype: 5\n"
     "largest-texture: [1-9][0-9]*\nmemory-available: [1-9][0-9]* bytes[a-z ]*, [1-9][0-9]* MiB\n"
     "memory-total: [1-9][^\n]*\nscreen: 1280 x 720, ARGB8888\nkernels: [a-z0-9]+\n"
     "warning: /nonexistent: [^\n]*: the screen stays in memory\n\n"
     "backend: Stub\n.*type: 4\n",
     "ZIRK_STUB=1"},
    {"", 0, "default: FB\n.*\nbackend: Stub\n", "ZIRK_DEFAULT_GFX_BACKEND=FB"},
    {"--plugin $PLAIN", 0, "\nbackend: Plain\nfile: /.*\nopens: yes\ntype: 100\n"},
    {"--plugin no.so", 1, "\nbackend: no\n.*\nopens: no\nreason: [^\n]* no.so\n"},
    {"compare --plugin $PLAIN --no-text Plain small.png", 1, "not as large as the other picture",
     ZIRKINFO " card --plugin $PLAIN --screen --no-text small.png;"},
    {"compare --plugin $PLAIN --no-text --screen FB Plain", 1, "smaller than the card"},
    {"bench --seconds 0.01 --no-text FB", 0, "frames/s\nFB +[1-9][0-9.]+ +[1-9][0-9.]+ +- "},
    {"bench --seconds 0.01 --json --font $FONTS/sans.ttf FB", 0,
     "\"name\": \"FB\", \"width\": 640,.* \"text\": [1-9].*, \"frame\": [1-9]"},
    {"--verbose backends FB", 0, "Invoking the constructor for implementation FB"},

    {"font --size 20 $FONTS/collection.ttc", 0,
     "^file: .*/collection.ttc\nface: 0\nfamily: ZIRK Test One\nstyle: Regular\nformat: outlines\n"
     "kerning: yes\nglyphs: 3\ncharacters: 2\nsize: 20\nline-height: 25\nascender: 19\n"
     "descender: -5\nmax-advance: 14\nunderline-position: 0\nunderline-thickness: 1\n\n"
     "file: .*\nface: 1\nfamily: ZIRK Test Two\n"},
    {"font --size 10 --characters $FONTS/bitmap.bdf", 0,
     "format: bitmaps\nkerning: no\nglyphs: [45]\nrange: U\\+0020 U\\+0020\n"
     "range: U\\+0041 U\\+0042\nrange: U\\+00E9 U\\+00E9\ncharacters: 4\n"},

    {"card --font $FONTS/sans.ttf a.png", 0, "^$", "ZIRK_DEFAULT_GFX_BACKEND=FB"},
    {"compare --font $FONTS/sans.ttf --worst 0 FB FB", 0, "^worst: 0\nmean: 0.0000\n"},
    {"compare --no-text --worst 0 --screen FB FB", 0, "\npanel: text-effects 0 0.0000\n$"},
    {"compare --font $FONTS/sans.ttf --worst 2 FB Stub", 3, "^worst: 25[45]"},
    {"compare --no-text --mean 1 FB Stub", 3, "\npanel: colours 25[45]"},
    {"compare --no-text --output no/a.png FB FB", 1,
     "^zirkinfo: no/a.png: No such file or directory\n"},
};

class Answer : public testing::TestWithParam<helpers::Case> {};
INSTANTIATE_TEST_SUITE_P(, Answer, testing::ValuesIn(kCases), [](const auto& row) {
  return helpers::ToName(std::string("zirkinfo ") + row.param.arguments);
});

TEST_P(Answer, IsAsTheManualSays) {
  helpers::ExpectAnswer(GetParam(), Zirkinfo(GetParam().arguments, GetParam().prefix));
}

/// On a screen, which some of them draw in another way than a bitmap.
TEST(ZirkinfoProgram, DrawsOneCardByAllBackends) {
  for (const std::string backend : {"OpenGLES2", "Hybrid", "DirectFB"}) {
    const helpers::Result result =
        Zirkinfo("compare --screen --font $FONTS/sans.ttf --worst 2 --mean 0.05 FB " + backend,
                 "DFBARGS=system=dummy");
    const char* const required =
        backend == "DirectFB" ? "ZIRK_TEST_REQUIRE_DIRECTFB" : "ZIRK_TEST_REQUIRE_GL";
    const bool mayBeMissing = backend != "Hybrid" && !std::getenv(required);
    if (result.status == 1 && mayBeMissing) continue;
    EXPECT_EQ(result.status, 0) << backend << '\n' << result.output;
  }
}

/// Where OpenGL cannot start there is a reason, no compositor, and Hybrid's screen by FB.
TEST(ZirkinfoProgram, SaysWhyABackendDoesNotOpen) {
  const helpers::Result result = Zirkinfo("--verbose 2>/dev/null", "SDL_VIDEODRIVER=none");
  EXPECT_EQ(result.output.find("compositor"), std::string::npos);
  if (!std::getenv("ZIRK_TEST_REQUIRE_GL")) return;
  EXPECT_THAT(result.output, ContainsRegex("opens: no\nreason: OpenGL ES 2: no video: none"));
  EXPECT_THAT(result.output, ContainsRegex("type: 3\n.*warning: OpenGL ES 2: no video: none"));
  EXPECT_THAT(Zirkinfo("").output,
              ContainsRegex("type: 3\n.*shown-by: 1280 x 720, OpenGL ES [0-9.]+ .* by SDL's "
                            "offscreen, EGL 1.* and .*compositor: GLCompositor"));
}

TEST(ZirkinfoProgram, DrawsTextOnlyWithAFont) {
  ASSERT_EQ(Zirkinfo("card --backend FB --no-text without.png").status, 0);
  ASSERT_EQ(Zirkinfo("card --backend FB --font $FONTS/sans.ttf with.png").status, 0);
  const helpers::Result result =
      Zirkinfo("compare --worst 0 --output difference.png with.png without.png");
  EXPECT_EQ(result.status, 3);
  EXPECT_THAT(result.output, ContainsRegex("panel: text-sizes [1-9]"));
  EXPECT_EQ(Zirkinfo("compare with.png difference.png").status, 0) << "as large as the card";
}

}  // namespace
}  // namespace ZIRK
