#include "zoarkra/tclientoutput.h"

#include <cstring>

#include "zoarkra/failure.h"

namespace zoark {
namespace {

constexpr auto kOutputMissing = adaptorLocation(118, kInvalidParameterConstant);
constexpr auto kNoBuffer = adaptorLocation(127, kMemoryFullConstant);
constexpr auto kReallocationThrew = adaptorLocation(131);

}  // namespace

void tClientOutput::requireOutput() const {
  if (output_ == nullptr || !isAligned(output_)) {
    raise(nZOAPALS100::kInvalidParameter, kOutputMissing);
  }
}

char* tClientOutput::requestBuffer(std::string_view text, size_t size) const {
  try {
    return reallocate_ == nullptr ? nullptr : reallocate_(*output_, size, text.data(), size);
  } catch (...) {
    raise(nZOAPALS100::kInternalError, kReallocationThrew);
  }
}

void tClientOutput::write(std::string_view text) const {
  requireOutput();
  const size_t size = text.size() + 1;
  char* const buffer = requestBuffer(text, size);
  if (buffer == nullptr) {
    raise(nZOAPALS100::kMemoryFull, kNoBuffer);
  }
  *output_ = buffer;
  std::memcpy(buffer, text.data(), size);
}

}  // namespace zoark
