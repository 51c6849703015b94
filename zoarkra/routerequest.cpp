#include "zoarkra/routerequest.h"

#include <algorithm>
#include <cmath>

#include "zoapal/protons/trace/ttrace.h"
#include "zoarkra/failure.h"

namespace zoark {
namespace {

// The depths of the parts of the documents.
constexpr size_t kDocument = 0;
constexpr size_t kSeed = 1;
constexpr size_t kMemberOfSeed = 2;
constexpr size_t kConstraint = 3;
constexpr size_t kGroup = 1;
constexpr size_t kModifier = 2;

// A number that truncates to a cost; the conversion of any other is undefined.
bool isCost(const tJsonValue& value) noexcept {
  constexpr double kCostLimit = 4294967296.0;
  return std::trunc(value.number) >= 0 && value.number < kCostLimit;
}

// The members of a seed, in the order in which they are checked.
struct tMemberOfSeed {
  const char* name;
  tJsonType type;
  const tRequestFault* missing;  // null for an optional member
  const tRequestFault* wrongType;
};

constexpr tMemberOfSeed kMembersOfSeed[] = {
    {"terminal", tJsonType::string, &kTerminalMissing, &kTerminalNotString},
    {"srcDeviceToken", tJsonType::string, nullptr, &kTokenNotString},
    {"cost", tJsonType::number, &kCostMissingOrInvalid, &kCostNotNumber},
    {"constraints", tJsonType::object, &kConstraintsMissing, &kConstraintsMissing},
};
static_assert(std::size(kMembersOfSeed) == tSeedsDocument::kMemberCount);
constexpr size_t kTerminalMember = 0;
constexpr size_t kCostMember = 2;
constexpr size_t kConstraintsMember = 3;

// The value that belongs to the row with this name; null if no row has it.
template <class Row, class Value, size_t kCount>
Value* findValue(std::string_view name, const Row (&rows)[kCount],
                 std::array<Value, kCount>& values) noexcept {
  const auto* const found = std::find_if(std::begin(rows), std::end(rows),
                                         [name](const Row& row) { return name == row.name; });
  return found == std::end(rows) ? nullptr : &values[static_cast<size_t>(found - rows)];
}

// The text of a value does not outlive its event.
tJsonValue withoutText(tJsonValue value) noexcept {
  value.text = {};
  return value;
}

// A modifier, and the bit that it sets in a word of its group.
struct tModifier {
  const char* name;
  uint32_t tModifiersDocument::tGroup::*word;
  uint32_t bit;
};

constexpr tModifier kModifiers[] = {
    {kInversionNeeded.name, &tModifiersDocument::tGroup::constraints, kInversionNeeded.bit()},
    {"calculateIgnoresReservations", &tModifiersDocument::tGroup::options,
     ROUTE_OPTION_IGNORE_RESERVATIONS},
};

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

bool tSeedsDocument::value(const tJsonValue& value, size_t depth) {
  switch (depth) {
    case kDocument:
      return value.type == tJsonType::array || fail(kSeedsNotArray);
    case kSeed:
      seed_ = {};
      return value.type == tJsonType::object || fail(kSeedNotObject);
    case kMemberOfSeed:
      readMember(value);
      return true;
    case kConstraint:
      if (constraint_ != nullptr) {
        *constraint_ = withoutText(value);
      }
      return true;
    default:
      return true;
  }
}

bool tSeedsDocument::key(std::string_view key, size_t depth) {
  if (depth == kMemberOfSeed) {
    member_ = findValue(key, kMembersOfSeed, seed_.members);
    constraint_ = nullptr;
  } else if (depth == kConstraint && member_ == &seed_.members[kConstraintsMember]) {
    constraint_ = findValue(key, kHandledConstraints, seed_.constraints);
  }
  return true;
}

bool tSeedsDocument::end(size_t depth) {
  return depth != kSeed || checkSeed();
}

void tSeedsDocument::readMember(const tJsonValue& value) {
  if (member_ == nullptr) {
    return;
  }
  *member_ = withoutText(value);
  if (member_ == &seed_.members[kTerminalMember]) {
    seed_.terminal = terminalIdOf(topography_, value.text);
  } else if (member_ == &seed_.members[kConstraintsMember]) {
    seed_.constraints = {};
  }
}

bool tSeedsDocument::checkSeed() {
  for (size_t i = 0; i < kMemberCount; ++i) {
    if (!checkMember(i)) {
      return false;
    }
  }
  uint32_t constraints = 0;
  if (!readConstraints(constraints)) {
    return false;
  }
  const auto cost = static_cast<uint32_t>(seed_.members[kCostMember]->number);
  seeds_.push_back({seed_.terminal, cost, constraints});
  return true;
}

bool tSeedsDocument::checkMember(size_t index) {
  const tMemberOfSeed& member = kMembersOfSeed[index];
  const tMemberValue& value = seed_.members[index];
  if (!value) {
    return member.missing == nullptr || fail(*member.missing);
  }
  if (value->type != member.type) {
    return fail(*member.wrongType);
  }
  return index != kCostMember || isCost(*value) || fail(kCostMissingOrInvalid);
}

bool tSeedsDocument::readConstraints(uint32_t& constraints) {
  for (size_t i = 0; i < std::size(kHandledConstraints); ++i) {
    const tConstraint& constraint = kHandledConstraints[i];
    const tMemberValue& value = seed_.constraints[i];
    if (value && value->type != constraint.type) {
      return fail(kConstraintType, {constraint.name, constraint.type, value->type});
    }
    constraints |= value && value->boolean ? constraint.bit() : 0;
  }
  return true;
}

bool tDestinationsDocument::value(const tJsonValue& value, size_t depth) {
  if (depth == kDocument) {
    return value.type == tJsonType::array || fail(kDestinationsNotArray);
  }
  if (value.type != tJsonType::string) {
    return fail(kDestinationNotString);
  }
  destinations_.push_back(terminalIdOf(topography_, value.text));
  return true;
}

bool tModifiersDocument::value(const tJsonValue& value, size_t depth) {
  if (depth == kDocument) {
    return value.type == tJsonType::object || fail(kModifiersNotObject);
  }
  if (depth == kGroup && group_ != nullptr) {
    readGroup(value);
  } else if (depth == kModifier && group_ != nullptr && group_->isObject) {
    readModifier(value);
  }
  return true;
}

bool tModifiersDocument::key(std::string_view key, size_t depth) {
  if (depth == kGroup) {
    group_ = key == "required" ? &required_ : key == "optional" ? &optional_ : nullptr;
  } else if (depth == kModifier) {
    modifier_ = key;
  }
  return true;
}

bool tModifiersDocument::end(size_t depth) {
  return depth != kDocument || check();
}

void tModifiersDocument::readGroup(const tJsonValue& value) {
  *group_ = {};
  group_->isObject = value.type == tJsonType::object;
  if (group_ == &required_) {
    unrecognised_.clear();
  }
}

void tModifiersDocument::readModifier(const tJsonValue& value) {
  if (group_ == &required_) {
    recordType(value.type == tJsonType::boolean);
  }
  for (const tModifier& modifier : kModifiers) {
    if (modifier_ == modifier.name) {
      uint32_t& word = group_->*modifier.word;
      word = (word & ~modifier.bit) | (value.boolean ? modifier.bit : 0);
    }
  }
}

void tModifiersDocument::recordType(bool isBoolean) {
  const auto found = unrecognised_.find(modifier_);
  const bool isListed = found != unrecognised_.end();
  if (isBoolean && isListed) {
    unrecognised_.erase(found);
  } else if (!isBoolean && !isListed) {
    unrecognised_.emplace(modifier_);
  }
}

bool tModifiersDocument::check() {
  if (!required_.isObject || !optional_.isObject) {
    return fail(kModifiersNotObject);
  }
  return unrecognised_.empty() || fail(kRequiredType);
}

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
