#ifndef ZOARKRA_JSONSTRING_H
#define ZOARKRA_JSONSTRING_H

#include <memory_resource>
#include <string>
#include <string_view>

namespace zoark {

struct tStringScan {
  const char* end;  // the closing quote, or the first byte or escape that breaks the grammar
  bool isSound;
  bool hasEscapes;
};

// Follows the grammar of JSON strings from the byte after the opening quote on, in a text that ends
// with a NUL: bytes are UTF-8, and the escapes of a surrogate pair stand together.
[[nodiscard]] tStringScan scanString(const char* text) noexcept;

// Replaces `decoded` by the characters of a string that scanString accepts; `raw` lies between its
// quotes. Throws std::bad_alloc.
void decodeString(std::string_view raw, std::pmr::string& decoded);

}  // namespace zoark

#endif
