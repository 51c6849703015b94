#ifndef TESTS_COMPONENT_ZOARKRA_TANSWER_H
#define TESTS_COMPONENT_ZOARKRA_TANSWER_H

#include <cstddef>
#include <string>
#include <vector>

namespace nTests {

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

}  // namespace nTests

#endif
