#ifndef TOOLS_QUENRA_CAPTURE_DRIVERONWINDOWS_H
#define TOOLS_QUENRA_CAPTURE_DRIVERONWINDOWS_H

#include "tools/quenra/capture/imachinedriver.h"
#include "zoapal/protons/driver/windowsu/tdeviceinterfaceproxy.h"

namespace nCommandLine {

// The driver's device interfaces, opened as the library opens them, in a session of their own.
class tMachineDriver final : public iMachineDriver {
 public:
  tMachineDriver() = default;
  tMachineDriver(const tMachineDriver&) = delete;
  tMachineDriver& operator=(const tMachineDriver&) = delete;
  ~tMachineDriver() override { close(); }

  [[nodiscard]] int32_t openController() noexcept override;
  [[nodiscard]] int32_t openMarten() noexcept override;
  [[nodiscard]] nQUENRA1400::nZOAPAL000::iInterfaceProxy_hostController& controller() noexcept
      override {
    return controller_;
  }
  [[nodiscard]] nQUENRA1400::nZOAPAL000::iInterfaceProxy_hostMarten& marten() noexcept override {
    return marten_;
  }
  void close() noexcept override;
  [[nodiscard]] uint32_t devicePaths() noexcept override;
  [[nodiscard]] nCapture::tTopography topography() override;
  // "Windows 10.0.19045"
  [[nodiscard]] std::string systemVersion() override;

 private:
  nQUENRA1400::nZOAPAL000::tDeviceInterfaceProxy controllerDevice_;
  nQUENRA1400::nZOAPAL000::tDeviceInterfaceProxy martenDevice_;
  nQUENRA1400::nZOAPAL000::tInterfaceProxy_hostController controller_{controllerDevice_};
  nQUENRA1400::nZOAPAL000::tInterfaceProxy_hostMarten marten_{martenDevice_};
};

}  // namespace nCommandLine

#endif
