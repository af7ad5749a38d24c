// kit: calls the kit, with nothing but what is installed with it.

#include <zirk/kit/kit.h>

int main() {
  return ZIRK::kit::Mix(0xFF000000, 0xFF808080, 0.5f) == 0xFF404040 ? 0 : 1;
}
