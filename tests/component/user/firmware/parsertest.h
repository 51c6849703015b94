// Parses images that end with their allocation.
#ifndef TESTS_COMPONENT_USER_FIRMWARE_PARSERTEST_H
#define TESTS_COMPONENT_USER_FIRMWARE_PARSERTEST_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "quenra_status.h"
#include "source/user/firmware/tfirmwareimageparser.h"
#include "tests/builders/firmwareimagebuilder.h"
#include "tests/component/user/readingtest.h"

namespace nTests {

class ParserTest : public testing::Test {
 protected:
  ~ParserTest() override { freePayloads(records); }

  // Adds to `records`.
  tFailure parse(std::string_view image) {
    const auto exact = std::make_unique<char[]>(image.size());
    std::copy(image.begin(), image.end(), exact.get());
    zoerr::tOwnedStatus status;
    nQUENRA1400::tFirmwareImageParser().Parse(records, exact.get(), image.size(), status);
    if (status.isError()) {
      const std::string description = status.description == nullptr ? "" : status.description;
      EXPECT_THAT(description, testing::HasSubstr("tFirmwareImageParser"));
      EXPECT_THAT(description, testing::HasSubstr("\"quenra\""));
    }
    return {status.code, lineOf(status)};
  }
  tFailure parse(const std::vector<tFirmwareSection>& sections) {
    return parse(firmwareImage(sections));
  }

  [[nodiscard]] std::vector<uint8_t> data(size_t record) const {
    const auto& found = records.at(record);
    return {found.data, found.data + found.byteCount};
  }
  [[nodiscard]] std::vector<std::string> versions() const {
    std::vector<std::string> versions;
    for (const auto& record : records) {
      versions.push_back(record.version);
    }
    return versions;
  }

  static constexpr tFailure kSuccess{0, 0};
  nQUENRA1400::tFirmwarePayloads records;
};

}  // namespace nTests

#endif
