#ifndef ZOAPAL_PROTONS_STATUS_DESCRIPTIONWRITER_H
#define ZOAPAL_PROTONS_STATUS_DESCRIPTIONWRITER_H

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zoerr {

// The description of a status is one JSON text in a buffer: the NUL-terminated text, zero bytes as
// free space, and the marker as the very last byte. The functions here edit it in place and never
// build a tree.
inline constexpr char kDescriptionMarker = 'J';
inline constexpr std::string_view kEmptyDescription = "{}";
// An empty description, its NUL and the marker.
inline constexpr uint32_t kMinDescription = 4;

enum class tAppendResult {
  appended,
  noSpace,   // the buffer is unchanged; grow it and try again
  unusable,  // the buffer holds no such text; it is unchanged
};

// The text that a buffer holds; empty when it has no NUL before its last byte. Never reads past the
// capacity. The text need not be valid JSON.
[[nodiscard]] std::string_view descriptionText(const char* buffer, uint32_t capacity) noexcept;

// Replaces the buffer's text. `text` leaves at least two bytes for its NUL and the marker.
void replaceDescription(char* buffer, uint32_t capacity, std::string_view text) noexcept;

// Replaces the buffer's text by "{}". `capacity` is at least kMinDescription bytes.
void resetDescription(char* buffer, uint32_t capacity) noexcept;

// Append a member to the object, or an element to the array, at the top level of the text. Texts are
// escaped; their bytes from 128 on are copied unchanged. A real number has one decimal in every locale;
// one that is not finite becomes null.
[[nodiscard]] tAppendResult appendText(char* buffer, uint32_t capacity, std::string_view key,
                                       std::string_view value) noexcept;
[[nodiscard]] tAppendResult appendInteger(char* buffer, uint32_t capacity, std::string_view key,
                                          int32_t value) noexcept;
[[nodiscard]] tAppendResult appendUnsigned(char* buffer, uint32_t capacity, std::string_view key,
                                           uint64_t value) noexcept;
[[nodiscard]] tAppendResult appendReal(char* buffer, uint32_t capacity, std::string_view key,
                                       double value) noexcept;
[[nodiscard]] tAppendResult appendBoolean(char* buffer, uint32_t capacity, std::string_view key,
                                          bool value) noexcept;
[[nodiscard]] tAppendResult appendNull(char* buffer, uint32_t capacity,
                                       std::string_view key) noexcept;

}  // namespace zoerr

#endif
