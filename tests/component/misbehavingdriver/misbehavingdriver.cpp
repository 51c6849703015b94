#include "tests/component/misbehavingdriver/misbehavingdriver.h"

#include <windows.h>

#include <algorithm>
#include <cstring>

#include "protocol/controllerrequests.h"
#include "protocol/pendingrequests.h"
#include "protocol/routingrequests.h"

namespace nTests {
namespace {

using nFakeWindows::tDriverRequest;

constexpr size_t kBytesOfDeliveries = 128;

template <class Request>
Request read(const tDriverRequest& request) {
  Request record{};
  std::memcpy(&record, request.input.data(), std::min(sizeof record, request.input.size()));
  return record;
}

std::span<uint8_t> memoryAt(uint64_t address, uint64_t size) {
  return address == 0 ? std::span<uint8_t>()
                      : std::span(reinterpret_cast<uint8_t*>(static_cast<uintptr_t>(address)),
                                  static_cast<size_t>(size));
}

tModelReply success(size_t size) {
  return {0, static_cast<uint32_t>(size)};
}

// True for requests that the driver normally keeps pending.
bool staysPending(uint32_t code) {
  return code == REQUEST_ARM_DELIVERY || code == REQUEST_REGISTER_NOTIFICATION;
}

// Never ERROR_IO_PENDING: nothing would complete the request.
uint32_t failure(tByteSource& bytes) {
  const uint32_t error = bytes.word();
  return error == ERROR_IO_PENDING ? DWORD{ERROR_GEN_FAILURE} : error;
}

tModelReply truth(const tDriverRequest& request) {
  return request.byModel();
}

tModelReply changed(const tDriverRequest& request, tByteSource& bytes) {
  const tModelReply reply = request.byModel();
  if (reply.windowsError == 0 && reply.size != 0) {
    for (int i = 0; i < 4; ++i) {
      request.output[bytes.byte() % reply.size] = bytes.byte();
    }
  }
  return reply;
}

tModelReply anything(const tDriverRequest& request, tByteSource& bytes) {
  for (const std::span<uint8_t> offered : offeredTo(request)) {
    bytes.fill(offered.first(std::min<size_t>(offered.size(), bytes.byte())));
  }
  bytes.fill(request.output);
  return success(request.output.size());
}

tModelReply shortened(const tDriverRequest& request, tByteSource& bytes) {
  tModelReply reply = request.byModel();
  if (reply.windowsError == 0 && reply.size != 0) {
    reply.size = bytes.byte() % reply.size;
  }
  return reply;
}

tModelReply answerBy(tByteSource& bytes, const tDriverRequest& request) {
  if (bytes.isEmpty()) {
    return truth(request);
  }
  switch (bytes.byte() % 8) {
    case 4:
      return changed(request, bytes);
    case 5:
      return anything(request, bytes);
    case 6:
      return shortened(request, bytes);
    case 7:
      return {failure(bytes), 0};
    default:
      return truth(request);
  }
}

}  // namespace

uint8_t tByteSource::byte() {
  const std::lock_guard lock(mutex_);
  return at_ < bytes_.size() ? bytes_[at_++] : uint8_t{0};
}

uint32_t tByteSource::word() {
  uint32_t word = 0;
  for (int i = 0; i < 4; ++i) {
    word = word << 8 | byte();
  }
  return word;
}

void tByteSource::fill(std::span<uint8_t> room) {
  for (uint8_t& place : room) {
    place = byte();
  }
}

bool tByteSource::isEmpty() {
  const std::lock_guard lock(mutex_);
  return at_ == bytes_.size();
}

std::vector<std::span<uint8_t>> offeredTo(const tDriverRequest& request) {
  switch (request.code) {
    case REQUEST_EXCHANGE_VALUES: {
      const auto asked = read<tExchangeValuesRequest>(request);
      return {memoryAt(asked.textBuffer, asked.textSize),
              memoryAt(asked.tableBuffer, static_cast<uint64_t>(std::max(asked.tableSize, 0)))};
    }
    case REQUEST_GET_ATTRIBUTE: {
      const auto asked = read<tGetAttributeRequest>(request);
      return {memoryAt(asked.buffer, asked.size)};
    }
    case REQUEST_CALCULATE_ROUTE: {
      const auto asked = read<tCalculateRouteRequest>(request);
      return {memoryAt(asked.routes, uint64_t{asked.routeCapacity} * sizeof(tRouteRecord))};
    }
    case REQUEST_RESERVE_ROUTE: {
      const auto asked = read<tTicketListRequest>(request);
      return {memoryAt(asked.buffer, uint64_t{asked.count} * sizeof(tRouteConflict))};
    }
    case REQUEST_GET_ROUTE_TERMINAL_PATH: {
      const auto asked = read<tTicketListRequest>(request);
      return {memoryAt(asked.buffer, uint64_t{asked.count} * sizeof(uint32_t))};
    }
    case REQUEST_GET_TOPOGRAPHY_NAME: {
      const auto asked = read<tGetTopographyNameRequest>(request);
      return {memoryAt(asked.buffer, asked.size)};
    }
    default:
      return {};
  }
}

tMisbehavingDriver::tMisbehavingDriver(std::span<const uint8_t> bytes)
    : deliveries_(bytes.first(std::min(bytes.size(), kBytesOfDeliveries))),
      others_(bytes.subspan(std::min(bytes.size(), kBytesOfDeliveries))) {}

tModelReply tMisbehavingDriver::answer(const tDriverRequest& request) {
  return answerBy(staysPending(request.code) ? deliveries_ : others_, request);
}

}  // namespace nTests
