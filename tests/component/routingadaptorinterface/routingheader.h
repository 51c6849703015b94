#ifndef TESTS_COMPONENT_ROUTINGADAPTORINTERFACE_ROUTINGHEADER_H
#define TESTS_COMPONENT_ROUTINGADAPTORINTERFACE_ROUTINGHEADER_H

#include "quenra_routing.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The inline functions of the header. */
typedef struct tStatusFunctions {
  zoerr_Status (*initial)(void);
  bool (*reallocate)(zoerr_Status* status, uint32_t newCapacity);
  void (*release)(zoerr_Status* status);
} tStatusFunctions;

/* In a program in C. */
extern const tStatusFunctions kStatusFunctionsOfC;

/* The functions that the header declares. */
enum {
  EXPORTS = 22
};

typedef struct tExport {
  const char* name;
  void (*function)(void);
} tExport;

extern const tExport kExportsOfC[EXPORTS];

#ifdef __cplusplus
}
#endif

#endif
