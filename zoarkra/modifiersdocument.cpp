#include "zoarkra/modifiersdocument.h"

#include "zoarkra/handledconstraints.h"

namespace zoark {
namespace {

// How deep what lies in the document.
constexpr size_t kDocument = 0;
constexpr size_t kGroup = 1;
constexpr size_t kModifier = 2;

}  // namespace

bool tModifiersDocument::value(const tJsonValue& value, size_t depth) {
  if (depth == kDocument) {
    return value.type == tJsonType::object || fail(kModifiersNoObject);
  }
  if (group_ == nullptr) {
    return true;
  }
  if (depth == kGroup) {
    *group_ = {};
    group_->isObject = value.type == tJsonType::object;
  } else if (depth == kModifier && group_->isObject) {
    group_->hasUnrecognisedType |= value.type != tJsonType::boolean;
    if (target_.word != nullptr) {
      *target_.word &= ~target_.bit;
      *target_.word |= value.boolean ? target_.bit : 0;
    }
  }
  return true;
}

bool tModifiersDocument::key(std::string_view key, size_t depth) {
  if (depth == kGroup) {
    group_ = key == "required" ? &required_ : key == "optional" ? &optional_ : nullptr;
  } else if (depth == kModifier && group_ != nullptr) {
    target_ = targetOf(key, *group_);
  }
  return true;
}

bool tModifiersDocument::end(size_t depth) {
  return depth != kDocument || judge();
}

tModifiersDocument::tTarget tModifiersDocument::targetOf(std::string_view name,
                                                         tGroup& group) noexcept {
  if (name == "calculateIgnoresReservations") {
    return {&group.options, ROUTE_OPTION_IGNORE_RESERVATIONS};
  }
  for (const tConstraint& constraint : kHandledConstraints) {
    if (name == constraint.name) {
      return {&group.constraints, constraint.bit()};
    }
  }
  return {};
}

bool tModifiersDocument::judge() {
  if (!required_.isObject || !optional_.isObject) {
    return fail(kModifiersNoObject);
  }
  return !required_.hasUnrecognisedType || fail(kRequiredType);
}

}  // namespace zoark
