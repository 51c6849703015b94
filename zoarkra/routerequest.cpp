#include "zoarkra/routerequest.h"

#include "zoarkra/destinationsdocument.h"
#include "zoarkra/modifiersdocument.h"
#include "zoarkra/seedsdocument.h"

namespace zoark {

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
