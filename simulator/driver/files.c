#include "simulator/driver/driver.h"

/* The number of the next file to be opened. FsContext holds the number of an open file. */
static uint64_t nextFile = 1;

tModelFile modelFileOf(const FILE_OBJECT* file) {
  const tDevice* device = file->DeviceObject->DeviceExtension;
  return (tModelFile){.file = (uintptr_t)file->FsContext,
                      .process = (uintptr_t)file->FsContext2,
                      .interfaceKind = device->role->interfaceKind};
}

NTSTATUS NTAPI dispatchCreate(DEVICE_OBJECT* deviceObject, IRP* irp) {
  FILE_OBJECT* file = IoGetCurrentIrpStackLocation(irp)->FileObject;
  file->DeviceObject = deviceObject;
  lockMachine();
  file->FsContext = (void*)(uintptr_t)nextFile++;
  file->FsContext2 = PsGetProcessId(IoGetRequestorProcess(irp));
  const tModelFile modelFile = modelFileOf(file);
  modelOpen(lockedMachine(), &modelFile);
  unlockMachine();
  return completeIrp(irp, STATUS_SUCCESS, 0);
}

/* The last handle is closed. Completes the pending IRPs, which would delay IRP_MJ_CLOSE. */
NTSTATUS NTAPI dispatchCleanUp(DEVICE_OBJECT* deviceObject, IRP* irp) {
  (void)deviceObject;
  const tModelFile modelFile = modelFileOf(IoGetCurrentIrpStackLocation(irp)->FileObject);
  lockMachine();
  modelCleanUp(lockedMachine(), &modelFile);
  unlockMachine();
  return completeIrp(irp, STATUS_SUCCESS, 0);
}

NTSTATUS NTAPI dispatchClose(DEVICE_OBJECT* deviceObject, IRP* irp) {
  (void)deviceObject;
  const tModelFile modelFile = modelFileOf(IoGetCurrentIrpStackLocation(irp)->FileObject);
  lockMachine();
  /* Wine sends IRP_MJ_CLOSE without IRP_MJ_CLEANUP. */
  modelCleanUp(lockedMachine(), &modelFile);
  modelClose(lockedMachine(), &modelFile);
  unlockMachine();
  return completeIrp(irp, STATUS_SUCCESS, 0);
}
