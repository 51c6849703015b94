#include "tests/load/sharedload.h"

#include <algorithm>
#include <system_error>

namespace nTests {

void noteFailure(tLoad& load, const std::string& text) noexcept {
  if (load.hasFailed.exchange(1) == 0) {
    const size_t size = std::min(text.size(), load.failure.size() - 1);
    std::copy_n(text.begin(), size, load.failure.begin());
  }
  load.shallEnd = 1;
}

tSharedLoad::tSharedLoad(const std::string& name)
    : mapping_(CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof(tLoad),
                                  name.c_str())),
      load_(static_cast<tLoad*>(MapViewOfFile(mapping_, FILE_MAP_ALL_ACCESS, 0, 0, 0))) {
  if (load_ == nullptr) {
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(),
                            "memory shared as " + name);
  }
}

tSharedLoad::~tSharedLoad() {
  UnmapViewOfFile(load_);
  CloseHandle(mapping_);
}

}  // namespace nTests
