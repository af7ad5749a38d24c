#pragma once

#include <zirk/backend.h>

#include <cstdio>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>

namespace ZIRK::doubles {

template <typename T>
void Put(std::ostream& os, const T& v) {
  if constexpr (std::is_enum_v<T>)
    os << static_cast<int>(v);
  else if constexpr (std::is_pointer_v<T>)
    os << static_cast<const void*>(v);
  else
    os << v;
}
inline void Put(std::ostream& os, VuPoint p) {
  os << '(' << p.x << ' ' << p.y << ')';
}
inline void Put(std::ostream& os, VuRect r) {
  os << '(' << r.x << ' ' << r.y << ' ' << r.width << ' ' << r.height << ')';
}
inline void Put(std::ostream& os, VuColor c) {
  os << '#' << c.argb;
}
inline void Put(std::ostream& os, const VuTVector2D<float>& v) {
  os << '<' << v.x() << ' ' << v.y() << '>';
}
inline void Put(std::ostream& os, const VuTRect2D<float>& r) {
  Put(os, r.minPoint());
  Put(os, r.maxPoint());
}
inline void Put(std::ostream& os, const VuTransform& t) {
  os << "T(" << t.translateX << ' ' << t.translateY << ' ' << t.scaleX << ' ' << t.scaleY << ' '
     << t.rotation << ')';
}
inline void Put(std::ostream& os, const VuTMatrix2D<float>& m) {
  os << "M(";
  for (int i = 0; i < 9; ++i) os << m.get()[i] << ' ';
  os << m.hasTranslation() << m.hasScale() << m.hasRotation() << ')';
}
inline void Put(std::ostream& os, const VuScreenDescription& d) {
  os << d.width << 'x' << d.height << " index " << +d.index << " buffers " << +d.buffers
     << " format " << static_cast<int>(d.format) << " option " << d.option;
}

/// One call as text: the operation and its arguments, pointers by their address.
template <typename... Args>
std::string Line(const char* operation, const Args&... args) {
  std::ostringstream line;
  line << operation;
  ((line << ' ', Put(line, args)), ...);
  return line.str() + '\n';
}

/// The calls that a double has received, one line each.
class Recorder {
 public:
  /// With `echo` the lines go to standard error as well.
  explicit Recorder(bool echo = false) : echo_(echo) {}

  template <typename... Args>
  void operator()(const char* operation, const Args&... args) {
    const std::string line = Line(operation, args...);
    if (echo_) fputs(line.c_str(), stderr);
    calls_ += line;
  }

  /// The calls since the last Take().
  std::string Take() { return std::exchange(calls_, {}); }

 private:
  const bool echo_;
  std::string calls_;
};

}  // namespace ZIRK::doubles
