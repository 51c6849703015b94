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
  Request result{};
  std::memcpy(&result, request.input.data(), std::min(sizeof result, request.input.size()));
  return result;
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
bool isKeptPending(uint32_t code) {
  return code == REQUEST_ARM_DELIVERY || code == REQUEST_REGISTER_NOTIFICATION;
}

// Never ERROR_IO_PENDING: nothing would complete the request.
uint32_t failure(tByteSource& bytes) {
  const uint32_t error = bytes.word();
  return error == ERROR_IO_PENDING ? DWORD{ERROR_GEN_FAILURE} : error;
}

tModelReply unchanged(const tDriverRequest& request) {
  return request.byModel();
}

tModelReply altered(const tDriverRequest& request, tByteSource& bytes) {
  const tModelReply reply = request.byModel();
  if (reply.windowsError == 0 && reply.size != 0) {
    for (int i = 0; i < 4; ++i) {
      request.output[bytes.byte() % reply.size] = bytes.byte();
    }
  }
  return reply;
}

tModelReply arbitrary(const tDriverRequest& request, tByteSource& bytes) {
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
    return unchanged(request);
  }
  switch (bytes.byte() % 8) {
    case 4:
      return altered(request, bytes);
    case 5:
      return arbitrary(request, bytes);
    case 6:
      return shortened(request, bytes);
    case 7:
      return {failure(bytes), 0};
    default:
      return unchanged(request);
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

void tByteSource::fill(std::span<uint8_t> buffer) {
  for (uint8_t& next : buffer) {
    next = byte();
  }
}

bool tByteSource::isEmpty() {
  const std::lock_guard lock(mutex_);
  return at_ == bytes_.size();
}

std::vector<std::span<uint8_t>> offeredTo(const tDriverRequest& request) {
  switch (request.code) {
    case REQUEST_EXCHANGE_VALUES: {
      const auto record = read<tExchangeValuesRequest>(request);
      return {memoryAt(record.textBuffer, record.textSize),
              memoryAt(record.tableBuffer, static_cast<uint64_t>(std::max(record.tableSize, 0)))};
    }
    case REQUEST_GET_ATTRIBUTE: {
      const auto record = read<tGetAttributeRequest>(request);
      return {memoryAt(record.buffer, record.size)};
    }
    case REQUEST_CALCULATE_ROUTE: {
      const auto record = read<tCalculateRouteRequest>(request);
      return {memoryAt(record.routes, uint64_t{record.routeCapacity} * sizeof(tRouteRecord))};
    }
    case REQUEST_RESERVE_ROUTE: {
      const auto record = read<tTicketListRequest>(request);
      return {memoryAt(record.buffer, uint64_t{record.count} * sizeof(tRouteConflict))};
    }
    case REQUEST_GET_ROUTE_TERMINAL_PATH: {
      const auto record = read<tTicketListRequest>(request);
      return {memoryAt(record.buffer, uint64_t{record.count} * sizeof(uint32_t))};
    }
    case REQUEST_GET_TOPOGRAPHY_NAME: {
      const auto record = read<tGetTopographyNameRequest>(request);
      return {memoryAt(record.buffer, record.size)};
    }
    default:
      return {};
  }
}

tMisbehavingDriver::tMisbehavingDriver(std::span<const uint8_t> bytes)
    : deliveries_(bytes.first(std::min(bytes.size(), kBytesOfDeliveries))),
      others_(bytes.subspan(std::min(bytes.size(), kBytesOfDeliveries))) {}

tModelReply tMisbehavingDriver::answer(const tDriverRequest& request) {
  return answerBy(isKeptPending(request.code) ? deliveries_ : others_, request);
}

}  // namespace nTests
