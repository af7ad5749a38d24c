#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "coverage.h"
#include "heatmap.h"
#include "hints.h"
#include "player.h"
#include "program.h"
#include "trace.h"

namespace ZIRK::trace {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;

const std::string kFolder = helpers::FolderOf("zirktrace_views_test");

helpers::Result Zirktrace(const std::string& arguments, const std::string& prefix = "") {
  return helpers::Run(kFolder, prefix + " " ZIRKTRACE " " + arguments);
}

constexpr Id kContext{1}, kScreen{2}, kBitmap{3}, kMask{4}, kBytes{5}, kFont{6};
constexpr VuPixelFormat kArgb = VuPixelFormat::ARGB8888;
const VuTransform kStraight;
const PointsValue<4> kNoPoints;

/// A screen of 8 x 8 pixels.
Trace Screen() {
  Trace trace;
  trace.Add(Operation::OpenContext, kContext, "libZIRKImplFB.so", false)
      .Add(Operation::CreateScreenAs, kContext, VuScreenDescription{8, 8, 0, 2, kArgb, false},
           CreatedValue{kScreen, 8, 8, kArgb});
  return trace;
}

/// That, a transparent bitmap of 4 x 4, and a mask with half of its pixels.
Trace Begun() {
  Trace trace = Screen();
  trace.Add(Operation::CreateBitmap, kContext, 4, 4, kArgb, CreatedValue{kBitmap, 4, 4, kArgb})
      .Add(Operation::CreateBitmap, kContext, 2, 1, VuPixelFormat::A8,
           CreatedValue{kMask, 2, 1, VuPixelFormat::A8})
      .Add(Operation::Content, kBytes, uint16_t{0xFF00})
      .Add(Operation::SetPixels, kMask, VuRect{0, 0, 2, 1}, kBytes, 2u, true);
  return trace;
}

Trace& AddRect(Trace& trace, const VuRect& rect, VuColor color,
               const VuTransform& transform = kStraight, Id mask = Id::None) {
  return trace.Add(Operation::DrawRect, kScreen, rect, color, transform, mask, kNoPoints);
}

Trace& AddObject(Trace& trace, const VuRect& to, const VuRect& from, Id source = kBitmap) {
  return trace.Add(Operation::DrawObject, kScreen, to, source, from, kStraight, VuColor{0x00FFFFFF},
                   Id::None, kNoPoints);
}

/// Plays a trace and says what its last operation that draws writes: how many pixels, in which
/// rectangle, and how many of them whatever was there; or the problem.
std::string LastWritten(const Trace& trace) {
  std::istringstream stream(trace.InFile());
  TraceReader reader(stream);
  Player player("FB");
  Coverage coverage(player);
  Written written, replaced;
  for (Record record; reader.Next(record);) {
    coverage.Follow(record);
    const bool isDrawing = ChangesPixels(record.operation) && HasObject(record.operation);
    if ((ChangesPixels(record.operation) && !coverage.Find(record, written)) ||
        (isDrawing && !coverage.FindReplaced(record, replaced)) || !player.Play(record))
      return player.Problem();
  }
  int left = 8, top = 8, right = 0, bottom = 0;
  for (size_t i = 0; i < written.pixels.size(); ++i) {
    if (written.pixels[i] == 0) continue;
    const int x = static_cast<int>(i) % written.part.width + written.part.x;
    const int y = static_cast<int>(i) / written.part.width + written.part.y;
    left = std::min(left, x), right = std::max(right, x + 1);
    top = std::min(top, y), bottom = std::max(bottom, y + 1);
  }
  const auto whatever =
      std::count(replaced.pixels.begin(), replaced.pixels.end(), Coverage::kReplaced);
  std::ostringstream text;
  text << written.Count();
  if (left < right) text << " in " << left << ',' << top << '-' << right << ',' << bottom;
  if (whatever > 0) text << ", " << whatever << " replaced";
  return text.str() + reader.Problem();
}

TEST(ZirktraceCoverage, CountsWhatAnOperationWritesOrBlends) {
  const VuRect middle{2, 2, 4, 4}, whole{0, 0, 4, 4};
  const VuColor red{0xFFFF0000}, none{0x00000000}, half{0x80FF0000};
  const auto with = [](auto... fields) { return std::move(Begun().Add(fields...)); };
  const auto rect = [](Trace trace, const VuRect& r, VuColor color,
                       const VuTransform& transform = kStraight,
                       Id mask = Id::None) { return AddRect(trace, r, color, transform, mask); };
  const Trace clipped = with(Operation::SetClippingRect, kScreen, VuRect{-4, 3, 8, 9});
  const Trace unblended = with(Operation::SetBlendEnabled, kScreen, false);
  const auto added =
      with(Operation::SetBlendingFunc, kScreen, VuBlendingFactor::One, VuBlendingFactor::One);
  Trace over = with(Operation::SetBlendingFuncs, kScreen, VuBlendingFactor::One,
                    VuBlendingFactor::One, VuBlendingFactor::One, VuBlendingFactor::One);
  over.Add(Operation::SetBlendingFunc, kScreen, VuBlendingFactor::One,
           VuBlendingFactor::OneMinusSrcAlpha);
  const auto multiplied = with(Operation::SetBlendingFunc, kScreen, VuBlendingFactor::Zero,
                               VuBlendingFactor::OneMinusDstAlpha);
  Trace object = Begun(), beyond = Begun(), self = Begun();
  const std::tuple<const char*, Trace, const char*> cases[] = {
      {"opaque", rect(Begun(), middle, red), "16 in 2,2-6,6, 16 replaced"},
      {"half", rect(Begun(), middle, half), "16 in 2,2-6,6"},
      {"transparent", rect(Begun(), middle, none), "16 in 2,2-6,6"},
      {"unblended", rect(unblended, middle, half), "16 in 2,2-6,6, 16 replaced"},
      {"added", rect(added, middle, half), "16 in 2,2-6,6"},
      {"set again", rect(over, middle, VuColor{0xFF808080}), "16 in 2,2-6,6, 16 replaced"},
      {"multiplied", rect(multiplied, middle, red), "16 in 2,2-6,6"},
      {"clipped", rect(clipped, middle, red), "6 in 2,3-4,6, 6 replaced"},
      {"outside", rect(Begun(), {8, 0, 4, 4}, red), "0"},
      {"scaled", rect(Begun(), {0, 0, 2, 2}, red, VuTransform(1, 1, 3, 2, 0)),
       "24 in 1,1-7,5, 24 replaced"},
      {"masked", rect(Begun(), middle, red, kStraight, kMask), "8 in 4,2-6,6, 8 replaced"},
      {"object", AddObject(object, middle, {0, 0, 2, 2}), "16 in 2,2-6,6"},
      {"beyond", AddObject(beyond, middle, {2, 2, 4, 4}), "4 in 2,2-4,4"},
      {"self", AddObject(self, middle, {0, 0, 8, 8}, kScreen), "16 in 2,2-6,6"},
      {"clear", Trace(clipped).Add(Operation::Clear, kScreen), "64 in 0,0-8,8, 64 replaced"},
      {"copy",
       Trace(clipped).Add(Operation::CopyPixels, kScreen, VuPoint{6, -1}, kBitmap, whole, true),
       "6 in 6,0-8,3, 6 replaced"},
      {"pixels", with(Operation::SetPixels, kMask, VuRect{1, 0, 1, 1}, kBytes, 1u, true),
       "1 in 1,0-2,1"},
      {"refused", with(Operation::SetPixels, kMask, VuRect{1, 0, 4, 4}, Id::None, 9u, false), "0"},
      {"locked", with(Operation::PixelsWritten, kMask, VuRect{1, 0, 1, 1}, kBytes), "1 in 1,0-2,1"},
      {"absurd", with(Operation::PixelsWritten, kMask, VuRect{-9, 0, 1 << 30, 1 << 30}, kBytes),
       "fewer pixels than the part has"},
      {"gone", with(Operation::Close, kContext).Add(Operation::Clear, kScreen),
       "there is no surface 2"},
  };
  for (const auto& [name, trace, expected] : cases) EXPECT_EQ(LastWritten(trace), expected) << name;
}

TEST(ZirktraceOverdraw, DrawsAMapWithALegend) {
  Trace trace = Begun();
  trace.Add(Operation::Clear, kScreen).Add(Operation::SwapBuffers, kScreen);
  AddRect(AddRect(trace, {0, 0, 8, 8}, 0), {0, 0, 4, 8}, 0);
  for (int i = 0; i < 9; ++i) AddRect(trace, {7, 7, 1, 1}, 0);
  trace.Add(Operation::SwapBuffers, kScreen).Save(kFolder + "/map.zirktrace");
  EXPECT_EQ(Zirktrace("overdraw --frame 2 -o map.png map.zirktrace").output,
            "surface: 2\nmean: 1.6406\nmost: 10\nwritten on 2: 105\n");
  const std::unique_ptr<VuGraphics> graphics(VuGraphics::Create("FB", false));
  const std::unique_ptr<VuBitmap> map(
      graphics->CreateBitmapFromFile((kFolder + "/map.png").c_str()));
  ASSERT_TRUE(map);
  const auto pixel = [&](int x, int y) {
    uint32_t argb = 0;
    map->GetPixels({x, y, 1, 1}, &argb);
    return argb | 0xFF000000;
  };
  EXPECT_EQ(pixel(0, 0), kHeatColors[2]);
  EXPECT_EQ(pixel(4, 0), kHeatColors[1]);
  EXPECT_EQ(pixel(7, 7), kHeatColors[8]);
  EXPECT_EQ(map->GetBounds().height, 8 + 56);
  const int step = 356 / 9;
  for (int i = 0; i < 9; ++i) EXPECT_EQ(pixel(8 + i * step, 8 + 8), kHeatColors[i]) << i;
}

/// A font from the tests' own, by default with glyphs of which few have room in an atlas.
Trace& AddFont(Trace& trace, int size = 700) {
  std::ifstream file(ZIRK_TEST_FONTS "/sans.ttf", std::ios::binary);
  std::string bytes{std::istreambuf_iterator<char>(file), {}};
  bytes.insert(0, "\7\0\0\0", 4);
  trace.AddRaw(static_cast<uint32_t>(kHeadSize - 4 + bytes.size()), Operation::Content,
               {reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()});
  return trace.Add(Operation::MakeFont, kFont, Id{7}, 0, size, false, false);
}

Trace& AddText(Trace& trace, const char* text) {
  return trace.Add(Operation::DrawText, kScreen, kFont, text, VuPoint{-200, -200},
                   VuColor{0xFFFFFFFF}, kStraight, Id::None, kNoPoints, VuRect{});
}

/// The hints of a trace, a line each, without what they say of the surface.
std::string HintsOf(const Trace& trace) {
  std::istringstream stream(trace.InFile());
  TraceReader reader(stream);
  Player player("FB");
  Coverage coverage(player);
  Hints hints(player, coverage);
  for (Record record; reader.Next(record);) {
    coverage.Follow(record);
    if (!hints.Before(record) || !player.Play(record)) return player.Problem();
    hints.After(record);
  }
  std::ostringstream lines;
  for (const Hint& hint : hints.Found())
    lines << hint.times << " in " << hint.frames << " from " << hint.first << ": " << hint.what
          << '\n';
  return lines.str() + reader.Problem();
}

TEST(ZirktraceHints, AreWhatWasMeasured) {
  const VuRect left{0, 0, 4, 8}, right{4, 0, 4, 8}, all{0, 0, 8, 8}, small{0, 0, 4, 4};
  const VuColor red{0xFFFF0000}, half{0x80FF0000};
  /// Frames, each after a clearing.
  const auto frames = [](int count, const std::function<void(Trace&, int)>& draw) {
    Trace trace = Begun();
    for (int i = 0; i < count; ++i) {
      draw(trace.Add(Operation::ClearTo, kScreen, VuColor{0xFF000000}), i);
      trace.Add(Operation::SwapBuffers, kScreen);
    }
    return trace;
  };
  const auto rects = [&](const std::vector<std::pair<VuRect, VuColor>>& drawn) {
    return frames(2, [&](Trace& trace, int) {
      for (const auto& [rect, color] : drawn) AddRect(trace, rect, color);
    });
  };
  const auto blits = [&](int count, const std::function<VuRect(int)>& to, bool changes) {
    return frames(count, [&](Trace& trace, int i) {
      if (changes) trace.Add(Operation::ClearTo, kBitmap, VuColor{uint32_t(i)});
      AddObject(trace, to(i), small);
    });
  };
  const std::string over =
      "2 in 2 from 7: What clears @2, a screen of 8 \u00D7 8 ARGB8888 is drawn";
  const std::string scaled = "@3, a bitmap of 4 \u00D7 4 ARGB8888 is scaled by 2 \u00D7 0.5";
  Trace text = Begun(), converted = Begun();
  AddFont(text);
  for (int i = 0; i < 3; ++i) AddText(AddText(text, "ABCDEFGH"), "abcdefghmnop");
  converted.Add(Operation::CreateBitmap, kContext, 4, 4, VuPixelFormat::RGB565,
                CreatedValue{Id{9}, 4, 4, VuPixelFormat::RGB565});
  for (int i = 0; i < 2; ++i)
    AddObject(converted, small, small, Id{9}).Add(Operation::SwapBuffers, kScreen);
  const std::tuple<const char*, Trace, std::string> cases[] = {
      {"opaque", rects({{all, red}}), over},
      {"opaque parts", rects({{left, red}, {right, red}, {all, half}}), over},
      {"blended", rects({{all, half}}), ""},
      {"blended first", rects({{left, half}, {all, red}}), ""},
      {"part", rects({{left, red}}), ""},
      {"cleared again", frames(2, [](Trace& trace, int) { trace.Add(Operation::Clear, kScreen); }),
       over},
      {"read",
       frames(2,
              [&](Trace& trace, int) {
                trace.Add(Operation::GetPixels, kScreen, all, true);
                AddRect(trace, all, red);
              }),
       ""},
      {"its own source",
       frames(2,
              [&](Trace& trace, int) {
                AddObject(trace, small, small, kScreen);
                AddRect(trace, all, red);
              }),
       ""},
      {"scaled",
       blits(
           3,
           [](int) {
             return VuRect{0, 0, 8, 2};
           },
           false),
       "3 in 3 from 8: " + scaled},
      {"once",
       blits(
           1,
           [](int) {
             return VuRect{0, 0, 8, 2};
           },
           false),
       ""},
      {"zoomed in steps",
       blits(
           4,
           [](int n) {
             return VuRect{0, 0, 8 + n / 2, 2};
           },
           false),
       ""},
      {"zoomed",
       blits(
           3,
           [](int i) {
             return VuRect{0, 0, 8 + i, 2};
           },
           false),
       ""},
      {"not scaled",
       blits(
           3,
           [](int i) {
             return VuRect{i, 0, 4, 4};
           },
           false),
       ""},
      {"changed",
       blits(
           3,
           [](int) {
             return VuRect{0, 0, 8, 2};
           },
           true),
       ""},
      {"converted", converted,
       "2 in 2 from 8: Each blit from @9, a bitmap of 4 \u00D7 4 RGB565 to @2"},
      {"emptied", text, "1 in 1 from 10: Text of @6, a font of 700 pixels has its atlas emptied"},
  };
  for (const auto& [name, trace, expected] : cases) {
    const std::string found = HintsOf(trace);
    EXPECT_EQ(found.substr(0, expected.size()), expected) << name;
    EXPECT_EQ(found.empty(), expected.empty()) << name << found;
    EXPECT_LE(std::count(found.begin(), found.end(), '\n'), 1) << name << found;
  }
}

/// The page's own test is scripts/test-report.
TEST(ZirktraceReport, HoldsNothingThatTheTraceCouldRun) {
  Trace trace = Begun();
  trace.Add(Operation::SetName, kScreen,
            "</script><script>alert('\xFF \xC3\xA9 \xF0\x9F\x98\x80')");
  trace.Add(Operation::Clear, kScreen).Add(Operation::SwapBuffers, kScreen);
  trace.Save(kFolder + "/<b>.zirktrace");
  EXPECT_EQ(Zirktrace("report -o page.html '<b>.zirktrace'").output, "");
  std::ifstream file(kFolder + "/page.html");
  const std::string page{std::istreambuf_iterator<char>(file), {}};
  EXPECT_THAT(page, HasSubstr("\"file\":\"\\u003cb\\u003e.zirktrace\""));
  EXPECT_THAT(page, HasSubstr("(\\u0022\\u003c/script\\u003e\\u003cscript\\u003ealert('"));
  EXPECT_THAT(page, HasSubstr("\\ufffd \\u00e9 \\ud83d\\ude00')\\u0022)\",0]"));
  EXPECT_THAT(page, HasSubstr("\"picture\":\"data:image/png;base64,iVBORw0KGgo"));
  size_t scripts = 0;
  for (size_t at = 0; (at = page.find("</script", at)) != std::string::npos; ++at) ++scripts;
  EXPECT_EQ(scripts, 2u);
}

/// Each of the backends draws the text in another way; nothing else of the trace matters.
TEST(ZirktraceTrim, KeepsWhatTheDifferenceNeeds) {
  const auto trim = [](const std::string& backends, const std::string& from) {
    return Zirktrace("trim -o trimmed.zirktrace " + backends + ' ' + from + ".zirktrace").output;
  };
  const auto kept = [] {
    return Zirktrace("dump trimmed.zirktrace | sed 's/.* ms //; s/(.*//; s/.*\\.//' | tr '\\n' ' '")
        .output;
  };
  Trace trace = Screen();
  AddRect(trace, {9, 9, 1, 1}, 0xFFFFFFFF).Add(Operation::SwapBuffers, kScreen);
  // The second of these is needed as long as the first is there.
  AddFont(trace).Add(Operation::SetClippingRect, kScreen, VuRect{});
  trace.Add(Operation::SetClippingRect, kScreen, VuRect{0, 0, 8, 8});
  AddText(trace, "A").Add(Operation::SwapBuffers, kScreen);
  AddRect(trace, {0, 0, 8, 8}, 0xFFFFFFFF).Save(kFolder + "/drawn.zirktrace");
  EXPECT_EQ(trim("FB Stub", "drawn"), "operations: 5 of 9\n");
  EXPECT_EQ(kept(), "OpenContext CreateScreenAs Content MakeFont DrawText ");
  EXPECT_EQ(Zirktrace("replay --compare FB Stub trimmed.zirktrace").status, 3);
  EXPECT_THAT(trim("FB FB", "drawn"), HasSubstr("drawn.zirktrace: FB and FB draw the same\n"));

  // What the device rounds in another way here, by a style that was set before.
  Zirktrace(std::string("record -o all.zirktrace ") + ZIRK_TRACED_PROGRAM + " FB a.png b.png");
  const std::string found = trim("--worst 0 FB OpenGLES2", "all");
  if (found.find("does not open here") != std::string::npos && !std::getenv("ZIRK_TEST_REQUIRE_GL"))
    GTEST_SKIP() << found;
  EXPECT_THAT(found, ContainsRegex("^operations: [3-9] of [0-9]+\n$"));
  EXPECT_EQ(Zirktrace("replay --compare --worst 0 FB OpenGLES2 trimmed.zirktrace").status, 3);
  const std::string smallest = kept();
  Zirktrace("--version", "cp trimmed.zirktrace again.zirktrace;");
  trim("--worst 0 FB OpenGLES2", "again");
  EXPECT_EQ(kept(), smallest);
}

/// A trace with a bit changed is refused, or is another trace. Sanitizers see the rest.
TEST(ZirktraceViews, RefuseOrUseChangedTraces) {
  Trace trace = Begun();
  AddText(AddFont(trace, 9), "A").Add(Operation::Clear, kScreen);
  trace.Add(Operation::SetClippingRect, kScreen, VuRect{1, 1, 5, 5});
  AddRect(AddObject(trace, {0, 0, 8, 8}, {0, 0, 4, 4}), {0, 0, 8, 8}, 0xFFFFFFFF, kStraight, kMask);
  AddObject(trace, {0, 0, 4, 4}, {0, 0, 8, 8}, kScreen);
  trace.Add(Operation::CopyPixels, kScreen, VuPoint{6, -1}, kBitmap, VuRect{0, 0, 4, 4}, true)
      .Add(Operation::SwapBuffers, kScreen);
  EXPECT_EQ(HintsOf(trace), "");
  int refused = 0;
  for (size_t at = 0; at < trace.Bytes().size(); ++at) {
    // The font's own bytes are FreeType's.
    if (at > 300 && at < trace.Bytes().size() - 600) continue;
    const auto bit = static_cast<uint8_t>(1 << at % 8);
    trace.Bytes()[at] ^= bit;
    refused += HintsOf(trace).empty() ? 0 : 1;
    trace.Bytes()[at] ^= bit;
  }
  EXPECT_GT(refused, 100);
}

TEST(ZirktraceViews, RefuseDamagedTracesByALine) {
  const auto save = [](const char* name, const std::string& bytes) {
    std::ofstream(kFolder + '/' + name, std::ios::binary) << bytes;
  };
  const std::string whole = Begun().Add(Operation::ClearTo, kScreen, VuColor{~0u}).InFile();
  const std::string more = Trace().Add(Operation::SwapBuffers, kScreen).InFile().substr(12);
  std::string flipped = whole + more;
  flipped[whole.size() + more.size() / 2] ^= 1;
  save("cut", whole + more.substr(0, more.size() / 2));
  save("flipped", flipped);
  save("absurd", Begun()
                     .Add(Operation::CreateBitmap, kContext, 1 << 30, 1 << 30, kArgb,
                          CreatedValue{kFont, 1 << 30, 1 << 30, kArgb})
                     .InFile());
  save("taken", Begun().Add(Operation::Clear, Id{UINT32_MAX}).InFile());
  for (const std::string command :
       {"overdraw --frame 1 -o a.png", "report -o a.html", "trim -o a FB FB"}) {
    EXPECT_THAT(Zirktrace(command + " cut").output, HasSubstr("zirktrace: cut: is cut off"));
    const std::tuple<const char*, const char*> cases[] = {
        {"flipped", "^zirktrace: flipped: damaged after operation 7: [^\n]*\n$"},
        {"absurd", "^zirktrace: absurd: operation 7, CreateBitmap: the backend makes no such s"},
        {"taken", "^zirktrace: taken: operation 7: Clear has wrong fields\n$"},
    };
    for (const auto& [file, line] : cases) {
      const auto refused = Zirktrace(command + ' ' + file);
      EXPECT_EQ(refused.status, 1) << command << ' ' << file;
      EXPECT_THAT(refused.output, ContainsRegex(line)) << command;
    }
  }
}

struct Case {
  const char* arguments;
  int status;
  const char* pattern;
};

TEST(ZirktraceViews, AnswerAsTheManualSays) {
  Begun().Add(Operation::SwapBuffers, kScreen).Save(kFolder + "/small.zirktrace");
  Begun().Add(Operation::ClearTo, kScreen, VuColor{~0u}).Save(kFolder + "/text.zirktrace");
  const Case cases[] = {
      {"overdraw --frame 1 small.zirktrace", 2, "^zirktrace: 'overdraw' needs --output and one"},
      {"overdraw --frames 1-2 -o a.png f", 2, "'overdraw' needs --output and one --frame; "},
      {"overdraw --frame 2 -o a.png small.zirktrace", 1, "nothing is drawn in frame 2\n$"},
      {"overdraw --frame 1 -o no/a.png small.zirktrace", 1, "zirktrace: no/a.png: cannot be"},
      {"overdraw --frame 1 --surface 9 -o a.png small.zirktrace", 1,
       "nothing is drawn on surface 9 in this frame\n$"},
      {"trim -o a FB small.zirktrace", 2, "^zirktrace: 'trim' needs more operands; "},
      {"trim FB Stub small.zirktrace", 2, "^zirktrace: 'trim' needs --output; "},
      {"trim -o a FB None small.zirktrace", 1, "operation 1, OpenContext: None does not open here"},
      {"trim -o no/a FB Stub text.zirktrace", 1, "zirktrace: no/a: cannot be written\n$"},
      {"trim -o a FB Stub /dev/null", 1, "^zirktrace: /dev/null: no trace\n$"},
      {"report small.zirktrace", 2, "^zirktrace: 'report' needs --output; "},
      {"report -o no/a.html small.zirktrace", 1, "zirktrace: no/a.html: cannot be written\n$"},
      {"report -o a.html /dev/null", 1, "^zirktrace: /dev/null: no trace\n$"},
      {"overdraw --frame 1 -o a.png /dev/null", 1, "^zirktrace: /dev/null: no trace\n$"},
  };
  for (const Case& c : cases) {
    const helpers::Result result = Zirktrace(c.arguments);
    EXPECT_EQ(result.status, c.status) << c.arguments << '\n' << result.output;
    EXPECT_THAT(result.output, ContainsRegex(c.pattern)) << c.arguments;
  }
}

}  // namespace
}  // namespace ZIRK::trace
