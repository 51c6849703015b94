#include "simulator/driver/driver.h"

/* True if the caller must complete the IRP. The side that removes the cancel routine does so: the
 * machine, or the system when it cancels the IRP. */
static bool takeOver(IRP* irp) {
  return IoSetCancelRoutine(irp, NULL) != NULL;
}

static IRP* irpOf(uint64_t token) {
  return (IRP*)(uintptr_t)token;
}

uint64_t tokenOf(const IRP* irp) {
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

NTSTATUS keepPending(IRP* irp) {
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
