#include "tools/quenra/catalogue/attributelookup.h"

#include <algorithm>
#include <iterator>

#include "tools/quenra/catalogue/suggestion.h"

namespace nCommandLine {
namespace {

constexpr std::string_view kConstantPrefix = "QUENRA_ATTRIBUTE_";
constexpr std::string_view kSettingPrefix = "QUENRA_";

template <class Predicate>
const tAttributeRow* findRow(std::span<const tAttributeRow> rows, Predicate matches) {
  const auto row = std::ranges::find_if(rows, matches);
  return row == rows.end() ? nullptr : &*row;
}

const tAttributeRow* findId(std::span<const tAttributeRow> rows, uint32_t id) noexcept {
  return findRow(rows, [id](const tAttributeRow& row) { return row.id == id; });
}

const tAttributeRow* findName(std::span<const tAttributeRow> rows, const std::string& name) {
  return findRow(rows, [&name](const tAttributeRow& row) { return row.name == name; });
}

std::string withoutPrefix(std::string_view text, std::string_view constantPrefix) {
  std::string name = comparableName(text);
  const std::string prefix = comparableName(constantPrefix);
  return name.starts_with(prefix) ? name.substr(prefix.size()) : name;
}

std::vector<std::string_view> namesOf(std::span<const tAttributeRow> rows) {
  std::vector<std::string_view> names;
  std::ranges::transform(rows, std::back_inserter(names), &tAttributeRow::name);
  return names;
}

}  // namespace

const tAttributeRow* findAttribute(uint32_t id) noexcept {
  return findId(kAttributes, id);
}

const tAttributeRow* findAttribute(std::string_view name) {
  return findName(kAttributes, withoutPrefix(name, kConstantPrefix));
}

const tAttributeRow* findSetting(uint32_t id) noexcept {
  return findId(kSettings, id);
}

const tAttributeRow* findSetting(std::string_view name) {
  return findName(kSettings, withoutPrefix(name, kSettingPrefix));
}

std::vector<std::string> suggestAttributes(std::string_view name) {
  return suggest(withoutPrefix(name, kConstantPrefix), namesOf(kAttributes));
}

std::vector<std::string> suggestWritable(std::string_view name) {
  std::vector<std::string_view> names = namesOf(kAttributes);
  std::ranges::copy(namesOf(kSettings), std::back_inserter(names));
  const std::string wanted = withoutPrefix(name, kConstantPrefix);
  return suggest(withoutPrefix(wanted, kSettingPrefix), names);
}

const tAttributeRow* countingAttribute(const tInstanceRow& instances) noexcept {
  return instances.countAttribute == 0 ? nullptr : findAttribute(instances.countAttribute);
}

std::string instancesText(const tAttributeRow& row) {
  if (row.instances->meaning.empty()) {
    return "";
  }
  std::string text = "1 per " + std::string(row.instances->meaning);
  const tAttributeRow* const counter = countingAttribute(*row.instances);
  return counter == nullptr ? text : text.append(", counted by ").append(counter->name);
}

std::string constantOf(const tAttributeRow& row) {
  std::string constant(row.isReadable() ? kConstantPrefix : kSettingPrefix);
  for (const char character : row.name) {
    const bool lower = character >= 'a' && character <= 'z';
    constant +=
        lower ? static_cast<char>(character - 'a' + 'A') : (character == '-' ? '_' : character);
  }
  return constant;
}

}  // namespace nCommandLine
