// The order of virtual operations in every interface that fixes one, because callers use its slots.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <vector>

#include "codegen/apalcodegen/tinterfaceproxy_hostcontroller.h"
#include "codegen/apalcodegen/tinterfaceproxy_hostmarten.h"
#include "codegen/apalcodegen/tinterfaceproxy_routing.h"
#include "zoapal/protons/driver/windowsu/tdeviceinterfaceproxy.h"
#include "zoapal/protons/io_notification/windowsu/tionotification.h"
#include "zoapal/protons/io_notification/windowsu/tionotificationreader.h"
#include "zoapal/protons/trace/ttrace.h"
#include "zoarkra/arkroutingadaptorsession.h"
#include "zoarkra/arkterminaliterator.h"
#include "zosmbios/czosmbioswindowsprovider.h"

// Both compilers of the project follow the Itanium C++ ABI, on Windows as well. Its pointer to a member
// function is a pair {ptr, adj}; on x86-64 the ptr of a virtual function is 1 plus the offset in bytes
// of the function's entry in the virtual table of its class.
#if !defined(__x86_64__) || !defined(__GXX_ABI_VERSION)
#error "reading virtual tables needs the Itanium C++ ABI on x86-64"
#endif

namespace nTests {
namespace {

using namespace nQUENRA1400::nZOAPAL000;
using nQUENRA1400::nZOSMBIOS_1_1::cZoSmBiosProvider;
using nQUENRA1400::nZOSMBIOS_1_1::cZoSmBiosWindowsProvider;
using nZOAPALS100::tStatus;

// The result for a member function that is not virtual.
constexpr size_t kNotVirtual = ~size_t{0};

// The index of a virtual member function's entry in the virtual table of its class.
template <class Member>
[[nodiscard]] size_t entryOf(Member member) {
  static_assert(sizeof member == 2 * sizeof(void*));
  uintptr_t pointer = 0;
  std::memcpy(&pointer, &member, sizeof pointer);
  return (pointer & 1) == 0 ? kNotVirtual : (pointer - 1) / sizeof(void*);
}

// An operation with the slot that its interface fixes and the entry that the compiler assigned.
struct tOperation {
  size_t slot;
  const char* name;
  size_t entry;
};
using tOperations = std::vector<tOperation>;

// A destructor counts as one slot and has two entries: complete and deleting. With the destructor in
// slot 0, slot n is entry n + 1.
constexpr size_t kEntryOfSlot0 = 1;

// The class adds its operations, counted from slot 0, to those of iInterfaceProxy, whose destructor and
// six operations have eight entries.
constexpr size_t kEntryOfAddedSlot0 = 8;

void expectSlots(const tOperations& operations, size_t entryOfSlot0) {
  for (const tOperation& operation : operations) {
    EXPECT_EQ(operation.entry, entryOfSlot0 + operation.slot) << operation.name;
  }
}

// ---- The reading of entries ----

class tThreeOperations {
 public:
  virtual ~tThreeOperations() = default;
  virtual void first() {}
  virtual int second(int value) const { return value; }
  virtual void third() {}
  void ordinary() {}
};
class tOverridingSecond : public tThreeOperations {
 public:
  int second(int value) const override { return value + 1; }
  virtual void fourth() {}
};

TEST(SlotOrder, Entries_FollowTheDeclarationAfterTheTwoOfTheDestructor) {
  expectSlots({{1, "first", entryOf(&tThreeOperations::first)},
               {2, "second", entryOf(&tThreeOperations::second)},
               {3, "third", entryOf(&tThreeOperations::third)},
               {2, "overridden second", entryOf(&tOverridingSecond::second)},
               {4, "fourth", entryOf(&tOverridingSecond::fourth)}},
              kEntryOfSlot0);
  EXPECT_EQ(entryOf(&tThreeOperations::ordinary), kNotVirtual);
}

// ---- The platform layer ----

template <class Destination>
tOperations traceDestination() {
  static_assert(std::has_virtual_destructor_v<Destination>);
  return {{1, "writeCounted", entryOf(&Destination::writeCounted)},
          {2, "write", entryOf(&Destination::write)},
          {3, "unusedThird", entryOf(&Destination::unusedThird)},
          {4, "getConfiguration", entryOf(&Destination::getConfiguration)},
          {5, "isAvailable", entryOf(&Destination::isAvailable)},
          {6, "unusedSixth", entryOf(&Destination::unusedSixth)},
          {7, "getName", entryOf(&Destination::getName)}};
}

TEST(SlotOrder, TraceDestination_FixesItsOrder) {
  expectSlots(traceDestination<iTraceDestination>(), kEntryOfSlot0);
  expectSlots(traceDestination<tConsoleTraceDestination>(), kEntryOfSlot0);
}

template <class Proxy>
tOperations interfaceProxy() {
  static_assert(std::has_virtual_destructor_v<Proxy>);
  return {{1, "close", entryOf(&Proxy::close)},
          {2, "deviceControl", entryOf(&Proxy::deviceControl)},
          {3, "read", entryOf(&Proxy::read)},
          {4, "write", entryOf(&Proxy::write)},
          {5, "beginPendingRequest", entryOf(&Proxy::beginPendingRequest)},
          {6, "endPendingRequest", entryOf(&Proxy::endPendingRequest)}};
}

TEST(SlotOrder, InterfaceProxy_FixesItsOrder) {
  expectSlots(interfaceProxy<iInterfaceProxy>(), kEntryOfSlot0);
  expectSlots(interfaceProxy<tDeviceInterfaceProxy>(), kEntryOfSlot0);
}

TEST(SlotOrder, DeviceInterfaceProxy_FixesTheOrderOfItsOwn) {
  using tOpenByText = void (tDeviceInterfaceProxy::*)(const char*, tStatus&) noexcept;
  using tOpenByPath = void (tDeviceInterfaceProxy::*)(const tDevicePath&, tStatus&) noexcept;
  expectSlots({{0, "isOpen", entryOf(&tDeviceInterfaceProxy::isOpen)},
               {1, "open by text", entryOf(tOpenByText{&tDeviceInterfaceProxy::open})},
               {2, "open by path", entryOf(tOpenByPath{&tDeviceInterfaceProxy::open})}},
              kEntryOfAddedSlot0);
}

TEST(SlotOrder, Notification_FixesItsOrder) {
  static_assert(std::has_virtual_destructor_v<tIONotification>);
  expectSlots({{1, "enable", entryOf(&tIONotification::enable)},
               {2, "disable", entryOf(&tIONotification::disable)}},
              kEntryOfSlot0);
}

template <class Reader>
tOperations notificationReader() {
  static_assert(std::has_virtual_destructor_v<Reader>);
  return {{1, "wait", entryOf(&Reader::wait)}, {2, "wake", entryOf(&Reader::wake)}};
}

TEST(SlotOrder, NotificationReader_FixesItsOrder) {
  expectSlots(notificationReader<tIONotificationReader>(), kEntryOfSlot0);
  expectSlots(notificationReader<tThreadedIONotificationReader>(), kEntryOfSlot0);
}

// ---- The typed interfaces ----

template <class Proxy>
tOperations hostController() {
  return {{0, "exchangeValues", entryOf(&Proxy::exchangeValues)},
          {1, "sendCommand", entryOf(&Proxy::sendCommand)},
          {2, "getAttribute", entryOf(&Proxy::getAttribute)},
          {3, "setAttribute", entryOf(&Proxy::setAttribute)}};
}

TEST(SlotOrder, HostController_FixesItsOrder) {
  expectSlots(hostController<iInterfaceProxy_hostControllerBase>(), kEntryOfAddedSlot0);
  expectSlots(hostController<iInterfaceProxy_hostController>(), kEntryOfAddedSlot0);
  expectSlots(hostController<tInterfaceProxy_hostController>(), kEntryOfAddedSlot0);
}

template <class Proxy>
tOperations hostMarten() {
  return {{0, "sendCommand", entryOf(&Proxy::sendCommand)},
          {1, "getAttribute", entryOf(&Proxy::getAttribute)},
          {2, "setAttribute", entryOf(&Proxy::setAttribute)}};
}

TEST(SlotOrder, HostMarten_FixesItsOrder) {
  expectSlots(hostMarten<iInterfaceProxy_hostMarten>(), kEntryOfAddedSlot0);
  expectSlots(hostMarten<tInterfaceProxy_hostMarten>(), kEntryOfAddedSlot0);
}

template <class Proxy>
tOperations routing() {
  return {{0, "method0", entryOf(&Proxy::method0)},
          {1, "calculateRoute", entryOf(&Proxy::calculateRoute)},
          {2, "destroyRoute", entryOf(&Proxy::destroyRoute)},
          {3, "reserveRoute", entryOf(&Proxy::reserveRoute)},
          {4, "programRoute", entryOf(&Proxy::programRoute)},
          {5, "unreserveRoute", entryOf(&Proxy::unreserveRoute)},
          {6, "unprogramRoute", entryOf(&Proxy::unprogramRoute)},
          {7, "getRouteTerminalPath", entryOf(&Proxy::getRouteTerminalPath)},
          {8, "getTopographyName", entryOf(&Proxy::getTopographyName)},
          {9, "resetTerminal", entryOf(&Proxy::resetTerminal)},
          {10, "calculateResetTerminal", entryOf(&Proxy::calculateResetTerminal)}};
}

TEST(SlotOrder, Routing_FixesItsOrder) {
  expectSlots(routing<iInterfaceProxy_routing>(), kEntryOfAddedSlot0);
  expectSlots(routing<tInterfaceProxy_routing>(), kEntryOfAddedSlot0);
}

// ---- The provider of the SMBIOS table ----

TEST(SlotOrder, SmBiosProvider_FixesItsOrder) {
  static_assert(std::has_virtual_destructor_v<cZoSmBiosProvider>);
  expectSlots({{1, "load", entryOf(&cZoSmBiosProvider::load)},
               {1, "load for Windows", entryOf(&cZoSmBiosWindowsProvider::load)}},
              kEntryOfSlot0);
}

// ---- The routing adaptor ----

template <class Session>
tOperations routingSession() {
  static_assert(std::has_virtual_destructor_v<Session>);
  return {
      {1, "getHandledConstraints", entryOf(&Session::getHandledConstraints)},
      {2, "calculateRoute", entryOf(&Session::calculateRoute)},
      {3, "reserveRoute", entryOf(&Session::reserveRoute)},
      {4, "programRoute", entryOf(&Session::programRoute)},
      {5, "unprogramRoute", entryOf(&Session::unprogramRoute)},
      {6, "unreserveRoute", entryOf(&Session::unreserveRoute)},
      {7, "beginExceptionalRouteDestruction", entryOf(&Session::beginExceptionalRouteDestruction)},
      {8, "destroyRoute", entryOf(&Session::destroyRoute)},
      {9, "getRouteTerminalPath", entryOf(&Session::getRouteTerminalPath)},
      {10, "getAllTerminals", entryOf(&Session::getAllTerminals)},
      {11, "calculateResetTerminal", entryOf(&Session::calculateResetTerminal)}};
}

TEST(SlotOrder, RoutingSession_FixesItsOrder) {
  expectSlots(routingSession<zoroco::RoutingAdaptorSessionInterface>(), kEntryOfSlot0);
  expectSlots(routingSession<zoark::ARKRoutingAdaptorSession>(), kEntryOfSlot0);
}

template <class Iterator>
tOperations terminalIterator() {
  static_assert(std::has_virtual_destructor_v<Iterator>);
  return {{1, "next", entryOf(&Iterator::next)},
          {2, "isEnd", entryOf(&Iterator::isEnd)},
          {3, "getStringAttribute", entryOf(&Iterator::getStringAttribute)},
          {4, "getBoolAttribute", entryOf(&Iterator::getBoolAttribute)},
          {5, "getU32Attribute", entryOf(&Iterator::getU32Attribute)},
          {6, "resetTerminal", entryOf(&Iterator::resetTerminal)}};
}

TEST(SlotOrder, TerminalIterator_FixesItsOrder) {
  expectSlots(terminalIterator<zoroco::TerminalIteratorInterface>(), kEntryOfSlot0);
  expectSlots(terminalIterator<zoark::ARKTerminalIterator>(), kEntryOfSlot0);
}

}  // namespace
}  // namespace nTests
