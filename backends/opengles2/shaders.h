#pragma once

namespace ZIRK::backends {

// Each source follows `#define`s of SHAPED, MASKED, COLOR and TEXTURE as the program has them.

inline constexpr char kVertexShader[] = R"(
precision highp float;

attribute vec2 position;
attribute vec4 color;      // in the target's order
attribute vec2 texel;      // position in the texture
uniform vec4 target;       // pixels to OpenGL's coordinates: scale, offset
uniform vec2 texelSize;

varying vec2 texturePosition;
varying vec4 shade;

#ifdef SHAPED
attribute vec4 limits;
attribute vec4 shape;      // a corner, the way to the next
attribute vec4 shapeUnit;  // the way to the other, position in the unit square
varying vec2 place;
varying vec4 limit, corners, sideUnit;
#endif
#ifdef MASKED
attribute vec4 mask;       // position in the mask, twist
uniform vec2 maskTexelSize;
varying vec4 maskPosition;
#endif

void main() {
  gl_Position = vec4(position * target.xy + target.zw, 0.0, 1.0);
  texturePosition = texel * texelSize;
  shade = color;
#ifdef SHAPED
  place = position;
  limit = limits * texelSize.xyxy;
  corners = shape;
  sideUnit = shapeUnit;
#endif
#ifdef MASKED
  maskPosition = mask * maskTexelSize.xyxy;
#endif
}
)";

inline constexpr char kFragmentShader[] = R"(
precision highp float;

varying vec2 texturePosition;
varying vec4 shade;
uniform sampler2D source;
uniform mat4 order;        // the texture's channels to the target's

#ifdef SHAPED
// On the target: gl_FragCoord may have 16 bits only, whatever the precision is here.
varying vec2 place;
varying vec4 limit, corners, sideUnit;
#endif
#ifdef MASKED
varying vec4 maskPosition;
uniform sampler2D coverage;
uniform vec2 maskTexelSize;
uniform vec4 maskChannel;  // the one that is alpha
#endif

#ifdef SHAPED
// The integral over the height of the unit square of how far the side from a to b lies to the
// right in it. Round a shape these add up to the area that it shares with the square.
float reach(vec2 a, vec2 b) {
  float top = clamp(a.y, 0.0, 1.0), bottom = clamp(b.y, 0.0, 1.0);
  if (top == bottom) return 0.0;
  float x0 = mix(a.x, b.x, (top - a.y) / (b.y - a.y));
  float x1 = mix(a.x, b.x, (bottom - a.y) / (b.y - a.y));
  float left = min(x0, x1), right = max(x0, x1), width = right - left;
  if (width < 0.001) return clamp(0.5 * (left + right), 0.0, 1.0) * (bottom - top);
  float first = clamp(left, 0.0, 1.0), last = clamp(right, 0.0, 1.0);
  float sum = 0.5 * (last - first) * (last + first) + max(right, 1.0) - max(left, 1.0);
  return sum / width * (bottom - top);
}

// Which part of the pixel around `centre` the shape covers.
float covered(vec2 centre) {
  vec2 side = corners.zw, other = sideUnit.xy, from = centre - corners.xy;
  float area = side.x * other.y - side.y * other.x;
  vec2 distances = vec2(side.x * from.y - side.y * from.x, from.x * other.y - from.y * other.x);
  distances *= sign(area);
  vec2 margin = 0.501 * vec2(abs(side.x) + abs(side.y), abs(other.x) + abs(other.y));
  if (all(greaterThan(distances, margin)) && all(lessThan(distances, abs(area) - margin)))
    return 1.0;
  vec2 a = vec2(0.5) - from, b = a + side, c = b + other, d = a + other;
  return min(abs(reach(a, b) + reach(b, c) + reach(c, d) + reach(d, a)), 1.0);
}
#endif

#if defined(COLOR)
void main() {
  gl_FragColor = shade;
}
#elif defined(TEXTURE)
void main() {
  gl_FragColor = shade * texture2D(source, texturePosition);
}
#else
void main() {
  vec2 at = texturePosition;
  float textured = step(0.0, at.x);
  float amount = 1.0;
#ifdef SHAPED
  amount = covered(place);
  // What is not covered stays as it is even where blending is off.
  if (amount < 0.00196) discard;
  textured = step(0.0, limit.x);
  at = clamp(at, limit.xy, limit.zw);
#endif
#ifdef MASKED
  vec2 on = maskPosition.xy + maskPosition.zw * (sideUnit.z * sideUnit.w);
  on = clamp(on, 0.5 * maskTexelSize, 1.0 - 0.5 * maskTexelSize);
  amount *= dot(texture2D(coverage, on), maskChannel);
#endif
  gl_FragColor = shade * mix(vec4(1.0), order * texture2D(source, at), textured) * amount;
}
#endif
)";

}  // namespace ZIRK::backends
