#include "simulator/driver/driver.h"

NTSTATUS completeIrp(IRP* irp, NTSTATUS status, ULONG_PTR information) {
  irp->IoStatus.Status = status;
  irp->IoStatus.Information = information;
  IoCompleteRequest(irp, IO_NO_INCREMENT);
  return status;
}

NTSTATUS statusOfWindowsError(uint32_t windowsError) {
  /* Windows converts NTSTATUS 0xC001xxxx to the Windows error 0xxxx. */
  return windowsError == 0 ? STATUS_SUCCESS : (NTSTATUS)(0xC0010000u | windowsError);
}

/* Nothing to release: the system removes all devices before it unloads the driver. */
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
  driver->MajorFunction[IRP_MJ_CLEANUP] = dispatchCleanUp;
  driver->MajorFunction[IRP_MJ_CLOSE] = dispatchClose;
  driver->MajorFunction[IRP_MJ_DEVICE_CONTROL] = dispatchDeviceControl;
  return STATUS_SUCCESS;
}
