/* Declarations shared by the parts of the driver. One machine serves all devices; every routine
 * here runs at PASSIVE_LEVEL. */
#ifndef SIMULATOR_DRIVER_DRIVER_H
#define SIMULATOR_DRIVER_DRIVER_H

#include <ntifs.h>
#include <stdbool.h>

#include "simulator/model/model.h"

/* driver.c: the machine that serves the devices. */

void lockMachine(void);
void unlockMachine(void);
/* The caller holds the machine's lock. */
tModel* lockedMachine(void);
const tSimulatorPresence* lockedPresence(void);

/* devices.c: the devices of the driver. */

/* The role of a device: the interface that it registers. */
typedef struct tDeviceRole {
  const WCHAR* hardwareId;
  const tInterfaceClass* interfaceClass;
  tSimulatorInterface interfaceKind;
} tDeviceRole;

/* The extension of a device object. */
typedef struct tDevice {
  DEVICE_OBJECT* self;
  DEVICE_OBJECT* lower;
  const tDeviceRole* role;
  uint32_t index;               /* among the devices of its role */
  UNICODE_STRING interfaceName; /* of its device interface */
  bool started;
  bool shown; /* the interface is enabled */
} tDevice;

DRIVER_ADD_DEVICE addDevice;
DRIVER_DISPATCH dispatchPlugAndPlay;
/* Enables the interfaces that are present in the machine and disables the others. The machine is
 * locked, or not yet in use. */
void showPresentInterfaces(const tSimulatorPresence* presence);

/* requests.c: files and requests. */

DRIVER_DISPATCH dispatchCreate;
DRIVER_DISPATCH dispatchCleanUp;
DRIVER_DISPATCH dispatchClose;
DRIVER_DISPATCH dispatchDeviceControl;
/* Completes an IRP that the machine kept pending. The caller holds the machine's lock. */
void completePendingIrp(void* context, uint64_t token, uint32_t windowsError, const void* output,
                        uint32_t size);

#endif
