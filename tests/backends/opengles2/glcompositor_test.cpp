// Screens as layers.

#include <atomic>
#include <thread>
#include <vector>

#include "backends/opengles2/injectedgl.h"
#include "helpers/logged.h"
#include "opengles2/glcompositor.h"

namespace ZIRK::backends {
namespace {

constexpr uint32_t kRed = 0xFFFF0000u, kGreen = 0xFF00FF00u, kBlue = 0xFF0000FFu;
constexpr uint32_t kBlack = 0xFF000000u;

LayerDescription Layer(int layer, VuRect destination, int order = 0, uint8_t opacity = 255) {
  return {layer, {}, destination, order, opacity};
}

class Compositor : public InjectedGl {
 protected:
  void SetUp() override {
    InjectedGl::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    graphics_ = NewContext();
    layers_ = GlLayers::Of(GlDevice::Acquire());
  }
  BitmapPtr NewScreen(uint8_t index, int width, int height, uint32_t color,
                      VuPixelFormat format = VuPixelFormat::ARGB8888) {
    BitmapPtr screen = InjectedGl::NewScreen(*graphics_, width, height, index, format);
    screen->Clear(VuColor{color});
    return screen;
  }
  void Configure(const std::vector<LayerDescription>& layers) {
    compositor_->SetConfiguration(layers.data(), static_cast<int>(layers.size()));
  }
  uint32_t Shown(int x, int y) {
    uint32_t pixel = 0;
    EXPECT_TRUE(layers_->Composed() && layers_->Composed()->Read({x, y, x + 1, y + 1}, &pixel));
    return pixel;
  }

  /// All windows, the oldest first.
  static std::vector<SDL_Window*> Windows() {
    std::vector<SDL_Window*> windows;
    for (Uint32 id = 0; id < 1000; ++id)
      if (SDL_Window* const window = SDL_GetWindowFromID(id)) windows.push_back(window);
    return windows;
  }

  std::unique_ptr<GlGraphics> graphics_;
  std::shared_ptr<GlLayers> layers_;
  std::unique_ptr<GlCompositor> compositor_ = std::make_unique<GlCompositor>();
};

TEST_F(Compositor, StacksWhatIsEnabled) {
  // A newer compositor takes over from the one before.
  compositor_ = std::make_unique<GlCompositor>();
  const BitmapPtr video = NewScreen(0, 40, 30, kRed), ui = NewScreen(2, 60, 50, kGreen),
                  cursor = NewScreen(1, 4, 4, kBlue);
  LayerDescription lowest = Layer(0, {0, 0, 30, 30});
  lowest.blended = false;
  Configure({Layer(1, {12, 12, 4, 4}, 9), Layer(2, {10, 10, 20, 10}, 5, 128), lowest});
  for (const auto& screen : {&video, &ui, &cursor}) (*screen)->SwapBuffers();
  EXPECT_EQ(layers_->Composed()->State().width, 40);
  EXPECT_EQ(Shown(2, 2), kRed);
  EXPECT_EQ(Shown(35, 2), kBlack);
  EXPECT_EQ(Shown(25, 15), 0xFF7F8000u);
  EXPECT_EQ(Shown(13, 13), kBlue);
  compositor_->EnableLayer(1, false);
  EXPECT_EQ(Shown(13, 13), kBlue);
  cursor->SwapBuffers();
  EXPECT_EQ(Shown(13, 13), 0xFF7F8000u);
}

TEST_F(Compositor, ComposesOnceForAllLayersThatAreDone) {
  const BitmapPtr video = NewScreen(0, 8, 8, kRed), ui = NewScreen(1, 8, 8, kGreen);
  video->SwapBuffers();
  EXPECT_EQ(layers_->Frames(), 0u);
  ui->SwapBuffers();
  EXPECT_EQ(layers_->Frames(), 1u);
  ui->Clear(VuColor{kBlue});
  ui->SwapBuffers();
  EXPECT_EQ(layers_->Frames(), 2u);
  EXPECT_EQ(Shown(1, 1), kBlue);
  // A swap without drawing keeps the pace of the display.
  ui->SwapBuffers();
  EXPECT_EQ(layers_->Frames(), 3u);
  // A layer that is not done holds up the others for one frame only, and not at all while it is
  // disabled.
  video->SetPixels({0, 0, 1, 1}, &kGreen, 4);
  for (unsigned frames : {3u, 4u, 5u}) {
    ui->SwapBuffers();
    EXPECT_EQ(layers_->Frames(), frames);
  }
  video->Clear(VuColor{kRed});
  compositor_->EnableLayer(0, false);
  ui->SwapBuffers();
  EXPECT_EQ(layers_->Frames(), 6u);
}

TEST_F(Compositor, ScreensChangeSidesWithIt) {
  compositor_.reset();
  const BitmapPtr screen = NewScreen(0, 200, 8, kGreen);  // Too large for a page.
  const auto fill = [&](uint32_t color) { screen->DrawRect({0, 0, 200, 8}, VuColor{color}); };
  fill(kRed);
  screen->SwapBuffers();
  EXPECT_EQ(layers_->Composed(), nullptr);
  compositor_ = std::make_unique<GlCompositor>();
  Configure({Layer(0, {0, 0, 4, 8})});
  fill(kRed);
  screen->SwapBuffers();
  EXPECT_EQ(Shown(1, 1), kRed);
  EXPECT_EQ(Shown(6, 1), kBlack);
  fill(kGreen);
  compositor_.reset();
  screen->SwapBuffers();
  EXPECT_EQ(layers_->Composed(), nullptr);
  EXPECT_EQ(PixelOf(*screen, 6, 1), kGreen);
  fill(kBlue);
  EXPECT_EQ(PixelOf(*screen, 6, 1), kBlue);
}

TEST_F(Compositor, HasOneWindowWhicheverScreenSwapsFirst) {
  compositor_.reset();
  BitmapPtr first = NewScreen(0, 8, 8, kRed);
  const BitmapPtr other = NewScreen(1, 8, 8, kGreen, VuPixelFormat::XRGB8888);
  const std::vector<SDL_Window*> before = Windows();
  ASSERT_EQ(before.size(), 2u);
  compositor_ = std::make_unique<GlCompositor>();
  Configure({Layer(0, {}), Layer(1, {0, 0, 4, 8})});
  other->SwapBuffers();
  EXPECT_EQ(Shown(1, 1), kGreen);
  EXPECT_EQ(Shown(6, 1), kRed);
  EXPECT_EQ(Windows(), std::vector<SDL_Window*>{before[0]});
  compositor_.reset();
  other->SwapBuffers();
  first->SwapBuffers();
  EXPECT_EQ(PixelOf(*other, 6, 1), kGreen);
  EXPECT_EQ(PixelOf(*first, 1, 1), kRed);
  EXPECT_EQ(Windows().size(), 2u);
  // Without the first screen the display is a window of its own, which ends with the compositor.
  first.reset();
  compositor_ = std::make_unique<GlCompositor>();
  for (const bool composing : {true, false}) {
    if (!composing) compositor_.reset();
    other->SwapBuffers();
    EXPECT_EQ(Windows().size(), 1u) << composing;
  }
}

TEST_F(Compositor, RefusesAConfigurationAsAWhole) {
  const LayerDescription good = Layer(3, {1, 2, 3, 4});
  Configure({good});
  for (const LayerDescription& bad : {Layer(1, {0, 0, -1, 5}), Layer(1, {5, 5, 0, 9}),
                                      Layer(16, {}), Layer(-1, {}), Layer(3, {})}) {
    const std::string log = helpers::LoggedAt(4, [&] { Configure({Layer(4, {}), good, bad}); });
    EXPECT_EQ(log.rfind("<ZIRK.warning>: the layers stay as they are", 0), 0u);
    EXPECT_EQ(log.find('\n'), log.size() - 1);
  }
  compositor_->SetConfiguration(nullptr, 1);
  compositor_->EnableLayer(5, true);
  LayerDescription held[GlCompositor::kLayers];
  int count = 0;
  compositor_->GetConfiguration(held, count);
  EXPECT_EQ(count, 1);
  EXPECT_EQ(held[0].layer, 3);
  EXPECT_EQ(held[0].destination.height, 4);
}

TEST_F(Compositor, EndsInAnotherThread) {
  const BitmapPtr screen = NewScreen(0, 8, 8, kRed);
  std::atomic<bool> done = false;
  std::thread other([&] {
    for (int i = 0; i < 200; ++i) {
      compositor_.reset();
      compositor_ = std::make_unique<GlCompositor>();
      compositor_->EnableLayer(0, i % 2);
    }
    done = true;
  });
  while (!done) screen->SwapBuffers();
  other.join();
  EXPECT_EQ(PixelOf(*screen, 0, 0), kRed);
}

}  // namespace
}  // namespace ZIRK::backends
