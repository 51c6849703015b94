// The fixture of attribute tests: a provider with a table, memory modules, and doubles of the driver.
#ifndef TESTS_COMPONENT_USER_READINGTEST_H
#define TESTS_COMPONENT_USER_READINGTEST_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "source/user/attributes/attributes.h"
#include "tests/builders/smbiostablebuilder.h"
#include "tests/component/user/tscripteddriver.h"
#include "zoapal/protons/status/zoerrstatus.h"
#include "zosmbios/czosmbiosprovider.h"

namespace nTests {

// A provider without a machine to load a table from.
class tInstalledProvider final : public nQUENRA1400::nZOSMBIOS_1_1::cZoSmBiosProvider {
 public:
  void load(nZOAPALS100::tStatus& status) noexcept override {
    mergeStatus(status, nQUENRA1400::nZOSMBIOS_1_1::kNoTable, "quenra", "test", 1);
  }
};

// The source line in a status; 0 when it has none.
[[nodiscard]] inline uint32_t lineOf(const zoerr::Status& status) {
  const std::string text = status.description == nullptr ? "" : status.description;
  const size_t line = text.find("\"line\":");
  return line == std::string::npos ? 0 : static_cast<uint32_t>(std::stoul(text.substr(line + 7)));
}

// The description of a failure at a line of a source file, as the library writes it.
[[nodiscard]] inline std::string descriptionOf(const std::string& file, uint32_t line,
                                               const std::string& component) {
  return R"({"file":")" + file + R"(","line":)" + std::to_string(line) + R"(,"component":")" +
         component + R"("})";
}

struct tFailure {
  int32_t code;
  uint32_t line;
  bool operator==(const tFailure&) const = default;
};
inline void PrintTo(const tFailure& failure, std::ostream* out) {
  *out << "code " << failure.code << " at line " << failure.line;
}

// Code and line. The test fails unless the description names the session or the double of the driver
// as the source, with all its members.
[[nodiscard]] inline tFailure failureOf(const zoerr::Status& status) {
  const tFailure failure{status.code, lineOf(status)};
  if (failure.line != 0) {
    EXPECT_THAT(std::string(status.description),
                testing::AnyOf(descriptionOf(R"(source\\user\\tControllerUserSession)",
                                             failure.line, "quenra"),
                               descriptionOf("store", failure.line, "driver")));
  }
  return failure;
}

class ReadingTest : public testing::Test {
 protected:
  void SetUp() override { install(tReferenceTable()); }

  void install(const tReferenceTable& table) {
    const std::vector<uint8_t> bytes = table.build();
    nZOAPALS100::tStatus installing;
    provider.install(bytes, {}, installing);
    ASSERT_EQ(installing.code, 0);
    modules = nQUENRA1400::tMemoryModules();
    zoerr::tOwnedStatus finding;
    modules.find(provider, finding);
  }
  nQUENRA1400::tAttributeAccess access() {
    return {provider, modules, controller, marten, controllerIsOpen, martenIsOpen};
  }
  tFailure readText(uint32_t attribute, uint64_t size = sizeof buffer) {
    zoerr::tOwnedStatus status;
    readTextAttribute(access(), attribute, buffer, &size, status);
    return failureOf(status);
  }
  tFailure readUnsigned(uint32_t attribute) {
    zoerr::tOwnedStatus status;
    readUnsignedAttribute(access(), attribute, value, status);
    return failureOf(status);
  }

  tInstalledProvider provider;
  nQUENRA1400::tMemoryModules modules;
  tScriptedController controller;
  tScriptedMarten marten;
  bool controllerIsOpen = true;
  bool martenIsOpen = false;
  char buffer[200] = "untouched";
  uint32_t value = 0xCAFEF00D;
};

}  // namespace nTests

#endif
