#include "tools/quenra/capture/pseudonyms.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <variant>

#include "sha256/sha256.h"
#include "zosmbios/tstructuretable.h"

namespace nCommandLine {
namespace {

using nCapture::tBytes;
using nCapture::tMachineRecord;
using nQUENRA1400::nZOSMBIOS_1_1::tStructureOffset;
using nQUENRA1400::nZOSMBIOS_1_1::tStructureTable;
using tPseudonyms = std::map<std::string, std::string, std::less<>>;

// ---- The fields of the SMBIOS table that identify one machine or one of its parts ----

struct tIdentifyingText {
  uint8_t type;
  uint8_t offset;
};

constexpr tIdentifyingText kIdentifyingTexts[] = {
    {1, 0x07},   // serial number of the system
    {2, 0x07},   // ... of a baseboard
    {2, 0x08},   // asset tag of a baseboard
    {3, 0x07},   // serial number of the chassis
    {3, 0x08},   // asset tag of the chassis
    {4, 0x20},   // serial number of a processor
    {4, 0x21},   // asset tag of a processor
    {17, 0x18},  // serial number of a memory module
    {17, 0x19},  // asset tag of a memory module
    {22, 0x07},  // serial number of a battery
    {39, 0x08},  // serial number of a power supply
    {39, 0x09},  // asset tag of a power supply
};

constexpr uint8_t kSystemInformation = 1;
constexpr uint8_t kUuidOffset = 0x08;
constexpr size_t kUuidSize = 16;

// Entries of firmware that has no number, in lower case.
constexpr std::string_view kPlaceholders[] = {
    "not applicable",
    "not specified",
    "not available",
    "not provided",
    "none",
    "n/a",
    "na",
    "unknown",
    "default string",
    "to be filled by oem",
    "to be filled by o.e.m.",
    "system serial number",
    "chassis serial number",
    "base board serial number",
    "asset tag",
    "no asset tag",
};

// Shorter texts occur by chance in others.
constexpr size_t kMinDistinctLength = 5;

// ---- Texts ----

char lower(char character) noexcept {
  return static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
}

char upper(char character) noexcept {
  return static_cast<char>(std::toupper(static_cast<unsigned char>(character)));
}

std::string mapped(std::string text, char (*map)(char) noexcept) {
  std::ranges::transform(text, text.begin(), map);
  return text;
}

bool isDigit(char character) noexcept {
  return character >= '0' && character <= '9';
}
bool isUpper(char character) noexcept {
  return character >= 'A' && character <= 'Z';
}
bool isLower(char character) noexcept {
  return character >= 'a' && character <= 'z';
}
bool isReplaced(char character) noexcept {
  return isDigit(character) || isUpper(character) || isLower(character);
}

// True for a text that names no machine: a usual entry of firmware without a number, one repeated character,
// or nothing that a pseudonym would change.
bool isPlaceholder(std::string_view text) {
  const std::string compared = mapped(std::string(text), lower);
  const bool isRepeated = text.find_first_not_of(text.substr(0, 1)) == std::string_view::npos;
  return (isRepeated && text.size() >= kMinDistinctLength) ||
         std::ranges::none_of(text, isReplaced) ||
         std::ranges::find(kPlaceholders, compared) != std::end(kPlaceholders);
}

std::string_view trimmed(std::string_view text) noexcept {
  constexpr std::string_view kBlanks = " \t";
  const size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// ---- Pseudonyms ----

using tHash = std::array<uint8_t, SHA256_SIZE>;

tHash hashOf(std::string_view key, std::string_view original, uint32_t number) {
  tSha256 hash;
  sha256Start(&hash);
  for (const std::string_view part : {key, original}) {
    const uint64_t size = part.size();  // separates the parts
    sha256Add(&hash, &size, sizeof size);
    sha256Add(&hash, part.data(), static_cast<uint32_t>(part.size()));
  }
  sha256Add(&hash, &number, sizeof number);
  tHash result;
  sha256Finish(&hash, result.data());
  return result;
}

char replaced(char character, uint8_t random) noexcept {
  const auto in = [random](char first, unsigned count) {
    return static_cast<char>(static_cast<unsigned>(first) + random % count);
  };
  return isDigit(character)   ? in('0', 10)
         : isUpper(character) ? in('A', 26)
         : isLower(character) ? in('a', 26)
                              : character;
}

std::string pseudonymOf(std::string_view original, std::string_view key) {
  std::string pseudonym(original);
  // A short number could be its own pseudonym.
  for (uint32_t attempt = 0; pseudonym == original; ++attempt) {
    tHash random{};
    for (size_t i = 0; i < original.size(); ++i) {
      if (i % random.size() == 0) {
        random = hashOf(key, original, static_cast<uint32_t>(i / random.size()) + (attempt << 16));
      }
      pseudonym[i] = replaced(original[i], random[i % random.size()]);
    }
  }
  return pseudonym;
}

// ---- The table ----

// The bytes of the text with that number, from 1, of a structure; empty if it has none.
std::span<uint8_t> textOf(std::span<uint8_t> table, size_t stringSet, uint8_t number) {
  size_t position = stringSet;
  for (uint8_t i = 1; number != 0 && position < table.size(); ++i) {
    const auto begin = table.begin() + static_cast<std::ptrdiff_t>(position);
    const auto end = std::find(begin, table.end(), uint8_t{0});
    if (begin == end) {
      return {};  // the end of the set
    }
    if (i == number) {
      return {begin, end};
    }
    position = static_cast<size_t>(end - table.begin()) + 1;
  }
  return {};
}

// Calls `visit` with the bytes of every identifying text of the table, and of the UUID.
template <class VisitText, class VisitUuid>
void visitTable(std::span<uint8_t> table, VisitText visitText, VisitUuid visitUuid) {
  const tStructureTable structures(table);
  for (auto at = structures.firstStructure(); at; at = structures.nextStructure(*at)) {
    const std::span<uint8_t> structure = table.subspan(*at);
    const size_t length =
        structure.size() < 2 ? 0 : std::min<size_t>(structure[1], structure.size());
    for (const tIdentifyingText& row : kIdentifyingTexts) {
      if (length > row.offset && structure[0] == row.type) {
        visitText(textOf(table, structures.stringSetOf(*at), structure[row.offset]));
      }
    }
    if (length >= kUuidOffset + kUuidSize && structure[0] == kSystemInformation) {
      visitUuid(structure.subspan(kUuidOffset, kUuidSize));
    }
  }
}

std::string textIn(std::span<const uint8_t> bytes) {
  return {bytes.begin(), bytes.end()};
}

// ---- Replacing ----

// Replaces every occurrence; original and pseudonym have the same length.
template <class Sequence>
void replaceIn(Sequence& sequence, std::string_view original, std::string_view pseudonym) {
  const auto isSame = [](auto element, char character) {
    return static_cast<uint8_t>(element) == static_cast<uint8_t>(character);
  };
  auto from = sequence.begin();
  while (true) {
    from = std::search(from, sequence.end(), original.begin(), original.end(), isSame);
    if (from == sequence.end()) {
      return;
    }
    for (const char character : pseudonym) {
      *from++ = static_cast<typename Sequence::value_type>(character);
    }
  }
}

template <class Visit>
void visitTexts(tMachineRecord& record, Visit visit) {
  visit(record.handover.table);
  visit(record.handover.versionText);
  for (nCapture::tInterface* const interface : {&record.controller, &record.marten}) {
    for (nCapture::tAttributeAnswer& answer : interface->attributes) {
      visit(answer.value);
    }
  }
  for (nCapture::tReadingRecord& reading : record.readings) {
    if (auto* const text = std::get_if<std::string>(&reading.value)) {
      visit(*text);
    }
  }
  for (nCapture::tTerminalRecord& terminal : record.terminals.terminals) {
    visit(terminal.name);
    visit(terminal.busName);
  }
}

// Replaces a number everywhere, also where a system writes it in capital or in small letters.
void replaceEverywhere(tMachineRecord& record, const std::string& original,
                       const std::string& pseudonym) {
  visitTexts(record, [&](auto& text) {
    replaceIn(text, original, pseudonym);
    replaceIn(text, mapped(original, upper), mapped(pseudonym, upper));
    replaceIn(text, mapped(original, lower), mapped(pseudonym, lower));
  });
}

void replaceShort(tMachineRecord& record, const tPseudonyms& pseudonyms) {
  const auto pseudonymFor = [&](std::string_view text) -> std::optional<std::string> {
    const auto found = pseudonyms.find(trimmed(text));
    return found == pseudonyms.end() || found->first.size() >= kMinDistinctLength
               ? std::nullopt
               : std::optional(found->second);
  };
  const auto replaceComplete = [&](auto&& text) {
    const std::string original(text.begin(), text.end());
    if (const auto pseudonym = pseudonymFor(original)) {
      std::ranges::copy(
          *pseudonym, text.begin() + static_cast<std::ptrdiff_t>(original.find(trimmed(original))));
    }
  };
  visitTable(record.handover.table, replaceComplete, [](std::span<uint8_t>) {});
  for (nCapture::tReadingRecord& reading : record.readings) {
    auto* const text = std::get_if<std::string>(&reading.value);
    if (text != nullptr && reading.name.ends_with("serial-number")) {
      replaceComplete(*text);
    }
  }
}

}  // namespace

void replaceSerialNumbers(tMachineRecord& record, std::string_view key) {
  tPseudonyms pseudonyms;
  visitTable(
      record.handover.table,
      [&](std::span<uint8_t> text) {
        const std::string content = textIn(text);
        const std::string original(trimmed(content));
        if (!original.empty() && !isPlaceholder(original)) {
          pseudonyms.emplace(original, pseudonymOf(original, key));
        }
      },
      [&](std::span<uint8_t> uuid) {
        const bool isSet = std::ranges::adjacent_find(uuid, std::not_equal_to<>()) != uuid.end();
        if (isSet) {
          const tHash random = hashOf(key, textIn(uuid), 0);
          std::copy_n(random.begin(), uuid.size(), uuid.begin());
        }
      });

  // The longest first: a shorter number may be part of a longer one.
  std::vector<const tPseudonyms::value_type*> ordered;
  for (const auto& entry : pseudonyms) {
    ordered.push_back(&entry);
  }
  std::ranges::stable_sort(ordered, std::greater<>(),
                           [](const auto* entry) { return entry->first.size(); });
  replaceShort(record, pseudonyms);
  for (const auto* const entry : ordered) {
    if (entry->first.size() >= kMinDistinctLength) {
      replaceEverywhere(record, entry->first, entry->second);
    }
  }
  if (!record.updateEnvironment.toolOwner.empty()) {
    record.updateEnvironment.toolOwner = "(removed)";
  }
  record.isAnonymous = true;
}

}  // namespace nCommandLine
