#include "tests/component/protons/status/descriptiontext.h"

#include <gtest/gtest.h>
#include <rapidjson/reader.h>

#include <algorithm>

namespace nTests {

bool isJson(std::string_view text) {
  // Parses in place: otherwise RapidJSON's empty stack does arithmetic on a null pointer.
  std::string copy(text);
  rapidjson::InsituStringStream stream(copy.data());
  rapidjson::BaseReaderHandler<> ignoreValues;
  constexpr unsigned kFlags = rapidjson::kParseInsituFlag;
  return !rapidjson::Reader().Parse<kFlags>(stream, ignoreValues).IsError();
}

std::string descriptionOf(const zoerr::Status& status) {
  if (status.description == nullptr) {
    ADD_FAILURE() << "there is no description";
    return {};
  }
  const std::string_view buffer(status.description, status.capacity);
  EXPECT_EQ(buffer.back(), 'J') << "the marker is missing";
  const std::string_view text = buffer.substr(0, buffer.find('\0'));
  const std::string_view room = buffer.substr(text.size());
  EXPECT_GE(room.size(), 2u) << "the text has no NUL";
  EXPECT_TRUE(std::all_of(room.begin(), room.end() - 1, [](char c) { return c == '\0'; }))
      << "the free room is not zero";
  EXPECT_TRUE(isJson(text)) << text;
  return std::string(text);
}

}  // namespace nTests
