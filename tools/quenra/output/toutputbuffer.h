#ifndef TOOLS_QUENRA_OUTPUT_TOUTPUTBUFFER_H
#define TOOLS_QUENRA_OUTPUT_TOUTPUTBUFFER_H

#include <array>
#include <functional>
#include <streambuf>
#include <string_view>
#include <system_error>

namespace nCommandLine {

// The buffer of the standard output. Unlike the buffers of the C++ library it keeps the system's
// reason of a failure, for the message at the end of the program.
class tOutputBuffer final : public std::streambuf {
 public:
  // Writes all bytes; returns the system's reason on failure. Must not throw.
  using tWrite = std::function<std::error_code(std::string_view bytes)>;

  explicit tOutputBuffer(tWrite write);

  // The first failure, or clear. The buffer writes nothing after a failure.
  [[nodiscard]] const std::error_code& failure() const noexcept { return failure_; }

 protected:
  int_type overflow(int_type character) override;
  int sync() override;

 private:
  static constexpr size_t kCapacity = 4096;

  tWrite write_;
  std::error_code failure_;
  std::array<char, kCapacity> bytes_{};
};

}  // namespace nCommandLine

#endif
