#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>
#include <sstream>
#include <string>

#include "player.h"
#include "program.h"
#include "trace.h"
#include "tracefile.h"

namespace ZIRK::trace {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;

const std::string kFolder = helpers::FolderOf("zirktrace_test");

helpers::Result Zirktrace(const std::string& arguments, const std::string& prefix = "") {
  setenv("TRACED", ZIRK_TRACED_PROGRAM, 1);
  setenv("EXAMPLES", ZIRK_EXAMPLES, 1);
  return helpers::Run(kFolder, prefix + " " ZIRKTRACE " " + arguments);
}

std::string FileBytes(const std::string& name) {
  std::ifstream file(kFolder + '/' + name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

bool MayBeMissing(const std::string& backend) {
  const char* const required =
      backend == "DirectFB" ? "ZIRK_TEST_REQUIRE_DIRECTFB" : "ZIRK_TEST_REQUIRE_GL";
  return backend != "Hybrid" && !std::getenv(required);
}

/// The program draws by every kind of operation and is killed in its third frame.
TEST(ZirktraceProgram, ReplaysAKilledProgramUpToItsEnd) {
  for (const std::string backend : {"FB", "Hybrid", "OpenGLES2", "DirectFB"}) {
    SCOPED_TRACE(backend);
    const std::string file = backend + ".zirktrace", pictures = backend + "-pictures/";
    const auto recorded =
        Zirktrace("record -o " + file + " $TRACED " + backend + " first.png second.png",
                  "DFBARGS=system=dummy");
    if (recorded.status != 128 + SIGKILL && MayBeMissing(backend)) continue;
    ASSERT_EQ(recorded.status, 128 + SIGKILL) << recorded.output;
    const auto replayed =
        Zirktrace("replay --png " + pictures + " " + file, "DFBARGS=system=dummy");
    EXPECT_EQ(replayed.status, 0);
    EXPECT_THAT(replayed.output, ContainsRegex("^operations: [0-9]+\nframes: 2\n"));
    EXPECT_TRUE(FileBytes("first.png") == FileBytes(pictures + "frame-000001.png"));
    EXPECT_TRUE(FileBytes("second.png") == FileBytes(pictures + "frame-000003.png"));
    EXPECT_THAT(Zirktrace("dump --frames 2 " + file).output,
                ContainsRegex("PixelsWritten\\(@[0-9]+, \\(12, 2, 5, 9\\), .*"
                              "PixelsWritten\\(@[0-9]+, \\(2, 8, 15, 9\\), "));
    EXPECT_THAT(Zirktrace("dump --frames 3- " + file).output,
                ContainsRegex("^[0-9]+ frame 3 thread 0 [0-9.]+ ms @[0-9]+\\.DrawRect\\(\\(0, 0"
                              ".*GetPixels[^\n]* -> true\n[^\n]*\n$"));
  }
}

/// The third frame alone, drawn on what the others left.
TEST(ZirktraceProgram, RecordsSomeFrames) {
  Zirktrace("record --frames 3 -o third.zirktrace $TRACED FB first-.png third.png");
  EXPECT_EQ(Zirktrace("replay --png third third.zirktrace").status, 0);
  EXPECT_TRUE(FileBytes("third.png") == FileBytes("third/frame-000001.png"));
  EXPECT_EQ(Zirktrace("replay --compare FB Hybrid third.zirktrace").output.substr(0, 9),
            "the same\n");
  Zirktrace("record --frames -2 -o begin.zirktrace $TRACED FB first-.png third.png");
  EXPECT_THAT(Zirktrace("dump begin.zirktrace").output, ContainsRegex("SwapBuffers\\(\\)\n$"));
}

struct Example {
  const char* name;
  bool isOneFrame = true;  ///< Its own picture is that of the first frame.
  int worst = 2;
};

constexpr Example kExamples[] = {
    {"01-minimal"},
    {"02-shapes"},
    {"03-images"},
    {"04-animation", false},
    // A backend may be two steps off in an operation, and these add up where several blend.
    {"05-text", true, 3},
#ifdef ZIRK_TEST_LAYERS
    {"06-layers", false},
#endif
    {"07-input", false},
    {"08-shapes"},
    {"09-text-box"},
    {"10-dashboard", false},
    {"showcase", true, 4},
};

std::ostream& operator<<(std::ostream& stream, const Example& example) {
  return stream << example.name;
}

class ZirktraceExample : public testing::TestWithParam<Example> {};

TEST_P(ZirktraceExample, ReplaysByAllBackends) {
  const auto& [example, isOneFrame, worst] = GetParam();
  const std::string file = std::string(example) + ".zirktrace";
  // For large frames the renderer of Mesa's that starts the fastest is too slow.
  const std::string environment = "GALLIUM_DRIVER=llvmpipe DFBARGS=system=dummy ";
  const auto made = helpers::Run(kFolder, environment + ZIRK_MAKE_TRACES " . " + example);
  ASSERT_EQ(made.status, 0) << made.output;
  if (isOneFrame) {
    const std::string folder = std::string(example) + "-pictures/";
    EXPECT_EQ(Zirktrace("replay --loop 2 --png " + folder + " " + file).status, 0);
    EXPECT_TRUE(FileBytes(std::string(example) + ".png") == FileBytes(folder + "frame-000001.png"));
  }
  for (const std::string backend : {"Hybrid", "OpenGLES2", "DirectFB"}) {
    const auto compared = Zirktrace(
        "replay --compare --worst " + std::to_string(worst) + " FB " + backend + " " + file,
        environment);
    if (compared.status == 1 && MayBeMissing(backend)) continue;
    EXPECT_THAT(compared.output, testing::StartsWith("the same\n")) << backend;
  }
}

INSTANTIATE_TEST_SUITE_P(Examples, ZirktraceExample, testing::ValuesIn(kExamples),
                         [](const auto& example) {
                           std::string name = example.param.name;
                           std::replace(name.begin(), name.end(), '-', '_');
                           return name;
                         });

TEST(ZirktraceProgram, NamesTheFirstOperationThatDiffers) {
  Zirktrace("record -o differs.zirktrace $EXAMPLES/01-minimal");
  const auto differs = Zirktrace("replay --compare --png differs FB Stub differs.zirktrace");
  EXPECT_EQ(differs.status, 3);
  EXPECT_THAT(differs.output, ContainsRegex("^frame: 1\noperation: 3 .*ClearTo\\(.*\nworst: 255 "));
  EXPECT_FALSE(FileBytes("differs/differs-2-Stub.png").empty());
}

TEST(ZirktraceProgram, AnswersAsItsManualSays) {
  const helpers::Case cases[] = {
      {"--version", 0, "^zirktrace " ZIRK_VERSION "\n$"},
      {"-h", 0, "Exit status: 0"},
      {"", 2, "^zirktrace: a command is missing; [^\n]*\n$"},
      {"paint", 2, "^zirktrace: unknown command 'paint'; [^\n]*\n$"},
      {"replay", 2, "^zirktrace: 'replay' needs more operands; [^\n]*\n$"},
      {"replay --compare FB f", 2, "'replay' needs more operands"},
      {"replay --frames 3-2 f", 2, "^zirktrace: --frames: '3-2' is not valid; [^\n]*\n$"},
      {"replay --frames - f", 2, "--frames: '-' is not valid"},
      {"replay --loop 0 f", 2, "--loop: '0' is not valid"},
      {"replay --bench --png a f", 2, "--bench goes without --compare and --png; [^\n]*\n$"},
      {"replay --json f", 2, "--json goes with --bench"},
      {"dump --loop 2 f", 2, "^zirktrace: 'dump' has no option --loop; [^\n]*\n$"},
      {"info a b", 2, "^zirktrace: unexpected 'b'; [^\n]*\n$"},
      {"info no.zirktrace", 1, "zirktrace: no.zirktrace: cannot be read\n$"},
      {"replay /dev/null", 1, "^zirktrace: /dev/null: no trace\n$"},
      {"record -o no/a $TRACED", 1, "^zirktrace: no/a: No such file or directory\n$"},
      {"record -o a.zirktrace no-program", 1, "^zirktrace: no-program: No such file"},
      {"record -o a.zirktrace -- true -o b", 1, "^zirktrace: true: opened no backend of the"},
      {"record -o /dev/full $EXAMPLES/01-minimal", 1, "zirktrace: /dev/full: No space left"},
  };
  for (const helpers::Case& asked : cases) helpers::ExpectAnswer(asked, Zirktrace(asked.arguments));
}

struct Played {
  std::string problem;
  uint64_t operations = 0;
  bool isCut = false;
};

Played Play(const std::string& bytes) {
  std::istringstream stream(bytes);
  TraceReader reader(stream);
  Player player("FB");
  Played played;
  for (Record record; reader.Next(record); ++played.operations)
    if (!player.Play(record)) return {player.Problem(), record.number};
  played.problem = reader.Problem();
  played.isCut = reader.IsCut();
  return played;
}

constexpr Id kContext{1}, kSurface{2}, kOther{3}, kNothing{99};

Trace Begun() {
  Trace trace;
  trace.Add(Operation::OpenContext, kContext, "libZIRKImplFB.so", false)
      .Add(Operation::CreateBitmap, kContext, 8, 8, VuPixelFormat::ARGB8888,
           CreatedValue{kSurface, 8, 8, VuPixelFormat::ARGB8888})
      .Add(Operation::Content, kOther, uint64_t{0});
  return trace;
}

TEST(TraceReader, RefusesWhatIsNoTrace) {
  const VuRect part{0, 0, 8, 8};
  const std::tuple<const char*, Trace, const char*> cases[] = {
      {"length", Begun().AddRaw(0xFFFFFFFF, Operation::Clear),
       "operation 4: a length of 4294967295"},
      {"short", Begun().AddRaw(3, Operation::Clear), "operation 4: a length of 3"},
      {"number", Begun().Add(Operation{999}), "operation 4: unknown number 999"},
      {"fields", Begun().Add(Operation::ClearTo, kSurface), "ClearTo has wrong fields"},
      {"more", Begun().Add(Operation::Clear, kSurface, 1), "Clear has wrong fields"},
      {"text", Begun().Add(Operation::SetName, kSurface, uint32_t{2}, uint16_t{0x4141}),
       "SetName has wrong fields"},
      {"object", Begun().Add(Operation::Clear, kNothing), "there is no surface 99"},
      {"context", Begun().Add(Operation::FlushContext, kSurface), "there is no object 2"},
      {"screen", Begun().Add(Operation::SwapBuffers, kSurface), "the surface is no screen"},
      {"source", Begun().Add(Operation::CopyPixels, kSurface, VuPoint{}, Id::None, part, true),
       "there is no surface 0"},
      {"closed", Begun().Add(Operation::Close, kContext).Add(Operation::Clear, kSurface),
       "there is no surface 2"},
      {"pixels", Begun().Add(Operation::SetPixels, kSurface, part, kOther, 32u, true),
       "fewer pixels than the part has"},
      {"negative",
       Begun().Add(Operation::SetPixels, kSurface, VuRect{0, 0, -1, -1}, kOther, 4u, true),
       "fewer pixels than the part has"},
      {"overflow",
       Begun().Add(Operation::PixelsWritten, kSurface, VuRect{0, 0, 1 << 30, 1 << 30}, kOther),
       "fewer pixels than the part has"},
      {"memory", Begun().Add(Operation::BitmapSizeOfMemory, kContext, kOther, 9u, 0u),
       "more bytes than the content has"},
      {"content", Begun().Add(Operation::BitmapSizeOfFile, kContext, FileValue{"f", kNothing}, 0u),
       "there is no content 99"},
      {"size",
       Begun().Add(Operation::CreateBitmap, kContext, 1 << 30, 1 << 30, VuPixelFormat::A8,
                   CreatedValue{kOther, 1, 1, VuPixelFormat::A8}),
       "the backend makes no such surface"},
  };
  for (const auto& [name, trace, problem] : cases)
    EXPECT_THAT(Play(trace.InFile()).problem, HasSubstr(problem)) << name;
  EXPECT_EQ(Play("").problem, "no trace");
  std::string newer = Begun().InFile();
  newer[8] = 7;
  EXPECT_EQ(Play(newer).problem, "of version 7");
}

/// Several blocks, cut and changed at every byte.
TEST(TraceReader, UsesACutTraceAndNoChangedOne) {
  Trace trace = Begun();
  for (int i = 0; i < 5; ++i) trace.Add(Operation::ClearTo, kSurface, VuColor(uint32_t(i)));
  std::string whole = trace.InFile();
  const size_t block = whole.size();
  whole += Trace().Add(Operation::Clear, kSurface).InFile().substr(12);
  for (size_t size = 0; size <= whole.size(); ++size) {
    const Played cut = Play(whole.substr(0, size));
    EXPECT_EQ(cut.problem, size < 12 ? "no trace" : "") << size;
    EXPECT_EQ(cut.isCut, size > 12 && size != block && size != whole.size()) << size;
    EXPECT_EQ(cut.operations, size == whole.size() ? 9u : size >= block ? 8u : 0u) << size;
  }
  for (size_t at = 0; at < whole.size(); ++at)
    for (const int bit : {0, 3, 7}) {
      std::string changed = whole;
      changed[at] = static_cast<char>(changed[at] ^ 1 << bit);
      const Played played = Play(changed);
      // A few bits of zstd do not matter.
      EXPECT_TRUE(!played.problem.empty() || played.isCut || played.operations == 9)
          << at << " bit " << bit;
    }
}

TEST(ZirktraceInfo, CountsSurfacesGlyphsAndUploads) {
  constexpr Id kSmall{5}, kFont{6};
  Trace trace = Begun();
  trace
      .Add(Operation::CreateBitmap, kContext, 4, 4, VuPixelFormat::RGB565,
           CreatedValue{kSmall, 4, 4, VuPixelFormat::RGB565})
      .Add(Operation::SetPixels, kSmall, VuRect{0, 0, 4, 2}, kOther, 8u, true)
      .Add(Operation::Lock, kSurface, true, true)
      .Add(Operation::Unlock, kSurface, true)
      .Add(Operation::PixelsWritten, kSurface, VuRect{0, 0, 1, 1}, kOther)
      .Add(Operation::CopyPixels, kSurface, VuPoint{}, kSmall, VuRect{0, 0, 4, 4}, true)
      .Add(Operation::DrawText, kSurface, kFont, "n\u00F1\u00F1n", VuPoint{}, VuColor(1),
           VuTransform(), Id::None, PointsValue<4>{}, VuRect{})
      .Add(Operation::Close, kSmall)
      .Add(Operation::CreateScreenAs, kContext, VuScreenDescription{8, 4, 0, 2, {}, false},
           CreatedValue{Id{7}, 8, 4, VuPixelFormat::A8});
  trace.InFile();
  const std::string info = "info CountsSurfacesGlyphsAndUploads";
  EXPECT_THAT(
      Zirktrace(info).output,
      ContainsRegex("\nglyphs: 4\ndistinct-glyphs: 2\nuploads: 2\nupload-bytes: 20\n.*"
                    "\nsurfaces: 3\nmost-surface-bytes: 288\nsurfaces-never-read: 1\n.*"
                    "\nsurface: 8 x 8 ARGB8888, 1 made, 256 bytes\n"
                    "surface: 8 x 4 A8, 1 made, 32 bytes\nsurface: 4 x 4 RGB565, 1 made, 32 bytes\n"
                    "never-read: @2, 8 x 8 ARGB8888, 256 bytes, drawn on 3 times\n$"));
  // A lock through which nothing is written is for reading.
  trace.Add(Operation::Lock, kSurface, true, true).InFile();
  EXPECT_THAT(Zirktrace(info).output, HasSubstr("surfaces-never-read: 0\n"));
}

/// Runs statements of Python in which `bench` is what was measured of a trace, and `counts` what
/// its operations are.
helpers::Result CheckBench(const std::string& arguments, const std::string& checks) {
  return Zirktrace("replay --bench --json " + arguments + " >bench.json && " ZIRKTRACE " info " +
                   arguments.substr(arguments.rfind(' ') + 1) +
                   " >info.txt && python3 -c '\n"
                   R"(
import json, re
bench = json.load(open("bench.json"))
counts = {k: int(n) for k, n in re.findall(r"^([A-Z]\w+): (\d+)$", open("info.txt").read(), re.M)}
kinds = {kind["operation"]: kind for kind in bench["kinds"]}
sum_of = lambda key: sum(kind[key] for kind in kinds.values())
assert abs(sum_of("processor-ms") / bench["processor-seconds"] / 1000 - 1) < 0.001
assert sum_of("count") == bench["operations"]
)" + checks + "'");
}

TEST(ZirktraceBench, MeasuresEachKindOfOperation) {
  Trace trace;
  trace.Add(Operation::OpenContext, kContext, "libZIRKImplFB.so", false)
      .Add(Operation::CreateBitmap, kContext, 2000, 2000, VuPixelFormat::ARGB8888,
           CreatedValue{kSurface, 2000, 2000, VuPixelFormat::ARGB8888});
  for (uint32_t i = 0; i < 20; ++i)
    trace.Add(Operation::ClearTo, kSurface, VuColor(i))
        .Add(Operation::GetBounds, kSurface, VuRect{});
  trace.InFile();
  const auto shares = CheckBench("--loop 3 MeasuresEachKindOfOperation", R"(
assert {name: kind["count"] for name, kind in kinds.items()} == counts
assert bench["kinds"][0]["operation"] == "ClearTo"
assert kinds["GetBounds"]["processor-ms"] < 0.1 * kinds["ClearTo"]["processor-ms"]
assert bench["frames"] == 0 and bench["backend"] == "FB")");
  EXPECT_EQ(shares.status, 0) << shares.output;

  Zirktrace("record -o bench.zirktrace $TRACED FB bench-1.png bench-2.png");
  const auto frame = CheckBench("--backend Hybrid --frames 1-2 bench.zirktrace", R"(
assert bench["frames"] == 2 and bench["backend"] == "Hybrid"
assert abs(bench["frames-per-second"] * bench["seconds"] - 2) < 0.01
assert set(kinds) <= set(counts) and kinds["MakeFont"]["count"] == counts["MakeFont"]
assert kinds["DrawRect"]["count"] == counts["DrawRect"] - 1)");
  EXPECT_EQ(frame.status, 0) << frame.output;
  EXPECT_THAT(Zirktrace("replay --bench bench.zirktrace").output,
              ContainsRegex("^backend: FB\n.*\nDrawTextBy +1 +[0-9.]+ +[0-9.]+ +[0-9.]+%\n"));
}

}  // namespace
}  // namespace ZIRK::trace
