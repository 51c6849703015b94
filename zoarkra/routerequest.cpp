#include "zoarkra/routerequest.h"

#include "zoarkra/modifiersdocument.h"
#include "zoarkra/seedsdocument.h"

namespace zoark {
namespace {

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

bool tDestinationsDocument::value(const tJsonValue& value, size_t depth) {
  if (depth == 0) {
    return value.type == tJsonType::array || fail(kDestinationsNotArray);
  }
  if (value.type != tJsonType::string) {
    return fail(kDestinationNotString);
  }
  destinations_.push_back(terminalIdOf(topography_, value.text));
  return true;
}

}  // namespace

void readRouteRequest(const tRequestTexts& texts, const tTopography& topography,
                      tRouteRequest& request) {
  tSeedsDocument seeds(topography, request.seeds);
  readRequestDocument(texts.seeds, seeds);
  tDestinationsDocument destinations(topography, request.destinations);
  readRequestDocument(texts.destinations, destinations);
  tModifiersDocument modifiers;
  readRequestDocument(texts.modifiers, modifiers);
  request.modifiers = modifiers.modifiers();
  request.options = modifiers.options();
}

}  // namespace zoark
