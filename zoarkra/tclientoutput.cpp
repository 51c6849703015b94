#include "zoarkra/tclientoutput.h"

#include <cstring>

#include "zoarkra/failure.h"

namespace zoark {
namespace {

constexpr auto kNoPlace = adaptorLocation(118, kInvalidParameterConstant);
constexpr auto kNoRoom = adaptorLocation(127, kMemoryFullConstant);

}  // namespace

void tClientOutput::requirePlace() const {
  if (output_ == nullptr || !isAligned(output_)) {
    raise(nZOAPALS100::kInvalidParameter, kNoPlace);
  }
}

void tClientOutput::write(std::string_view text) const {
  requirePlace();
  const size_t size = text.size() + 1;
  char* const room =
      reallocate_ == nullptr ? nullptr : reallocate_(*output_, size, text.data(), size);
  if (room == nullptr) {
    raise(nZOAPALS100::kMemoryFull, kNoRoom);
  }
  *output_ = room;
  std::memcpy(room, text.data(), size);
}

}  // namespace zoark
