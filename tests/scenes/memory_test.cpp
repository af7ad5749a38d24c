// Creating and drawing while memory runs out, at each place that asks for it.

#include <functional>

#include "helpers/logged.h"
#include "helpers/pixels.h"
#include "scenes/operations.h"
#include "support/allocations.h"

namespace ZIRK::scenes {
namespace {

using helpers::Pixels;
using support::ScarceMemory;

class Memory : public OnEachBackend {};

TEST_P(Memory, MayRunOutInAnyOperation) {
  constexpr VuColor kGround{0xFF204060};
  int refusals = 0;
  for (const Operation& operation : kOperations) {
    SCOPED_TRACE(operation.name);
    Pixels expected;
    bool ranOut = true;
    // The first turn gets all that it asks for. Everything is new, so that nothing is cached.
    for (int granted = -1; ranOut; ++granted) {
      ASSERT_LT(granted, 1000);
      const auto target = NewTarget(kOperationWidth, kOperationHeight);
      Sources sources(*graphics_);
      target->Clear(kGround);
      target->Finish();
      const std::string log = helpers::LoggedAt(3, [&] {
        const ScarceMemory scarce(granted < 0 ? 1 << 20 : granted);
        EXPECT_NO_THROW(operation.run(*target, sources)) << granted;
        ranOut = scarce.HasRunOut();
      });
      EXPECT_EQ(ranOut, log.find("no memory") != std::string::npos) << granted << "\n" << log;
      if (ranOut) {
        ++refusals;
        // With memory everything is as if nothing had happened.
        target->Clear(kGround);
        sources.Fill();
        operation.run(*target, sources);
      }
      if (granted < 0) expected = helpers::PixelsOf(*target), ranOut = true;
      EXPECT_EQ(helpers::PixelsOf(*target), expected) << granted;
    }
  }
  // A font alone asks for memory more often.
  EXPECT_GT(refusals, 10);
}

/// Whether something was made, which it deletes.
template <class T>
bool Made(T* made) {
  delete made;
  return made != nullptr;
}

/// Gives `make` more memory each time until it is enough.
void ExpectOneLineWhereMemoryRunsOut(const char* name, const std::function<bool()>& make) {
  SCOPED_TRACE(name);
  bool ranOut = true;
  for (int granted = 0; ranOut; ++granted) {
    ASSERT_LT(granted, 1000);
    bool made = false;
    const std::string log = helpers::LoggedAt(3, [&] {
      const ScarceMemory scarce(granted);
      EXPECT_NO_THROW(made = make());
      ranOut = scarce.HasRunOut();
    });
    // Some succeed with less.
    EXPECT_TRUE(made || ranOut);
    size_t lines = 0;
    for (size_t at = 0; (at = log.find("memory", at)) != std::string::npos; ++at) ++lines;
    EXPECT_EQ(lines, made ? 0u : 1u) << granted << "\n" << log;
  }
}

TEST_P(Memory, MayRunOutInAnyCreator) {
  const std::string picture = ZIRK_TEST_IMAGES "rgba8.png", sans = FontFile("sans.ttf");
  const std::vector<unsigned char> bytes = helpers::FontBytes("sans.ttf");
  const auto expect = ExpectOneLineWhereMemoryRunsOut;
  VuGraphics& g = *graphics_;
  expect("a screen", [&] { return Made(g.CreateScreen(40, 40, true)); });
  expect("a bitmap", [&] { return Made(g.CreateBitmap(40, 40, {})); });
  expect("a picture", [&] { return Made(g.CreateBitmapFromFile(picture.c_str(), 9, 9, {})); });
  expect("a size", [&] { return g.BitmapSize(picture.c_str()) != 0; });
  expect("a font of a file", [&] { return Made(VuFont::CreateFont(sans.c_str(), 0, 9)); });
  expect("a font of memory", [&] {
    return Made(VuFont::CreateFontFromMemory(bytes.data(), unsigned(bytes.size()), 0, 9));
  });
  expect("a width", [&] {
    const std::unique_ptr<VuFont> font(VuFont::CreateFont(sans.c_str(), 0, 9));
    return font && font->GetOneLineWidth("width") != 0;
  });
  expect("a font of a registry", [&] {
    const std::unique_ptr<VuFontRegistry> registry(VuFontRegistry::Create());
    return registry && registry->Register(sans.c_str()) &&
           Made(registry->GetFont("ZIRK Test Sans", 9, false, false));
  });
  EXPECT_EQ(g.AvailableMemory(), g.TotalMemory()) << "something stayed behind";
  graphics_.reset();
  expect("a context", [] { return Open(GetParam()) != nullptr; });
}

INSTANTIATE_TEST_SUITE_P(Backends, Memory, testing::ValuesIn(kBackends));

}  // namespace
}  // namespace ZIRK::scenes
