// A frame as user interfaces have them, by the hybrid backend and by the two that it is put
// together from: pictures that never change, lines of text that do, and one bitmap that the
// processor edits. The bitmap is edited in three ways: `Pixels` puts in a part of it, `Drawing`
// draws on it, `Lock` writes into its memory. `None` leaves it alone.

#include <benchmark/benchmark.h>
#include <zirk/zirk.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "inputs.h"
#include "support/workloads.h"

namespace ZIRK::bench {
namespace {

enum class Edit { None, Pixels, Drawing, Lock };
struct NamedEdit {
  const char* name;
  Edit edit;
};
constexpr NamedEdit kEdits[] = {{"None", Edit::None},
                                {"Pixels", Edit::Pixels},
                                {"Drawing", Edit::Drawing},
                                {"Lock", Edit::Lock}};
constexpr const char* kBackends[] = {"Hybrid", "OpenGLES2", "FB"};

constexpr int kIcons = 40, kLines = 16;
constexpr int kChartWidth = 512, kChartHeight = 256;

using BitmapPtr = std::unique_ptr<VuBitmap>;

class Interface {
 public:
  bool Open(const char* backend) {
    graphics_.reset(VuGraphics::Create(backend, false));
    if (!graphics_) return false;
    screen_.reset(graphics_->CreateScreen(kWidth, kHeight, true));
    if (!screen_) return false;
    background_ = New(kWidth, kHeight, VuPixelFormat::XRGB8888);
    background_->Clear(VuColor{0xFF10243E});
    for (int i = 0; i < 60; ++i)
      background_->DrawRect({i * 20, i * 11, 90, 60}, VuColor{0x40FFFFFFu});
    const Picture picture = MakePictures()[Alpha64];
    icon_ = New(64, 64, VuPixelFormat::ARGB8888);
    icon_->SetPixels({0, 0, 64, 64}, picture.pixels.data(), 64 * 4);
    chart_ = New(kChartWidth, kChartHeight, VuPixelFormat::ARGB8888);
    chart_->Clear(VuColor{0xFF203040});
    return true;
  }

  void ClipToOnePixel() { screen_->SetClippingRect({0, 0, 1, 1}); }

  void DrawFrame(Edit edit) {
    ++frame_;
    EditChart(edit);
    screen_->DrawObject({0, 0, kWidth, kHeight}, *background_);
    for (int i = 0; i < kIcons; ++i)
      screen_->DrawObject({20 + i % 10 * 80, 20 + i / 10 * 80, 64, 64}, *icon_);
    screen_->DrawObject({700, 400, kChartWidth, kChartHeight}, *chart_);
    for (int i = 0; i < kLines; ++i) {
      const std::string text = "Reading " + std::to_string(i) +
                               " of the sensors: " + std::to_string(frame_ * 37 % 10007 * (i + 1));
      screen_->DrawText(*font_, text.c_str(), {30, 380 + i * 20}, VuColor{0xFFF0F0F0});
    }
    screen_->SwapBuffers();
  }

  /// Reading a pixel waits until all is drawn.
  void Finish() {
    uint32_t pixel;
    screen_->GetPixels({0, 0, 1, 1}, &pixel);
    benchmark::DoNotOptimize(pixel);
  }

 private:
  BitmapPtr New(int width, int height, VuPixelFormat format) {
    return BitmapPtr(graphics_->CreateBitmap(width, height, format));
  }

  void EditChart(Edit edit) {
    const int x = static_cast<int>(frame_ * 8 % (kChartWidth - 32));
    const uint32_t color = 0xFF000000u | frame_ * 2654435761u;
    switch (edit) {
      case Edit::None:
        return;
      case Edit::Pixels:
        column_.fill(color);
        chart_->SetPixels({x, 0, 8, kChartHeight}, column_.data(), 8 * 4);
        return;
      case Edit::Drawing:
        chart_->DrawRect({x, 0, 32, kChartHeight}, VuColor{0xFF203040});
        for (int i = 0; i < 20; ++i)
          chart_->DrawLine({x, i * 12}, {x + 31, static_cast<int>((color >> i & 63) + 100)},
                           VuColor{color});
        return;
      case Edit::Lock:
        if (!chart_->Lock()) return;
        const VuBitmapInfo info = chart_->GetInfo();
        auto* const row = static_cast<uint8_t*>(info.pixels);
        for (int y = 0; y < kChartHeight; ++y)
          std::fill_n(reinterpret_cast<uint32_t*>(row + y * info.pitch) + x, 32, color);
        chart_->Unlock();
        return;
    }
  }

  const std::unique_ptr<VuFont> font_{VuFont::CreateFont(ZIRK_BENCH_FONT, 0, 16)};
  std::unique_ptr<VuGraphics> graphics_;
  BitmapPtr screen_, background_, icon_, chart_;
  std::array<uint32_t, 8 * kChartHeight> column_{};
  uint32_t frame_ = 0;
};

void Register(const char* backend, const NamedEdit& edit, bool clipped) {
  const auto measure = [=](benchmark::State& state) {
    Interface interface;
    if (!interface.Open(backend)) return state.SkipWithError("does not run here");
    if (clipped) interface.ClipToOnePixel();
    for (int i = 0; i < 3; ++i) interface.DrawFrame(edit.edit);
    interface.Finish();
    for (auto _ : state) {
      interface.DrawFrame(edit.edit);
      interface.Finish();
    }
  };
  const std::string name = std::string(clipped ? "Clipped" : "Frame") + edit.name + "/" + backend;
  benchmark::RegisterBenchmark(name.c_str(), measure)
      ->Unit(benchmark::kMicrosecond)
      ->MeasureProcessCPUTime();
}

/// What `zirkinfo bench` measures by the clock, in the same unit.
void Register(const char* backend, const support::Workload& workload) {
  const auto measure = [&workload, backend](benchmark::State& state) {
    const std::unique_ptr<VuGraphics> graphics(VuGraphics::Create(backend, false));
    const BitmapPtr screen(graphics ? graphics->CreateScreen(kWidth, kHeight, true) : nullptr);
    if (!screen) return state.SkipWithError("does not run here");
    support::Stage stage = support::MakeStage(*graphics, *screen, ZIRK_BENCH_FONT);
    if (!stage.sprite) return state.SkipWithError("does not run here");
    workload.draw(stage);
    double done = 0;
    for (auto _ : state) done += workload.draw(stage);
    state.counters[workload.unit] = benchmark::Counter(done, benchmark::Counter::kIsRate);
  };
  benchmark::RegisterBenchmark((std::string(workload.name) + "/" + backend).c_str(), measure)
      ->Unit(benchmark::kMicrosecond)
      ->MeasureProcessCPUTime();
}

}  // namespace
}  // namespace ZIRK::bench

int main(int argc, char** argv) {
  using namespace ZIRK::bench;
  ZIRK::LogLevel = 3;
  for (const bool clipped : {false, true})
    for (const NamedEdit& edit : kEdits)
      for (const char* backend : kBackends) Register(backend, edit, clipped);
  for (const ZIRK::support::Workload& workload : ZIRK::support::kWorkloads)
    for (const char* backend : kBackends) Register(backend, workload);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
