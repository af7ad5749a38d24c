// Does the work of the benchmarks once per peer, between marks, for a counter of instructions. Each
// line of the output is an operation, a peer and a number of pixels or characters; the counter
// adds the instructions.

#include <pixman.h>
#include <sys/prctl.h>
#include <unistd.h>
#include <zirk/zirk.h>

#include <cstdio>
#include <functional>
#include <memory>
#include <string>

#include "mark.h"
#include "operations.h"
#include "textpeer.h"

namespace ZIRK::bench {

namespace {

void Mark(int isEnd) {
  prctl(static_cast<int>(kMark), isEnd, 0, 0, 0);
}

/// What is done for the first time is not counted.
void Count(const std::string& operation, const char* peer, int64_t units,
           const std::function<bool()>& work) {
  if (!work()) return;
  dprintf(STDOUT_FILENO, "%s\t%s\t%lld\t", operation.c_str(), peer, static_cast<long long>(units));
  Mark(0);
  work();
  Mark(1);
}

void CountOperations() {
  Peers peers;
  peers.push_back(MakeZirkPeer("ZIRK", "FB"));
  peers.push_back(MakePixmanPeer());
  for (const Operation& operation : kOperations) {
    const Batch batch = operation.MakeItems();
    const int64_t pixels = int64_t{operation.count} * operation.width * operation.height;
    for (const auto& peer : peers)
      Count(operation.name, peer->Name(), pixels, [&] { return operation.draw(*peer, batch); });
  }
}

void CountText(const char* operation, TextPeers peers) {
  const TextLines lines = MakeTextLines();
  const auto characters = static_cast<int64_t>(lines.size()) * kLineLength;
  for (const auto& peer : peers)
    Count(operation, peer->Name(), characters, [&] { return peer->Draw(lines); });
}

TextPeers Both(std::unique_ptr<TextPeer> ours, std::unique_ptr<TextPeer> pixmans) {
  TextPeers peers;
  peers.push_back(std::move(ours));
  peers.push_back(std::move(pixmans));
  return peers;
}

struct Unref {
  void operator()(pixman_image_t* image) const { pixman_image_unref(image); }
};
using Image = std::unique_ptr<pixman_image_t, Unref>;

/// A picture, or a half-transparent colour where there is none, onto RGB565.
void CountRgb565(const char* operation, int count, const Picture* picture) {
  const int size = picture ? picture->width : 200;
  const Batch batch = MakeBatch(count, size, size);
  const int64_t pixels = int64_t{count} * size * size;

  const std::unique_ptr<VuGraphics> graphics(VuGraphics::Create("FB", false));
  const auto make = [&](int width, int height, VuPixelFormat format) {
    return std::unique_ptr<VuBitmap>(graphics->CreateBitmap(width, height, format));
  };
  const std::unique_ptr<VuBitmap> target = make(kWidth, kHeight, VuPixelFormat::RGB565);
  const std::unique_ptr<VuBitmap> source = make(
      size, size, picture && picture->opaque ? VuPixelFormat::XRGB8888 : VuPixelFormat::ARGB8888);
  if (picture)
    source->SetPixels(source->GetBounds(), picture->pixels.data(), static_cast<unsigned>(size * 4));
  Count(operation, "ZIRK", pixels, [&] {
    for (const VuRect& r : batch.places)
      picture ? target->DrawObject(r, *source) : target->DrawRect(r, {0x80CC6633});
    return true;
  });

  const Image peerTarget(pixman_image_create_bits(PIXMAN_r5g6b5, kWidth, kHeight, nullptr, 0));
  const pixman_color_t half = {0x6666, 0x3333, 0x1919, 0x8080};
  void* const bits = picture ? const_cast<uint32_t*>(picture->pixels.data()) : nullptr;
  const Image peerSource(
      picture ? pixman_image_create_bits(picture->opaque ? PIXMAN_x8r8g8b8 : PIXMAN_a8r8g8b8, size,
                                         size, static_cast<uint32_t*>(bits), size * 4)
              : pixman_image_create_solid_fill(&half));
  const pixman_op_t op = picture && picture->opaque ? PIXMAN_OP_SRC : PIXMAN_OP_OVER;
  Count(operation, "Pixman", pixels, [&] {
    for (const VuRect& r : batch.places)
      pixman_image_composite32(op, peerSource.get(), nullptr, peerTarget.get(), 0, 0, 0, 0, r.x,
                               r.y, r.width, r.height);
    return true;
  });
}

}  // namespace

}  // namespace ZIRK::bench

int main() {
  using namespace ZIRK::bench;
  CountOperations();
  CountText("TextDraw", Both(MakeZirkText(), MakePixmanText()));
  const std::vector<Picture> pictures = MakePictures();
  CountRgb565("Fill200HalfOnto565", 50, nullptr);
  CountRgb565("BlitAlpha64Onto565", 200, &pictures[Alpha64]);
  CountRgb565("BlitOpaque64Onto565", 200, &pictures[Opaque64]);
  CountText("TextDrawOnto565", Both(MakeZirkTextOn565(), MakePixmanTextOn565()));
}
