#include "zoarkra/routerequest.h"

#include "zoapal/protons/trace/ttrace.h"
#include "zoarkra/failure.h"
#include "zoarkra/requestdocuments.h"

namespace zoark {
namespace {

tFoundFault faultOf(const tJsonResult& result, const tRequestDocument& document) noexcept {
  switch (result.outcome) {
    case tJsonOutcome::read:
    case tJsonOutcome::ended:
      break;
    case tJsonOutcome::tooDeep:
      return {&kTooDeep, {}, result.offset};
    case tJsonOutcome::tooLarge:
      return {&kTooLarge, {}, result.offset};
    case tJsonOutcome::malformed:
      return {&kMalformed, {}, result.offset};
  }
  return document.found();
}

// `document`: its text, or null.
[[noreturn]] void raiseRequestFault(const tFoundFault& found, const char* document) {
  constexpr const char* kDebugComponent = "zoroco_debug";
  const char* const message = found.fault->message;
  nQUENRA1400::nZOAPAL000::debugPrintf("[%s] %s\n", kDebugComponent, message);
  zoerr::tOwnedStatus status;
  status.setWithConstant(nZOAPALS100::kInvalidParameter,
                         requestLocation(found.fault->line, kInvalidParameterConstant));
  appendMember(status, kDebugComponent, message);
  appendMember(status, "json", document == nullptr ? "" : document);
  if (found.mismatch) {
    appendMember(status, "constraint", found.mismatch->constraint);
    appendMember(status, "expected_type", nameOf(found.mismatch->expected));
    appendMember(status, "actual_type", nameOf(found.mismatch->actual));
  }
  if (found.offset) {
    appendMember(status, "offset", *found.offset);
  }
  throw zoerr::Exception(status);
}

// A null text is a fault.
void readDocument(const char* text, tRequestDocument& document) {
  if (text == nullptr) {
    raiseRequestFault({&kDocumentMissing, {}, {}}, text);
  }
  const tFoundFault found = faultOf(readJson(text, document), document);
  if (found.fault != nullptr) {
    // The description does not repeat a document that is too large.
    raiseRequestFault(found, found.fault == &kTooLarge ? nullptr : text);
  }
}

}  // namespace

void readRouteRequest(const tRequestTexts& texts, const tTopography& topography,
                      tRouteRequest& request) {
  tSeedsDocument seeds(topography, request.seeds);
  readDocument(texts.seeds, seeds);
  tDestinationsDocument destinations(topography, request.destinations);
  readDocument(texts.destinations, destinations);
  tModifiersDocument modifiers;
  readDocument(texts.modifiers, modifiers);
  request.modifiers = modifiers.modifiers();
  request.options = modifiers.options();
}

}  // namespace zoark
