/* Prints the product name of the controller without a C runtime: a build system with Clang has no
 * runtime library of Visual C++. Everything else is as with Visual C++: the headers with their
 * annotations, the object format, the import library. */
#include <stddef.h>
#include <stdint.h>

#include "quenra.h"

__declspec(dllimport) void* __stdcall GetStdHandle(uint32_t stream);
__declspec(dllimport) int __stdcall WriteFile(void* file, const void* bytes, uint32_t count,
                                              uint32_t* written, void* overlapped);
__declspec(dllimport) __declspec(noreturn) void __stdcall ExitProcess(uint32_t code);

#define STANDARD_OUTPUT UINT32_C(0xFFFFFFF5)

/* Static: the compiler would initialise a local array by a call of memset. */
static char name[256];

static uint32_t printProductName(uint64_t controller) {
  uint64_t size = sizeof name - 1;
  if (QUENRA_getAttributeUTF8(controller, QUENRA_ATTRIBUTE_PRODUCT_NAME, name, &size) < 0) {
    return 2;
  }
  uint32_t length = 0;
  while (name[length] != '\0') {
    ++length;
  }
  name[length] = '\n';
  uint32_t written = 0;
  return WriteFile(GetStdHandle(STANDARD_OUTPUT), name, length + 1, &written, NULL) != 0 ? 0 : 3;
}

/* The entry point of the program. */
void mainCRTStartup(void) {
  uint64_t controller = 0;
  uint32_t code = 1;
  if (QUENRA_openController(&controller) >= 0) {
    code = printProductName(controller);
    QUENRA_closeController(controller);
  }
  ExitProcess(code);
}
