#include "simulator/driver/driver.h"

#include "simulator/callermemory/callermemory.h"

/* ---- The machine ---- */

/* Static, so that DriverEntry cannot fail for lack of memory. */
static tModel theMachine;
static tSimulatorPresence thePresence;
static FAST_MUTEX theLock;

static bool readCaller(void* context, uint64_t process, uint64_t address, void* destination,
                       uint32_t size) {
  (void)context;
  return callerMemoryRead(process, address, destination, size) != 0;
}

static bool writeCaller(void* context, uint64_t process, uint64_t address, const void* source,
                        uint32_t size) {
  (void)context;
  return callerMemoryWrite(process, address, source, size) != 0;
}

static bool signalEvent(void* context, uint64_t process, uint64_t event) {
  (void)context;
  return callerEventSignal(process, event) != 0;
}

static void presenceChanged(void* context, const tSimulatorPresence* presence) {
  (void)context;
  thePresence = *presence;
  showPresentInterfaces(presence);
}

static void initialiseMachine(void) {
  static const tModelHost kHost = {NULL,        readCaller,         writeCaller,
                                   signalEvent, completePendingIrp, presenceChanged};
  ExInitializeFastMutex(&theLock);
  modelInitialise(&theMachine, &kHost);
}

void lockMachine(void) {
  ExAcquireFastMutex(&theLock);
}

void unlockMachine(void) {
  ExReleaseFastMutex(&theLock);
}

tModel* lockedMachine(void) {
  return &theMachine;
}

const tSimulatorPresence* lockedPresence(void) {
  return &thePresence;
}

/* ---- The entry point ---- */

/* Nothing to release: the system removes all devices before it unloads the driver. */
static void NTAPI unload(DRIVER_OBJECT* driver) {
  (void)driver;
}

NTSTATUS NTAPI DriverEntry(DRIVER_OBJECT* driver, UNICODE_STRING* registryPath);

NTSTATUS NTAPI DriverEntry(DRIVER_OBJECT* driver, UNICODE_STRING* registryPath) {
  (void)registryPath;
  initialiseMachine();
  driver->DriverExtension->AddDevice = addDevice;
  driver->DriverUnload = unload;
  driver->MajorFunction[IRP_MJ_PNP] = dispatchPlugAndPlay;
  driver->MajorFunction[IRP_MJ_CREATE] = dispatchCreate;
  driver->MajorFunction[IRP_MJ_CLEANUP] = dispatchCleanUp;
  driver->MajorFunction[IRP_MJ_CLOSE] = dispatchClose;
  driver->MajorFunction[IRP_MJ_DEVICE_CONTROL] = dispatchDeviceControl;
  return STATUS_SUCCESS;
}
