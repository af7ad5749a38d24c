// What most operations of a context call is in vubitmap_test.cpp.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zirk/backend.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <tuple>

#include "helpers/logged.h"
#include "helpers/plugins.h"

namespace ZIRK {
namespace {

using helpers::LoggedAt;

TEST(Backends, KeepTheirNumbers) {
  const std::tuple<const char*, int, BackendType> expected[] = {
      {"OpenGLES2", 1, BackendType::OpenGLES2},
      {"DirectFB", 2, BackendType::DirectFB},
      {"Hybrid", 3, BackendType::Hybrid},
      {"Stub", 4, BackendType::Stub},
      {"FB", 5, BackendType::FB},
  };
  for (const auto& [name, code, type] : expected) {
    EXPECT_STREQ(BackendName(type), name);
    EXPECT_EQ(TypeCode(type), code);
  }
  EXPECT_STREQ(BackendName(BackendType{6}), "");
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

TEST_F(Creation, OpensTheBackendAskedFor) {
  const std::tuple<const char*, VuGraphics* (*)(), const char*, bool> cases[] = {
      {nullptr, [] { return VuGraphics::Create(true); }, "Hybrid", true},
      {"dEFAULT", [] { return VuGraphics::Create(true); }, "OpenGLES2", true},
      {nullptr, [] { return VuGraphics::Create("FB", true); }, "FB", true},
      // The flag is lost on the way to the default.
      {nullptr, [] { return VuGraphics::Create(nullptr, true); }, "Hybrid", false},
      {"Stub", [] { return VuGraphics::Create("DEFAULT", true); }, "Stub", false},
      {nullptr, [] { return VuGraphics::CreateGL(true); }, "Hybrid", true},
      {"hybrid", [] { return VuGraphics::CreateGL(true); }, "OpenGLES2", true},
      {nullptr, [] { return VuGraphics::CreateStub(); }, "Stub", false},
      {nullptr, [] { return VuGraphics::CreateDFB(); }, "DirectFB", false},
  };
  for (const auto& [defaultImpl, create, opened, flag] : cases) {
    VuGraphics::SetDefaultImpl(defaultImpl);
    ExpectOpened(create, opened, flag);
  }
  helpers::Install("OpenGLES2", "Missing");
  VuGraphics::SetDefaultImpl("Default");
  ExpectOpened([] { return VuGraphics::Create(true); }, "DirectFB", true);
  setenv("ZIRK_STUB", "", 1);
  ExpectOpened([] { return VuGraphics::Create(true); }, "Stub", false);
}

TEST_F(Creation, FailuresAreLogged) {
  const char* const unknown = "Vulkan";
  const auto number = static_cast<int32_t>(reinterpret_cast<intptr_t>(unknown));
  EXPECT_EQ(LoggedAt(7, [&] { EXPECT_EQ(VuGraphics::Create(unknown, true), nullptr); }),
            "<ZIRK.warning>: Creating VuGraphics instance\n"
            "<ZIRK.error>: ZIRK implementation type " +
                std::to_string(number) + " is not supported on this platform\n");
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
    // It goes on when it has ended itself.
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

  /// What one context adds to that.
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

TEST_F(Context, SanitizedComeAndGoWhileTheyAreListed) {
  LoggedAt(2, [] {
    std::thread other([] {
      for (int round = 0; round < 200; ++round) Listed(0);
    });
    for (int round = 0; round < 200; ++round) New();
    other.join();
  });
}

TEST(ScaledDimensions, ByMode) {
  const std::tuple<const char*, int, int, int, int, int, int, int> cases[] = {
      {"stretch", 200, 100, 50, 60, 0, 50, 60},
      {"fit a wide one", 200, 100, 100, 100, 1, 100, 50},
      {"fit a tall one", 100, 200, 100, 100, 1, 50, 100},
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
      {"unknown mode", 1, 1, 20, 30, -1, 20, 30},
  };
  for (const auto& [name, srcWidth, srcHeight, boxWidth, boxHeight, mode, width, height] : cases) {
    int w = boxWidth, h = boxHeight;
    VuGraphics::GetScaledDimensions(srcWidth, srcHeight, w, h, VuDisplayMode{mode});
    EXPECT_EQ(w, width) << name;
    EXPECT_EQ(h, height) << name;
  }
  int w = 20, h = 30;
  const auto unknown = [&] { VuGraphics::GetScaledDimensions(1, 1, w, h, VuDisplayMode{-1}); };
  EXPECT_EQ(LoggedAt(4, unknown), "<ZIRK.warning>: GetScaledDimensions: unknown display mode -1\n");
}

}  // namespace
}  // namespace ZIRK
