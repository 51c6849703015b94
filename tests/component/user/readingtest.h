// The fixture of attribute tests: a provider with a table, memory modules, and doubles of the driver.
#ifndef TESTS_COMPONENT_USER_READINGTEST_H
#define TESTS_COMPONENT_USER_READINGTEST_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "codegen/apalcodegen/tinterfaceproxy_hostcontroller.h"
#include "codegen/apalcodegen/tinterfaceproxy_hostmarten.h"
#include "quenra_status.h"
#include "source/user/attributes/attributes.h"
#include "tests/builders/smbiostablebuilder.h"
#include "tests/component/twithoutchannel.h"
#include "zoapal/protons/status/zoerrstatus.h"
#include "zosmbios/czosmbiosprovider.h"

namespace nTests {

// ---- Doubles of the driver: each holds attributes, and records the requests it receives ----

using nZOAPALS100::tStatus;

struct tReply {
  std::string bytes;
  // With a negative code the driver fills no byte, and reports the size of `bytes`.
  int32_t code = 0;
};

struct tAttributeRequest {
  uint32_t attribute;
  uint32_t size;
  int32_t callerCode;
  bool operator==(const tAttributeRequest&) const = default;
};

// The attributes of one interface. A request for an attribute without a reply is refused, with a
// reported size of 0.
class tAttributeStore {
 public:
  std::map<uint32_t, tReply> replies;
  std::vector<tAttributeRequest> requests;

  void replyWithNumber(uint32_t attribute, uint32_t value, int32_t code = 0) {
    std::string bytes(sizeof value, '\0');
    std::memcpy(bytes.data(), &value, sizeof value);
    replies[attribute] = {bytes, code};
  }
  void replyWithText(uint32_t attribute, const std::string& text) {
    replies[attribute] = {text + '\0', 0};
  }
  // Bytes that a successful read reports in addition to those it filled.
  uint32_t overreportedBytes = 0;
  // The code of every write.
  int32_t writeCode = 0;
  std::vector<tAttributeRequest> writes;

  void set(uint32_t attribute, int32_t size, tStatus& status) {
    if (!status.isError()) {
      writes.push_back({attribute, static_cast<uint32_t>(size), status.code});
      mergeStatus(status, writeCode, {"store", 4, "driver"});
    }
  }
  void get(uint32_t attribute, uint64_t buffer, uint32_t& size, tStatus& status) {
    if (status.isError()) {
      return;
    }
    requests.push_back({attribute, size, status.code});
    const auto reply = replies.find(attribute);
    if (reply == replies.end()) {
      mergeStatus(status, QUENRA_STATUS_NOT_SUPPORTED, {"store", 1, "driver"});
      size = 0;
      return;
    }
    const std::string& bytes = reply->second.bytes;
    const auto needed = static_cast<uint32_t>(bytes.size());
    if (reply->second.code < 0) {
      mergeStatus(status, reply->second.code, {"store", 3, "driver"});
      size = needed;
    } else if (size < needed) {
      mergeStatus(status, QUENRA_STATUS_BUFFER_TOO_SMALL, {"store", 2, "driver"});
      size = needed;
    } else {
      if (needed != 0) {
        std::memcpy(reinterpret_cast<void*>(static_cast<uintptr_t>(buffer)), bytes.data(), needed);
      }
      mergeStatus(status, reply->second.code, {"store", 3, "driver"});
      size = needed + overreportedBytes;
    }
  }
};

// An interface without the operations that no reader uses.
template <class Interface>
class tAttributesOnly : public tWithoutChannel<Interface> {
 public:
  void sendCommand(uint64_t, uint32_t, tStatus&) noexcept override {}
};

class tScriptedController final
    : public tAttributesOnly<nQUENRA1400::nZOAPAL000::iInterfaceProxy_hostController>,
      public tAttributeStore {
 public:
  void exchangeValues(uint64_t, uint32_t&, uint64_t, int32_t&, tStatus&) noexcept override {}
  void getAttribute(uint32_t attribute, uint64_t buffer, uint32_t& size,
                    tStatus& status) noexcept override {
    get(attribute, buffer, size, status);
  }
  void setAttribute(uint32_t attribute, uint64_t, int32_t size, tStatus& status) noexcept override {
    set(attribute, size, status);
  }
};

class tScriptedMarten final
    : public tAttributesOnly<nQUENRA1400::nZOAPAL000::iInterfaceProxy_hostMarten>,
      public tAttributeStore {
 public:
  void getAttribute(uint32_t attribute, uint64_t buffer, uint32_t& size,
                    tStatus& status) noexcept override {
    get(attribute, buffer, size, status);
  }
  void setAttribute(uint32_t attribute, uint64_t, int32_t size, tStatus& status) noexcept override {
    set(attribute, size, status);
  }
};

// ---- The fixture ----

// A provider without a machine to load a table from.
class tInstalledProvider final : public nQUENRA1400::nZOSMBIOS_1_1::cZoSmBiosProvider {
 public:
  void load(nZOAPALS100::tStatus& status) noexcept override {
    mergeStatus(status, nQUENRA1400::nZOSMBIOS_1_1::kNoTable, {"test", 1, "quenra"});
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
