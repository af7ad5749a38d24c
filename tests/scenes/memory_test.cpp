// Creating and drawing while memory runs out, at each place where it is asked for.

#include <functional>

#include "helpers/logged.h"
#include "helpers/pixels.h"
#include "scenes/backends.h"
#include "support/allocations.h"

namespace ZIRK::scenes {
namespace {

using helpers::Pixels;
using support::ScarceMemory;

constexpr int kSide = 40;
constexpr VuRect kAll{0, 0, kSide, kSide}, kPart{9, 3, 20, 20}, kSmall{3, 3, 9, 9};
constexpr VuPoint kFrom{1, 2}, kTo{30, 20};
constexpr VuRect kUncut{0, 0, 0, 0};

const VuTVector2D<float> kTexel{1, 1};

/// What operations read. A new one for each operation, so that nothing is kept from the one before.
struct Sources {
  explicit Sources(VuGraphics& g)
      : graphics(g),
        target(NewTarget(g, kSide, kSide)),
        bitmap(g.CreateBitmap(kSide, kSide, VuPixelFormat::ARGB8888)),
        narrow(g.CreateBitmap(kSide, kSide, VuPixelFormat::ARGB1555)),
        font("sans.ttf", 14) {
    target->Clear(VuColor{0xFF204060});
    bitmap->Clear(VuColor{0x80408020});
    narrow->Clear(white);
    target->Finish();
  }

  VuGraphics& graphics;
  const std::unique_ptr<VuBitmap> target, bitmap, narrow;
  const TestFont font;
};

struct Operation {
  const char* name;
  std::function<void(Sources&)> run;
};

VuTransform Turned() {
  VuTransform t;
  t.rotation = 20;
  return t;
}

const Operation kOperations[] = {
    {"a slanted rectangle", [](Sources& s) { s.target->DrawRect(kPart, white, Turned()); }},
    {"a slanted line", [](Sources& s) { s.target->DrawLine(kFrom, kTo, white); }},
    {"a masked line",
     [](Sources& s) { s.target->DrawLine(kFrom, kTo, white, VuTransform(), *s.bitmap, nullptr); }},
    {"a point through itself",
     [](Sources& s) { s.target->DrawPoint(kTo, 5, white, VuTransform(), *s.target, kTexel); }},
    {"a rectangle through itself",
     [](Sources& s) { s.target->DrawRect(kAll, white, VuTransform(), *s.target, nullptr); }},
    {"a bitmap", [](Sources& s) { s.target->DrawObject(kSmall, *s.bitmap, kSmall); }},
    {"a slanted bitmap",
     [](Sources& s) { s.target->DrawObject(kPart, *s.narrow, kAll, Turned()); }},
    {"itself", [](Sources& s) { s.target->DrawObject(kPart, *s.target, kAll); }},
    {"itself onto a bitmap",
     [](Sources& s) {
       s.bitmap->DrawObject(kAll, *s.target, kAll);
       s.target->DrawObject(kAll, *s.bitmap, kAll);
     }},
    {"text", [](Sources& s) { s.target->DrawText(s.font, "Text", kFrom, white); }},
    {"slanted text",
     [](Sources& s) { s.target->DrawText(s.font, "Text", kFrom, white, Turned()); }},
    {"masked text",
     [](Sources& s) {
       s.target->DrawText(s.font, "Text", kFrom, white, VuTransform(), *s.bitmap, nullptr, kUncut);
     }},
    {"pixels",
     [](Sources& s) {
       const Pixels pixels(kSide * kSide, 0xFF112233);
       s.target->SetPixels({2, 2, 9, 9}, pixels.data(), 4 * kSide);
       s.narrow->SetPixels({2, 2, 9, 9}, pixels.data(), 4 * kSide);
       Pixels read(kSide * kSide);
       s.target->GetPixels(kAll, read.data());
       s.narrow->GetPixels(kAll, read.data());
       s.target->DrawObject(kAll, *s.narrow, kAll);
     }},
    {"copied pixels",
     [](Sources& s) {
       s.target->CopyPixels({1, 1}, *s.target, {9, 9, 20, 20});
       s.target->CopyPixels({20, 20}, *s.narrow, kAll);
       s.bitmap->CopyPixels({2, 2}, *s.target, kAll);
       s.target->DrawObject({2, 2, 9, 9}, *s.bitmap, {2, 2, 9, 9});
     }},
    {"a locked surface",
     [](Sources& s) {
       if (!s.target->Lock(true)) return;
       static_cast<uint32_t*>(s.target->GetInfo().pixels)[3] = 0xFF00FF00;
       s.target->Unlock();
     }},
    {"the end of a frame",
     [](Sources& s) {
       s.target->Clear(VuColor{0xFF102030});
       s.target->SetName("target");
       s.target->Flush();
       s.target->Finish();
     }},
};

class Memory : public OnEachBackend {};

TEST_P(Memory, MayRunOutInAnyOperation) {
  int refusals = 0;
  for (const Operation& operation : kOperations) {
    SCOPED_TRACE(operation.name);
    Sources calm(*graphics_);
    operation.run(calm);
    const Pixels expected = helpers::PixelsOf(*calm.target);
    bool ranOut = true;
    for (int granted = 0; ranOut; ++granted) {
      ASSERT_LT(granted, 1000);
      Sources sources(*graphics_);
      const std::string log = helpers::LoggedAt(3, [&] {
        const ScarceMemory scarce(granted);
        EXPECT_NO_THROW(operation.run(sources)) << granted;
        ranOut = scarce.HasRunOut();
      });
      EXPECT_EQ(ranOut, log.find("no memory") != std::string::npos) << granted << "\n" << log;
      if (ranOut) {
        ++refusals;
        // With memory everything is as if nothing had happened.
        sources.target->Clear(VuColor{0xFF204060});
        sources.bitmap->Clear(VuColor{0x80408020});
        sources.narrow->Clear(white);
        operation.run(sources);
      }
      EXPECT_EQ(helpers::PixelsOf(*sources.target), expected) << granted;
    }
  }
  // A font alone asks for memory more often.
  EXPECT_GT(refusals, 10);
}

const std::string kPicture = ZIRK_TEST_IMAGES "rgba8.png";
const std::vector<unsigned char> kFont = helpers::FontBytes("sans.ttf");

/// Deletes what was made; whether there was something.
template <class T>
bool Made(T* made) {
  delete made;
  return made != nullptr;
}

const struct {
  const char* name;
  std::function<bool(VuGraphics&)> make;
} kCreators[] = {
    {"a screen", [](VuGraphics& g) { return Made(g.CreateScreen(kSide, kSide, true)); }},
    {"a bitmap", [](VuGraphics& g) { return Made(g.CreateBitmap(kSide, kSide, {})); }},
    {"a picture",
     [](VuGraphics& g) { return Made(g.CreateBitmapFromFile(kPicture.c_str(), 9, 9, {})); }},
    {"a size", [](VuGraphics& g) { return g.BitmapSize(kPicture.c_str()) != 0; }},
    {"a font of a file",
     [](VuGraphics&) { return Made(VuFont::CreateFont(FontFile("sans.ttf").c_str(), 0, 9)); }},
    {"a font of memory",
     [](VuGraphics&) {
       return Made(VuFont::CreateFontFromMemory(kFont.data(), unsigned(kFont.size()), 0, 9));
     }},
    {"a width",
     [](VuGraphics&) {
       const std::unique_ptr<VuFont> font(VuFont::CreateFont(FontFile("sans.ttf").c_str(), 0, 9));
       return font && font->GetOneLineWidth("width") != 0;
     }},
    {"a font of a registry",
     [](VuGraphics&) {
       const std::unique_ptr<VuFontRegistry> registry(VuFontRegistry::Create());
       return registry && registry->Register(FontFile("sans.ttf").c_str()) &&
              Made(registry->GetFont("ZIRK Test Sans", 9, false, false));
     }},
};

/// Gives `make` more memory from time to time until it is enough.
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
    // Some have less to work with and do without.
    EXPECT_TRUE(made || ranOut);
    size_t lines = 0;
    for (size_t at = 0; (at = log.find("memory", at)) != std::string::npos; ++at) ++lines;
    EXPECT_EQ(lines, made ? 0u : 1u) << granted << "\n" << log;
  }
}

TEST_P(Memory, MayRunOutInAnyCreator) {
  for (const auto& creator : kCreators)
    ExpectOneLineWhereMemoryRunsOut(creator.name, [&] { return creator.make(*graphics_); });
  graphics_.reset();
  ExpectOneLineWhereMemoryRunsOut("a context", [] { return Open(GetParam()) != nullptr; });
}

INSTANTIATE_TEST_SUITE_P(Backends, Memory, testing::ValuesIn(kBackends));

}  // namespace
}  // namespace ZIRK::scenes
