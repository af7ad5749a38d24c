#include <dlfcn.h>
#include <gmock/gmock.h>
#include <unistd.h>
#include <zirk/backend.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <tuple>
#include <vector>

#include "helpers/logged.h"
#include "helpers/plugins.h"

namespace ZIRK {
namespace {

using helpers::LoggedAt;
using helpers::Plugin;

/// A loader of the test's own, with an empty table.
class Loader : public testing::Test {
 protected:
  void SetUp(const std::string& dso) { loader.SetupGfxImpl("X", dso, {5, 6}, false); }

  GraphicsImplLoader loader;
};

TEST_F(Loader, UnknownNames) {
  EXPECT_EQ(LoggedAt(4, [&] { EXPECT_FALSE(loader.IsLibraryAvailable("x")); }),
            "<ZIRK.warning>: Nonexistent backend x\n");
  EXPECT_EQ(LoggedAt(4, [&] { EXPECT_EQ(loader.GetFeatureInfo("x").features, 0u); }),
            "<ZIRK.warning>: Cannot get featureInfo for unsupported backend x\n");
  EXPECT_EQ(LoggedAt(4, [&] { loader.DestroyImplInstance("x", nullptr); }),
            "<ZIRK.warning>: Invoking the destructor for nonexistant implementation x!!!\n");
}

TEST_F(Loader, BrokenPlugins) {
  const std::tuple<const char*, const char*, const char*, const char*> cases[] = {
      {"Nothing", "Missing", "DestroyVuGraphics", ""},
      {"Nothing", "CreateVuGraphics", "Missing", ""},
      {"NotElf", "", "", " .+"},
      {"OtherInterface", "CreateVuGraphics", "DestroyVuGraphics",
       " is built for the backend interface 0, and this library has 1"},
  };
  for (const auto& [plugin, create, destroy, refusal] : cases) {
    const std::string dso = Plugin(plugin);
    loader.SetupGfxImpl("X", dso, create, destroy, {0, 0}, false);
    const std::string opening =
        *refusal ? "<ZIRK.warning>: (dlopen\\(\\) )?" + dso + refusal + "\n" : "";
    const std::string expected = "<ZIRK.info>: Loading implementation X\\.\\.\n" + opening +
                                 "<ZIRK.error>: Failed to load implementation X " + dso +
                                 "\n<ZIRK.error>: failed to load implementation X \\[-2\\]\n";
    // A failure may be tried again, with the same result.
    for (int i = 0; i < 2; ++i) {
      EXPECT_THAT(LoggedAt(6, [&] { EXPECT_EQ(loader.CreateImplInstance("X", false), nullptr); }),
                  testing::MatchesRegex(expected));
      EXPECT_EQ(dlopen(dso.c_str(), RTLD_LAZY | RTLD_NOLOAD), nullptr) << dso;
    }
  }
}

TEST_F(Loader, AnOpenPluginOutlivesItsReplacement) {
  SetUp(Plugin("Independent"));
  const auto run = [&] {
    void* const graphics = loader.CreateImplInstance("X", true);
    SetUp(Plugin("Missing"));
    loader.DestroyImplInstance("X", graphics);
  };
  EXPECT_EQ(LoggedAt(4, run),
            "<ZIRK.warning>: Invoking the constructor for implementation X...\n"
            "CreateVuGraphics 1\nDestroyVuGraphics\ncontext destroyed\n");
  EXPECT_EQ(loader.loadImpl("X"), -2);
}

TEST_F(Loader, ClosesItsPluginsWhenItGoes) {
  const std::string dso = Plugin("Nothing");
  {
    GraphicsImplLoader shortLived;
    shortLived.SetupGfxImpl("X", dso, {0, 0}, false);
    // This one opens, and declines to make a context.
    for (int i = 0; i < 2; ++i)
      EXPECT_EQ(LoggedAt(3, [&] { EXPECT_EQ(shortLived.CreateImplInstance("X", false), nullptr); }),
                "");
  }
  EXPECT_EQ(dlopen(dso.c_str(), RTLD_LAZY | RTLD_NOLOAD), nullptr);
  // One without the entry points is closed once, and so stays open for others.
  void* const own = dlopen(dso.c_str(), RTLD_LAZY);
  {
    GraphicsImplLoader shortLived;
    shortLived.SetupGfxImpl("X", dso, "Missing", "Missing", {0, 0}, false);
    EXPECT_EQ(shortLived.loadImpl("X"), -2);
  }
  EXPECT_EQ(dlopen(dso.c_str(), RTLD_LAZY | RTLD_NOLOAD), own);
  for (int i = 0; i < 2; ++i) dlclose(own);
}

/// Files in /tmp, which the two probed folders reach through "../../tmp".
TEST_F(Loader, LooksOnDiskForTheFirst29CharactersOfAPath) {
  const std::string unique = std::to_string(getpid());
  const std::string there = unique + std::string(14 - unique.size(), 'z');  // 29 in all
  const std::string absent = unique + std::string(14 - unique.size(), 'y');
  std::ofstream("/tmp/" + there) << "x";
  std::ofstream("/tmp/" + absent + "z") << "x";
  const std::tuple<const char*, std::string, bool> cases[] = {
      {"There", there, true},
      {"Not looked for", there, false},
      {"Cut to one that is there", there + "z", true},
      {"Cut to one that is absent", absent + "z", true},
  };
  for (const auto& [name, file, look] : cases)
    loader.SetupGfxImpl(name, "../../tmp/" + file, {0, 0}, look);
  for (const std::string& name : {there, absent + "z"}) unlink(("/tmp/" + name).c_str());
  for (int call = 0; call < 2; ++call) {
    unsigned count = 0;
    const char* const* const names = loader.GetBackends(count);
    EXPECT_THAT(std::vector<std::string>(names, names + count),
                testing::UnorderedElementsAre("There", "Cut to one that is there"));
  }
}

// These need a process that has not used the loader yet.

TEST(LoaderDeathTest, TheTableIsBuiltInOrder) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        LogLevel = 6;
        LogInterval = 0;
        for (const char* name : {"OpenGLES2", "DirectFB", "GLCompositor", "Hybrid", "Stub", "FB"}) {
          const auto info = GraphicsImplLoader::GetInstance()->GetFeatureInfo(name);
          fprintf(stderr, "%u 0x%X, ", info.features, info.details);
        }
        exit(0);
      },
      testing::ExitedWithCode(0),
      "^<ZIRK.info>: Setting up Implementation OpenGLES2 with DSO libZIRKImplOpenGL.so, "
      "\\[CreateVuGraphics, DestroyVuGraphics\\]\\.\n"
      ".*DirectFB with DSO libZIRKImplDirectFB.so, .CreateVuGraphics, DestroyVuGraphics.*"
      "GLCompositor with DSO libZIRKImplOpenGL.so, .CreateVuCompositor, DestroyVuCompositor.*"
      "Hybrid with DSO libZIRKImplHybrid.so, .CreateVuGraphics, DestroyVuGraphics.*"
      "Stub with DSO libZIRKImplStub.so, .CreateVuGraphics, DestroyVuGraphics.*"
      "FB with DSO libZIRKImplFB.so, .CreateVuGraphics, DestroyVuGraphics.*\n"
      "1 0x7F, 0 0x1BF, 0 0x0, 1 0x0, 0 0x0, 0 0x0, $");
}

TEST(LoaderDeathTest, TheEnvironmentNamesTheDefaultOnce) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        setenv("ZIRK_DEFAULT_GFX_BACKEND", "Anything", 1);
        VuGraphics::SetDefaultImpl("Stub");
        for (int i = 0; i < 2; ++i) {
          VuGraphics::HasBackend("FB");
          fprintf(stderr, "%s ", VuGraphics::GetDefaultImpl());
          VuGraphics::SetDefaultImpl("Stub");
        }
        exit(0);
      },
      testing::ExitedWithCode(0), "Anything Stub $");
}

}  // namespace
}  // namespace ZIRK
