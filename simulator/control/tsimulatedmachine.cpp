#include "simulator/control/tsimulatedmachine.h"

#include <windows.h>
// setupapi.h requires windows.h.
#include <setupapi.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <optional>

namespace nSimulator {
namespace {

constexpr size_t kHeaderSize = 4;

// A structure: its formatted area, then its strings with the two NULs that end them.
struct tStructure {
  size_t begin;
  size_t formattedSize;
  size_t end;
};

// The structure at an offset; none at the end of the table or if the table is malformed.
std::optional<tStructure> structureAt(const std::vector<uint8_t>& table, size_t begin) {
  if (table.size() - begin < kHeaderSize || table[begin + 1] < kHeaderSize) {
    return std::nullopt;
  }
  const size_t formattedSize = table[begin + 1];
  for (size_t end = begin + formattedSize + 2; end <= table.size(); ++end) {
    if (table[end - 2] == 0 && table[end - 1] == 0) {
      return tStructure{begin, formattedSize, end};
    }
  }
  return std::nullopt;
}

// The first structure of a type; none if the table has no such structure.
std::optional<tStructure> structureOfType(const std::vector<uint8_t>& table, uint8_t type) {
  auto structure = structureAt(table, 0);
  while (structure && table[structure->begin] != type) {
    structure = structureAt(table, structure->end);
  }
  return structure;
}

bool hasField(const tStructure& structure, uint8_t offset) {
  return offset >= kHeaderSize && offset < structure.formattedSize;
}

constexpr const char* kNotInstalled =
    "the simulated machine is not installed; run 'quenra-sim install'";

std::string pathOf(HDEVINFO set, SP_DEVICE_INTERFACE_DATA& data) {
  alignas(SP_DEVICE_INTERFACE_DETAIL_DATA_A) std::array<char, 512> area{};
  void* const memory = area.data();
  auto* const detail = static_cast<SP_DEVICE_INTERFACE_DETAIL_DATA_A*>(memory);
  detail->cbSize = sizeof *detail;
  if (!SetupDiGetDeviceInterfaceDetailA(set, &data, detail, static_cast<DWORD>(area.size()),
                                        nullptr, nullptr)) {
    return {};
  }
  return area.data() + offsetof(SP_DEVICE_INTERFACE_DETAIL_DATA_A, DevicePath);
}

template <class Record>
std::span<const uint8_t> bytesOf(const Record& record) {
  const void* const bytes = &record;
  return {static_cast<const uint8_t*>(bytes), sizeof record};
}
template <class Record>
std::span<uint8_t> writableBytesOf(Record* records, size_t count) {
  void* const bytes = records;
  return {static_cast<uint8_t*>(bytes), count * sizeof(Record)};
}

std::string failureText(uint32_t code, uint32_t windowsError) {
  std::array<char, 16> number{};
  std::snprintf(number.data(), number.size(), "0x%08X", static_cast<unsigned>(code));
  return std::string("the simulated machine refused request ") + number.data() +
         " with Windows error " + std::to_string(windowsError);
}

}  // namespace

bool changeStructureByte(std::vector<uint8_t>& table, uint8_t type, uint8_t offset, uint8_t value) {
  const auto structure = structureOfType(table, type);
  if (!structure || !hasField(*structure, offset)) {
    return false;
  }
  table[structure->begin + offset] = value;
  return true;
}

bool changeStructureText(std::vector<uint8_t>& table, uint8_t type, uint8_t offset,
                         std::string_view text) {
  const auto structure = structureOfType(table, type);
  const bool isText = !text.empty() && text.find('\0') == std::string_view::npos;
  if (!structure || !hasField(*structure, offset) || !isText) {
    return false;
  }
  const auto strings =
      table.begin() + static_cast<ptrdiff_t>(structure->begin + structure->formattedSize);
  const auto endOfStrings = table.begin() + static_cast<ptrdiff_t>(structure->end - 1);
  const uint8_t number = table[structure->begin + offset];
  auto begin = strings;
  for (unsigned i = 1; i < number && begin != endOfStrings; ++i) {
    begin = std::find(begin, endOfStrings, uint8_t{0}) + 1;
  }
  const auto end = std::find(begin, endOfStrings, uint8_t{0});
  if (number == 0 || begin == end) {
    return false;
  }
  table.insert(table.erase(begin, end), text.begin(), text.end());
  return true;
}

bool removeStructures(std::vector<uint8_t>& table, uint8_t type) {
  bool found = false;
  size_t place = 0;
  while (const auto structure = structureAt(table, place)) {
    if (table[place] == type) {
      found = true;
      table.erase(table.begin() + static_cast<ptrdiff_t>(place),
                  table.begin() + static_cast<ptrdiff_t>(structure->end));
    } else {
      place = structure->end;
    }
  }
  return found;
}

std::vector<std::string> presentInterfaces(const tInterfaceClass& interfaceClass) {
  const auto guid = std::bit_cast<GUID>(interfaceClass);
  const HDEVINFO set =
      SetupDiGetClassDevsA(&guid, nullptr, nullptr, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
  std::vector<std::string> paths;
  if (set == INVALID_HANDLE_VALUE) {
    return paths;
  }
  SP_DEVICE_INTERFACE_DATA data{};
  data.cbSize = sizeof data;
  for (DWORD i = 0; SetupDiEnumDeviceInterfaces(set, nullptr, &guid, i, &data); ++i) {
    paths.push_back(pathOf(set, data));
  }
  SetupDiDestroyDeviceInfoList(set);
  return paths;
}

// The open control interface.
struct tSimulatedMachine::tChannel {
  explicit tChannel(const std::string& path)
      : file(CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE,
                         FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr)) {
    if (file == INVALID_HANDLE_VALUE) {
      throw tControlError(kNotInstalled, GetLastError());
    }
  }
  tChannel(const tChannel&) = delete;
  tChannel& operator=(const tChannel&) = delete;
  ~tChannel() { CloseHandle(file); }

  HANDLE file;
};

tSimulatedMachine::tSimulatedMachine() {
  const std::vector<std::string> paths = presentInterfaces(kSimulatorControlInterfaceClass);
  if (paths.empty()) {
    throw tControlError(kNotInstalled, 0);
  }
  channel_ = std::make_unique<tChannel>(paths.front());
}

tSimulatedMachine::~tSimulatedMachine() = default;

uint32_t tSimulatedMachine::request(uint32_t code, std::span<const uint8_t> input,
                                    std::span<uint8_t> output) {
  DWORD bytes = 0;
  // The parameter is not const although DeviceIoControl only reads the buffer.
  if (!DeviceIoControl(channel_->file, code, const_cast<uint8_t*>(input.data()),
                       static_cast<DWORD>(input.size()), output.data(),
                       static_cast<DWORD>(output.size()), &bytes, nullptr)) {
    const DWORD error = GetLastError();
    throw tControlError(failureText(code, error), error);
  }
  return bytes;
}

void tSimulatedMachine::command(uint32_t code, std::span<const uint8_t> input) {
  request(code, input, {});
}

void tSimulatedMachine::reset() {
  command(SIMULATOR_RESET);
}

void tSimulatedMachine::setPresence(const tSimulatorPresence& presence) {
  command(SIMULATOR_SET_PRESENCE, bytesOf(presence));
}

tSimulatorPresence tSimulatedMachine::presence() {
  tSimulatorPresence presence{};
  request(SIMULATOR_GET_PRESENCE, {}, writableBytesOf(&presence, 1));
  return presence;
}

void tSimulatedMachine::setTable(std::span<const uint8_t> table) {
  command(SIMULATOR_SET_TABLE, table);
}

std::vector<uint8_t> tSimulatedMachine::table() {
  std::vector<uint8_t> table(SIMULATOR_TABLE_CAPACITY);
  table.resize(request(SIMULATOR_GET_TABLE, {}, table));
  return table;
}

void tSimulatedMachine::setVersionText(std::string_view text) {
  const void* const bytes = text.data();
  command(SIMULATOR_SET_VERSION_TEXT, {static_cast<const uint8_t*>(bytes), text.size()});
}

void tSimulatedMachine::setAttribute(tSimulatorInterface interfaceKind, uint32_t attribute,
                                     std::span<const uint8_t> value) {
  tSimulatorAttribute record{};
  if (value.size() > sizeof record.value) {
    throw tControlError("an attribute of the simulated machine has at most " +
                            std::to_string(sizeof record.value) + " bytes",
                        ERROR_INVALID_PARAMETER);
  }
  record.interfaceKind = interfaceKind;
  record.attribute = attribute;
  record.size = static_cast<uint32_t>(value.size());
  std::copy(value.begin(), value.end(), record.value);
  command(SIMULATOR_SET_ATTRIBUTE, bytesOf(record));
}

void tSimulatedMachine::setAttributeU32(tSimulatorInterface interfaceKind, uint32_t attribute,
                                        uint32_t value) {
  setAttribute(interfaceKind, attribute, bytesOf(value));
}

void tSimulatedMachine::setAttributeText(tSimulatorInterface interfaceKind, uint32_t attribute,
                                         std::string_view text) {
  const std::string terminated(text);
  const void* const bytes = terminated.c_str();
  setAttribute(interfaceKind, attribute,
               {static_cast<const uint8_t*>(bytes), terminated.size() + 1});
}

void tSimulatedMachine::commandOn(uint32_t code, tSimulatorInterface interfaceKind,
                                  uint32_t attribute) {
  tSimulatorAttribute record{};
  record.interfaceKind = interfaceKind;
  record.attribute = attribute;
  command(code, bytesOf(record));
}

void tSimulatedMachine::removeAttribute(tSimulatorInterface interfaceKind, uint32_t attribute) {
  commandOn(SIMULATOR_REMOVE_ATTRIBUTE, interfaceKind, attribute);
}

void tSimulatedMachine::clearAttributes() {
  command(SIMULATOR_CLEAR_ATTRIBUTES);
}

void tSimulatedMachine::setAttributeAnswer(const tSimulatorAttributeAnswer& answer) {
  command(SIMULATOR_SET_ATTRIBUTE_ANSWER, bytesOf(answer));
}

void tSimulatedMachine::setHandoverAnswer(const tSimulatorHandoverAnswer& answer) {
  command(SIMULATOR_SET_HANDOVER_ANSWER, bytesOf(answer));
}

void tSimulatedMachine::allowWrites(tSimulatorInterface interfaceKind, uint32_t attribute) {
  commandOn(SIMULATOR_ALLOW_WRITES, interfaceKind, attribute);
}

void tSimulatedMachine::refuseWrites(tSimulatorInterface interfaceKind, uint32_t attribute) {
  commandOn(SIMULATOR_REFUSE_WRITES, interfaceKind, attribute);
}

void tSimulatedMachine::addScript(const tSimulatorScript& script) {
  command(SIMULATOR_ADD_SCRIPT, bytesOf(script));
}

void tSimulatedMachine::clearScripts() {
  command(SIMULATOR_CLEAR_SCRIPTS);
}

void tSimulatedMachine::setAcceptance(tSimulatorAcceptance acceptance) {
  const auto number = static_cast<uint32_t>(acceptance);
  command(SIMULATOR_SET_ACCEPTANCE, bytesOf(number));
}

void tSimulatedMachine::acceptPending() {
  command(SIMULATOR_ACCEPT_PENDING);
}

std::vector<tSimulatorPendingRequest> tSimulatedMachine::pending() {
  std::vector<tSimulatorPendingRequest> pending(SIMULATOR_PENDING_CAPACITY);
  const uint32_t bytes =
      request(SIMULATOR_READ_PENDING, {}, writableBytesOf(pending.data(), pending.size()));
  pending.resize(bytes / sizeof(tSimulatorPendingRequest));
  return pending;
}

void tSimulatedMachine::completePending(uint64_t handle, uint32_t windowsError) {
  const tSimulatorCompletion completion{handle, windowsError, 0};
  command(SIMULATOR_COMPLETE_PENDING, bytesOf(completion));
}

std::vector<tSimulatorRoute> tSimulatedMachine::routes() {
  std::vector<tSimulatorRoute> routes(SIMULATOR_ROUTE_CAPACITY);
  const uint32_t bytes =
      request(SIMULATOR_READ_ROUTES, {}, writableBytesOf(routes.data(), routes.size()));
  routes.resize(bytes / sizeof(tSimulatorRoute));
  return routes;
}

void tSimulatedMachine::demoteRoute(uint32_t ticket) {
  command(SIMULATOR_DEMOTE_ROUTE, bytesOf(ticket));
}

void tSimulatedMachine::setPathLength(uint32_t length) {
  command(SIMULATOR_SET_PATH_LENGTH, bytesOf(length));
}

void tSimulatedMachine::setTopographyName(std::string_view name) {
  const void* const bytes = name.data();
  command(SIMULATOR_SET_TOPOGRAPHY_NAME, {static_cast<const uint8_t*>(bytes), name.size()});
}

void tSimulatedMachine::notify(const tSimulatorNotice& notice) {
  command(SIMULATOR_NOTIFY, bytesOf(notice));
}

std::vector<tSimulatorPayload> tSimulatedMachine::firmware() {
  std::vector<tSimulatorPayload> payloads(SIMULATOR_PAYLOAD_CAPACITY);
  const uint32_t bytes =
      request(SIMULATOR_READ_FIRMWARE, {}, writableBytesOf(payloads.data(), payloads.size()));
  payloads.resize(bytes / sizeof(tSimulatorPayload));
  return payloads;
}

void tSimulatedMachine::clearFirmware() {
  command(SIMULATOR_CLEAR_FIRMWARE);
}

std::vector<tSimulatorLogEntry> tSimulatedMachine::log(uint64_t from) {
  std::vector<tSimulatorLogEntry> entries(SIMULATOR_LOG_CAPACITY);
  const uint32_t bytes =
      request(SIMULATOR_READ_LOG, bytesOf(from), writableBytesOf(entries.data(), entries.size()));
  entries.resize(bytes / sizeof(tSimulatorLogEntry));
  return entries;
}

void tSimulatedMachine::clearLog() {
  command(SIMULATOR_CLEAR_LOG);
}

tSimulatorCounters tSimulatedMachine::counters() {
  tSimulatorCounters counters{};
  request(SIMULATOR_READ_COUNTERS, {}, writableBytesOf(&counters, 1));
  return counters;
}

}  // namespace nSimulator
