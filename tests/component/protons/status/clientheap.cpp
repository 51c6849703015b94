#include "tests/component/protons/status/clientheap.h"

#include <algorithm>
#include <string_view>

#include "zoapal/protons/status/descriptionwriter.h"

namespace nTests {

std::vector<uint32_t>& tClientHeap::requests() {
  static std::vector<uint32_t> requests;
  return requests;
}

std::vector<char>& tClientHeap::buffer() {
  static std::vector<char> buffer;
  return buffer;
}

bool tClientHeap::giveExactly(zoerr::Status& status, uint32_t newCapacity) {
  requests().push_back(newCapacity);
  if (newCapacity == 0) {
    buffer() = {};
    status.description = nullptr;
    status.capacity = 0;
    return true;
  }
  if (newCapacity <= status.capacity) {
    return true;
  }
  const std::string_view text = status.description == nullptr
                                    ? zoerr::kEmptyDescription
                                    : std::string_view(status.description);
  std::vector<char> grown(newCapacity);
  std::copy(text.begin(), text.end(), grown.begin());
  grown.back() = 'J';
  buffer() = std::move(grown);
  status.description = buffer().data();
  status.capacity = newCapacity;
  return true;
}

bool tClientHeap::giveUpTo600(zoerr::Status& status, uint32_t newCapacity) {
  return newCapacity <= 600 ? giveExactly(status, newCapacity) : refuse(status, newCapacity);
}

bool tClientHeap::refuse(zoerr::Status&, uint32_t newCapacity) {
  requests().push_back(newCapacity);
  return false;
}

bool tClientHeap::pretend(zoerr::Status&, uint32_t newCapacity) {
  requests().push_back(newCapacity);
  return true;
}

bool tClientHeap::giveWithoutMarker(zoerr::Status& status, uint32_t newCapacity) {
  const bool given = giveExactly(status, newCapacity);
  if (newCapacity != 0) {
    buffer().back() = '\0';
  }
  return given;
}

bool tClientHeap::giveUnusableText(zoerr::Status& status, uint32_t newCapacity) {
  const bool given = giveExactly(status, newCapacity);
  if (newCapacity != 0) {
    buffer().front() = '"';
  }
  return given;
}

zoerr::Status tClientHeap::statusWithDescription(uint32_t capacity) {
  zoerr::Status status;
  status.reallocate = &giveExactly;
  giveExactly(status, capacity);
  requests().clear();
  return status;
}

}  // namespace nTests
