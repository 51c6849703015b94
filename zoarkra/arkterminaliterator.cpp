#include "zoarkra/arkterminaliterator.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "quenra_routing.h"
#include "zoarkra/failure.h"
#include "zoarkra/topography.h"

namespace zoark {
namespace {

constexpr auto kPastTheEnd = adaptorLocation(431, kInvalidParameterConstant);
constexpr auto kUnknownAttribute = adaptorLocation(450, kBadSelectorConstant);

template <class Value>
struct tAttribute {
  const char* name;
  Value tTerminal::*field;
};

constexpr tAttribute<const char*> kStringAttributes[] = {
    {ZOROCO_TERMINAL_NAME, &tTerminal::name},
    {ZOROCO_TERMINAL_VISIBILITY, &tTerminal::visibility},
    {ZOROCO_TERMINAL_BUS_TYPE, &tTerminal::busType},
    {ZOROCO_TERMINAL_BUS_NAME, &tTerminal::busName},
    {ZOROCO_TERMINAL_CANONICAL_NAME, &tTerminal::canonicalName},
};

constexpr tAttribute<bool> kBoolAttributes[] = {
    {ZOROCO_TERMINAL_IS_EXTERNAL, &tTerminal::isExternal},
    {ZOROCO_TERMINAL_IS_OWNED, &tTerminal::isOwned},
    {ZOROCO_TERMINAL_IS_ALIAS, &tTerminal::isAlias},
    {ZOROCO_TERMINAL_IS_MASKED_OUT, &tTerminal::isMaskedOut},
};

constexpr tAttribute<uint32_t> kU32Attributes[] = {
    {ZOROCO_TERMINAL_BUS_LINE, &tTerminal::busLine},
    {ZOROCO_TERMINAL_ID, &tTerminal::id},
};

template <class Value, size_t kCount>
Value read(const tTerminal& terminal, const tAttribute<Value> (&attributes)[kCount],
           const char* name) {
  const auto* const found =
      std::find_if(std::begin(attributes), std::end(attributes), [name](const auto& attribute) {
        return name != nullptr && std::strcmp(name, attribute.name) == 0;
      });
  if (found == std::end(attributes)) {
    raise(kBadSelector, kUnknownAttribute);
  }
  return terminal.*(found->field);
}

}  // namespace

void ARKTerminalIterator::next(zoerr::Status&) {
  ++index_;
}

bool ARKTerminalIterator::isEnd() const {
  return index_ >= topography_.terminalCount;
}

const tTerminal& ARKTerminalIterator::current() const {
  if (isEnd()) {
    raise(nZOAPALS100::kInvalidParameter, kPastTheEnd);
  }
  return topography_.terminals()[index_];
}

const char* ARKTerminalIterator::getStringAttribute(const char* name, zoerr::Status&) const {
  return read(current(), kStringAttributes, name);
}

bool ARKTerminalIterator::getBoolAttribute(const char* name, zoerr::Status&) const {
  return read(current(), kBoolAttributes, name);
}

uint32_t ARKTerminalIterator::getU32Attribute(const char* name, zoerr::Status&) const {
  return read(current(), kU32Attributes, name);
}

void ARKTerminalIterator::resetTerminal(const char* mode, zoerr::Status& status) {
  const uint32_t floating = floatingFlagOf(mode);
  const uint32_t terminal = current().id;
  nZOAPALS100::tStatus driver = statusForDriver(status);
  proxy_.resetTerminal(terminal, floating, driver);
  mergeDriverStatus(driver, status);
}

}  // namespace zoark
