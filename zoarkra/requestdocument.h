#ifndef ZOARKRA_REQUESTDOCUMENT_H
#define ZOARKRA_REQUESTDOCUMENT_H

#include <cstdint>
#include <optional>

#include "protocol/routingrequests.h"
#include "zoarkra/jsonreader.h"

namespace zoark {

// A constraint that requests can contain.
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

// A fault of a request. The messages are part of the interface.
struct tRequestFault {
  uint32_t line;
  const char* message;
};

inline constexpr tRequestFault kMalformed{71, "malformed JSON"};
inline constexpr tRequestFault kTooDeep{72, "JSON nested too deeply"};
inline constexpr tRequestFault kDocumentMissing{73, "document missing"};
inline constexpr tRequestFault kTooLarge{74, "document too large"};

inline constexpr tRequestFault kSeedsNotArray{101, "seeds must be an array"};
inline constexpr tRequestFault kSeedNotObject{102, "seed must be an object"};
inline constexpr tRequestFault kTerminalMissing{103, "terminal field missing"};
inline constexpr tRequestFault kTerminalNotString{104, "terminal name must be a string"};
inline constexpr tRequestFault kTokenNotString{105, "srcDeviceToken name must be a string"};
inline constexpr tRequestFault kCostMissingOrInvalid{106, "cost field missing or invalid"};
inline constexpr tRequestFault kCostNotNumber{107, "cost must be a number"};
inline constexpr tRequestFault kConstraintsMissing{108, "constraints field missing"};
inline constexpr tRequestFault kConstraintType{109, "Unexpected constraint type"};

inline constexpr tRequestFault kDestinationsNotArray{141, "destinations must be an array"};
inline constexpr tRequestFault kDestinationNotString{142, "Terminals must be strings"};

inline constexpr tRequestFault kModifiersNotObject{171, "modifiers type must be object"};
inline constexpr tRequestFault kRequiredType{172, "Required route modifier has unrecognized type"};

// A constraint whose value has an unexpected type.
struct tConstraintMismatch {
  const char* constraint;
  tJsonType expected;
  tJsonType actual;
};

// A fault, and its particulars.
struct tFoundFault {
  const tRequestFault* fault = nullptr;
  std::optional<tConstraintMismatch> mismatch;
  std::optional<uint64_t> offset;  // of the byte that breaks the grammar of JSON
};

// The handler of one document of a request. It ends the reading at the first fault.
class tRequestDocument : public iJsonHandler {
 public:
  [[nodiscard]] const tFoundFault& found() const noexcept { return found_; }

 protected:
  // Records a fault. Returns false, which ends the reading.
  bool fail(const tRequestFault& fault) noexcept {
    found_.fault = &fault;
    return false;
  }
  bool fail(const tRequestFault& fault, const tConstraintMismatch& mismatch) noexcept {
    found_.mismatch = mismatch;
    return fail(fault);
  }

 private:
  tFoundFault found_;
};

// Reads a document; a null one is a fault. Traces a fault and throws it as a zoerr::Exception. Throws
// std::bad_alloc.
void readRequestDocument(const char* text, tRequestDocument& document);

}  // namespace zoark

#endif
