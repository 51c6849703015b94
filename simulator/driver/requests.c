#include "simulator/driver/driver.h"

/* ---- Completion ---- */

static NTSTATUS completeIrp(IRP* irp, NTSTATUS status, ULONG_PTR information) {
  irp->IoStatus.Status = status;
  irp->IoStatus.Information = information;
  IoCompleteRequest(irp, IO_NO_INCREMENT);
  return status;
}

/* The status that Windows converts back to this Windows error for the caller. */
static NTSTATUS statusOfWindowsError(uint32_t windowsError) {
  /* Windows converts NTSTATUS 0xC001xxxx to the Windows error 0xxxx. */
  return windowsError == 0 ? STATUS_SUCCESS : (NTSTATUS)(0xC0010000u | windowsError);
}

/* ---- Pending IRPs ---- */

/* True if the caller must complete the IRP. The side that removes the cancel routine does so: the
 * machine, or the system when it cancels the IRP. */
static bool takeOver(IRP* irp) {
  return IoSetCancelRoutine(irp, NULL) != NULL;
}

static IRP* irpOf(uint64_t token) {
  return (IRP*)(uintptr_t)token;
}

static uint64_t tokenOf(const IRP* irp) {
  return (uintptr_t)irp;
}

/* Called with the cancel spin lock held. After its release the IRQL permits the machine's lock. */
static void NTAPI cancel(DEVICE_OBJECT* deviceObject, IRP* irp) {
  (void)deviceObject;
  IoReleaseCancelSpinLock(irp->CancelIrql);
  lockMachine();
  modelCancel(lockedMachine(), tokenOf(irp));
  unlockMachine();
  completeIrp(irp, STATUS_CANCELLED, 0);
}

/* The caller holds the machine's lock. Returns STATUS_PENDING; the IRP may already be completed. */
static NTSTATUS keepPending(IRP* irp) {
  IoMarkIrpPending(irp);
  IoSetCancelRoutine(irp, cancel);
  if (irp->Cancel && takeOver(irp)) {
    modelCancel(lockedMachine(), tokenOf(irp));
    completeIrp(irp, STATUS_CANCELLED, 0);
  } else {
    modelPended(lockedMachine(), tokenOf(irp));
  }
  return STATUS_PENDING;
}

void completePendingIrp(void* context, uint64_t token, uint32_t windowsError, const void* output,
                        uint32_t size) {
  (void)context;
  IRP* irp = irpOf(token);
  if (takeOver(irp)) {
    if (size != 0) {
      RtlCopyMemory(irp->AssociatedIrp.SystemBuffer, output, size);
    }
    completeIrp(irp, statusOfWindowsError(windowsError), size);
  }
}

/* ---- Files ---- */

/* The number of the next file to be opened. FsContext holds the number of an open file. */
static uint64_t nextFile = 1;

/* The record that dispatchCreate stored in the file object. */
static tModelFile modelFileOf(const FILE_OBJECT* file) {
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

/* ---- Device control requests ---- */

static void waitBeforeReply(uint32_t microseconds) {
  if (microseconds != 0) {
    /* Negative: relative to now, in units of 100 ns. */
    LARGE_INTEGER interval = {.QuadPart = -10 * (LONGLONG)microseconds};
    KeDelayExecutionThread(KernelMode, FALSE, &interval);
  }
}

NTSTATUS NTAPI dispatchDeviceControl(DEVICE_OBJECT* deviceObject, IRP* irp) {
  (void)deviceObject;
  const IO_STACK_LOCATION* stack = IoGetCurrentIrpStackLocation(irp);
  const tModelRequest request = {
      .file = modelFileOf(stack->FileObject),
      .code = stack->Parameters.DeviceIoControl.IoControlCode,
      .input = irp->AssociatedIrp.SystemBuffer,
      .inputSize = stack->Parameters.DeviceIoControl.InputBufferLength,
      .output = irp->AssociatedIrp.SystemBuffer,
      .outputSize = stack->Parameters.DeviceIoControl.OutputBufferLength,
      .token = tokenOf(irp),
  };
  lockMachine();
  const tModelReply reply = modelRequest(lockedMachine(), &request);
  const uint32_t delay = modelReplyDelay(lockedMachine());
  const bool isPending = reply.windowsError == kWindowsErrorIoPending;
  const NTSTATUS pending = isPending ? keepPending(irp) : STATUS_SUCCESS;
  unlockMachine();
  waitBeforeReply(delay);
  return isPending ? pending
                   : completeIrp(irp, statusOfWindowsError(reply.windowsError), reply.size);
}
