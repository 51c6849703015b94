#ifndef SIMULATOR_QUENRA_SIM_INSTALLATION_HARDWAREIDS_H
#define SIMULATOR_QUENRA_SIM_INSTALLATION_HARDWAREIDS_H

namespace nSimulator {

// A kind of device: its hardware id, as in the driver and its INF, and the number of devices.
struct tRootDevice {
  const char* hardwareId;
  unsigned count;
};
inline constexpr tRootDevice kRootDevices[] = {
    {"root\\quenra_controller", 2},
    {"root\\quenra_marten", 2},
    {"root\\quenra_devicepath", 1},
    {"root\\quenra_control", 1},
};

}  // namespace nSimulator

#endif
