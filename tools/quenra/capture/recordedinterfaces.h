// The driver's interfaces with a record: the answers of a driver are recorded, and a record answers in place
// of a driver.
#ifndef TOOLS_QUENRA_CAPTURE_RECORDEDINTERFACES_H
#define TOOLS_QUENRA_CAPTURE_RECORDEDINTERFACES_H

#include <cstdint>

#include "codegen/apalcodegen/tinterfaceproxy_hostcontroller.h"
#include "codegen/apalcodegen/tinterfaceproxy_hostmarten.h"
#include "tools/capture/machinerecord.h"

namespace nCommandLine {

using nZOAPALS100::tStatus;
using tControllerInterface = nQUENRA1400::nZOAPAL000::iInterfaceProxy_hostController;
using tMartenInterface = nQUENRA1400::nZOAPAL000::iInterfaceProxy_hostMarten;

// Only reading a machine reaches the interfaces below. They refuse everything else with
// QUENRA_STATUS_REQUEST_NOT_SUPPORTED: nothing can be written through them.
class tReadOnlyInterface : public virtual nQUENRA1400::nZOAPAL000::iInterfaceProxy {
 public:
  void close() noexcept override {}
  uint32_t deviceControl(uint32_t code, const void* in, uint32_t inSize, void* out,
                         uint32_t outSize, tStatus& status) noexcept override;
  uint32_t read(void* buffer, uint32_t size, tStatus& status) noexcept override;
  uint32_t write(const void* buffer, uint32_t size, tStatus& status) noexcept override;
  uint64_t beginPendingRequest(uint16_t a, uint64_t b, uint8_t c,
                               nQUENRA1400::nZOAPAL000::tPendingRequest& request,
                               tStatus& status) noexcept override;
  void endPendingRequest(nQUENRA1400::nZOAPAL000::tPendingRequest& /*request*/) noexcept override {}

 protected:
  static void refuse(tStatus& status) noexcept;
};

// ---- Recording ----

// Forwards reads to a driver's interface and records its answers: the last one to each attribute. The
// interface and the record must outlive the object.

class tRecordingController final : public tControllerInterface, public tReadOnlyInterface {
 public:
  tRecordingController(tControllerInterface& driver, nCapture::tInterface& record,
                       nCapture::tHandover& handover) noexcept
      : driver_(driver), record_(record), handover_(handover) {}

  void exchangeValues(uint64_t textBuffer, uint32_t& textSize, uint64_t tableBuffer,
                      int32_t& tableSize, tStatus& status) noexcept override;
  void sendCommand(uint64_t payload, uint32_t payloadSize, tStatus& status) noexcept override;
  void getAttribute(uint32_t attribute, uint64_t buffer, uint32_t& size,
                    tStatus& status) noexcept override;
  void setAttribute(uint32_t attribute, uint64_t buffer, int32_t size,
                    tStatus& status) noexcept override;

 private:
  tControllerInterface& driver_;
  nCapture::tInterface& record_;
  nCapture::tHandover& handover_;
};

class tRecordingMarten final : public tMartenInterface, public tReadOnlyInterface {
 public:
  tRecordingMarten(tMartenInterface& driver, nCapture::tInterface& record) noexcept
      : driver_(driver), record_(record) {}

  void sendCommand(uint64_t payload, uint32_t payloadSize, tStatus& status) noexcept override;
  void getAttribute(uint32_t attribute, uint64_t buffer, uint32_t& size,
                    tStatus& status) noexcept override;
  void setAttribute(uint32_t attribute, uint64_t buffer, int32_t size,
                    tStatus& status) noexcept override;

 private:
  tMartenInterface& driver_;
  nCapture::tInterface& record_;
};

// ---- Replaying ----

// Answers as the record says, at once. An attribute that was not recorded is QUENRA_STATUS_NOT_SUPPORTED. An
// object serves one identification of the machine.

class tReplayedController final : public tControllerInterface, public tReadOnlyInterface {
 public:
  explicit tReplayedController(const nCapture::tMachineRecord& record) noexcept : record_(record) {}

  void exchangeValues(uint64_t textBuffer, uint32_t& textSize, uint64_t tableBuffer,
                      int32_t& tableSize, tStatus& status) noexcept override;
  void sendCommand(uint64_t payload, uint32_t payloadSize, tStatus& status) noexcept override;
  void getAttribute(uint32_t attribute, uint64_t buffer, uint32_t& size,
                    tStatus& status) noexcept override;
  void setAttribute(uint32_t attribute, uint64_t buffer, int32_t size,
                    tStatus& status) noexcept override;

 private:
  const nCapture::tMachineRecord& record_;
  bool sizesWereQueried_ = false;
};

class tReplayedMarten final : public tMartenInterface, public tReadOnlyInterface {
 public:
  explicit tReplayedMarten(const nCapture::tMachineRecord& record) noexcept : record_(record) {}

  void sendCommand(uint64_t payload, uint32_t payloadSize, tStatus& status) noexcept override;
  void getAttribute(uint32_t attribute, uint64_t buffer, uint32_t& size,
                    tStatus& status) noexcept override;
  void setAttribute(uint32_t attribute, uint64_t buffer, int32_t size,
                    tStatus& status) noexcept override;

 private:
  const nCapture::tMachineRecord& record_;
};

}  // namespace nCommandLine

#endif
