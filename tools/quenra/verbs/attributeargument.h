#ifndef TOOLS_QUENRA_VERBS_ATTRIBUTEARGUMENT_H
#define TOOLS_QUENRA_VERBS_ATTRIBUTEARGUMENT_H

#include <string>
#include <vector>

#include "tools/commandline/grammar.h"
#include "tools/quenra/reading/reading.h"
#include "tools/quenra/tables/attributetable.h"

namespace nCommandLine {

struct tAttributeArgument {
  const tAttributeRow* row;  // null for an id outside the table, which the driver may support
  tAttributeAddress address;

  // "memory-size", or the id of an attribute without a name.
  [[nodiscard]] std::string name() const;
  // The name in messages: "memory-size, instance 1".
  [[nodiscard]] std::string label() const;
};

// Parse the attribute arguments of a verb. Throw tUsageError if they match no attribute. With several
// attributes, the instance applies to those that have instances.
[[nodiscard]] std::vector<tAttributeArgument> parseAttributesToRead(const tArguments& arguments);
[[nodiscard]] tAttributeArgument parseAttributeToWrite(const tArguments& arguments);

}  // namespace nCommandLine

#endif
