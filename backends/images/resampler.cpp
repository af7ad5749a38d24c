#include "images/resampler.h"

#include <algorithm>

#include "images/imagecodec.h"

namespace ZIRK::backends {

namespace {

int RowLength(const AxisFit& fit) {
  return (fit.length + fit.shrink - 1) / fit.shrink;
}

/// Rows scaled to their final width, with four channels per pixel from 0 to 255 * 256.
class NarrowedRows {
 public:
  NarrowedRows(AxisFit fit, VuScaleMode mode, const std::function<bool(uint32_t*)>& nextRow)
      : filter_(fit, mode),
        nextRow_(nextRow),
        row_(static_cast<size_t>(RowLength(fit))),
        width_(fit.wanted) {
    for (auto& line : lines_) line.resize(static_cast<size_t>(width_) * 4);
  }

  /// Row `y`. Afterwards only the row before it and later rows are available. Null if the source
  /// fails.
  const uint16_t* Get(int y) {
    for (; rowsRead_ <= y; ++rowsRead_)
      if (!nextRow_(row_.data())) return nullptr;
    auto& line = lines_[y & 1];
    if (held_[y & 1] != y) Pack(line.data());
    held_[y & 1] = y;
    return line.data();
  }

  /// Reads the rows that were not needed, to find damage in them.
  bool Drain(int count) {
    for (; rowsRead_ < count; ++rowsRead_)
      if (!nextRow_(row_.data())) return false;
    return true;
  }

 private:
  void Pack(uint16_t* line) const {
    for (int x = 0; x < width_; ++x, line += 4) {
      const AxisFilter::Taps taps = filter_.At(x);
      uint32_t sum[4] = {128, 128, 128, 128};
      for (int i = 0; i < taps.count; ++i) {
        const uint32_t pixel = row_[static_cast<size_t>(taps.first + i)];
        for (int c = 0; c < 4; ++c) sum[c] += (pixel >> (8 * c) & 255u) * taps.shares[i];
      }
      for (int c = 0; c < 4; ++c) line[c] = static_cast<uint16_t>(sum[c] >> 8);
    }
  }

  AxisFilter filter_;
  const std::function<bool(uint32_t*)>& nextRow_;
  std::vector<uint32_t> row_;
  std::vector<uint16_t> lines_[2];
  int held_[2] = {-1, -1};
  int rowsRead_ = 0;
  int width_;
};

void AddLine(std::vector<uint32_t>& sums, const uint16_t* line, uint32_t share) {
  uint32_t* sum = sums.data();
  const size_t count = sums.size();
  for (size_t i = 0; i < count; ++i) sum[i] += line[i] * share;
}

void StoreRow(const std::vector<uint32_t>& sums, uint32_t* row, int width) {
  const uint32_t* sum = sums.data();
  for (int x = 0; x < width; ++x, sum += 4)
    row[x] = sum[0] >> 24 | sum[1] >> 24 << 8 | sum[2] >> 24 << 16 | sum[3] >> 24 << 24;
}

}  // namespace

AxisFilter::AxisFilter(AxisFit fit, VuScaleMode mode) {
  spans_.reserve(static_cast<size_t>(fit.wanted));
  for (int i = 0; i < fit.wanted; ++i) {
    if (mode != VuScaleMode::Bilinear)
      AddNearest(fit, i);
    else if (fit.wanted > fit.length)
      AddLinear(fit, i);
    else
      AddArea(fit, i);
  }
}

void AxisFilter::Begin(int first) {
  spans_.push_back({first, 0, shares_.size()});
}

void AxisFilter::Add(uint32_t share) {
  shares_.push_back(share);
  ++spans_.back().count;
}

void AxisFilter::AddNearest(AxisFit fit, int i) {
  Begin(static_cast<int>((2 * int64_t{i} + 1) * fit.length / (2 * int64_t{fit.wanted})));
  Add(kWhole);
}

/// Interpolates between the centres of two adjacent pixels. Beyond the outermost centres, the
/// colour of the edge continues.
void AxisFilter::AddLinear(AxisFit fit, int i) {
  const int64_t unit = 2 * int64_t{fit.wanted};
  const int64_t centre = (2 * int64_t{i} + 1) * fit.length - fit.wanted;
  const int last = fit.length - 1;
  const int first = centre <= 0 ? 0 : static_cast<int>(centre / unit);
  Begin(std::min(first, last));
  if (centre <= 0 || first >= last) return Add(kWhole);
  const auto second = static_cast<uint32_t>((centre % unit * kWhole + fit.wanted) / unit);
  Add(kWhole - second);
  Add(second);
}

/// The part of each original pixel that pixel `i` covers. Lengths are in units that make all of
/// them whole numbers.
void AxisFilter::AddArea(AxisFit fit, int i) {
  const int64_t unit = int64_t{fit.wanted} * fit.shrink;
  const int64_t begin = int64_t{i} * fit.length;
  const int64_t end = begin + fit.length;
  const auto first = static_cast<int>(begin / unit);
  const auto last = static_cast<int>((end - 1) / unit);
  Begin(first);
  uint32_t given = 0;
  for (int j = first; j <= last; ++j) {
    const int64_t covered = std::min(end, (j + 1) * unit) - begin;
    const auto upToHere = static_cast<uint32_t>((covered * kWhole + fit.length / 2) / fit.length);
    Add(upToHere - given);
    given = upToHere;
  }
}

bool Resample(AxisFit horizontal, AxisFit vertical, VuScaleMode mode,
              const std::function<bool(uint32_t*)>& nextRow, const PixelRows& target) {
  const AxisFilter filter(vertical, mode);
  NarrowedRows rows(horizontal, mode, nextRow);
  std::vector<uint32_t> sums(static_cast<size_t>(target.width) * 4);
  for (int y = 0; y < target.height; ++y) {
    const AxisFilter::Taps taps = filter.At(y);
    std::fill(sums.begin(), sums.end(), 1u << 23);
    for (int i = 0; i < taps.count; ++i) {
      const uint16_t* line = rows.Get(taps.first + i);
      if (!line) return false;
      AddLine(sums, line, taps.shares[i]);
    }
    StoreRow(sums, RowAt(target.pixels, target.pitch, y), target.width);
  }
  return rows.Drain(RowLength(vertical));
}

}  // namespace ZIRK::backends
