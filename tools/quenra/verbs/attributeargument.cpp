#include "tools/quenra/verbs/attributeargument.h"

#include <algorithm>

#include "tools/commandline/argumenttext.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/tables/attributetable.h"
#include "tools/quenra/verbs/verbs.h"

namespace nCommandLine {
namespace {

constexpr int kIdDigits = 8;

[[noreturn]] void reject(const std::string& what, std::vector<std::string> suggestions = {}) {
  throw tUsageError(what, "Run 'quenra attributes' to list all attributes.",
                    std::move(suggestions));
}

enum class tPurpose : uint8_t {
  reading,
  writing,
};

const tAttributeRow* findRow(uint32_t attribute, tPurpose purpose) noexcept {
  const tAttributeRow* const setting = findSetting(attribute);
  return purpose == tPurpose::writing && setting != nullptr ? setting : findAttribute(attribute);
}

// An id may already contain a selector and an instance.
tAttributeArgument attributeById(const std::string& text, tPurpose purpose) {
  const auto id = parseUnsigned(text);
  if (!id) {
    reject(numberFault(text, "a name or an id"));
  }
  const uint32_t type = typeBits(*id);
  if (type != static_cast<uint32_t>(tAttributeType::text) &&
      type != static_cast<uint32_t>(tAttributeType::unsigned32)) {
    reject("'" + text + "' is not an attribute id: ids begin with 0x1 (text) or 0x2 (unsigned)");
  }
  const uint32_t selector =
      (*id & tAttributeAddress::kSelectorMask) >> tAttributeAddress::kSelectorShift;
  if (selector > static_cast<uint32_t>(tInterface::marten)) {
    reject("'" + text + "' selects an interface that does not exist");
  }
  const uint32_t attribute =
      *id & ~(tAttributeAddress::kSelectorMask | tAttributeAddress::kInstanceMask);
  return {findRow(attribute, purpose),
          {attribute, static_cast<uint8_t>(*id & tAttributeAddress::kInstanceMask),
           static_cast<tInterface>(selector)}};
}

const tAttributeRow& settingByName(const std::string& text, tPurpose purpose) {
  const tAttributeRow* const row = findSetting(text);
  if (row == nullptr) {
    reject("unknown attribute '" + text + "'",
           purpose == tPurpose::reading ? suggestAttributes(text) : suggestWritable(text));
  }
  if (purpose == tPurpose::reading) {
    throw tUsageError(std::string(row->name) + " can only be written",
                      "Run 'quenra set " + std::string(row->name) + " VALUE' to write it.", {});
  }
  return *row;
}

tAttributeArgument attributeByName(const std::string& text, tPurpose purpose) {
  const tAttributeRow* const attribute = findAttribute(text);
  const tAttributeRow& row = attribute == nullptr ? settingByName(text, purpose) : *attribute;
  return {&row, {row.id}};
}

void applyInstance(const std::string& text, tAttributeAddress& address) {
  const auto instance = parseUnsigned(text);
  if (!instance || *instance > tAttributeAddress::kInstanceMask) {
    throw tUsageError(
        numberFault(text, "an instance", 0, tAttributeAddress::kInstanceMask),
        "Instances are numbered from 0; run 'quenra info' to list those of this machine.", {});
  }
  if (address.instance != 0 && address.instance != *instance) {
    throw tUsageError("the id contains another instance than --instance",
                      "Give the instance in one place.", {});
  }
  address.instance = static_cast<uint8_t>(*instance);
}

void applyInterface(tInterface which, tAttributeAddress& address) {
  if (address.which != tInterface::byDefault && address.which != which) {
    throw tUsageError(
        "the id selects another interface than --" + std::string(interfaceName(which)),
        "Select the interface in one place.", {});
  }
  address.which = which;
}

tAttributeArgument attributeNamed(const std::string& text, tPurpose purpose) {
  return looksLikeNumber(text) ? attributeById(text, purpose) : attributeByName(text, purpose);
}

bool hasInstances(const tAttributeArgument& argument) noexcept {
  return argument.row == nullptr || argument.row->instances->maximum > 1;
}

void applyInterfaces(const tArguments& arguments, tAttributeAddress& address) {
  if (arguments.has(nWords::kController)) {
    applyInterface(tInterface::controller, address);
  }
  if (arguments.has(nWords::kMarten)) {
    applyInterface(tInterface::marten, address);
  }
  if (arguments.has(nWords::kBoth)) {
    applyInterface(tInterface::both, address);
  }
}

std::vector<tAttributeArgument> parseAttributeArguments(const tArguments& arguments,
                                                        tPurpose purpose) {
  std::vector<tAttributeArgument> attributes;
  for (const std::string& text : arguments.all(nWords::kAttribute)) {
    attributes.push_back(attributeNamed(text, purpose));
  }
  // An instance that applies to no attribute is an error of the attributes, not ignored.
  const bool appliesToAll = std::ranges::none_of(attributes, hasInstances);
  const auto instance = arguments.optional(nWords::kInstance);
  for (tAttributeArgument& attribute : attributes) {
    if (instance && (appliesToAll || hasInstances(attribute))) {
      applyInstance(*instance, attribute.address);
    }
    applyInterfaces(arguments, attribute.address);
  }
  return attributes;
}

}  // namespace

std::string tAttributeArgument::name() const {
  return row == nullptr ? hexadecimalText(address.attribute, kIdDigits) : std::string(row->name);
}

std::string tAttributeArgument::label() const {
  std::string text = name();
  if (address.instance != 0) {
    text += ", instance " + std::to_string(address.instance);
  }
  if (address.which == tInterface::controller || address.which == tInterface::marten) {
    text.append(", interface ").append(interfaceName(address.which));
  }
  return text;
}

std::vector<tAttributeArgument> parseAttributesToRead(const tArguments& arguments) {
  return parseAttributeArguments(arguments, tPurpose::reading);
}

tAttributeArgument parseAttributeToWrite(const tArguments& arguments) {
  return parseAttributeArguments(arguments, tPurpose::writing).front();
}

}  // namespace nCommandLine
