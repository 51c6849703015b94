#include <inttypes.h>
#include <stdio.h>

#include "quenra.h"

int main(void) {
  uint64_t controller = 0;
  const int32_t opened = QUENRA_openController(&controller);
  if (opened < 0) {
    fprintf(stderr, "no controller: %" PRId32 "\n", opened);
    return 1;
  }
  char name[256] = "";
  uint64_t size = sizeof name;
  if (QUENRA_getAttributeUTF8(controller, QUENRA_ATTRIBUTE_PRODUCT_NAME, name, &size) >= 0) {
    printf("%s\n", name);
  }
  QUENRA_closeController(controller);
  return 0;
}
