#include "tools/quenra/output/toutputbuffer.h"

#include <utility>

namespace nCommandLine {

tOutputBuffer::tOutputBuffer(tWrite write) : write_(std::move(write)) {
  setp(bytes_.data(), bytes_.data() + bytes_.size());
}

tOutputBuffer::int_type tOutputBuffer::overflow(int_type character) {
  if (sync() != 0) {
    return traits_type::eof();
  }
  if (!traits_type::eq_int_type(character, traits_type::eof())) {
    *pptr() = traits_type::to_char_type(character);
    pbump(1);
  }
  return traits_type::not_eof(character);
}

int tOutputBuffer::sync() {
  const std::string_view pending(pbase(), static_cast<size_t>(pptr() - pbase()));
  if (!failure_ && !pending.empty()) {
    failure_ = write_(pending);
  }
  setp(bytes_.data(), bytes_.data() + bytes_.size());
  return failure_ ? -1 : 0;
}

}  // namespace nCommandLine
