#ifndef ZOARKRA_REQUESTFAULT_H
#define ZOARKRA_REQUESTFAULT_H

#include <cstdint>
#include <optional>

#include "zoarkra/jsonreader.h"

namespace zoark {

// What can be wrong with a request. The messages are part of the interface.
struct tRequestFault {
  uint32_t line;
  const char* message;
};

inline constexpr tRequestFault kMalformed{71, "malformed JSON"};
inline constexpr tRequestFault kTooDeep{72, "JSON nested too deeply"};
inline constexpr tRequestFault kDocumentMissing{73, "document missing"};
inline constexpr tRequestFault kTooLarge{74, "document too large"};

inline constexpr tRequestFault kSeedsNoArray{101, "seeds must be an array"};
inline constexpr tRequestFault kSeedNoObject{102, "seed must be an object"};
inline constexpr tRequestFault kTerminalMissing{103, "terminal field missing"};
inline constexpr tRequestFault kTerminalNoString{104, "terminal name must be a string"};
inline constexpr tRequestFault kTokenNoString{105, "srcDeviceToken name must be a string"};
inline constexpr tRequestFault kCostMissingOrInvalid{106, "cost field missing or invalid"};
inline constexpr tRequestFault kCostNoNumber{107, "cost must be a number"};
inline constexpr tRequestFault kConstraintsMissing{108, "constraints field missing"};
inline constexpr tRequestFault kConstraintType{109, "Unexpected constraint type"};

inline constexpr tRequestFault kDestinationsNoArray{141, "destinations must be an array"};
inline constexpr tRequestFault kDestinationNoString{142, "Terminals must be strings"};

inline constexpr tRequestFault kModifiersNoObject{171, "modifiers type must be object"};
inline constexpr tRequestFault kRequiredType{172, "Required route modifier has unrecognized type"};

// Of a constraint whose value has another type than it should.
struct tConstraintMismatch {
  const char* constraint;
  tJsonType expected;
  tJsonType actual;
};

// A fault that was found, and what else is known of it.
struct tFoundFault {
  const tRequestFault* fault = nullptr;
  std::optional<tConstraintMismatch> mismatch;
  std::optional<uint64_t> offset;  // of the byte at which the document stops being JSON
};

// Traces the fault and throws it as a zoerr::Exception. `document` is the text it was found in, or null.
[[noreturn]] void raiseRequestFault(const tFoundFault& found, const char* document);

}  // namespace zoark

#endif
