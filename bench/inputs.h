#pragma once

#include <zirk/vucolor.h>
#include <zirk/vupoint.h>
#include <zirk/vurect.h>

#include <cstdint>
#include <vector>

namespace ZIRK::bench {

/// The surface drawn on.
constexpr int kWidth = 1280;
constexpr int kHeight = 720;

/// Premultiplied 0xAARRGGBB pixels, rows without gaps.
struct Picture {
  int width, height;
  bool opaque;
  std::vector<uint32_t> pixels;

  /// The same colours, not premultiplied; 0 where there is nothing.
  std::vector<uint32_t> Straight() const;
};

/// Alpha only, rows without gaps; the width is a multiple of 4.
struct Coverage {
  int width, height;
  std::vector<uint8_t> alpha;
};

enum PictureId { Opaque64, Alpha64, Alpha16, Alpha128, Opaque200 };
enum MaskId { Mask200, Mask64 };

/// The pictures and masks that every peer makes its own copies of, in the order of their ids. The
/// alpha of the translucent ones runs through the whole range, so that shortcuts for opaque or
/// empty pixels gain little.
std::vector<Picture> MakePictures();
std::vector<Coverage> MakeMasks();

struct Line {
  VuPoint from, to;
};
using Rects = std::vector<VuRect>;
using Lines = std::vector<Line>;
using Colors = std::vector<VuColor>;

/// What one iteration draws; the same numbers for every peer and in every run.
struct Batch {
  Rects places;   ///< Inside the surface.
  Colors colors;  ///< Opaque, one for each place.
  Lines lines;    ///< From the middle of each place, half as long as it is wide.
};

Batch MakeBatch(int count, int width, int height);

}  // namespace ZIRK::bench
