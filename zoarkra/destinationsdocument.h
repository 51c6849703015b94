#ifndef ZOARKRA_DESTINATIONSDOCUMENT_H
#define ZOARKRA_DESTINATIONSDOCUMENT_H

#include <memory_resource>
#include <vector>

#include "zoarkra/requestdocument.h"
#include "zoarkra/topography.h"

namespace zoark {

// The destinations of a request: an array of terminal names.
class tDestinationsDocument final : public tRequestDocument {
 public:
  tDestinationsDocument(const tTopography& topography,
                        std::pmr::vector<uint32_t>& destinations) noexcept
      : topography_(topography), destinations_(destinations) {}

  bool value(const tJsonValue& value, size_t depth) override;
  bool key(std::string_view, size_t) override { return true; }
  bool end(size_t) override { return true; }

 private:
  const tTopography& topography_;
  std::pmr::vector<uint32_t>& destinations_;
};

}  // namespace zoark

#endif
