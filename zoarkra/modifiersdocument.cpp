#include "zoarkra/modifiersdocument.h"

#include "zoarkra/requestdocument.h"

namespace zoark {
namespace {

// The depths of the parts of the document.
constexpr size_t kDocument = 0;
constexpr size_t kGroup = 1;
constexpr size_t kModifier = 2;

void setBit(uint32_t& word, uint32_t bit, bool isSet) noexcept {
  word = (word & ~bit) | (isSet ? bit : 0);
}

}  // namespace

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
  return depth != kDocument || judge();
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
  if (modifier_ == "calculateIgnoresReservations") {
    setBit(group_->options, ROUTE_OPTION_IGNORE_RESERVATIONS, value.boolean);
  }
  for (const tConstraint& constraint : kHandledConstraints) {
    if (modifier_ == constraint.name) {
      setBit(group_->constraints, constraint.bit(), value.boolean);
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

bool tModifiersDocument::judge() {
  if (!required_.isObject || !optional_.isObject) {
    return fail(kModifiersNotObject);
  }
  return unrecognised_.empty() || fail(kRequiredType);
}

}  // namespace zoark
