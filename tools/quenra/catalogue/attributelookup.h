#ifndef TOOLS_QUENRA_CATALOGUE_ATTRIBUTELOOKUP_H
#define TOOLS_QUENRA_CATALOGUE_ATTRIBUTELOOKUP_H

#include <string>
#include <string_view>
#include <vector>

#include "tools/quenra/catalogue/attributecatalogue.h"

namespace nCommandLine {

// By id without selector and instance. Null when the catalogue has no such attribute.
[[nodiscard]] const tAttributeRow* findAttribute(uint32_t id) noexcept;

// By name: 'product-name', in any case, with '_' for '-', or as the header's constant. Null when the
// catalogue has no such attribute.
[[nodiscard]] const tAttributeRow* findAttribute(std::string_view name);

// The same for what can only be written.
[[nodiscard]] const tAttributeRow* findSetting(uint32_t id) noexcept;
[[nodiscard]] const tAttributeRow* findSetting(std::string_view name);

[[nodiscard]] std::vector<std::string> suggestAttributes(std::string_view name);
// With the settings.
[[nodiscard]] std::vector<std::string> suggestWritable(std::string_view name);

// What the header calls an attribute: QUENRA_ATTRIBUTE_PRODUCT_NAME.
[[nodiscard]] std::string constantOf(const tAttributeRow& row);

}  // namespace nCommandLine

#endif
