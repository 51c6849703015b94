#include "zoarkra/seedsdocument.h"

#include <algorithm>
#include <cmath>

namespace zoark {
namespace {

// The depths of the parts of the document.
constexpr size_t kDocument = 0;
constexpr size_t kSeed = 1;
constexpr size_t kMemberOfSeed = 2;
constexpr size_t kConstraint = 3;

constexpr double kCostLimit = 4294967296.0;

// A number that truncates to a cost; the conversion of any other is undefined.
bool isCost(double number) noexcept {
  return std::trunc(number) >= 0 && number < kCostLimit;
}

const tConstraint* findConstraint(std::string_view name) noexcept {
  const auto* const found =
      std::find_if(std::begin(kHandledConstraints), std::end(kHandledConstraints),
                   [name](const tConstraint& constraint) { return name == constraint.name; });
  return found == std::end(kHandledConstraints) ? nullptr : found;
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
      readConstraint(value);
      return true;
    default:
      return true;
  }
}

bool tSeedsDocument::key(std::string_view key, size_t depth) {
  if (depth == kMemberOfSeed) {
    member_ = key == "terminal"         ? tMember::terminal
              : key == "srcDeviceToken" ? tMember::srcDeviceToken
              : key == "cost"           ? tMember::cost
              : key == "constraints"    ? tMember::constraints
                                        : tMember::unknown;
    constraint_ = nullptr;
  } else if (depth == kConstraint) {
    constraint_ = member_ == tMember::constraints ? findConstraint(key) : nullptr;
  }
  return true;
}

bool tSeedsDocument::end(size_t depth) {
  return depth != kSeed || judge();
}

void tSeedsDocument::readMember(const tJsonValue& value) {
  switch (member_) {
    case tMember::terminal:
      seed_.terminal = {value.type, 0};
      seed_.terminalId = terminalIdOf(topography_, value.text);
      break;
    case tMember::srcDeviceToken:
      seed_.token = {value.type, 0};
      break;
    case tMember::cost:
      seed_.cost = {value.type, value.number};
      break;
    case tMember::constraints:
      seed_.constraints = {value.type, 0};
      std::fill(std::begin(seed_.handled), std::end(seed_.handled), std::nullopt);
      break;
    case tMember::unknown:
      break;
  }
}

void tSeedsDocument::readConstraint(const tJsonValue& value) {
  if (constraint_ != nullptr && seed_.constraints.is(tJsonType::object)) {
    seed_.handled[constraint_ - kHandledConstraints] =
        tJsonValue{.type = value.type, .boolean = value.boolean};
  }
}

bool tSeedsDocument::judge() {
  if (!seed_.terminal.type) {
    return fail(kTerminalMissing);
  }
  if (!seed_.terminal.is(tJsonType::string)) {
    return fail(kTerminalNotString);
  }
  if (seed_.token.type && !seed_.token.is(tJsonType::string)) {
    return fail(kTokenNotString);
  }
  uint32_t constraints = 0;
  if (!judgeCost() || !judgeConstraints(constraints)) {
    return false;
  }
  seeds_.push_back({seed_.terminalId, static_cast<uint32_t>(seed_.cost.number), constraints});
  return true;
}

bool tSeedsDocument::judgeCost() {
  if (seed_.cost.type && !seed_.cost.is(tJsonType::number)) {
    return fail(kCostNotNumber);
  }
  return (seed_.cost.type && isCost(seed_.cost.number)) || fail(kCostMissingOrInvalid);
}

bool tSeedsDocument::judgeConstraints(uint32_t& constraints) {
  if (!seed_.constraints.is(tJsonType::object)) {
    return fail(kConstraintsMissing);
  }
  for (size_t i = 0; i < std::size(kHandledConstraints); ++i) {
    const tConstraint& constraint = kHandledConstraints[i];
    const std::optional<tJsonValue>& value = seed_.handled[i];
    if (value && value->type != constraint.type) {
      return fail(kConstraintType, {constraint.name, constraint.type, value->type});
    }
    constraints |= value && value->boolean ? constraint.bit() : 0;
  }
  return true;
}

}  // namespace zoark
