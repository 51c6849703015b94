#ifndef ZOARKRA_JSONREADER_H
#define ZOARKRA_JSONREADER_H

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zoark {

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

// A value, or the beginning of a container.
struct tJsonValue {
  tJsonType type;
  bool boolean = false;        // of a boolean
  double number = 0;           // of a number
  std::string_view text = {};  // of a string, decoded
};

// Is told a document's parts as they come. Texts last as long as the call. False ends the reading.
class iJsonHandler {
 public:
  iJsonHandler() = default;
  iJsonHandler(const iJsonHandler&) = delete;
  iJsonHandler& operator=(const iJsonHandler&) = delete;
  virtual ~iJsonHandler() = default;

  // `depth`: how many containers the value lies in.
  [[nodiscard]] virtual bool value(const tJsonValue& value, size_t depth) = 0;
  [[nodiscard]] virtual bool key(std::string_view key, size_t depth) = 0;
  // The end of a container that lies in `depth` others.
  [[nodiscard]] virtual bool end(size_t depth) = 0;
};

// Containers within containers that a document may have.
inline constexpr size_t kDeepestJson = 64;

// Bytes that a document may have. None that asks for a route comes near.
inline constexpr size_t kLargestJson = size_t{4} * 1024 * 1024;

enum class tJsonOutcome : uint8_t {
  read,            // to its end
  ended,           // by the handler
  tooDeep,         // deeper than kDeepestJson
  tooLarge,        // more than kLargestJson bytes; not looked at
  numberTooLarge,  // for a double
  malformed,
};

struct tJsonResult {
  tJsonOutcome outcome;
  size_t offset;  // in bytes, where the reading ended
};

// Reads a document of JSON text in UTF-8, strictly: one value, and blanks only behind it. Numbers
// do not depend on the process's locale. Depth costs no stack. Allocates nothing for a document of
// up to 4 KiB; throws std::bad_alloc.
tJsonResult readJson(const char* document, iJsonHandler& handler);

}  // namespace zoark

#endif
