// What goes through unchanged in one form only is in independentplugin_test.cpp.

#include <gtest/gtest.h>
#include <zirk/backend.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "doubles/recordinggraphics.h"
#include "support/logged.h"
#include "support/plugins.h"

namespace ZIRK {
namespace {

using doubles::Line;
using doubles::Recorder;
using support::LoggedAt;

static_assert(sizeof(VuGraphics) == sizeof(void*), "a handle is its implementation's pointer");

constexpr char kNoneFound[] =
    "<ZIRK.error>: Failed to Create VuGraphics instance, no suitable implementations found\n";

/// The announcing plug-in stands in for the backends named here; the others are missing.
class Creation : public testing::Test {
 protected:
  void SetUp() override {
    unsetenv("ZIRK_STUB");
    const auto loader = GraphicsImplLoader::GetInstance();
    for (const char* name : {"OpenGLES2", "DirectFB", "Hybrid", "Stub", "FB"})
      loader->SetupGfxImpl(name, support::Plugin("Missing"), {1, 2}, false);
    VuGraphics::SetDefaultImpl(nullptr);
  }
  void TearDown() override {
    unsetenv("ZIRK_STUB");
    VuGraphics::SetDefaultImpl(nullptr);
    VuGraphics::SetGraphicsOverride(nullptr);
  }

  /// Which backend `create` opened, with which flag: "Hybrid 1"; empty if it returned null.
  template <typename F>
  static std::string Opened(F create) {
    std::unique_ptr<VuGraphics> graphics;
    const std::string log = LoggedAt(4, [&] { graphics.reset(create()); });
    LoggedAt(2, [&] { std::unique_ptr<VuGraphics>(std::move(graphics)); });
    const std::string invoking = "Invoking the constructor for implementation ";
    const size_t name = log.rfind(invoking);
    if (name == std::string::npos) return "";
    const size_t begin = name + invoking.size();
    return log.substr(begin, log.find("...", begin) - begin) + " " + log[log.size() - 2];
  }
};

TEST_F(Creation, ByDefaultName) {
  support::InstallAnnouncing("Hybrid");
  EXPECT_EQ(Opened([] { return VuGraphics::Create(); }), "Hybrid 0");
  EXPECT_EQ(Opened([] { return VuGraphics::Create(true); }), "Hybrid 1");
  VuGraphics::SetDefaultImpl("hybrid");
  const std::string log = LoggedAt(3, [] { EXPECT_EQ(VuGraphics::Create(), nullptr); });
  EXPECT_EQ(log,
            "<ZIRK.error>: failed to load implementation hybrid [-1]\n" + std::string(kNoneFound));
  VuGraphics::SetDefaultImpl(nullptr);
  EXPECT_STREQ(VuGraphics::GetDefaultImpl(), "Hybrid");
}

TEST_F(Creation, DefaultMeansGLThenDirectFB) {
  support::InstallAnnouncing("DirectFB");
  for (const char* name : {"Default", "dEFAULT"}) {
    VuGraphics::SetDefaultImpl(name);
    EXPECT_EQ(Opened([] { return VuGraphics::Create(true); }), "DirectFB 1");
  }
  support::InstallAnnouncing("OpenGLES2");
  EXPECT_EQ(Opened([] { return VuGraphics::Create(true); }), "OpenGLES2 1");
}

TEST_F(Creation, ByName) {
  support::InstallAnnouncing("FB");
  support::InstallAnnouncing("Hybrid");
  EXPECT_EQ(Opened([] { return VuGraphics::Create("FB", true); }), "FB 1");
  EXPECT_EQ(Opened([] { return VuGraphics::Create("fb", true); }), "");
  // The flag is lost on the way to the default.
  EXPECT_EQ(Opened([] { return VuGraphics::Create(nullptr, true); }), "Hybrid 0");
  EXPECT_EQ(Opened([] { return VuGraphics::Create("DEFAULT", true); }), "Hybrid 0");
}

TEST_F(Creation, ByUnknownName) {
  const char* const name = "Vulkan";
  const auto number = static_cast<int32_t>(reinterpret_cast<intptr_t>(name));
  EXPECT_EQ(LoggedAt(7, [&] { EXPECT_EQ(VuGraphics::Create(name, true), nullptr); }),
            "<ZIRK.warning>: Creating VuGraphics instance\n"
            "<ZIRK.error>: ZIRK implementation type " +
                std::to_string(number) + " is not supported on this platform\n");
}

TEST_F(Creation, AMissingPluginIsTheLoadersToReport) {
  const std::string log = LoggedAt(3, [] { EXPECT_EQ(VuGraphics::Create("FB", true), nullptr); });
  EXPECT_EQ(log.find("no suitable"), std::string::npos);
  EXPECT_NE(log.find("failed to load implementation FB [-2]"), std::string::npos);
}

TEST_F(Creation, TheGLFamily) {
  support::InstallAnnouncing("Hybrid");
  support::InstallAnnouncing("OpenGLES2");
  EXPECT_EQ(Opened([] { return VuGraphics::CreateGL(); }), "Hybrid 0");
  EXPECT_EQ(Opened([] { return VuGraphics::CreateGL(true); }), "Hybrid 1");
  VuGraphics::SetDefaultImpl("hybrid");
  EXPECT_EQ(Opened([] { return VuGraphics::CreateGL(true); }), "OpenGLES2 1");
}

TEST_F(Creation, StubAndDirectFB) {
  support::InstallAnnouncing("Stub");
  support::InstallAnnouncing("DirectFB");
  EXPECT_EQ(Opened([] { return VuGraphics::CreateStub(); }), "Stub 0");
  EXPECT_EQ(Opened([] { return VuGraphics::CreateDFB(); }), "DirectFB 0");
}

TEST_F(Creation, TheEnvironmentForcesTheStub) {
  support::InstallAnnouncing("Stub");
  setenv("ZIRK_STUB", "", 1);
  EXPECT_EQ(Opened([] { return VuGraphics::Create(true); }), "Stub 0");
  const std::string log = LoggedAt(6, [] { delete VuGraphics::Create(true); });
  EXPECT_EQ(log.rfind("<ZIRK.info>: Creating VuGraphics instance\n"
                      "<ZIRK.warning>: Creating VuGraphics instance\n",
                      0),
            0u)
      << log;
}

TEST_F(Creation, AnOverrideComesFirst) {
  support::InstallAnnouncing("Hybrid");
  setenv("ZIRK_STUB", "1", 1);
  Recorder recorder;
  VuGraphics* const made = new VuGraphics(new doubles::RecordingGraphics(recorder));
  std::vector<bool> flags;
  VuGraphics::SetGraphicsOverride([&](bool flag) {
    flags.push_back(flag);
    return flag ? made : nullptr;
  });
  EXPECT_EQ(VuGraphics::Create(true), made);
  EXPECT_EQ(LoggedAt(6, [] { EXPECT_EQ(VuGraphics::Create(), nullptr); }),
            "<ZIRK.info>: Creating VuGraphics instance\n");
  EXPECT_EQ(flags, (std::vector<bool>{true, false}));
  EXPECT_EQ(Opened([] { return VuGraphics::Create("Hybrid", true); }), "Hybrid 1");
  LoggedAt(2, [&] { delete made; });
}

TEST_F(Creation, Queries) {
  GraphicsImplLoader::GetInstance()->SetupGfxImpl("Hybrid", "none", {11, 12}, false);
  VuGraphics::SetDefaultImpl("DirectFB");
  EXPECT_EQ(VuGraphics::GetSupportedFeatures("Default"), 11u);
  EXPECT_EQ(VuGraphics::GetSupportedFeatures("DirectFB"), 1u);
  EXPECT_EQ(LoggedAt(4, [] { EXPECT_EQ(VuGraphics::GetSupportedFeatures("default"), 0u); }),
            "<ZIRK.warning>: Cannot get featureInfo for unsupported backend default\n");
  uint32_t details = 7;
  EXPECT_EQ(LoggedAt(4, [&] { VuGraphics::GetFeatureDetails("?", FeatureType{3}, &details); }), "");
  EXPECT_EQ(details, 7u);
  VuGraphics::GetFeatureDetails("Default", FeatureType::Details, &details);
  EXPECT_EQ(details, 12u);
  EXPECT_FALSE(VuGraphics::HasBackend("Hybrid"));
  unsigned count = 9;
  VuGraphics::GetSupportedBackends(count);
  EXPECT_EQ(count, 0u);
}

class Context : public testing::Test {
 protected:
  void TearDown() override {
    LoggedAt(2, [this] { graphics.reset(); });
  }

  /// `create` arrives at the backend as `call` and gives a bitmap, or none if the backend has none.
  template <typename F>
  void ExpectCreation(F create, const std::string& call) {
    for (const bool fails : {false, true}) {
      impl->fails = fails;
      recorder.Take();
      const std::unique_ptr<VuBitmap> bitmap(create());
      EXPECT_EQ(bitmap == nullptr, fails);
      EXPECT_EQ(recorder.Take(), call);
      if (bitmap) {
        EXPECT_EQ(bitmap->GetSize(), 77u);
      }
    }
  }

  Recorder recorder;
  doubles::RecordingGraphics* impl = new doubles::RecordingGraphics(recorder);
  std::unique_ptr<VuGraphics> graphics = std::make_unique<VuGraphics>(impl);
};

TEST_F(Context, Screens) {
  const auto described = [](int w, int h, uint8_t index, uint8_t buffers, int format, bool option) {
    return Line("CreateScreen",
                VuScreenDescription{w, h, index, buffers, VuPixelFormat{format}, option});
  };
  VuGraphics& g = *graphics;
  ExpectCreation([&] { return g.CreateScreen(true); }, Line("CreateScreen", true));
  const VuScreenDescription d{1, 2, 3, 4, VuPixelFormat{5}, true};
  ExpectCreation([&] { return g.CreateScreen(d); }, Line("CreateScreen", d));
  ExpectCreation([&] { return g.CreateScreen(-1, 0, true, 300, true, VuPixelFormat{2}); },
                 described(-1, 0, 44, 2, 2, true));
  ExpectCreation([&] { return g.CreateScreen(8, 9, false, 1, true); },
                 described(8, 9, 1, 1, 0, true));
  ExpectCreation([&] { return g.CreateScreen(640, 480, false, 300); },
                 described(640, 480, 44, 1, 0, false));
  ExpectCreation([&] { return g.CreateScreen(640, 480, true); },
                 described(640, 480, 0, 2, 0, false));
}

TEST_F(Context, Bitmaps) {
  VuGraphics& g = *graphics;
  const char* const path = "path";
  const void* const data = path;
  const VuScaleMode scale{3};
  ExpectCreation([&] { return g.CreateBitmap(-1, 2, VuPixelFormat{9}); },
                 Line("CreateBitmap", -1, 2, 9));
  ExpectCreation([&] { return g.CreateBitmapFromFile(path); }, Line("CreateBitmapFromFile", path));
  ExpectCreation([&] { return g.CreateBitmapFromFile(path, 1, 2, scale, VuDisplayMode{7}); },
                 Line("CreateBitmapFromFile", path, 1, 2, 3, 7));
  ExpectCreation([&] { return g.CreateBitmapFromFile(path, 1, 2, scale); },
                 Line("CreateBitmapFromFile", path, 1, 2, 3, 0));
  ExpectCreation([&] { return g.CreateBitmapFromMemory(data, 5); },
                 Line("CreateBitmapFromMemory", data, 5));
  ExpectCreation([&] { return g.CreateBitmapFromMemory(data, 5, 1, 2, scale); },
                 Line("CreateBitmapFromMemory", data, 5, 1, 2, 3));
}

TEST_F(Context, DestroysItsBackend) {
  EXPECT_EQ(LoggedAt(4, [&] { graphics.reset(); }),
            "<ZIRK.warning>: Destroying VuGraphics instance\n");
  EXPECT_EQ(recorder.Take(), Line("destroyed"));
}

std::string Address(const void* p, unsigned key) {
  char text[64];
  snprintf(text, sizeof text, "%p", reinterpret_cast<void*>(reinterpret_cast<uintptr_t>(p) ^ key));
  return text;
}

TEST_F(Context, AllAreListedInOrder) {
  const auto listed = [](const VuGraphics& context, unsigned key) {
    return "VuGraphics instance " + Address(&context, key) +
           "\nbitmaps\nAvailable texture memory 30 used 70 max 100\n";
  };
  auto second = std::make_unique<VuGraphics>(new doubles::RecordingGraphics(recorder));
  std::ostringstream both;
  PrintBitmapList(0x1234, both);
  EXPECT_EQ(both.str(), listed(*graphics, 0x1234) + listed(*second, 0x1234));
  const std::string calls = Line("PrintBitmapList", 0x1234) + Line("AvailableMemory") +
                            Line("TotalMemory") + Line("AvailableMemory") + Line("TotalMemory");
  EXPECT_EQ(recorder.Take(), calls + calls);
  LoggedAt(2, [&] { graphics.reset(); });
  std::ostringstream one;
  PrintBitmapList(0, one);
  EXPECT_EQ(one.str(), listed(*second, 0));
  LoggedAt(2, [&] { second.reset(); });
  std::ostringstream none;
  PrintBitmapList(0, none);
  EXPECT_EQ(none.str(), "");
}

TEST(ContextThreads, ComeAndGoWhileTheyAreListed) {
  const support::Tunables restored;
  LogLevel = 2;
  std::atomic<bool> done{false};
  std::thread lister([&] {
    while (!done) {
      std::ostringstream os;
      PrintBitmapList(0, os);
    }
  });
  std::vector<std::thread> threads;
  for (int i = 0; i < 3; ++i) {
    threads.emplace_back([] {
      // PrintBitmapList() records under the register's lock, everything else before and after.
      struct Quiet : doubles::PlainGraphics {
        using PlainGraphics::PlainGraphics;
        void PrintBitmapList(unsigned, std::ostream& os) override { os << "bitmaps\n"; }
        unsigned AvailableMemory() const override { return 1; }
        unsigned TotalMemory() const override { return 1; }
      };
      Recorder recorder;
      for (int round = 0; round < 200; ++round) VuGraphics(new Quiet(recorder));
    });
  }
  for (std::thread& thread : threads) thread.join();
  done = true;
  lister.join();
}

TEST(ScaledDimensions, ByMode) {
  struct Case {
    const char* name;
    int srcWidth, srcHeight, boxWidth, boxHeight, mode;
    int width, height;
  };
  const Case cases[] = {
      {"stretch", 200, 100, 50, 60, 0, 50, 60},
      {"fit a wide one", 200, 100, 100, 100, 1, 100, 50},
      {"fit a tall one", 100, 200, 100, 100, 1, 50, 100},
      {"fit enlarges", 10, 10, 100, 50, 1, 50, 50},
      {"fit truncates", 3, 2, 100, 100, 1, 100, 66},
      {"fill a tall one", 100, 200, 100, 100, 2, 100, 200},
      {"fill a wide one keeps its size", 200, 100, 100, 100, 2, 200, 100},
      {"fill equal aspects keeps its size", 30, 30, 100, 100, 2, 30, 30},
      {"natural and too wide", 200, 100, 100, 100, 3, 100, 100},
      {"natural fits", 200, 100, 300, 300, 3, 200, 100},
      {"no width", 64, 32, 0, 50, 1, 64, 32},
      {"no height, any mode", 64, 32, 50, -1, 77, 64, 32},
      {"neither box nor source", 0, 32, 0, 50, 1, 0, 50},
      {"fit a source without height", 10, 0, 20, 30, 1, 20, 0},
      {"fit a source without extent", 0, 0, 20, 30, 1, 0, 0},
  };
  for (const Case& test : cases) {
    int width = test.boxWidth;
    int height = test.boxHeight;
    VuGraphics::GetScaledDimensions(test.srcWidth, test.srcHeight, width, height,
                                    VuDisplayMode{test.mode});
    EXPECT_EQ(width, test.width) << test.name;
    EXPECT_EQ(height, test.height) << test.name;
  }
}

TEST(ScaledDimensions, UnknownMode) {
  int width = 20;
  int height = 30;
  EXPECT_EQ(
      LoggedAt(4, [&] { VuGraphics::GetScaledDimensions(1, 1, width, height, VuDisplayMode{-1}); }),
      "<ZIRK.warning>: GetScaledDimensions: unknown display mode -1\n");
  EXPECT_EQ(width, 20);
  EXPECT_EQ(height, 30);
}

}  // namespace
}  // namespace ZIRK
