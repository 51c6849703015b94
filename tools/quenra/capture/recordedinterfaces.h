// The driver's interfaces with a record: the answers of a driver are recorded, and a record answers in place
// of a driver.
#ifndef TOOLS_QUENRA_CAPTURE_RECORDEDINTERFACES_H
#define TOOLS_QUENRA_CAPTURE_RECORDEDINTERFACES_H

#include <cstdint>

#include "codegen/apalcodegen/tinterfaceproxy_hostcontroller.h"
#include "codegen/apalcodegen/tinterfaceproxy_hostmarten.h"
#include "quenra_status.h"
#include "tools/capture/machinerecord.h"
#include "zoapal/protons/status/tstatus.h"

namespace nCommandLine {

using nZOAPALS100::tStatus;
using tControllerInterface = nQUENRA1400::nZOAPAL000::iInterfaceProxy_hostController;
using tMartenInterface = nQUENRA1400::nZOAPAL000::iInterfaceProxy_hostMarten;

// An interface for reading a machine. It refuses everything else with QUENRA_STATUS_REQUEST_NOT_SUPPORTED:
// nothing can be written through it.
template <class Interface>
class tReadOnlyInterface : public Interface {
 public:
  void close() noexcept final {}
  uint32_t deviceControl(uint32_t /*code*/, const void* /*in*/, uint32_t /*inSize*/, void* /*out*/,
                         uint32_t /*outSize*/, tStatus& status) noexcept final {
    return refuse(status);
  }
  uint32_t read(void* /*buffer*/, uint32_t /*size*/, tStatus& status) noexcept final {
    return refuse(status);
  }
  uint32_t write(const void* /*buffer*/, uint32_t /*size*/, tStatus& status) noexcept final {
    return refuse(status);
  }
  uint64_t beginPendingRequest(uint16_t /*a*/, uint64_t /*b*/, uint8_t /*c*/,
                               nQUENRA1400::nZOAPAL000::tPendingRequest& /*request*/,
                               tStatus& status) noexcept final {
    return refuse(status);
  }
  void endPendingRequest(nQUENRA1400::nZOAPAL000::tPendingRequest& /*request*/) noexcept final {}
  void sendCommand(uint64_t /*payload*/, uint32_t /*size*/, tStatus& status) noexcept final {
    refuse(status);
  }
  void setAttribute(uint32_t /*attribute*/, uint64_t /*buffer*/, int32_t /*size*/,
                    tStatus& status) noexcept final {
    refuse(status);
  }

 private:
  static uint32_t refuse(tStatus& status) noexcept {
    mergeStatus(status, QUENRA_STATUS_REQUEST_NOT_SUPPORTED,
                {"tools\\quenra\\capture\\tReadOnlyInterface", 1});
    return 0;
  }
};

// ---- Recording ----

// Forwards reads to a driver's interface and records its answers: the last one to each attribute. The
// interface and the record must outlive the object.
template <class Interface>
class tRecordingInterface : public tReadOnlyInterface<Interface> {
 public:
  tRecordingInterface(Interface& driver, nCapture::tInterface& record) noexcept
      : driver_(driver), record_(record) {}

  void getAttribute(uint32_t attribute, uint64_t buffer, uint32_t& size,
                    tStatus& status) noexcept final;

 protected:
  [[nodiscard]] Interface& driver() noexcept { return driver_; }

 private:
  Interface& driver_;
  nCapture::tInterface& record_;
};

using tRecordingMarten = tRecordingInterface<tMartenInterface>;

class tRecordingController final : public tRecordingInterface<tControllerInterface> {
 public:
  tRecordingController(tControllerInterface& driver, nCapture::tInterface& record,
                       nCapture::tHandover& handover) noexcept
      : tRecordingInterface(driver, record), handover_(handover) {}

  void exchangeValues(uint64_t textBuffer, uint32_t& textSize, uint64_t tableBuffer,
                      int32_t& tableSize, tStatus& status) noexcept override;

 private:
  nCapture::tHandover& handover_;
};

// ---- Replaying ----

// Answers as the record says, at once. An attribute that was not recorded is QUENRA_STATUS_NOT_SUPPORTED.
template <class Interface>
class tReplayedInterface : public tReadOnlyInterface<Interface> {
 public:
  explicit tReplayedInterface(const nCapture::tInterface& record) noexcept : record_(record) {}

  void getAttribute(uint32_t attribute, uint64_t buffer, uint32_t& size,
                    tStatus& status) noexcept final;

 private:
  const nCapture::tInterface& record_;
};

using tReplayedMarten = tReplayedInterface<tMartenInterface>;

// An object serves one identification of the machine.
class tReplayedController final : public tReplayedInterface<tControllerInterface> {
 public:
  tReplayedController(const nCapture::tInterface& record,
                      const nCapture::tHandover& handover) noexcept
      : tReplayedInterface(record), handover_(handover) {}

  void exchangeValues(uint64_t textBuffer, uint32_t& textSize, uint64_t tableBuffer,
                      int32_t& tableSize, tStatus& status) noexcept override;

 private:
  const nCapture::tHandover& handover_;
  bool sizesWereQueried_ = false;
};

}  // namespace nCommandLine

#endif
