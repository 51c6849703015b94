#ifndef TESTS_COMPONENT_ZOARKRA_EXPECTFAILURE_H
#define TESTS_COMPONENT_ZOARKRA_EXPECTFAILURE_H

#include <gtest/gtest.h>

#include <string>

#include "tests/component/protons/status/descriptiontext.h"
#include "zoapal/protons/status/zoerrstatus.h"

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

}  // namespace nTests

#endif
