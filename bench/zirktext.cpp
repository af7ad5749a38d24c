#include <zirk/kit/textbox.h>
#include <zirk/zirk.h>

#include "textpeer.h"

namespace ZIRK::bench {

namespace {

class ZirkText final : public TextPeer {
 public:
  ZirkText(std::unique_ptr<VuGraphics> graphics, VuPixelFormat format)
      : graphics_(std::move(graphics)), target_(graphics_->CreateBitmap(kWidth, kHeight, format)) {
    target_->Clear({0xFF000000});
  }

  const char* Name() const override { return "ZIRK"; }

  double Measure(const TextLines& lines) override {
    double sum = 0;
    for (const TextLine& line : lines) sum += font_.GetOneLineWidth(line.text.c_str());
    return sum;
  }

  bool Draw(const TextLines& lines) override {
    for (const TextLine& line : lines)
      target_->DrawText(font_, line.text.c_str(), {line.x, line.y}, kTextColor);
    target_->Finish();
    return true;
  }

  bool Open() override {
    const VuFont font(TextFont().c_str(), 0, kTextSize);
    static const std::string characters = OpenedCharacters();
    constexpr VuPoint kOutside{0, -1000};
    target_->DrawText(font, characters.c_str(), kOutside, kTextColor);
    target_->Finish();
    return true;
  }

  int Wrap(const std::string& paragraph, int width) override {
    kit::TextStyle style;
    style.width = width;
    kit::TextBox box;
    box.SetText(font_, paragraph, kTextColor, style);
    return static_cast<int>(box.GetLineCount());
  }

  bool Read(uint32_t* out) override { return target_->GetPixels({0, 0, kWidth, kHeight}, out); }

 private:
  std::unique_ptr<VuGraphics> graphics_;
  std::unique_ptr<VuBitmap> target_;
  const VuFont font_{TextFont().c_str(), 0, kTextSize};
};

std::unique_ptr<TextPeer> MakeZirkTextOn(VuPixelFormat format) {
  std::unique_ptr<VuGraphics> graphics(VuGraphics::Create("FB", false));
  if (!graphics) return nullptr;
  return std::make_unique<ZirkText>(std::move(graphics), format);
}

}  // namespace

std::unique_ptr<TextPeer> MakeZirkText() {
  return MakeZirkTextOn(VuPixelFormat::ARGB8888);
}

std::unique_ptr<TextPeer> MakeZirkTextOn565() {
  return MakeZirkTextOn(VuPixelFormat::RGB565);
}

}  // namespace ZIRK::bench
