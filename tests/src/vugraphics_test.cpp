#include <gmock/gmock.h>
#include <zirk/backend.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <tuple>

#include "doubles/mocks.h"
#include "helpers/logged.h"
#include "helpers/plugins.h"
#include "helpers/rows.h"
#include "helpers/threads.h"

namespace ZIRK {
namespace {

using helpers::LoggedAt;

TEST(Backends, KeepTheirNumbers) {
  int code = 0;
  for (const char* const name : {"OpenGLES2", "DirectFB", "Hybrid", "Stub", "FB", ""}) {
    EXPECT_STREQ(BackendName(BackendType{++code}), name);
    EXPECT_EQ(TypeCode(BackendType{code}), code);
  }
}

/// The test plug-in stands in for every backend.
class Creation : public testing::Test {
 protected:
  void SetUp() override {
    for (const char* name : {"OpenGLES2", "DirectFB", "Hybrid", "Stub", "FB"})
      helpers::Install(name);
  }
  void TearDown() override {
    unsetenv("ZIRK_STUB");
    VuGraphics::SetDefaultImpl(nullptr);
    VuGraphics::SetGraphicsOverride(nullptr);
  }

  /// `create` makes a context of this backend, with this flag.
  static void ExpectOpened(VuGraphics* (*create)(), const std::string& backend, bool flag) {
    EXPECT_THAT(LoggedAt(4, [&] { delete create(); }),
                testing::HasSubstr("Invoking the constructor for implementation " + backend +
                                   "...\nCreateVuGraphics " + (flag ? "1\n" : "0\n")));
  }
};

struct Opening {
  const char* name;
  const char* defaultImpl = nullptr;
  VuGraphics* (*create)();
  const char* opens = "Hybrid";
  bool flag = true;
};
class Opened : public Creation, public testing::WithParamInterface<Opening> {};

TEST_P(Opened, Backend) {
  VuGraphics::SetDefaultImpl(GetParam().defaultImpl);
  ExpectOpened(GetParam().create, GetParam().opens, GetParam().flag);
}

using G = VuGraphics;
VuGraphics* Default() {
  return G::Create(true);
}
VuGraphics* Gl() {
  return G::CreateGL(true);
}
ROWS(Opened,  //
     {.name = "default", .create = Default, .opens = "Hybrid"},
     {.name = "any_case", .defaultImpl = "dEFAULT", .create = Default, .opens = "OpenGLES2"},
     {.name = "name", .create = [] { return G::Create("FB", true); }, .opens = "FB"},
     // The flag is lost on the way to the default.
     {.name = "no_name", .create = [] { return G::Create(nullptr, true); }, .flag = false},
     {.name = "named_default", .create = [] { return G::Create("DEFAULT", true); }, .flag = false},
     {.name = "gl_of_hybrid", .create = Gl, .opens = "Hybrid"},
     {.name = "gl_of_another", .defaultImpl = "hybrid", .create = Gl, .opens = "OpenGLES2"},
     {.name = "stub", .create = [] { return G::CreateStub(); }, .opens = "Stub", .flag = false},
     {.name = "directfb", .create = G::CreateDFB, .opens = "DirectFB", .flag = false});

TEST_F(Creation, OfTheNextBackendWhereOneIsMissing) {
  helpers::Install("OpenGLES2", "Missing");
  VuGraphics::SetDefaultImpl("Default");
  ExpectOpened(Default, "DirectFB", true);
  setenv("ZIRK_STUB", "", 1);
  ExpectOpened(Default, "Stub", false);
}

TEST_F(Creation, FailuresAreLogged) {
  for (const char* const unknown : {"Vulkan", "GLCompositor"}) {
    const auto number = static_cast<int32_t>(reinterpret_cast<intptr_t>(unknown));
    EXPECT_EQ(LoggedAt(7, [&] { EXPECT_EQ(VuGraphics::Create(unknown, true), nullptr); }),
              "<ZIRK.warning>: Creating VuGraphics instance\n"
              "<ZIRK.error>: ZIRK implementation type " +
                  std::to_string(number) + " is not supported on this platform\n");
  }
  // Known in any spelling, but the loader insists on its own.
  EXPECT_EQ(LoggedAt(3, [] { EXPECT_EQ(VuGraphics::Create("fb", true), nullptr); }),
            "<ZIRK.error>: failed to load implementation fb [-1]\n");
  VuGraphics::SetDefaultImpl("hybrid");
  EXPECT_EQ(LoggedAt(3, [] { EXPECT_EQ(VuGraphics::Create(), nullptr); }),
            "<ZIRK.error>: failed to load implementation hybrid [-1]\n"
            "<ZIRK.error>: Failed to Create VuGraphics instance, no suitable implementations "
            "found\n");
}

TEST_F(Creation, AnOverrideComesBeforeTheStub) {
  setenv("ZIRK_STUB", "1", 1);
  EXPECT_THAT(LoggedAt(6, [] { delete VuGraphics::Create(); }),
              testing::StartsWith("<ZIRK.info>: Creating VuGraphics instance\n"
                                  "<ZIRK.warning>: Creating VuGraphics instance\n"));
  std::string flags;
  VuGraphics::SetGraphicsOverride([&flags, turns = std::string()](bool flag) mutable {
    turns += 'a';
    // It runs to its end after it has removed itself.
    if (flag) VuGraphics::SetGraphicsOverride(nullptr);
    flags += turns + (flag ? '1' : '0');
    return nullptr;
  });
  EXPECT_EQ(LoggedAt(6, [] { EXPECT_EQ(VuGraphics::Create(), nullptr); }),
            "<ZIRK.info>: Creating VuGraphics instance\n");
  EXPECT_EQ(VuGraphics::Create(true), nullptr);
  EXPECT_EQ(flags, "a0aa1") << "what it keeps is kept from call to call";
  ExpectOpened([] { return VuGraphics::Create("Hybrid", true); }, "Hybrid", true);
}

TEST_F(Creation, Queries) {
  GraphicsImplLoader::GetInstance()->SetupGfxImpl("Hybrid", "none", {11, 12}, false);
  VuGraphics::SetDefaultImpl("DirectFB");
  EXPECT_EQ(VuGraphics::GetSupportedFeatures("Default"), 11u);
  EXPECT_EQ(VuGraphics::GetSupportedFeatures("default"), 0u);
  uint32_t details = 7;
  VuGraphics::GetFeatureDetails("Hybrid", FeatureType{3}, &details);
  EXPECT_EQ(details, 7u);
  VuGraphics::GetFeatureDetails("Default", FeatureType::Details, &details);
  EXPECT_EQ(details, 12u);
}

class Context : public testing::Test {
 protected:
  void SetUp() override { helpers::Install("FB"); }

  static std::unique_ptr<VuGraphics> New() {
    return std::unique_ptr<VuGraphics>(VuGraphics::Create("FB", true));
  }

  static std::string Listed(unsigned key) {
    std::ostringstream os;
    PrintBitmapList(key, os);
    return os.str();
  }

  /// What one context adds to the list.
  static std::string Part(const VuGraphics& context, unsigned key) {
    std::ostringstream os;
    os << "VuGraphics instance "
       << reinterpret_cast<void*>(reinterpret_cast<uintptr_t>(&context) ^ key) << "\nbitmaps "
       << key << "\nAvailable texture memory 30 used 70 max 100\n";
    return os.str();
  }
};

TEST_F(Context, DrawsOnBitmapsAndScreens) {
  const auto run = [] {
    LogOverdraw = true;
    const auto g = New();
    EXPECT_EQ(g->GetMaxTextureSize(), 21);
    const std::unique_ptr<VuBitmap> bitmap(g->CreateBitmap(8, 4, VuPixelFormat::ARGB8888));
    const std::unique_ptr<VuBitmap> screen(g->CreateScreen(true));
    VuTMatrix2D<float> m;
    m.translate({3, 5});
    for (VuBitmap* const surface : {bitmap.get(), screen.get()}) {
      EXPECT_EQ(surface->GetBounds().height, 4);
      EXPECT_FALSE(surface->IsTextureBacked());
      surface->DrawRect({0, 0, 8, 6}, white, m, *surface, nullptr);
      surface->SwapBuffers();
      surface->Finish();
    }
  };
  const std::string drawn = "DrawRect 6 ffffffff 5 1 1\n";
  EXPECT_EQ(LoggedAt(2, run), "CreateVuGraphics 1\n" + drawn + "Finish after 48\nFinish after 0\n" +
                                  drawn + "SwapBuffers after 48\nFinish after 0\n" +
                                  "surface destroyed\nsurface destroyed\ncontext destroyed\n");
}

TEST_F(Context, AllAreListedInOrder) {
  auto first = New();
  const auto second = New();
  EXPECT_EQ(Listed(0x1234), Part(*first, 0x1234) + Part(*second, 0x1234));
  EXPECT_EQ(LoggedAt(4, [&] { first.reset(); }),
            "<ZIRK.warning>: Destroying VuGraphics instance\ncontext destroyed\n");
  EXPECT_EQ(Listed(0), Part(*second, 0));
}

/// A context is still listed while this is deleted.
struct SlowToGo : doubles::Graphics {
  ~SlowToGo() override { std::this_thread::sleep_for(std::chrono::milliseconds(2)); }
};

TEST_F(Context, SanitizedComeAndGoWhileTheyAreListed) {
  std::unique_ptr<VuGraphics> context;
  const auto make = [&](int) { context = std::make_unique<VuGraphics>(new SlowToGo); };
  const auto use = [&](bool lists) {
    if (!lists) return context.reset();
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    Listed(0);
  };
  LoggedAt(2, [&] { helpers::InRounds(10, make, use); });
}

/// Calls that go to the implementation just as they are, and questions whose answers come back.
#define EXPECT_FORWARDED(call) \
  EXPECT_CALL(impl, call);     \
  g.call
#define EXPECT_CREATION_FORWARDED(call) \
  EXPECT_CALL(impl, call);              \
  EXPECT_EQ(g.call, nullptr)
#define EXPECT_ASKED(question)                              \
  EXPECT_CALL(impl, question).WillOnce(testing::Return(7)); \
  EXPECT_EQ(g.question, 7u)

TEST(Forwarding, OfAContext) {
  auto& impl = *new doubles::Graphics;
  VuGraphics g(&impl);
  const auto expectScreen = [&](int index, int buffers, VuPixelFormat format, bool option) {
    EXPECT_CALL(impl, CreateScreen(testing::An<const VuScreenDescription&>()))
        .WillOnce([=](const VuScreenDescription& d) {
          EXPECT_EQ(std::tuple(d.width, d.height, d.index, d.buffers, d.format, d.option),
                    std::tuple(-1, 9, index, buffers, format, option));
          return nullptr;
        });
  };
  expectScreen(44, 2, VuPixelFormat{2}, true);
  EXPECT_EQ(g.CreateScreen(-1, 9, true, 300, true, VuPixelFormat{2}), nullptr);
  expectScreen(1, 1, VuPixelFormat::ARGB8888, true);
  EXPECT_EQ(g.CreateScreen(-1, 9, false, 1, true), nullptr);
  expectScreen(44, 1, VuPixelFormat::ARGB8888, false);
  EXPECT_EQ(g.CreateScreen(-1, 9, false, 300), nullptr);
  expectScreen(0, 2, VuPixelFormat::ARGB8888, false);
  EXPECT_EQ(g.CreateScreen(-1, 9, true), nullptr);

  const char* const path = "path";
  const void* const data = path;
  const VuScaleMode scale{4};
  EXPECT_CREATION_FORWARDED(CreateBitmapFromFile(path));
  EXPECT_CALL(impl, CreateBitmapFromFile(path, 1, 2, scale, VuDisplayMode::Stretch));
  EXPECT_EQ(g.CreateBitmapFromFile(path, 1, 2, scale), nullptr);
  EXPECT_CREATION_FORWARDED(CreateBitmapFromMemory(data, 5));
  EXPECT_CREATION_FORWARDED(CreateBitmapFromMemory(data, 5, 1, 2, scale));
  EXPECT_FORWARDED(Flush());
  EXPECT_FORWARDED(SetTerminateOnDestruct(true));
  EXPECT_CALL(impl, PrintBitmapList(0, testing::_));
  g.PrintBitmapList(std::cout);
  EXPECT_EQ(g.GetMaxTextureSize(), 2048);

  EXPECT_ASKED(AvailableMemory());
  EXPECT_ASKED(TotalMemory());
  EXPECT_ASKED(BitmapSize(1, 2, VuPixelFormat{3}));
  EXPECT_ASKED(BitmapSize(path));
  EXPECT_ASKED(BitmapSize(path, 1, 2));
  EXPECT_ASKED(BitmapSize(data, 5));
  EXPECT_ASKED(BitmapSize(data, 5, 1, 2));
}

struct Scaling {
  const char* name;
  VuPoint source, box;
  int mode;
  VuPoint size;
};
class ScaledDimensions : public helpers::Rows<Scaling> {};

TEST_P(ScaledDimensions, ByMode) {
  const auto& [name, source, box, mode, size] = GetParam();
  VuPoint scaled = box;
  VuGraphics::GetScaledDimensions(source.x, source.y, scaled.x, scaled.y, VuDisplayMode{mode});
  EXPECT_EQ(scaled, size);
}

constexpr int kStretch = 0, kFit = 1, kFill = 2, kNatural = 3;
constexpr VuPoint kOdd{16777219, 16777219};
ROWS(ScaledDimensions,
     {.name = "stretch", .source{200, 100}, .box{50, 60}, .mode = kStretch, .size{50, 60}},
     {.name = "fit_wide", .source{200, 100}, .box{100, 100}, .mode = kFit, .size{100, 50}},
     {.name = "fit_tall", .source{100, 200}, .box{100, 100}, .mode = kFit, .size{50, 100}},
     {.name = "fit_truncates", .source{3, 2}, .box{100, 100}, .mode = kFit, .size{100, 66}},
     {.name = "fit_float", .source{1, 1}, .box = kOdd, .mode = kFit, .size = kOdd},
     {.name = "fit_no_height", .source{10, 0}, .box{20, 30}, .mode = kFit, .size{20, 0}},
     {.name = "fill_tall", .source{100, 200}, .box{100, 100}, .mode = kFill, .size{100, 200}},
     // Wide sources keep their size.
     {.name = "fill_wide", .source{200, 100}, .box{100, 100}, .mode = kFill, .size{200, 100}},
     {.name = "fill_equal", .source{30, 30}, .box{100, 100}, .mode = kFill, .size{30, 30}},
     {.name = "too_wide", .source{200, 100}, .box{100, 100}, .mode = kNatural, .size{100, 100}},
     {.name = "natural", .source{200, 100}, .box{300, 300}, .mode = kNatural, .size{200, 100}},
     {.name = "box_no_width", .source{64, 32}, .box{0, 50}, .mode = kFit, .size{64, 32}},
     {.name = "box_no_height", .source{64, 32}, .box{50, -1}, .mode = 77, .size{64, 32}},
     {.name = "no_extent", .source{0, 32}, .box{0, 50}, .mode = kFit, .size{0, 50}},
     {.name = "unknown_mode", .source{1, 1}, .box{20, 30}, .mode = -1, .size{20, 30}});

TEST(ScaledDimensionsLog, UnknownMode) {
  int w = 20, h = 30;
  const auto unknown = [&] { VuGraphics::GetScaledDimensions(1, 1, w, h, VuDisplayMode{-1}); };
  EXPECT_EQ(LoggedAt(4, unknown), "<ZIRK.warning>: GetScaledDimensions: unknown display mode -1\n");
}

}  // namespace
}  // namespace ZIRK
