#ifndef SIMULATOR_CONTROL_TSIMULATEDMACHINE_H
#define SIMULATOR_CONTROL_TSIMULATEDMACHINE_H

#include <cstdint>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/protocol/controlprotocol.h"

namespace nSimulator {

// Changes one byte in the formatted area of the first SMBIOS structure of a type. Returns false and
// changes nothing if the table has no such structure or it is too short for the offset.
[[nodiscard]] bool changeStructureByte(std::vector<uint8_t>& table, uint8_t type, uint8_t offset,
                                       uint8_t value);

// Replaces the text of a field of the first SMBIOS structure of a type. Returns false and changes nothing
// if the table has no such structure, the field has no text, or the new text is empty or contains a NUL.
[[nodiscard]] bool changeStructureText(std::vector<uint8_t>& table, uint8_t type, uint8_t offset,
                                       std::string_view text);

// Removes all structures of a type from a table. Returns false if it has none.
[[nodiscard]] bool removeStructures(std::vector<uint8_t>& table, uint8_t type);

// Returns the paths of the present device interfaces of a class, in the system's order.
[[nodiscard]] std::vector<std::string> presentInterfaces(const tInterfaceClass& interfaceClass);

// The simulated machine cannot be reached, or rejects a request.
class tControlError : public std::runtime_error {
 public:
  tControlError(const std::string& message, uint32_t windowsError)
      : std::runtime_error(message), windowsError_(windowsError) {}
  // 0 if no simulated machine is present.
  [[nodiscard]] uint32_t windowsError() const noexcept { return windowsError_; }

 private:
  uint32_t windowsError_;
};

// A client of the control interface of the simulated machine's driver. Every member throws
// tControlError on failure. An object is used by one thread.
class tSimulatedMachine {
 public:
  tSimulatedMachine();
  ~tSimulatedMachine();
  tSimulatedMachine(const tSimulatedMachine&) = delete;
  tSimulatedMachine& operator=(const tSimulatedMachine&) = delete;

  // Restores the default machine, without scripted answers and with an empty log.
  void reset();

  // Returns after the interfaces have been enabled or disabled.
  void setPresence(const tSimulatorPresence& presence);
  [[nodiscard]] tSimulatorPresence presence();

  // At most SIMULATOR_TABLE_CAPACITY bytes.
  void setTable(std::span<const uint8_t> table);
  [[nodiscard]] std::vector<uint8_t> table();
  // At most SIMULATOR_TEXT_CAPACITY bytes; no NUL is appended.
  void setVersionText(std::string_view text);

  // At most SIMULATOR_VALUE_CAPACITY bytes.
  void setAttribute(tSimulatorInterface interfaceKind, uint32_t attribute,
                    std::span<const uint8_t> value);
  void setAttributeU32(tSimulatorInterface interfaceKind, uint32_t attribute, uint32_t value);
  // Sets the text with a NUL.
  void setAttributeText(tSimulatorInterface interfaceKind, uint32_t attribute,
                        std::string_view text);
  void removeAttribute(tSimulatorInterface interfaceKind, uint32_t attribute);
  // Removes every attribute of both interfaces.
  void clearAttributes();

  // Set the driver's answers to reads; setting a value afterwards restores the plain answer.
  void setAttributeAnswer(const tSimulatorAttributeAnswer& answer);
  void setHandoverAnswer(const tSimulatorHandoverAnswer& answer);

  // Allows or refuses writes by the library to an attribute that has a value.
  void allowWrites(tSimulatorInterface interfaceKind, uint32_t attribute);
  void refuseWrites(tSimulatorInterface interfaceKind, uint32_t attribute);

  void addScript(const tSimulatorScript& script);
  void clearScripts();

  // Sets when later requests that stay pending are accepted.
  void setAcceptance(tSimulatorAcceptance acceptance);
  // Accepts the requests that wait for acceptance.
  void acceptPending();
  // Oldest first.
  [[nodiscard]] std::vector<tSimulatorPendingRequest> pending();
  // Completes requests from the machine's side; handle 0 means all that wait for acceptance.
  void completePending(uint64_t handle, uint32_t windowsError);

  // The routes of all sessions, oldest first.
  [[nodiscard]] std::vector<tSimulatorRoute> routes();
  // Demotes a route and notifies its session; throws if the route holds no line.
  void demoteRoute(uint32_t ticket);
  // The number of terminals in every path, at least 2; 0: the real number.
  void setPathLength(uint32_t length);
  // At most SIMULATOR_TOPOGRAPHY_NAME_CAPACITY bytes; no NUL is appended.
  void setTopographyName(std::string_view name);

  // Notifies every caller registered for one of the notice's events; throws if none is.
  void notify(const tSimulatorNotice& notice);

  // The latest firmware payloads received on both interfaces, oldest first.
  [[nodiscard]] std::vector<tSimulatorPayload> firmware();
  void clearFirmware();

  // The log from a sequence number on, oldest entry first.
  [[nodiscard]] std::vector<tSimulatorLogEntry> log(uint64_t from = 1);
  void clearLog();
  // Counts since the driver was started.
  [[nodiscard]] tSimulatorCounters counters();

 private:
  struct tChannel;

  void commandOn(uint32_t code, tSimulatorInterface interfaceKind, uint32_t attribute);
  uint32_t request(uint32_t code, std::span<const uint8_t> input, std::span<uint8_t> output);
  void command(uint32_t code, std::span<const uint8_t> input = {});

  std::unique_ptr<tChannel> channel_;
};

// ---- The log as text ----

// "controller", "marten", ...; the number for an unknown interface.
[[nodiscard]] std::string interfaceName(uint32_t interfaceKind);
// "get-attribute", ...; the code in hexadecimal for an unknown request.
[[nodiscard]] std::string requestName(uint32_t requestCode);

// Formats a log entry as one line without a line end: the interface, the request with its members
// by name, and the reply.
[[nodiscard]] std::string requestLogLine(const tSimulatorLogEntry& entry);

}  // namespace nSimulator

#endif
