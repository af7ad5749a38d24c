#include <zirk/zirk.h>

#include <cstdio>

using namespace ZIRK;

void DrawPage();

void Measure() {
  //! [snippet]
  VuPerfCounter counter;
  {
    const VuScopedCounter scope(counter);
    DrawPage();
  }
  std::printf("%u us\n", counter.Elapsed());
  //! [snippet]
}
