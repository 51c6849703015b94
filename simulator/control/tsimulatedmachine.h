#ifndef SIMULATOR_CONTROL_TSIMULATEDMACHINE_H
#define SIMULATOR_CONTROL_TSIMULATEDMACHINE_H

#include <cstdint>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/control/controlprotocol.h"

namespace nSimulator {

// The simulated machine cannot be reached, or refuses what it is asked.
class tControlError : public std::runtime_error {
 public:
  tControlError(const std::string& message, uint32_t windowsError)
      : std::runtime_error(message), windowsError_(windowsError) {}
  // 0 when the machine is not there at all.
  [[nodiscard]] uint32_t windowsError() const noexcept { return windowsError_; }

 private:
  uint32_t windowsError_;
};

// The simulated machine, through the control interface of its driver. Every member throws
// tControlError on failure. One object serves one thread.
class tSimulatedMachine {
 public:
  tSimulatedMachine();
  ~tSimulatedMachine();
  tSimulatedMachine(const tSimulatedMachine&) = delete;
  tSimulatedMachine& operator=(const tSimulatedMachine&) = delete;

  // Back to the default machine, with nothing scripted and an empty log.
  void reset();

  // Returns when the interfaces have come or gone.
  void setPresence(const tSimulatorPresence& presence);
  [[nodiscard]] tSimulatorPresence presence();

  // At most SIMULATOR_TABLE_CAPACITY bytes.
  void setTable(std::span<const uint8_t> table);
  [[nodiscard]] std::vector<uint8_t> table();
  // At most SIMULATOR_TEXT_CAPACITY bytes; a NUL is handed over only if it is among them.
  void setVersionText(std::string_view text);

  // At most SIMULATOR_VALUE_CAPACITY bytes.
  void setAttribute(tSimulatorInterface interfaceKind, uint32_t attribute,
                    std::span<const uint8_t> value);
  void setAttributeU32(tSimulatorInterface interfaceKind, uint32_t attribute, uint32_t value);
  // The text and a NUL.
  void setAttributeText(tSimulatorInterface interfaceKind, uint32_t attribute,
                        std::string_view text);
  void removeAttribute(tSimulatorInterface interfaceKind, uint32_t attribute);

  // Whether the library can write an attribute that has a value.
  void allowWrites(tSimulatorInterface interfaceKind, uint32_t attribute);
  void refuseWrites(tSimulatorInterface interfaceKind, uint32_t attribute);

  void addScript(const tSimulatorScript& script);
  void clearScripts();

  // How requests that stay pending are accepted from now on.
  void setAcceptance(tSimulatorAcceptance acceptance);
  // Accepts those that are waiting.
  void acceptPending();
  // Oldest first.
  [[nodiscard]] std::vector<tSimulatorPendingRequest> pending();
  // From the machine's side; handle 0 stands for all that are waiting to be accepted.
  void completePending(uint64_t handle, uint32_t windowsError);

  // The routes of all sessions, oldest first.
  [[nodiscard]] std::vector<tSimulatorRoute> routes();
  // Takes its line away from a route and tells its session; throws when it holds none.
  void demoteRoute(uint32_t ticket);
  // How many terminals every path has, at least 2; 0: as many as it has.
  void setPathLength(uint32_t length);
  // At most SIMULATOR_TOPOGRAPHY_NAME_CAPACITY bytes; a NUL is sent only if it is among them.
  void setTopographyName(std::string_view name);

  // Tells everybody who is registered for one of the notice's events; throws when nobody is.
  void notify(const tSimulatorNotice& notice);

  // The firmware payloads that came in on both interfaces, oldest first.
  [[nodiscard]] std::vector<tSimulatorPayload> firmware();
  void clearFirmware();

  // The log from a sequence number on, oldest entry first.
  [[nodiscard]] std::vector<tSimulatorLogEntry> log(uint64_t from = 1);
  void clearLog();
  // What began and what ended since the driver was started.
  [[nodiscard]] tSimulatorCounters counters();

 private:
  struct tChannel;

  void commandOn(uint32_t code, tSimulatorInterface interfaceKind, uint32_t attribute);
  uint32_t request(uint32_t code, std::span<const uint8_t> input, std::span<uint8_t> output);
  void command(uint32_t code, std::span<const uint8_t> input = {});

  std::unique_ptr<tChannel> channel_;
};

}  // namespace nSimulator

#endif
