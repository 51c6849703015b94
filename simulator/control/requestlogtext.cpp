#include "simulator/control/tsimulatedmachine.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "protocol/controllerrequests.h"
#include "protocol/pendingrequests.h"
#include "protocol/routingrequests.h"

namespace nSimulator {
namespace {

enum class tFormat {
  number,
  signedNumber,
  hexadecimal
};

// A member of a request or a reply.
struct tMember {
  const char* name;
  size_t offset;
  size_t width;
  tFormat format;
};

struct tRequestLayout {
  uint32_t code;
  const char* name;
  std::array<tMember, 8> request;  // unused ones have no name
  std::array<tMember, 3> reply;
};

using tRequestMembers = std::array<tMember, 8>;
using tReplyMembers = std::array<tMember, 3>;

constexpr tRequestMembers kSendCommand = {{{"payload", 0, 8, tFormat::hexadecimal},
                                           {"size", 8, 4, tFormat::number},
                                           {"caller", 12, 4, tFormat::signedNumber}}};
constexpr tRequestMembers kAttribute = {{{"attribute", 0, 4, tFormat::hexadecimal},
                                         {"buffer", 8, 8, tFormat::hexadecimal},
                                         {"size", 16, 4, tFormat::number},
                                         {"caller", 20, 4, tFormat::signedNumber}}};
constexpr tRequestMembers kTicket = {
    {{"ticket", 0, 4, tFormat::number}, {"caller", 4, 4, tFormat::signedNumber}}};
constexpr tRequestMembers kTicketList = {{{"ticket", 0, 4, tFormat::number},
                                          {"buffer", 8, 8, tFormat::hexadecimal},
                                          {"count", 16, 4, tFormat::number},
                                          {"caller", 20, 4, tFormat::signedNumber}}};
constexpr tReplyMembers kNoReply = {{}};
constexpr tReplyMembers kStatusReply = {{{"status", 0, 4, tFormat::signedNumber}}};
constexpr tReplyMembers kValueReply = {
    {{"value", 0, 4, tFormat::number}, {"status", 4, 4, tFormat::signedNumber}}};
constexpr tReplyMembers kCountReply = {
    {{"count", 0, 4, tFormat::number}, {"status", 4, 4, tFormat::signedNumber}}};

// clang-format off
constexpr tRequestLayout kLayouts[] = {
    {REQUEST_GET_ATTRIBUTE, "get-attribute", kAttribute,
     {{{"size", 0, 4, tFormat::number}, {"status", 4, 4, tFormat::signedNumber}}}},
    {REQUEST_SET_ATTRIBUTE, "set-attribute", kAttribute, kStatusReply},
    {REQUEST_EXCHANGE_VALUES, "exchange-values",
     {{{"text", 0, 8, tFormat::hexadecimal},
       {"text-size", 8, 4, tFormat::number},
       {"table", 16, 8, tFormat::hexadecimal},
       {"table-size", 24, 4, tFormat::signedNumber},
       {"caller", 28, 4, tFormat::signedNumber}}},
     {{{"text-size", 0, 4, tFormat::number},
       {"table-size", 4, 4, tFormat::number},
       {"status", 8, 4, tFormat::signedNumber}}}},
    {REQUEST_CONTROLLER_SEND_COMMAND, "send-command", kSendCommand, kStatusReply},
    {REQUEST_MARTEN_SEND_COMMAND, "send-command", kSendCommand, kStatusReply},

    {REQUEST_PENDING_NARROW, "pending-request",
     {{{"handle", 0, 8, tFormat::hexadecimal},
       {"event", 8, 8, tFormat::hexadecimal},
       {"a", 20, 2, tFormat::number},
       {"b", 16, 4, tFormat::number},
       {"c", 22, 1, tFormat::number}}}, kNoReply},
    {REQUEST_PENDING_WIDE, "pending-request-wide",
     {{{"handle", 0, 8, tFormat::hexadecimal},
       {"event", 8, 8, tFormat::hexadecimal},
       {"a", 24, 2, tFormat::number},
       {"b", 16, 8, tFormat::number},
       {"c", 26, 1, tFormat::number}}}, kNoReply},
    {REQUEST_END_PENDING, "end-pending", {{{"handle", 0, 8, tFormat::number}}}, kNoReply},

    {REQUEST_REGISTER_NOTIFICATION, "register-notification",
     {{{"notification", 0, 8, tFormat::hexadecimal}, {"mask", 8, 4, tFormat::hexadecimal}}},
     kNoReply},
    {REQUEST_UNREGISTER_NOTIFICATION, "unregister-notification",
     {{{"mask", 0, 4, tFormat::hexadecimal}}}, kNoReply},
    {REQUEST_ARM_DELIVERY, "arm-delivery", {{}},
     {{{"notification", 0, 8, tFormat::hexadecimal}, {"size", 8, 4, tFormat::number}}}},

    {REQUEST_ROUTING_METHOD0, "method0", {{{"caller", 0, 4, tFormat::signedNumber}}}, kValueReply},
    {REQUEST_CALCULATE_ROUTE, "calculate-route",
     {{{"modifiers", 0, 8, tFormat::hexadecimal},
       {"seeds", 8, 8, tFormat::hexadecimal},
       {"seed-count", 16, 4, tFormat::number},
       {"destinations", 24, 8, tFormat::hexadecimal},
       {"destination-count", 32, 4, tFormat::number},
       {"options", 36, 4, tFormat::hexadecimal},
       {"capacity", 48, 4, tFormat::number},
       {"caller", 52, 4, tFormat::signedNumber}}},
     {{{"value", 0, 4, tFormat::number},
       {"count", 4, 4, tFormat::number},
       {"status", 8, 4, tFormat::signedNumber}}}},
    {REQUEST_DESTROY_ROUTE, "destroy-route", kTicket, kStatusReply},
    {REQUEST_RESERVE_ROUTE, "reserve-route", kTicketList, kCountReply},
    {REQUEST_PROGRAM_ROUTE, "program-route", kTicket, kStatusReply},
    {REQUEST_UNRESERVE_ROUTE, "unreserve-route", kTicket, kStatusReply},
    {REQUEST_UNPROGRAM_ROUTE, "unprogram-route", kTicket, kStatusReply},
    {REQUEST_GET_ROUTE_TERMINAL_PATH, "get-route-terminal-path", kTicketList, kCountReply},
    {REQUEST_GET_TOPOGRAPHY_NAME, "get-topography-name",
     {{{"buffer", 0, 8, tFormat::hexadecimal},
       {"size", 8, 4, tFormat::number},
       {"caller", 12, 4, tFormat::signedNumber}}}, kStatusReply},
    {REQUEST_RESET_TERMINAL, "reset-terminal",
     {{{"terminal", 0, 4, tFormat::number},
       {"floating", 4, 4, tFormat::number},
       {"caller", 8, 4, tFormat::signedNumber}}}, kStatusReply},
    {REQUEST_CALCULATE_RESET_TERMINAL, "calculate-reset-terminal",
     {{{"terminal", 8, 4, tFormat::number},
       {"floating", 12, 4, tFormat::number},
       {"caller", 16, 4, tFormat::signedNumber}}}, kValueReply},
};
// clang-format on

const tRequestLayout* layoutOf(uint32_t code) {
  const auto* found =
      std::find_if(std::begin(kLayouts), std::end(kLayouts),
                   [code](const tRequestLayout& layout) { return layout.code == code; });
  return found == std::end(kLayouts) ? nullptr : found;
}

std::string hexadecimal(uint64_t number) {
  std::array<char, 24> text{};
  std::snprintf(text.data(), text.size(), "0x%llX", static_cast<unsigned long long>(number));
  return text.data();
}

std::string memberText(const tMember& member, const uint8_t* bytes, size_t size) {
  std::string text = std::string(" ") + member.name + "=";
  if (member.offset + member.width > size) {
    return text + "(missing)";
  }
  uint64_t number = 0;
  std::memcpy(&number, bytes + member.offset, member.width);
  switch (member.format) {
    case tFormat::hexadecimal:
      return text + hexadecimal(number);
    case tFormat::signedNumber:
      return text + std::to_string(static_cast<int32_t>(number));
    case tFormat::number:
      break;
  }
  return text + std::to_string(number);
}

template <size_t N>
std::string membersText(const std::array<tMember, N>& members, const uint8_t* bytes, size_t size) {
  std::string text;
  for (const tMember& member : members) {
    if (member.name != nullptr) {
      text += memberText(member, bytes, size);
    }
  }
  return text;
}

std::string bytesText(const uint8_t* bytes, size_t size) {
  std::string text;
  for (size_t i = 0; i < size; ++i) {
    std::array<char, 4> digits{};
    std::snprintf(digits.data(), digits.size(), " %02X", static_cast<unsigned>(bytes[i]));
    text += digits.data();
  }
  return text;
}

std::string windowsErrorText(uint32_t windowsError) {
  return " Windows error " + std::to_string(windowsError);
}

std::string requestText(const tSimulatorLogEntry& entry) {
  constexpr uint32_t kPending = 997;
  const size_t sent = std::min<size_t>(entry.inputSize, sizeof entry.input);
  const size_t answered = std::min<size_t>(entry.outputSize, sizeof entry.output);
  const tRequestLayout* const layout = layoutOf(entry.requestCode);
  std::string text = requestName(entry.requestCode);
  text += layout ? membersText(layout->request, entry.input, sent) : bytesText(entry.input, sent);
  text += " ->";
  if (entry.windowsError == kPending) {
    return text + " pending";
  }
  if (entry.windowsError != 0) {
    return text + windowsErrorText(entry.windowsError);
  }
  return text + (layout ? membersText(layout->reply, entry.output, answered)
                        : bytesText(entry.output, answered));
}

// The acceptance or completion of a pending request.
std::string pendingText(const char* event, const tSimulatorLogEntry& entry) {
  const std::string text = std::string(event) + " " + requestName(entry.requestCode) +
                           memberText({"handle", 0, 8, tFormat::number}, entry.output,
                                      std::min<size_t>(entry.outputSize, sizeof entry.output));
  return entry.windowsError == 0 ? text : text + " ->" + windowsErrorText(entry.windowsError);
}

std::string eventText(const tSimulatorLogEntry& entry) {
  switch (entry.event) {
    case kSimulatorEventOpen:
      return "open";
    case kSimulatorEventClose:
      return "close";
    case kSimulatorEventRequest:
      return requestText(entry);
    case kSimulatorEventAccepted:
      return pendingText("accepted", entry);
    case kSimulatorEventCompleted:
      return pendingText("completed", entry);
    default:
      return "event " + std::to_string(entry.event);
  }
}

}  // namespace

std::string interfaceName(uint32_t interfaceKind) {
  switch (interfaceKind) {
    case kSimulatorInterfaceController:
      return "controller";
    case kSimulatorInterfaceMarten:
      return "marten";
    case kSimulatorInterfaceDevicePath:
      return "device-path";
    case kSimulatorInterfaceControl:
      return "control";
    default:
      return "interface " + std::to_string(interfaceKind);
  }
}

std::string requestName(uint32_t requestCode) {
  const tRequestLayout* const layout = layoutOf(requestCode);
  return layout != nullptr ? layout->name : hexadecimal(requestCode);
}

std::string requestLogLine(const tSimulatorLogEntry& entry) {
  return std::to_string(entry.sequence) + " process " + std::to_string(entry.process) + " " +
         interfaceName(entry.interfaceKind) + "#" + std::to_string(entry.file) + " " +
         eventText(entry);
}

}  // namespace nSimulator
