/* Prints the product name of the controller. Loads the library at run time: the program starts without it
 * and reports that it is missing. The types of the functions are those of the header. */
#include <inttypes.h>
#include <stdio.h>

#include <windows.h>
#include "quenra.h"

typedef int32_t (*OpenController)(uint64_t* handle);
typedef int32_t (*GetText)(uint64_t handle, uint32_t attribute, char* buffer, uint64_t* size);
typedef void (*CloseController)(uint64_t handle);

static int printProductName(OpenController openController, GetText getText,
                            CloseController closeController) {
  uint64_t controller = 0;
  const int32_t opened = openController(&controller);
  if (opened < 0) {
    fprintf(stderr, "no controller: %" PRId32 "\n", opened);
    return 1;
  }
  char name[QUENRA_MAX_TABLE_TEXT_SIZE] = "";
  uint64_t size = sizeof name;
  const int32_t read = getText(controller, QUENRA_ATTRIBUTE_PRODUCT_NAME, name, &size);
  closeController(controller);
  if (read < 0) {
    fprintf(stderr, "no product name: %" PRId32 "\n", read);
    return 1;
  }
  printf("%s\n", name);
  return 0;
}

int main(int argc, char** argv) {
  const HMODULE library = LoadLibraryA(argc > 1 ? argv[1] : "quenra.dll");
  if (library == NULL) {
    fprintf(stderr, "cannot load quenra.dll: error %lu\n", GetLastError());
    return 2;
  }
  /* Through a pointer to a function without a type: the compiler then permits the conversion. */
  typedef void (*Function)(void);
  const Function openController = (Function)GetProcAddress(library, "QUENRA_openController");
  const Function getText = (Function)GetProcAddress(library, "QUENRA_getAttributeUTF8");
  const Function closeController = (Function)GetProcAddress(library, "QUENRA_closeController");
  int result = 3;
  if (openController != NULL && getText != NULL && closeController != NULL) {
    result = printProductName((OpenController)openController, (GetText)getText,
                              (CloseController)closeController);
  }
  FreeLibrary(library);
  return result;
}
