// Compiled as by a compiler with annotations: this file only has to compile.
#include "quenra.h"
#include "quenra_routing.h"

#ifndef _Check_return_
#error "the headers do not include the annotations"
#endif
