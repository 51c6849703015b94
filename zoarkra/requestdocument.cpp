#include "zoarkra/requestdocument.h"

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

}  // namespace

void readRequestDocument(const char* text, tRequestDocument& document) {
  if (text == nullptr) {
    raiseRequestFault({&kDocumentMissing, {}, {}}, text);
  }
  const tFoundFault found = faultOf(readJson(text, document), document);
  if (found.fault != nullptr) {
    // The description does not repeat a document that is too large.
    raiseRequestFault(found, found.fault == &kTooLarge ? nullptr : text);
  }
}

}  // namespace zoark
