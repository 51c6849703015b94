#ifndef ZOARKRA_ARKROUTINGADAPTORSESSION_H
#define ZOARKRA_ARKROUTINGADAPTORSESSION_H

#include <atomic>
#include <cstdint>
#include <memory>

#include "quenra_routing.h"
#include "zoapal/protons/containers/tarray.h"
#include "zoapal/protons/cppnewdelete/tquarantinedstorage.h"
#include "zoapal/protons/status/zoerrstatus.h"
#include "zoarkra/arkterminaliterator.h"
#include "zoarkra/iroutingdevice.h"
#include "zoarkra/routerequest.h"
#include "zoarkra/topography.h"

namespace zoroco {

// A session with a routing device. The order of the operations is part of the interface.
//
// Operations throw zoerr::Exception when they fail, and std::bad_alloc. The status receives warnings;
// its code is sent to the driver. `output`: the client's output argument.
class RoutingAdaptorSessionInterface : public nQUENRA1400::nZOAPAL000::tQuarantinedStorage {
 public:
  RoutingAdaptorSessionInterface() = default;
  RoutingAdaptorSessionInterface(const RoutingAdaptorSessionInterface&) = delete;
  RoutingAdaptorSessionInterface& operator=(const RoutingAdaptorSessionInterface&) = delete;
  virtual ~RoutingAdaptorSessionInterface() = default;

  virtual void getHandledConstraints(char** output, zoerr::Status& status) = 0;

  // Returns the value of the driver's calculation.
  virtual uint32_t calculateRoute(const zoark::tRequestTexts& texts, char** output,
                                  zoerr::Status& status) = 0;
  // Writes an answer only when routes conflict.
  virtual void reserveRoute(uint32_t ticket, char** output, zoerr::Status& status) = 0;
  virtual void programRoute(uint32_t ticket, zoerr::Status& status) = 0;

  // The steps of a teardown. The two words of the client are ignored.
  virtual void unprogramRoute(uint32_t ticket, uint64_t first, uint64_t second) = 0;
  virtual void unreserveRoute(uint32_t ticket, uint64_t first, uint64_t second) = 0;
  virtual void beginExceptionalRouteDestruction(uint32_t ticket, uint64_t first,
                                                uint64_t second) = 0;
  virtual void destroyRoute(uint32_t ticket, uint64_t first, uint64_t second) = 0;

  virtual void getRouteTerminalPath(uint32_t ticket, char** output, zoerr::Status& status) = 0;

  [[nodiscard]] virtual std::unique_ptr<TerminalIteratorInterface> getAllTerminals(
      zoerr::Status& status, uint64_t reserved) = 0;
  // The id of the terminal from which a reset would drive the iterator's terminal.
  virtual uint32_t calculateResetTerminal(const TerminalIteratorInterface& iterator,
                                          const char* mode, zoerr::Status& status) = 0;
};

}  // namespace zoroco

namespace zoark {

// The functions that a client supplies for its session.
struct tClientFunctions {
  zoroco_Reallocate reallocate;
  zoroco_DemotionCallback callback;  // may be null
  void* context;
};

// Keeps no record of routes: the driver holds them, and a ticket identifies one. Used by one thread at
// a time; the callback runs on a thread of the device.
class ARKRoutingAdaptorSession final : public zoroco::RoutingAdaptorSessionInterface,
                                       private iDemotionListener {
 public:
  // Opens the device under a name of at most 256 characters and finds its topography. Demotions reach
  // the callback from the end of the construction on; earlier ones are dropped. Throws
  // zoerr::Exception, and then leaves nothing open.
  ARKRoutingAdaptorSession(std::unique_ptr<iRoutingDevice> device, const char* deviceInterfaceName,
                           const tClientFunctions& client, zoerr::Status& status);
  // Waits for a callback that is running; must not run inside one.
  ~ARKRoutingAdaptorSession() override;

  // True inside the session's callback.
  [[nodiscard]] bool isInCallback() const noexcept { return device_->isListenerThread(); }

  void getHandledConstraints(char** output, zoerr::Status& status) override;
  uint32_t calculateRoute(const tRequestTexts& texts, char** output,
                          zoerr::Status& status) override;
  void reserveRoute(uint32_t ticket, char** output, zoerr::Status& status) override;
  void programRoute(uint32_t ticket, zoerr::Status& status) override;
  void unprogramRoute(uint32_t ticket, uint64_t first, uint64_t second) override;
  void unreserveRoute(uint32_t ticket, uint64_t first, uint64_t second) override;
  void beginExceptionalRouteDestruction(uint32_t ticket, uint64_t first, uint64_t second) override;
  void destroyRoute(uint32_t ticket, uint64_t first, uint64_t second) override;
  void getRouteTerminalPath(uint32_t ticket, char** output, zoerr::Status& status) override;
  [[nodiscard]] std::unique_ptr<zoroco::TerminalIteratorInterface> getAllTerminals(
      zoerr::Status& status, uint64_t reserved) override;
  uint32_t calculateResetTerminal(const zoroco::TerminalIteratorInterface& iterator,
                                  const char* mode, zoerr::Status& status) override;

 private:
  // Stops the notifications, also when the construction fails.
  class tNotificationsEnd {
   public:
    explicit tNotificationsEnd(iRoutingDevice& device) noexcept : device_(device) {}
    tNotificationsEnd(const tNotificationsEnd&) = delete;
    tNotificationsEnd& operator=(const tNotificationsEnd&) = delete;
    ~tNotificationsEnd() { device_.stopNotifications(); }

   private:
    iRoutingDevice& device_;
  };

  void open(zoerr::Status& status);
  void routeDemoted(void* notification) noexcept override;
  [[nodiscard]] nQUENRA1400::nZOAPAL000::iInterfaceProxy_routing& proxy() const noexcept {
    return device_->proxy();
  }

  std::unique_ptr<iRoutingDevice> device_;
  nQUENRA1400::nZOAPAL000::tArray<char> deviceInterfaceName_;
  zoroco_Reallocate reallocate_;
  std::atomic<zoroco_DemotionCallback> callback_ = nullptr;  // published after context_
  void* context_ = nullptr;
  const tTopography* topography_ = nullptr;
  // The last member, so that the others outlive a callback that is running.
  tNotificationsEnd notificationsEnd_;
};

}  // namespace zoark

#endif
