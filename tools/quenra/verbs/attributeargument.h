#ifndef TOOLS_QUENRA_VERBS_ATTRIBUTEARGUMENT_H
#define TOOLS_QUENRA_VERBS_ATTRIBUTEARGUMENT_H

#include <string>

#include "tools/quenra/catalogue/attributerow.h"
#include "tools/quenra/grammar/arguments.h"
#include "tools/quenra/reading/attributeaddress.h"

namespace nCommandLine {

struct tWantedAttribute {
  const tAttributeRow* row;  // null: an id that only the driver may know
  tAttributeAddress address;

  // "memory-size", or the id of an attribute without a name.
  [[nodiscard]] std::string name() const;
  // As messages name it: "memory-size, instance 1".
  [[nodiscard]] std::string label() const;
};

// Finds out which attribute is meant; throws tCommandError when none can be.
[[nodiscard]] tWantedAttribute attributeToRead(const tArguments& arguments);
[[nodiscard]] tWantedAttribute attributeToWrite(const tArguments& arguments);

}  // namespace nCommandLine

#endif
