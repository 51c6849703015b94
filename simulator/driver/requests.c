#include "simulator/driver/driver.h"

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
  const bool isPending = reply.windowsError == kWindowsErrorIoPending;
  const NTSTATUS pending = isPending ? keepPending(irp) : STATUS_SUCCESS;
  unlockMachine();
  return isPending ? pending
                   : completeIrp(irp, statusOfWindowsError(reply.windowsError), reply.size);
}
