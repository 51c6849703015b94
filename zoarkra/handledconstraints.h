#ifndef ZOARKRA_HANDLEDCONSTRAINTS_H
#define ZOARKRA_HANDLEDCONSTRAINTS_H

#include <cstdint>

#include "protocol/routingrecords.h"
#include "zoarkra/jsonreader.h"

namespace zoark {

struct tConstraint {
  const char* name;
  uint32_t id;  // from 1; the constraint's bit in the driver's records is 1 << (id - 1)
  tJsonType type;

  [[nodiscard]] constexpr uint32_t bit() const noexcept { return 1u << (id - 1); }
};

inline constexpr tConstraint kHandledConstraints[] = {
    {"inversionNeeded", 1, tJsonType::boolean},
};
static_assert(kHandledConstraints[0].bit() == ROUTE_CONSTRAINT_INVERSION_NEEDED);

}  // namespace zoark

#endif
