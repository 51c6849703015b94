#ifndef TESTS_LOAD_BROKENPROMISE_H
#define TESTS_LOAD_BROKENPROMISE_H

#include <stdexcept>
#include <string>

namespace nTests {

// A contract was violated under load. The text describes the violation.
class tBrokenPromise : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

inline void require(bool kept, const std::string& promise) {
  if (!kept) {
    throw tBrokenPromise(promise);
  }
}

}  // namespace nTests

#endif
