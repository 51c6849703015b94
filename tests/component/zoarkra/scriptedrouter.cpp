#include "tests/component/zoarkra/scriptedrouter.h"

#include <algorithm>
#include <span>

#include "quenra_status.h"

namespace nTests {
namespace {

template <class Record>
std::span<const Record> recordsAt(uint64_t address, uint32_t count) {
  return {reinterpret_cast<const Record*>(static_cast<uintptr_t>(address)), count};
}

template <class Records>
void fill(uint64_t address, uint32_t capacity, const Records& records) {
  std::copy_n(records.begin(), std::min<size_t>(capacity, records.size()),
              reinterpret_cast<typename Records::value_type*>(static_cast<uintptr_t>(address)));
}

uint32_t countOf(size_t actual, uint32_t reported) {
  return reported != 0 ? reported : static_cast<uint32_t>(actual);
}

std::string textOf(uint32_t number) {
  return std::to_string(number);
}

std::string textOf(const tRouteSeed& seed) {
  return textOf(seed.terminal) + "/" + textOf(seed.cost) + "/" + textOf(seed.constraints);
}

template <class Record>
std::string listOf(std::span<const Record> records) {
  std::string text;
  for (const Record& record : records) {
    text += (text.empty() ? "" : " ") + textOf(record);
  }
  return "[" + text + "]";
}

}  // namespace

template <class Describe>
bool tScriptedRouter::enter(Describe describe, const tStatus& status) {
  if (status.isError()) {
    return false;
  }
  if (!isQuiet) {
    const std::string warning = status.code == 0 ? "" : " st=" + std::to_string(status.code);
    calls.push_back(describe() + warning);
  }
  return true;
}

void tScriptedRouter::leave(tStatus& status) {
  if (!codes.empty()) {
    mergeStatus(status, codes.front(), {"router", 9, "driver"});
    codes.erase(codes.begin());
  }
}

void tScriptedRouter::method0(uint32_t&, tStatus& status) noexcept {
  enter([] { return std::string("method0()"); }, status);
}

uint32_t tScriptedRouter::calculateRoute(uint64_t modifiers, uint64_t seeds, uint32_t seedCount,
                                         uint64_t destinations, uint32_t destinationCount,
                                         uint32_t options, uint64_t routeBuffer,
                                         uint32_t& routeCount, tStatus& status) noexcept {
  const auto& requested = recordsAt<tRouteModifiers>(modifiers, 1)[0];
  if (!enter(
          [&] {
            return "calculateRoute(" + listOf(recordsAt<tRouteSeed>(seeds, seedCount)) + " -> " +
                   listOf(recordsAt<uint32_t>(destinations, destinationCount)) + ", required " +
                   textOf(requested.required) + ", optional " + textOf(requested.optional) +
                   ", options " + textOf(options) + ", capacity " + textOf(routeCount) + ")";
          },
          status)) {
    return 0;
  }
  fill(routeBuffer, routeCount, routes);
  routeCount = countOf(routes.size(), reportedRouteCount);
  leave(status);
  return value;
}

void tScriptedRouter::destroyRoute(uint32_t ticket, tStatus& status) noexcept {
  if (enter([&] { return "destroyRoute(" + textOf(ticket) + ")"; }, status)) {
    leave(status);
  }
}

void tScriptedRouter::reserveRoute(uint32_t ticket, uint64_t conflictBuffer, uint32_t& count,
                                   tStatus& status) noexcept {
  if (enter([&] { return "reserveRoute(" + textOf(ticket) + ", capacity " + textOf(count) + ")"; },
            status)) {
    fill(conflictBuffer, count, conflicts);
    count = countOf(conflicts.size(), reportedConflictCount);
    leave(status);
  }
}

void tScriptedRouter::programRoute(uint32_t ticket, tStatus& status) noexcept {
  if (enter([&] { return "programRoute(" + textOf(ticket) + ")"; }, status)) {
    leave(status);
  }
}

void tScriptedRouter::unreserveRoute(uint32_t ticket, tStatus& status) noexcept {
  if (enter([&] { return "unreserveRoute(" + textOf(ticket) + ")"; }, status)) {
    leave(status);
  }
}

void tScriptedRouter::unprogramRoute(uint32_t ticket, tStatus& status) noexcept {
  if (enter([&] { return "unprogramRoute(" + textOf(ticket) + ")"; }, status)) {
    leave(status);
  }
}

void tScriptedRouter::getRouteTerminalPath(uint32_t ticket, uint64_t terminals, uint32_t& count,
                                           tStatus& status) noexcept {
  if (enter(
          [&] {
            return "getRouteTerminalPath(" + textOf(ticket) + ", capacity " + textOf(count) + ")";
          },
          status)) {
    const uint32_t capacity = count;
    fill(terminals, capacity, path);
    count = countOf(path.size(), reportedPathLength);
    if (codes.empty() && path.size() > capacity) {
      mergeStatus(status, QUENRA_STATUS_PATH_TOO_LONG, {"router", 9, "driver"});
    }
    leave(status);
  }
}

void tScriptedRouter::getTopographyName(uint64_t buffer, uint32_t size, tStatus& status) noexcept {
  if (enter([&] { return "getTopographyName(" + textOf(size) + ")"; }, status)) {
    fill(buffer, size, topographyName);
    leave(status);
  }
}

void tScriptedRouter::resetTerminal(uint32_t terminal, uint32_t floating,
                                    tStatus& status) noexcept {
  if (enter([&] { return "resetTerminal(" + textOf(terminal) + ", " + textOf(floating) + ")"; },
            status)) {
    leave(status);
  }
}

uint32_t tScriptedRouter::calculateResetTerminal(uint64_t reserved, uint32_t terminal,
                                                 int32_t floating, tStatus& status) noexcept {
  if (!enter(
          [&] {
            return "calculateResetTerminal(" + std::to_string(reserved) + ", " + textOf(terminal) +
                   ", " + std::to_string(floating) + ")";
          },
          status)) {
    return 0;
  }
  leave(status);
  return value;
}

}  // namespace nTests
