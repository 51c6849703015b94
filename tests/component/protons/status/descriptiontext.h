#ifndef TESTS_COMPONENT_PROTONS_STATUS_DESCRIPTIONTEXT_H
#define TESTS_COMPONENT_PROTONS_STATUS_DESCRIPTIONTEXT_H

#include <gtest/gtest.h>
#include <rapidjson/reader.h>

#include <algorithm>
#include <string>
#include <string_view>

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
  const std::string_view free = buffer.substr(text.size());
  EXPECT_GE(free.size(), 2u) << "the text has no NUL";
  EXPECT_TRUE(std::all_of(free.begin(), free.end() - 1, [](char c) { return c == '\0'; }))
      << "the free space is not zero";
  EXPECT_TRUE(isJson(text)) << text;
  return std::string(text);
}

}  // namespace nTests

#endif
