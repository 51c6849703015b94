#ifndef ZOAPAL_PROTONS_DRIVER_WINDOWSU_TPORTREGISTRY_H
#define ZOAPAL_PROTONS_DRIVER_WINDOWSU_TPORTREGISTRY_H

#include <windows.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "protocol/pendingrequests.h"
#include "zoapal/protons/synchronization/windowsu/locks.h"

namespace nQUENRA1400::nZOAPAL000 {

class tDeviceInterfaceProxy;
class tIONotification;

// An overlapped request whose completion arrives at a completion port. From the call that starts it
// until its packet is dequeued the OVERLAPPED belongs to Windows, which may store the final status
// as late as that: nothing but the packet proves that a request has ended.
struct tPortRequest {
  OVERLAPPED overlapped{};
  HANDLE file = INVALID_HANDLE_VALUE;       // borrowed; invalid once the file is closed
  tIONotification* notification = nullptr;  // that it registers; null for a delivery
};

// The request by which the driver delivers the notices of one device, and its reply. The address of
// its OVERLAPPED is the completion key of the device.
struct tDelivery : tPortRequest {
  tNotificationDelivery rearmBuffer{};
  tDeviceInterfaceProxy* proxy = nullptr;

  [[nodiscard]] ULONG_PTR notificationKey() const noexcept {
    return reinterpret_cast<ULONG_PTR>(&overlapped);
  }
};

// A packet, resolved by the registry. Both members are null when the request is unknown, or when its
// packet arrives although it is still pending: a driver completed it twice.
struct tDequeued {
  std::shared_ptr<tPortRequest> request;
  tIONotification* notification = nullptr;  // of a registration; null once it was removed
};

// The requests that complete to one port, and the notifications that its packets may name. Owns
// every request from start to packet, so that neither a proxy nor a notification has to outlive it.
// Any thread.
class tPortRegistry {
 public:
  // ---- Requests ----

  // Returns false when out of memory. The request is idle and stays until removed.
  [[nodiscard]] bool add(std::shared_ptr<tPortRequest> request) noexcept;
  // Marks an idle request as sent, right before the call that starts it. Returns false if it is not
  // idle: another thread has sent it, or its reply is being read.
  [[nodiscard]] bool markSent(const tPortRequest& request) noexcept;
  // Marks a request as idle: the call that starts it has failed, or its reply has been read.
  void markIdle(const tPortRequest& request) noexcept;
  // The request leaves the registry now or, if it is sent, with its packet.
  void remove(const tPortRequest& request) noexcept;

  // Resolves a dequeued packet. The request is not idle before markIdle.
  [[nodiscard]] tDequeued resolve(const OVERLAPPED* overlapped) noexcept;

  // Cancels the request if it is sent. Does not wait.
  void cancel(const tPortRequest& request) noexcept;
  // Cancels every sent request whose file is open, and returns whether any is still sent.
  [[nodiscard]] bool cancelAll() noexcept;
  // Before a file is closed: cancels its requests and removes them.
  void detach(HANDLE file) noexcept;
  // Keeps the registry and its requests for the life of the process: no packet of theirs can be
  // dequeued any more, and the driver may still write to the requests that are sent.
  static void abandon(std::shared_ptr<tPortRegistry> registry) noexcept;

  // ---- Notifications ----

  // Returns false when out of memory. Adding a notification twice has no effect.
  [[nodiscard]] bool add(tIONotification& notification) noexcept;
  // No packet resolves to the notification any more.
  void remove(const tIONotification& notification) noexcept;
  // The driver names a notification by its address, which is not dereferenced unless it is one of
  // those added. Null otherwise.
  [[nodiscard]] tIONotification* find(uint64_t address) noexcept;

 private:
  enum class tState : uint8_t {
    idle,
    sent,     // Windows owns the OVERLAPPED
    dequeued  // the reader is reading the reply
  };
  struct tEntry {
    std::shared_ptr<tPortRequest> request;
    tState state = tState::idle;
    bool isRemoved = false;
  };
  using tEntries = std::vector<tEntry>;

  [[nodiscard]] tEntries::iterator find(const tPortRequest& request) noexcept;
  static void cancelEntry(const tEntry& entry) noexcept;

  // The lock guards all members, and the members file and notification of every request.
  tSlimLock lock_;
  tEntries entries_;
  std::vector<tIONotification*> notifications_;
  std::shared_ptr<tPortRegistry> self_;  // set when abandoned
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
