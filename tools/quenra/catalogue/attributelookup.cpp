#include "tools/quenra/catalogue/attributelookup.h"

#include <algorithm>

#include "tools/quenra/catalogue/suggestion.h"

namespace nCommandLine {
namespace {

constexpr std::string_view kConstantPrefix = "QUENRA_ATTRIBUTE_";

template <class Predicate>
const tAttributeRow* findRow(Predicate matches) {
  const auto row = std::ranges::find_if(kAttributes, matches);
  return row == kAttributes.end() ? nullptr : &*row;
}

std::string nameIn(std::string_view text) {
  std::string name = comparableName(text);
  const std::string prefix = comparableName(kConstantPrefix);
  return name.starts_with(prefix) ? name.substr(prefix.size()) : name;
}

}  // namespace

const tAttributeRow* findAttribute(uint32_t id) noexcept {
  return findRow([id](const tAttributeRow& row) { return row.id == id; });
}

const tAttributeRow* findAttribute(std::string_view name) {
  const std::string wanted = nameIn(name);
  return findRow([&wanted](const tAttributeRow& row) { return row.name == wanted; });
}

std::vector<std::string> suggestAttributes(std::string_view name) {
  std::vector<std::string_view> names;
  for (const tAttributeRow& row : kAttributes) {
    names.push_back(row.name);
  }
  return suggest(nameIn(name), names);
}

std::string constantOf(const tAttributeRow& row) {
  std::string constant(kConstantPrefix);
  for (const char character : row.name) {
    const bool lower = character >= 'a' && character <= 'z';
    constant +=
        lower ? static_cast<char>(character - 'a' + 'A') : (character == '-' ? '_' : character);
  }
  return constant;
}

}  // namespace nCommandLine
