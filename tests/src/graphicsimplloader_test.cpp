#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>
#include <zirk/backend.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/logged.h"
#include "support/plugins.h"

namespace ZIRK {
namespace {

using support::LoggedAt;
using support::Plugin;

/// A loader of the test's own, with an empty table.
class Loader : public testing::Test {
 protected:
  void SetUp(const std::string& dso, bool lookOnDisk = false) {
    loader.SetupGfxImpl("X", dso, {5, 6}, lookOnDisk);
  }

  GraphicsImplLoader loader;
};

TEST_F(Loader, SetUpIsLogged) {
  EXPECT_EQ(LoggedAt(6, [&] { SetUp("some.so"); }),
            "<ZIRK.info>: Setting up Implementation X with DSO some.so, [CreateVuGraphics, "
            "DestroyVuGraphics].\n");
  EXPECT_EQ(LoggedAt(4, [&] { SetUp("some.so"); }), "");
}

TEST_F(Loader, UnknownNames) {
  EXPECT_EQ(LoggedAt(7, [&] { EXPECT_EQ(loader.loadImpl("X"), -1); }), "");
  EXPECT_EQ(LoggedAt(7, [&] { EXPECT_EQ(loader.CreateImplInstance("X", true), nullptr); }),
            "<ZIRK.error>: failed to load implementation X [-1]\n");
  EXPECT_EQ(LoggedAt(7, [&] { EXPECT_FALSE(loader.IsLibraryAvailable("X")); }),
            "<ZIRK.warning>: Nonexistent backend X\n");
  EXPECT_EQ(LoggedAt(7, [&] { EXPECT_EQ(loader.GetFeatureInfo("X").features, 0u); }),
            "<ZIRK.warning>: Cannot get featureInfo for unsupported backend X\n");
  EXPECT_EQ(LoggedAt(7, [&] { loader.DestroyImplInstance("X", nullptr); }),
            "<ZIRK.warning>: Invoking the destructor for nonexistant implementation X!!!\n");
  EXPECT_THROW(loader.IsLibraryAvailable(nullptr), std::logic_error);
}

TEST_F(Loader, NamesAreCaseSensitive) {
  SetUp("some.so");
  EXPECT_EQ(loader.GetFeatureInfo("X").details, 6u);
  EXPECT_EQ(loader.loadImpl("x"), -1);
}

TEST_F(Loader, BrokenPlugins) {
  struct Case {
    const char* plugin;
    bool opens;
  };
  const Case cases[] = {{"NoCreate", true},
                        {"NoDestroy", true},
                        {"NotElf", false},
                        {"Undefined", false},
                        {"Missing", false}};
  for (const Case& test : cases) {
    const std::string dso = Plugin(test.plugin);
    SetUp(dso);
    // A failure may be tried again, with the same result.
    for (int i = 0; i < 2; ++i) {
      const std::string log =
          LoggedAt(6, [&] { EXPECT_EQ(loader.CreateImplInstance("X", false), nullptr); });
      const std::string opening = test.opens ? "" : "<ZIRK.warning>: dlopen\\(\\) " + dso + " .+\n";
      const std::string expected("<ZIRK.info>: Loading implementation X\\.\\.\n" + opening +
                                 "<ZIRK.error>: Failed to load implementation X " + dso +
                                 "\n<ZIRK.error>: failed to load implementation X \\[-2\\]\n");
      EXPECT_THAT(log, testing::MatchesRegex(expected)) << test.plugin;
      EXPECT_EQ(dlopen(dso.c_str(), RTLD_LAZY | RTLD_NOLOAD), nullptr) << test.plugin;
    }
  }
}

TEST_F(Loader, APluginMayDecline) {
  SetUp(Plugin("Nothing"));
  EXPECT_EQ(LoggedAt(3, [&] { EXPECT_EQ(loader.CreateImplInstance("X", false), nullptr); }), "");
}

TEST_F(Loader, OpensOnceAndPassesTheFlag) {
  SetUp(Plugin("Announcing"));
  for (const bool flag : {true, false}) {
    void* graphics = nullptr;
    EXPECT_EQ(LoggedAt(6, [&] { graphics = loader.CreateImplInstance("X", flag); }),
              "<ZIRK.info>: Loading implementation X..\n"
              "<ZIRK.warning>: Invoking the constructor for implementation X...\n"
              "CreateVuGraphics " +
                  std::to_string(flag) + "\n");
    EXPECT_EQ(LoggedAt(2, [&] { loader.DestroyImplInstance("X", graphics); }),
              "DestroyVuGraphics\ncontext deleted\ndestroyed\n");
  }
  EXPECT_EQ(loader.loadImpl("X"), 0);
}

TEST_F(Loader, AnOpenPluginOutlivesItsReplacement) {
  SetUp(Plugin("Announcing"));
  LoggedAt(2, [&] {
    void* const graphics = loader.CreateImplInstance("X", false);
    SetUp(Plugin("Missing"));
    loader.DestroyImplInstance("X", graphics);
    EXPECT_EQ(loader.loadImpl("X"), -2);
    loader.DestroyImplInstance("X", nullptr);
  });
}

/// Files in /tmp, which the two probed folders reach through "../../tmp".
TEST_F(Loader, LooksOnDiskForPathsBelow30Characters) {
  const std::string unique = std::to_string(getpid());
  const std::string longest = unique + std::string(14 - unique.size(), 'z');  // 29 in all
  const std::string tooLong = longest + "z";
  for (const std::string& name : {longest, tooLong}) std::ofstream("/tmp/" + name) << "plug-in";

  SetUp("../../tmp/" + longest, true);
  EXPECT_TRUE(loader.IsLibraryAvailable("X"));
  loader.SetupGfxImpl("Y", "../../tmp/" + longest, {0, 0}, true);
  loader.SetupGfxImpl("Not looked for", "../../tmp/" + longest, {0, 0}, false);
  // What is left of it after 29 characters exists.
  loader.SetupGfxImpl("Too long", "../../tmp/" + tooLong, {0, 0}, true);
  loader.SetupGfxImpl("Missing", "nowhere", {0, 0}, true);
  for (const char* name : {"Not looked for", "Too long", "Missing"})
    EXPECT_FALSE(loader.IsLibraryAvailable(name)) << name;

  unsigned count = 0;
  const char* const* const names = loader.GetBackends(count);
  std::vector<std::string> sorted(names, names + count);
  std::sort(sorted.begin(), sorted.end());
  EXPECT_EQ(sorted, (std::vector<std::string>{"X", "Y"}));
  for (const std::string& name : {longest, tooLong}) unlink(("/tmp/" + name).c_str());
}

// What only a process shows that has neither asked for the loader nor opened a plug-in yet.
class LoaderDeathTest : public testing::Test {
 protected:
  void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(LoaderDeathTest, ClosesItsPluginsWhenItGoes) {
  EXPECT_EXIT(
      {
        {
          GraphicsImplLoader loader;
          loader.SetupGfxImpl("X", Plugin("Announcing"), {0, 0}, false);
          loader.loadImpl("X");
        }
        fputs("loader gone\n", stderr);
        exit(0);
      },
      testing::ExitedWithCode(0), "plug-in closed\nloader gone\n$");
}

TEST_F(LoaderDeathTest, TheTableIsBuiltInOrder) {
  EXPECT_EXIT(
      {
        LogLevel = 6;
        LogInterval = 0;
        const auto loader = GraphicsImplLoader::GetInstance();
        for (const char* name : {"OpenGLES2", "DirectFB", "GLCompositor", "Hybrid", "Stub", "FB"}) {
          const GraphicsFeatureInfo info = loader->GetFeatureInfo(name);
          fprintf(stderr, "%u 0x%X, ", info.features, info.details);
        }
        fprintf(stderr, "listed: %d", loader->IsLibraryAvailable("GLCompositor"));
        exit(loader == GraphicsImplLoader::GetInstance() ? 0 : 1);
      },
      testing::ExitedWithCode(0),
      "OpenGLES2 with DSO libZIRKImplOpenGL.so, \\[CreateVuGraphics, DestroyVuGraphics\\]\\.\n"
      ".*DirectFB with DSO libZIRKImplDirectFB.so, \\[CreateVuGraphics, DestroyVuGraphics\\]\\.\n"
      ".*GLCompositor with DSO libZIRKImplOpenGL.so, "
      "\\[CreateVuCompositor, DestroyVuCompositor\\]\\.\n"
      ".*Hybrid with DSO libZIRKImplHybrid.so, \\[CreateVuGraphics, DestroyVuGraphics\\]\\.\n"
      ".*Stub with DSO libZIRKImplStub.so, \\[CreateVuGraphics, DestroyVuGraphics\\]\\.\n"
      ".*FB with DSO libZIRKImplFB.so, \\[CreateVuGraphics, DestroyVuGraphics\\]\\.\n"
      "1 0x7F, 0 0x1BF, 0 0x0, 1 0x0, 0 0x0, 0 0x0, listed: 0");
}

TEST_F(LoaderDeathTest, TheEnvironmentNamesTheDefaultOnce) {
  EXPECT_EXIT(
      {
        setenv("ZIRK_DEFAULT_GFX_BACKEND", "Anything", 1);
        const std::string initial = VuGraphics::GetDefaultImpl();
        VuGraphics::SetDefaultImpl("Stub");
        VuGraphics::HasBackend("FB");
        const std::string afterFirstUse = VuGraphics::GetDefaultImpl();
        VuGraphics::SetDefaultImpl("Stub");
        VuGraphics::HasBackend("FB");
        fprintf(stderr, "%s %s %s", initial.c_str(), afterFirstUse.c_str(),
                VuGraphics::GetDefaultImpl());
        exit(0);
      },
      testing::ExitedWithCode(0), "Hybrid Anything Stub");
}

}  // namespace
}  // namespace ZIRK
