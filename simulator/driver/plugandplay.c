#include "simulator/driver/driver.h"

static NTSTATUS passDown(const tDevice* device, IRP* irp) {
  IoSkipCurrentIrpStackLocation(irp);
  return IoCallDriver(device->lower, irp);
}

static void setStarted(tDevice* device, bool started) {
  lockMachine();
  device->started = started;
  showPresentInterfaces(lockedPresence());
  unlockMachine();
}

NTSTATUS NTAPI dispatchPlugAndPlay(DEVICE_OBJECT* deviceObject, IRP* irp) {
  tDevice* device = deviceObject->DeviceExtension;
  irp->IoStatus.Status = STATUS_SUCCESS;
  switch (IoGetCurrentIrpStackLocation(irp)->MinorFunction) {
    case IRP_MN_START_DEVICE:
      setStarted(device, true);
      return passDown(device, irp);
    case IRP_MN_STOP_DEVICE:
    case IRP_MN_SURPRISE_REMOVAL:
      setStarted(device, false);
      return passDown(device, irp);
    case IRP_MN_REMOVE_DEVICE: {
      DEVICE_OBJECT* lower = device->lower;
      IoSkipCurrentIrpStackLocation(irp);
      const NTSTATUS status = IoCallDriver(lower, irp);
      removeDevice(device);
      return status;
    }
    default:
      return passDown(device, irp);
  }
}
