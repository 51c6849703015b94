/* What the parts of the driver share. One machine serves all devices; every routine here runs at
 * passive level. */
#ifndef SIMULATOR_DRIVER_DRIVER_H
#define SIMULATOR_DRIVER_DRIVER_H

#include <ntifs.h>
#include <stdbool.h>

#include "simulator/model/model.h"

/* What a device of this driver is. */
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

/* machine.c: the machine behind the devices. The listener is told of every change of presence, with
 * the machine locked or not yet in use. */
typedef void tPresenceListener(const tSimulatorPresence* presence);
void initialiseMachine(tPresenceListener* listener);
void lockMachine(void);
void unlockMachine(void);
/* With the machine locked. */
tModel* lockedMachine(void);
const tSimulatorPresence* lockedPresence(void);

/* devices.c: the devices of the driver. */
DRIVER_ADD_DEVICE addDevice;
void removeDevice(tDevice* device);
/* Shows and hides interfaces, so that those are there which are present in the machine. */
tPresenceListener showPresentInterfaces;

/* The routines behind the IRPs: plugandplay.c, files.c, requests.c. */
DRIVER_DISPATCH dispatchPlugAndPlay;
DRIVER_DISPATCH dispatchCreate;
DRIVER_DISPATCH dispatchCleanUp;
DRIVER_DISPATCH dispatchClose;
DRIVER_DISPATCH dispatchDeviceControl;

/* What dispatchCreate keeps about an open file. */
tModelFile modelFileOf(const FILE_OBJECT* file);

/* Ends an IRP. */
NTSTATUS completeIrp(IRP* irp, NTSTATUS status, ULONG_PTR information);
/* The status that arrives at the caller as the Windows error. */
NTSTATUS statusOfWindowsError(uint32_t windowsError);

/* pendingirps.c: IRPs that the machine keeps pending. With the machine locked. */
uint64_t tokenOf(const IRP* irp);
/* Returns STATUS_PENDING; the IRP may be over by then. */
NTSTATUS keepPending(IRP* irp);
void completePendingIrp(void* context, uint64_t token, uint32_t windowsError, const void* output,
                        uint32_t size);

#endif
