#ifndef ZOARKRA_JSONREADER_H
#define ZOARKRA_JSONREADER_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "quenra_routing.h"

namespace zoark {

struct tNumberScan {
  const char* end;  // the character after the number, or the first one that breaks the grammar
  bool isSound;
};

// Follows the grammar of JSON numbers from `text` on, which ends with a NUL.
[[nodiscard]] tNumberScan scanNumber(const char* text) noexcept;

// The double nearest to a number that scanNumber accepts, in any locale: infinite beyond the range of
// a double, 0 below it. Digits and exponent are unbounded; only the value counts.
[[nodiscard]] double valueOfNumber(std::string_view number) noexcept;

enum class tJsonType : uint8_t {
  null,
  boolean,
  number,
  string,
  object,
  array
};

// The name of a type in descriptions.
[[nodiscard]] const char* nameOf(tJsonType type) noexcept;

// A value, or the start of a container.
struct tJsonValue {
  tJsonType type;
  bool boolean = false;        // of a boolean
  double number = 0;           // of a number; infinite beyond the range of a double
  std::string_view text = {};  // of a string, decoded
};

// Receives the parts of a document in their order. A value's text is valid during the call, a key until
// the next key. A member that returns false ends the reading.
class iJsonHandler {
 public:
  iJsonHandler() = default;
  iJsonHandler(const iJsonHandler&) = delete;
  iJsonHandler& operator=(const iJsonHandler&) = delete;
  virtual ~iJsonHandler() = default;

  // `depth`: the number of containers around the value.
  [[nodiscard]] virtual bool value(const tJsonValue& value, size_t depth) = 0;
  [[nodiscard]] virtual bool key(std::string_view key, size_t depth) = 0;
  // The end of a container with `depth` others around it.
  [[nodiscard]] virtual bool end(size_t depth) = 0;
};

// The depth of nesting that the reader accepts.
inline constexpr size_t kMaxJsonDepth = ZOROCO_MAX_DOCUMENT_DEPTH;

// The bytes of a document that the reader accepts. No route request comes near.
inline constexpr size_t kMaxJsonSize = static_cast<size_t>(ZOROCO_MAX_DOCUMENT_SIZE);

enum class tJsonOutcome : uint8_t {
  read,       // to its end
  ended,      // by the handler
  tooDeep,    // deeper than kMaxJsonDepth
  tooLarge,   // more than kMaxJsonSize bytes; not read
  malformed,  // not JSON in UTF-8
};

struct tJsonResult {
  tJsonOutcome outcome;
  size_t offset;  // in bytes, where the reading ended; of an invalid escape, its backslash
};

// Reads a document of JSON text in UTF-8, strictly: one value, with blanks only before and after it.
// Numbers do not depend on the locale of the process. Nesting uses no stack. Allocates no heap memory
// for a document of up to 4 KiB; throws std::bad_alloc.
tJsonResult readJson(const char* document, iJsonHandler& handler);

}  // namespace zoark

#endif
