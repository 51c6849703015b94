// The attributes of the library, each with its name, type, unit and meaning.
#ifndef TOOLS_QUENRA_TABLES_ATTRIBUTETABLE_H
#define TOOLS_QUENRA_TABLES_ATTRIBUTETABLE_H

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "quenra_attributes.h"

namespace nCommandLine {

enum class tAttributeType : uint8_t {
  text = 1,
  unsigned32 = 2,
};

// The value type is part of an attribute id.
[[nodiscard]] constexpr uint32_t typeBits(uint32_t id) noexcept {
  return id >> 28;
}

struct tSubjectRow {
  std::string_view key;
  std::string_view title;
};

// The instances of an attribute.
struct tInstanceRow {
  std::string_view meaning;
  // Id of the attribute whose value is the number of instances; 0 if no attribute counts them.
  uint32_t countAttribute = 0;
  // The library serves at most this many instances, even if the count is greater.
  uint32_t maximum = 1;
};

struct tNamedValue {
  uint32_t value;
  std::string_view name;
};

enum class tValueForm : uint8_t {
  plain,         // texts and decimal numbers
  hexadecimal,   // codes and bit patterns
  memorySize,    // the SMBIOS size word: MiB, or KiB when bit 15 is set
  interfaceSet,  // selector bits
};

enum class tAccess : uint8_t {
  read,
  readAndWrite,
  write,
};

struct tAttributeRow {
  uint32_t id;
  std::string_view name;
  const tSubjectRow* subject;
  const tInstanceRow* instances;
  std::string_view unit;  // empty for none
  std::string_view description;
  std::string_view source;
  tValueForm form = tValueForm::plain;
  std::span<const tNamedValue> names = {};
  tAccess access = tAccess::read;  // as known drivers permit; each driver decides for itself
  bool perInterface = false;       // the controller and the Marten each have their own value

  [[nodiscard]] constexpr bool isReadable() const noexcept { return access != tAccess::write; }
  [[nodiscard]] constexpr bool isWritable() const noexcept { return access != tAccess::read; }
  [[nodiscard]] constexpr tAttributeType type() const noexcept {
    return static_cast<tAttributeType>(typeBits(id));
  }
};

[[nodiscard]] constexpr std::string_view typeName(tAttributeType type) noexcept {
  return type == tAttributeType::text ? "text" : "unsigned";
}

// "read", "read, write", "write"
[[nodiscard]] constexpr std::string_view accessName(tAccess access) noexcept {
  return access == tAccess::read ? "read" : access == tAccess::write ? "write" : "read, write";
}

// An id has eight bits for the instance.
inline constexpr uint32_t kInstanceLimit = 256;

// The subjects in the order of the listings.
extern const std::span<const tSubjectRow* const> kSubjects;

// Every attribute that include/quenra_attributes.h defines, in the order of the listings.
extern const std::span<const tAttributeRow> kAttributes;
// Write-only attributes.
extern const std::span<const tAttributeRow> kSettings;

// Finds a row by its id without selector and instance. Null if there is none.
[[nodiscard]] const tAttributeRow* findAttribute(uint32_t id) noexcept;

// Finds a row by its name: 'product-name', in any case, with '_' for '-', or by the header's
// constant. Null if there is none.
[[nodiscard]] const tAttributeRow* findAttribute(std::string_view name);

// As above, for write-only attributes.
[[nodiscard]] const tAttributeRow* findSetting(uint32_t id) noexcept;
[[nodiscard]] const tAttributeRow* findSetting(std::string_view name);

[[nodiscard]] std::vector<std::string> suggestAttributes(std::string_view name);
// As above, for every writable attribute including the write-only ones.
[[nodiscard]] std::vector<std::string> suggestWritable(std::string_view name);

// The attribute that counts the instances; null if none does.
[[nodiscard]] const tAttributeRow* countingAttribute(const tInstanceRow& instances) noexcept;

// "1 per slot, at most 4, counted by slot-count"; empty for an attribute without instances.
[[nodiscard]] std::string instancesText(const tAttributeRow& row);

// Its constant in the header: QUENRA_ATTRIBUTE_PRODUCT_NAME, QUENRA_TEXT_SETTING_OF_BOTH.
[[nodiscard]] std::string constantOf(const tAttributeRow& row);

}  // namespace nCommandLine

#endif
