#ifndef TESTS_COMPONENT_PROTONS_STATUS_DESCRIPTIONTEXT_H
#define TESTS_COMPONENT_PROTONS_STATUS_DESCRIPTIONTEXT_H

#include <gtest/gtest.h>
#include <rapidjson/reader.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zoapal/protons/status/descriptionwriter.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nTests {

inline bool isJson(std::string_view text) {
  // Parses in place: otherwise RapidJSON's empty stack does arithmetic on a null pointer.
  std::string copy(text);
  rapidjson::InsituStringStream stream(copy.data());
  rapidjson::BaseReaderHandler<> ignoreValues;
  constexpr unsigned kFlags = rapidjson::kParseInsituFlag;
  return !rapidjson::Reader().Parse<kFlags>(stream, ignoreValues).IsError();
}

// The unparsed description of a status. The test fails unless the buffer is well-formed: one JSON
// text, a NUL, zero bytes, and the marker as its last byte.
inline std::string descriptionOf(const zoerr::Status& status) {
  if (status.description == nullptr) {
    ADD_FAILURE() << "no description";
    return {};
  }
  const std::string_view buffer(status.description, status.capacity);
  EXPECT_EQ(buffer.back(), 'J') << "the marker is missing";
  const std::string_view text = buffer.substr(0, buffer.find('\0'));
  const std::string_view unused = buffer.substr(text.size());
  EXPECT_GE(unused.size(), 2u) << "the text has no NUL";
  EXPECT_TRUE(std::all_of(unused.begin(), unused.end() - 1, [](char c) { return c == '\0'; }))
      << "the free space is not zero";
  EXPECT_TRUE(isJson(text)) << text;
  return std::string(text);
}

// A client with its own reallocation function, which records the requested capacities. Its buffer is
// not on the C heap: freeing it there stops the program.
class tClientHeap {
 public:
  tClientHeap() { requests().clear(); }
  tClientHeap(const tClientHeap&) = delete;
  tClientHeap& operator=(const tClientHeap&) = delete;
  ~tClientHeap() { buffer().clear(); }

  // Supplies exactly the requested capacity; 0 releases.
  static bool giveExactly(zoerr::Status& status, uint32_t newCapacity);
  // As giveExactly, up to 600 bytes.
  static bool giveUpTo600(zoerr::Status& status, uint32_t newCapacity);
  static bool refuse(zoerr::Status& status, uint32_t newCapacity);
  // Returns true and does nothing.
  static bool pretend(zoerr::Status& status, uint32_t newCapacity);
  // As giveExactly, but leaves out the marker in the last byte.
  static bool giveWithoutMarker(zoerr::Status& status, uint32_t newCapacity);
  // As giveExactly, but the buffer holds a text that is not a JSON object.
  static bool giveUnusableText(zoerr::Status& status, uint32_t newCapacity);

  // A status of success whose description is "{}" in a buffer of this client with the given capacity.
  [[nodiscard]] static zoerr::Status statusWithDescription(uint32_t capacity);

  [[nodiscard]] static std::vector<uint32_t>& requests();

 private:
  static std::vector<char>& buffer();
};

inline std::vector<uint32_t>& tClientHeap::requests() {
  static std::vector<uint32_t> requests;
  return requests;
}

inline std::vector<char>& tClientHeap::buffer() {
  static std::vector<char> buffer;
  return buffer;
}

inline bool tClientHeap::giveExactly(zoerr::Status& status, uint32_t newCapacity) {
  requests().push_back(newCapacity);
  if (newCapacity == 0) {
    buffer() = {};
    status.description = nullptr;
    status.capacity = 0;
    return true;
  }
  if (newCapacity <= status.capacity) {
    return true;
  }
  const std::string_view text = status.description == nullptr
                                    ? zoerr::kEmptyDescription
                                    : std::string_view(status.description);
  std::vector<char> grown(newCapacity);
  std::copy(text.begin(), text.end(), grown.begin());
  grown.back() = 'J';
  buffer() = std::move(grown);
  status.description = buffer().data();
  status.capacity = newCapacity;
  return true;
}

inline bool tClientHeap::giveUpTo600(zoerr::Status& status, uint32_t newCapacity) {
  return newCapacity <= 600 ? giveExactly(status, newCapacity) : refuse(status, newCapacity);
}

inline bool tClientHeap::refuse(zoerr::Status&, uint32_t newCapacity) {
  requests().push_back(newCapacity);
  return false;
}

inline bool tClientHeap::pretend(zoerr::Status&, uint32_t newCapacity) {
  requests().push_back(newCapacity);
  return true;
}

inline bool tClientHeap::giveWithoutMarker(zoerr::Status& status, uint32_t newCapacity) {
  const bool given = giveExactly(status, newCapacity);
  if (newCapacity != 0) {
    buffer().back() = '\0';
  }
  return given;
}

inline bool tClientHeap::giveUnusableText(zoerr::Status& status, uint32_t newCapacity) {
  const bool given = giveExactly(status, newCapacity);
  if (newCapacity != 0) {
    buffer().front() = '"';
  }
  return given;
}

inline zoerr::Status tClientHeap::statusWithDescription(uint32_t capacity) {
  zoerr::Status status;
  status.reallocate = &giveExactly;
  giveExactly(status, capacity);
  requests().clear();
  return status;
}

}  // namespace nTests

#endif
