#include "simulator/driver/driver.h"

NTSTATUS completeIrp(IRP* irp, NTSTATUS status, ULONG_PTR information) {
  irp->IoStatus.Status = status;
  irp->IoStatus.Information = information;
  IoCompleteRequest(irp, IO_NO_INCREMENT);
  return status;
}

static NTSTATUS NTAPI dispatchNothing(DEVICE_OBJECT* device, IRP* irp) {
  (void)device;
  return completeIrp(irp, STATUS_SUCCESS, 0);
}

/* The system says which devices are gone before it unloads the driver. */
static void NTAPI unload(DRIVER_OBJECT* driver) {
  (void)driver;
}

NTSTATUS NTAPI DriverEntry(DRIVER_OBJECT* driver, UNICODE_STRING* registryPath);

NTSTATUS NTAPI DriverEntry(DRIVER_OBJECT* driver, UNICODE_STRING* registryPath) {
  (void)registryPath;
  initialiseMachine(showPresentInterfaces);
  driver->DriverExtension->AddDevice = addDevice;
  driver->DriverUnload = unload;
  driver->MajorFunction[IRP_MJ_PNP] = dispatchPlugAndPlay;
  driver->MajorFunction[IRP_MJ_CREATE] = dispatchCreate;
  driver->MajorFunction[IRP_MJ_CLEANUP] = dispatchNothing;
  driver->MajorFunction[IRP_MJ_CLOSE] = dispatchClose;
  driver->MajorFunction[IRP_MJ_DEVICE_CONTROL] = dispatchDeviceControl;
  return STATUS_SUCCESS;
}
