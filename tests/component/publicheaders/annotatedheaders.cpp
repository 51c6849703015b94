// The headers as a compiler with annotations reads them: this file only has to compile. The system's own
// headers come first, since they do not expect that compiler.
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#define _MSC_VER 1930
#define _NATIVE_WCHAR_T_DEFINED 1
#include "quenra.h"
#include "quenra_routing.h"

#ifndef _Check_return_
#error "the headers do not include the annotations"
#endif
