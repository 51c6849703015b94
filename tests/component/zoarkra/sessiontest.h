#ifndef TESTS_COMPONENT_ZOARKRA_SESSIONTEST_H
#define TESTS_COMPONENT_ZOARKRA_SESSIONTEST_H

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "tests/component/protons/status/descriptiontext.h"
#include "tests/component/zoarkra/scriptedrouter.h"
#include "zoapal/protons/status/zoerrstatus.h"
#include "zoarkra/arkroutingadaptorsession.h"

namespace nTests {

// The code and the complete description of an exception.
struct tFailure {
  int32_t code = 0;
  std::string description;
  bool operator==(const tFailure&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const tFailure& failure) {
  return out << failure.code << " " << failure.description;
}

// The failure of an operation that has to throw one.
template <class Operation>
tFailure failureOf(Operation operation) {
  try {
    operation();
  } catch (const zoerr::ExceptionBase& exception) {
    return {exception.status().code, descriptionOf(exception.status())};
  }
  ADD_FAILURE() << "nothing was thrown";
  return {};
}

// The failure that a code of the scripted router becomes.
inline tFailure failureOfRouter(int32_t code) {
  return {code, R"({"file":"router","line":9,"component":"driver"})"};
}

// A failure that a session or an iterator raises at a line.
inline tFailure failureAtLine(uint32_t line, int32_t code, const std::string& errorConstant) {
  return {code, R"({"error_constant":")" + errorConstant +
                    R"(","file":"zoarkra\\arkroutingadaptor","line":)" + std::to_string(line) +
                    R"(,"component":"quenra"})"};
}

inline const tFailure kOutputMissing =
    failureAtLine(118, QUENRA_STATUS_INVALID_PARAMETER, "zoapalerr_invalidParameter");
inline const tFailure kNoBuffer =
    failureAtLine(127, QUENRA_STATUS_MEMORY_FULL, "zoapalerr_memoryFull");
inline const tFailure kCountImplausible =
    failureAtLine(288, QUENRA_STATUS_MEMORY_FULL, "zoapalerr_memoryFull");

// A client's output argument. Its buffers have exactly the size that the library requests, so that the
// address sanitizer reports a write past them. One at a time.
class tAnswer {
 public:
  tAnswer() { requests().clear(); }
  tAnswer(const tAnswer&) = delete;
  tAnswer& operator=(const tAnswer&) = delete;
  ~tAnswer() { delete[] output_; }

  // A reallocation function that always replaces the current buffer.
  static char* supplyBuffer(char* current, size_t required, const char* text,
                            size_t requiredAgain) {
    requests().push_back({required, text, requiredAgain});
    delete[] current;
    return new char[required];
  }
  static char* refuse(char*, size_t required, const char* text, size_t requiredAgain) {
    requests().push_back({required, text, requiredAgain});
    return nullptr;
  }

  [[nodiscard]] char** output() { return &output_; }
  // The answer, or "(none)".
  [[nodiscard]] std::string text() const { return output_ == nullptr ? "(none)" : output_; }

  // The arguments of each call of a reallocation function.
  struct tRequest {
    size_t required;
    std::string text;
    size_t requiredAgain;
  };
  [[nodiscard]] static std::vector<tRequest>& requests() {
    static std::vector<tRequest> requests;
    return requests;
  }

 private:
  char* output_ = nullptr;
};

// A session on a scripted device, open from the beginning.
class SessionTest : public testing::Test {
 protected:
  using tStrings = std::vector<std::string>;

  SessionTest() {
    create({&tAnswer::supplyBuffer, nullptr, nullptr});
    script_.router.calls.clear();
  }

  void create(const zoark::tClientFunctions& client, const char* name = "device") {
    session_.reset();
    script_.events.clear();
    session_ = std::make_unique<zoark::ARKRoutingAdaptorSession>(
        std::make_unique<tScriptedRoutingDevice>(script_), name, client, status_);
  }
  [[nodiscard]] tScriptedRouter& router() { return script_.router; }
  [[nodiscard]] const tStrings& calls() const { return script_.router.calls; }

  tRoutingDeviceScript script_;
  zoerr::tOwnedStatus status_;
  std::unique_ptr<zoark::ARKRoutingAdaptorSession> session_;
  tAnswer answer_;
};

}  // namespace nTests

#endif
