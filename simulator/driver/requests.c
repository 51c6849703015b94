#include "simulator/driver/driver.h"

/* The status that arrives at the caller as the Windows error: 0xC001 in the upper half hands the
 * lower half through unchanged. */
static NTSTATUS statusOf(uint32_t windowsError) {
  return windowsError == 0 ? STATUS_SUCCESS : (NTSTATUS)(0xC0010000u | windowsError);
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
  };
  lockMachine();
  const tModelReply reply = modelRequest(lockedMachine(), &request);
  unlockMachine();
  return completeIrp(irp, statusOf(reply.windowsError), reply.size);
}
