// Doubles of the driver's interfaces: each holds attributes, and records the requests it receives.
#ifndef TESTS_COMPONENT_USER_TSCRIPTEDDRIVER_H
#define TESTS_COMPONENT_USER_TSCRIPTEDDRIVER_H

#include <cstdint>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "codegen/apalcodegen/tinterfaceproxy_hostcontroller.h"
#include "codegen/apalcodegen/tinterfaceproxy_hostmarten.h"
#include "tests/component/twithoutchannel.h"

namespace nTests {

using nZOAPALS100::tStatus;

struct tAnswer {
  std::string bytes;
  int32_t code =
      0;  // with a negative code the driver fills no byte, and it reports the size of `bytes`
};

struct tQuestion {
  uint32_t attribute;
  uint32_t size;
  int32_t callerCode;
  bool operator==(const tQuestion&) const = default;
};

// The attributes of one interface. A request for an attribute without an answer is refused, with a
// reported size of 0.
class tAttributeStore {
 public:
  std::map<uint32_t, tAnswer> answers;
  std::vector<tQuestion> questions;

  void answerNumber(uint32_t attribute, uint32_t value, int32_t code = 0) {
    std::string bytes(sizeof value, '\0');
    std::memcpy(bytes.data(), &value, sizeof value);
    answers[attribute] = {bytes, code};
  }
  void answerText(uint32_t attribute, const std::string& text) {
    answers[attribute] = {text + '\0', 0};
  }
  // Bytes that a successful read reports in addition to those it filled.
  uint32_t exaggeration = 0;
  // The code of every write.
  int32_t writeCode = 0;
  std::vector<tQuestion> writes;

  void set(uint32_t attribute, int32_t size, tStatus& status) {
    if (!status.isError()) {
      writes.push_back({attribute, static_cast<uint32_t>(size), status.code});
      mergeStatus(status, writeCode, "driver", "store", 4);
    }
  }
  void get(uint32_t attribute, uint64_t buffer, uint32_t& size, tStatus& status) {
    if (status.isError()) {
      return;
    }
    questions.push_back({attribute, size, status.code});
    const auto answer = answers.find(attribute);
    if (answer == answers.end()) {
      mergeStatus(status, -26934, "driver", "store", 1);
      size = 0;
      return;
    }
    const std::string& bytes = answer->second.bytes;
    const auto needed = static_cast<uint32_t>(bytes.size());
    if (answer->second.code < 0) {
      mergeStatus(status, answer->second.code, "driver", "store", 3);
      size = needed;
    } else if (size < needed) {
      mergeStatus(status, -26930, "driver", "store", 2);
      size = needed;
    } else {
      if (needed != 0) {
        std::memcpy(reinterpret_cast<void*>(static_cast<uintptr_t>(buffer)), bytes.data(), needed);
      }
      mergeStatus(status, answer->second.code, "driver", "store", 3);
      size = needed + exaggeration;
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

}  // namespace nTests

#endif
