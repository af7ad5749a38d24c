#pragma once

#include <zirk/zirk.h>

#include <memory>
#include <string>

namespace ZIRK::showcase {

using Matrix = VuTMatrix2D<float>;

enum class Align { Left, Centre, Right };

/// The fonts of the picture, and functions that draw text with them. Each font has a fallback font
/// for scripts that it lacks.
class Lettering {
 public:
  /// `folder` ends in a slash.
  explicit Lettering(const std::string& folder);

  /// Draws small text. `at` is the top of the line's left end, middle or right end.
  void Label(VuBitmap& target, const char* text, VuPoint at, VuColor color,
             Align align = Align::Left) const;
  /// The same in bold.
  void Heading(VuBitmap& target, const char* text, VuPoint at, VuColor color,
               Align align = Align::Left) const;
  /// Draws medium-sized text, mapped by a matrix.
  void Caption(VuBitmap& target, const char* text, VuPoint at, VuColor color,
               const Matrix& place) const;
  /// Draws large text with an outline.
  void Title(VuBitmap& target, const char* text, VuPoint at, VuColor color, VuColor outline,
             const Matrix& place);

 private:
  std::unique_ptr<VuFont> label_, heading_, caption_, title_;
};

}  // namespace ZIRK::showcase
