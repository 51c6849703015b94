// The fixture of tests of `quenra update`: a machine with a Marten that accepts updates.
#ifndef TESTS_COMPONENT_COMMANDLINE_UPDATEVERBTEST_H
#define TESTS_COMPONENT_COMMANDLINE_UPDATEVERBTEST_H

#include <gmock/gmock.h>

#include <string>
#include <string_view>
#include <vector>

#include "quenra_attributes.h"
#include "quenra_status.h"
#include "tests/builders/firmwareimagebuilder.h"
#include "tests/component/commandline/commandlinetest.h"

namespace nTests {

using tWords = std::vector<std::string>;
using tSections = std::vector<tFirmwareSection>;

inline constexpr uint32_t kBiosVersion =
    QUENRA_ATTRIBUTE_FIRMWARE_VERSION | QUENRA_SELECTOR_CONTROLLER;
inline constexpr uint32_t kMartenVersion =
    QUENRA_ATTRIBUTE_FIRMWARE_VERSION | QUENRA_SELECTOR_MARTEN;

inline tFirmwareSection section(std::string_view device, std::string_view version) {
  const std::string_view digits = "123456789";
  return tFirmwareSection(device).version(version).payload(
      {reinterpret_cast<const uint8_t*>(digits.data()), digits.size()});
}

class UpdateVerb : public CommandLineTest {
 protected:
  void SetUp() override {
    library_.number(QUENRA_ATTRIBUTE_FIRMWARE_UPDATE_SUPPORT, 1);
    library_.number(QUENRA_ATTRIBUTE_INTERFACES_PRESENT,
                    QUENRA_SELECTOR_CONTROLLER | QUENRA_SELECTOR_MARTEN);
    library_.text(kBiosVersion, "3.1.0f2");
    library_.text(kMartenVersion, "1.4.0f7");
  }

  std::string fileOf(const tSections& sections) const {
    return folder_.file("update.fwi", firmwareImage(sections));
  }
  rapidjson::Document planOf(const tSections& sections, const tWords& more = {}) {
    tWords words{"update", "--plan", "--json", fileOf(sections)};
    words.insert(words.end(), more.begin(), more.end());
    const tRun result = run(words);
    EXPECT_THAT(library_.updates, testing::IsEmpty()) << "a plan changes nothing";
    rapidjson::Document document = result.document();
    EXPECT_EQ(document["exitCode"].GetInt(), result.exitCode);
    return document;
  }
  // The action that a plan lists for each section, in order.
  std::vector<std::string> actionsFor(const tSections& sections, const tWords& more = {}) {
    const auto document = planOf(sections, more);
    std::vector<std::string> actions;
    for (const auto& planned : document["sections"].GetArray()) {
      actions.push_back(std::to_string(planned["section"].GetInt()) + " " +
                        planned["action"].GetString());
    }
    return actions;
  }
  static std::vector<int32_t> codesOf(const rapidjson::Document& document) {
    std::vector<int32_t> codes;
    for (const auto& obstacle : document["obstacles"].GetArray()) {
      codes.push_back(obstacle["status"]["code"].GetInt());
    }
    return codes;
  }

  tTestFiles folder_;
};

}  // namespace nTests

#endif
