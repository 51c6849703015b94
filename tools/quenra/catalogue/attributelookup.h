#ifndef TOOLS_QUENRA_CATALOGUE_ATTRIBUTELOOKUP_H
#define TOOLS_QUENRA_CATALOGUE_ATTRIBUTELOOKUP_H

#include <string>
#include <string_view>
#include <vector>

#include "tools/quenra/catalogue/attributecatalogue.h"

namespace nCommandLine {

// Finds a row by its id without selector and instance. Null if the catalogue has none.
[[nodiscard]] const tAttributeRow* findAttribute(uint32_t id) noexcept;

// Finds a row by its name: 'product-name', in any case, with '_' for '-', or by the header's
// constant. Null if the catalogue has none.
[[nodiscard]] const tAttributeRow* findAttribute(std::string_view name);

// As above, for write-only attributes.
[[nodiscard]] const tAttributeRow* findSetting(uint32_t id) noexcept;
[[nodiscard]] const tAttributeRow* findSetting(std::string_view name);

[[nodiscard]] std::vector<std::string> suggestAttributes(std::string_view name);
// As above, for every writable attribute including the write-only ones.
[[nodiscard]] std::vector<std::string> suggestWritable(std::string_view name);

// The attribute that counts the instances; null if none does.
[[nodiscard]] const tAttributeRow* countingAttribute(const tInstanceRow& instances) noexcept;

// "1 per slot, at most 4, counted by slot-count"; empty for an attribute without instances.
[[nodiscard]] std::string instancesText(const tAttributeRow& row);

// Its constant in the header: QUENRA_ATTRIBUTE_PRODUCT_NAME, QUENRA_TEXT_SETTING_OF_BOTH.
[[nodiscard]] std::string constantOf(const tAttributeRow& row);

}  // namespace nCommandLine

#endif
