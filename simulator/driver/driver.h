/* Declarations shared by the parts of the driver. One machine serves all devices; every routine
 * here runs at PASSIVE_LEVEL. */
#ifndef SIMULATOR_DRIVER_DRIVER_H
#define SIMULATOR_DRIVER_DRIVER_H

#include <ntifs.h>
#include <stdbool.h>

#include "simulator/model/model.h"

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

/* machine.c: the machine that serves the devices. The listener is called on every change of
 * presence, with the machine locked or not yet in use. */
typedef void tPresenceListener(const tSimulatorPresence* presence);
void initialiseMachine(tPresenceListener* listener);
void lockMachine(void);
void unlockMachine(void);
/* The caller holds the machine's lock. */
tModel* lockedMachine(void);
const tSimulatorPresence* lockedPresence(void);

/* devices.c: the devices of the driver. */
DRIVER_ADD_DEVICE addDevice;
void removeDevice(tDevice* device);
/* Enables the interfaces that are present in the machine and disables the others. */
tPresenceListener showPresentInterfaces;

/* Dispatch routines: plugandplay.c, files.c, requests.c. */
DRIVER_DISPATCH dispatchPlugAndPlay;
DRIVER_DISPATCH dispatchCreate;
DRIVER_DISPATCH dispatchCleanUp;
DRIVER_DISPATCH dispatchClose;
DRIVER_DISPATCH dispatchDeviceControl;

/* The record that dispatchCreate stored in the file object. */
tModelFile modelFileOf(const FILE_OBJECT* file);

/* Completes an IRP. */
NTSTATUS completeIrp(IRP* irp, NTSTATUS status, ULONG_PTR information);
/* The status that Windows converts back to this Windows error for the caller. */
NTSTATUS statusOfWindowsError(uint32_t windowsError);

/* pendingirps.c: IRPs that the machine keeps pending. The caller holds the machine's lock. */
uint64_t tokenOf(const IRP* irp);
/* Returns STATUS_PENDING; the IRP may already be completed. */
NTSTATUS keepPending(IRP* irp);
void completePendingIrp(void* context, uint64_t token, uint32_t windowsError, const void* output,
                        uint32_t size);

#endif
