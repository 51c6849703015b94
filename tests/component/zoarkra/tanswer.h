#ifndef TESTS_COMPONENT_ZOARKRA_TANSWER_H
#define TESTS_COMPONENT_ZOARKRA_TANSWER_H

#include <cstddef>
#include <string>
#include <vector>

namespace nTests {

// A client's place for an answer, with buffers of exactly the size that was asked for, so that the
// address sanitizer sees one byte too many. One at a time.
class tAnswer {
 public:
  tAnswer() { requests().clear(); }
  tAnswer(const tAnswer&) = delete;
  tAnswer& operator=(const tAnswer&) = delete;
  ~tAnswer() { delete[] output_; }

  // The client's reallocation function: always another buffer, which replaces the current one.
  static char* giveRoom(char* current, size_t required, const char* text, size_t requiredAgain) {
    requests().push_back({required, text, requiredAgain});
    delete[] current;
    return new char[required];
  }
  static char* refuse(char*, size_t required, const char* text, size_t requiredAgain) {
    requests().push_back({required, text, requiredAgain});
    return nullptr;
  }

  [[nodiscard]] char** place() { return &output_; }
  // The answer, "(none)" without one.
  [[nodiscard]] std::string text() const { return output_ == nullptr ? "(none)" : output_; }

  // What the reallocation functions were asked for.
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
