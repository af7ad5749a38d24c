#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "operations.h"
#include "textpeer.h"

namespace ZIRK::bench {

namespace {

using Surface = std::vector<uint32_t>;
using Channels = std::array<double, 4>;

constexpr VuColor kBackground{0xFF204060};

/// Draws on a plain background; empty if the peer cannot.
Surface DrawOnce(Peer& peer, const Operation& operation) {
  peer.Fill({{0, 0, kWidth, kHeight}}, kBackground);
  if (!operation.draw(peer, operation.MakeItems())) return {};
  Surface surface(size_t{kWidth} * kHeight);
  peer.Read(surface.data());
  return surface;
}

/// Mean channels of the square of `cell` pixels at (x, y).
Channels MeanOf(const Surface& surface, int x, int y, int cell) {
  Channels sum{};
  for (int row = y; row < y + cell; ++row) {
    for (int column = x; column < x + cell; ++column) {
      const uint32_t pixel = surface[static_cast<size_t>(row * kWidth + column)];
      for (int i = 0; i < 4; ++i) sum[static_cast<size_t>(i)] += pixel >> (8 * i) & 255;
    }
  }
  for (double& channel : sum) channel /= cell * cell;
  return sum;
}

double Distance(const Channels& a, const Channels& b) {
  double sum = 0;
  for (size_t i = 0; i < a.size(); ++i) sum += std::abs(a[i] - b[i]);
  return sum / 4;
}

struct Difference {
  double mean = 0, worst = 0;
};

/// Of the squares in which either shows more than the background.
Difference Compare(const Surface& a, const Surface& b, int cell, VuColor behind = kBackground) {
  const Surface plain(a.size(), behind.argb);
  const Channels background = MeanOf(plain, 0, 0, 1);
  Difference result;
  int drawn = 0;
  for (int y = 0; y < kHeight; y += cell) {
    for (int x = 0; x < kWidth; x += cell) {
      const Channels first = MeanOf(a, x, y, cell), second = MeanOf(b, x, y, cell);
      if (first == background && second == background) continue;
      const double distance = Distance(first, second);
      ++drawn;
      result.mean += distance;
      result.worst = std::max(result.worst, distance);
    }
  }
  result.mean /= std::max(drawn, 1);
  return result;
}

bool VerifyOperation(const Operation& operation, const Peers& peers) {
  const Surface reference = DrawOnce(*peers[0], operation);
  bool good = true;
  for (size_t i = 1; i < peers.size(); ++i) {
    const Surface surface = DrawOnce(*peers[i], operation);
    if (surface.empty()) {
      std::printf("%-16s %-8s cannot\n", operation.name, peers[i]->Name());
      continue;
    }
    const Difference difference = Compare(reference, surface, operation.cell);
    const bool within = difference.mean <= operation.tolerance;
    good = good && within;
    std::printf("%-16s %-8s mean %6.3f worst %6.2f  %s\n", operation.name, peers[i]->Name(),
                difference.mean, difference.worst, within ? "ok" : "DIFFERS");
  }
  return good;
}

/// Libraries hint and round differently, but they draw the same text at the same places.
constexpr double kTextWidths = 0.02;
constexpr int kTextCell = 8;
constexpr double kTextTolerance = 8;

/// What the peer has drawn, from its black surface on; empty if it cannot draw.
Surface DrawnText(TextPeer& peer, const TextLines& lines) {
  Surface surface(size_t{kWidth} * kHeight);
  if (!peer.Draw(lines) || !peer.Read(surface.data())) surface.clear();
  return surface;
}

bool VerifyWidths(double reference, TextPeer& peer, const TextLines& lines) {
  const double width = peer.Measure(lines);
  if (width < 0) return true;
  const bool within = std::abs(width / reference - 1) <= kTextWidths;
  std::printf("%-16s %-8s %.3f of ZIRK's  %s\n", "TextMeasure", peer.Name(), width / reference,
              within ? "ok" : "DIFFERS");
  return within;
}

bool VerifyDrawnText(const Surface& reference, TextPeer& peer, const TextLines& lines) {
  const Surface surface = DrawnText(peer, lines);
  if (surface.empty()) return true;
  const Difference difference = Compare(reference, surface, kTextCell, VuColor{0xFF000000});
  const bool within = difference.mean <= kTextTolerance;
  std::printf("%-16s %-8s mean %6.3f worst %6.2f  %s\n", "TextDraw", peer.Name(), difference.mean,
              difference.worst, within ? "ok" : "DIFFERS");
  return within;
}

/// The same number of lines.
bool VerifyWrapping(int expected, TextPeer& peer) {
  const int lines = peer.Wrap(MakeParagraph(), kParagraphWidth);
  if (lines < 0) return true;
  const bool same = lines == expected;
  std::printf("%-16s %-8s %d lines, ours %d  %s\n", "TextWrap", peer.Name(), lines, expected,
              same ? "ok" : "DIFFERS");
  return same;
}

}  // namespace

bool VerifyText(const TextPeers& peers) {
  const TextLines lines = MakeTextLines();
  const double width = peers[0]->Measure(lines);
  const Surface reference = DrawnText(*peers[0], lines);
  const int wrapped = peers[0]->Wrap(MakeParagraph(), kParagraphWidth);
  bool good = true;
  for (size_t i = 1; i < peers.size(); ++i) {
    good = VerifyWidths(width, *peers[i], lines) && good;
    good = VerifyDrawnText(reference, *peers[i], lines) && good;
    good = VerifyWrapping(wrapped, *peers[i]) && good;
  }
  return good;
}

bool Verify(const Peers& peers) {
  bool good = true;
  for (const Operation& operation : kOperations) good = VerifyOperation(operation, peers) && good;
  return good;
}

}  // namespace ZIRK::bench
