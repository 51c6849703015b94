#include "simulator/driver/driver.h"

enum {
  kMaxDevices = 8,
  kMaxHardwareIdBytes = 256
};

static const tDeviceRole kRoles[] = {
    {L"root\\quenra_controller", &kControllerInterfaceClass, kSimulatorInterfaceController},
    {L"root\\quenra_marten", &kMartenInterfaceClass, kSimulatorInterfaceMarten},
    {L"root\\quenra_devicepath", &kDevicePathInterfaceClass, kSimulatorInterfaceDevicePath},
    {L"root\\quenra_control", &kSimulatorControlInterfaceClass, kSimulatorInterfaceControl},
};

static tDevice* theDevices[kMaxDevices];

static WCHAR lowerCase(WCHAR character) {
  return character >= L'A' && character <= L'Z' ? (WCHAR)(character + (L'a' - L'A')) : character;
}

static bool areSame(const WCHAR* left, const WCHAR* right) {
  while (*left != L'\0' && lowerCase(*left) == lowerCase(*right)) {
    ++left;
    ++right;
  }
  return lowerCase(*left) == lowerCase(*right);
}

/* The first hardware id of the device identifies its role. */
static const tDeviceRole* roleOf(DEVICE_OBJECT* physicalDevice) {
  WCHAR hardwareIds[kMaxHardwareIdBytes / sizeof(WCHAR)] = {0};
  ULONG size = 0;
  const NTSTATUS status =
      IoGetDeviceProperty(physicalDevice, DevicePropertyHardwareID,
                          sizeof(hardwareIds) - sizeof(WCHAR), hardwareIds, &size);
  if (!NT_SUCCESS(status)) {
    return NULL;
  }
  for (size_t i = 0; i < sizeof(kRoles) / sizeof(kRoles[0]); ++i) {
    if (areSame(hardwareIds, kRoles[i].hardwareId)) {
      return &kRoles[i];
    }
  }
  return NULL;
}

static uint32_t countOf(const tSimulatorPresence* presence, tSimulatorInterface interfaceKind) {
  switch (interfaceKind) {
    case kSimulatorInterfaceController:
      return presence->controllers;
    case kSimulatorInterfaceMarten:
      return presence->martens;
    case kSimulatorInterfaceDevicePath:
      return presence->devicePaths;
    case kSimulatorInterfaceControl:
      return 1;
  }
  return 0;
}

static void showIfPresent(tDevice* device, const tSimulatorPresence* presence) {
  const bool show =
      device->started && device->index < countOf(presence, device->role->interfaceKind);
  if (show != device->shown) {
    IoSetDeviceInterfaceState(&device->interfaceName, show);
    device->shown = show;
  }
}

void showPresentInterfaces(const tSimulatorPresence* presence) {
  for (size_t i = 0; i < kMaxDevices; ++i) {
    if (theDevices[i] != NULL) {
      showIfPresent(theDevices[i], presence);
    }
  }
}

/* Assigns the lowest free index among the devices of its role. */
static bool enlist(tDevice* device) {
  tDevice** freeSlot = NULL;
  uint32_t usedIndexes = 0;
  for (size_t i = 0; i < kMaxDevices; ++i) {
    if (theDevices[i] == NULL) {
      freeSlot = freeSlot == NULL ? &theDevices[i] : freeSlot;
    } else if (theDevices[i]->role == device->role) {
      usedIndexes |= 1u << theDevices[i]->index;
    }
  }
  if (freeSlot == NULL) {
    return false;
  }
  while ((usedIndexes & 1u << device->index) != 0) {
    ++device->index;
  }
  *freeSlot = device;
  return true;
}

static void delist(const tDevice* device) {
  for (size_t i = 0; i < kMaxDevices; ++i) {
    if (theDevices[i] == device) {
      theDevices[i] = NULL;
    }
  }
}

static void removeDevice(tDevice* device) {
  lockMachine();
  device->started = false;
  showIfPresent(device, lockedPresence());
  delist(device);
  unlockMachine();
  RtlFreeUnicodeString(&device->interfaceName);
  if (device->lower != NULL) {
    IoDetachDevice(device->lower);
  }
  IoDeleteDevice(device->self);
}

NTSTATUS NTAPI addDevice(DRIVER_OBJECT* driver, DEVICE_OBJECT* physicalDevice) {
  const tDeviceRole* role = roleOf(physicalDevice);
  if (role == NULL) {
    return STATUS_NO_SUCH_DEVICE;
  }
  DEVICE_OBJECT* self = NULL;
  NTSTATUS status =
      IoCreateDevice(driver, sizeof(tDevice), NULL, FILE_DEVICE_UNKNOWN, 0, FALSE, &self);
  if (!NT_SUCCESS(status)) {
    return status;
  }
  tDevice* device = self->DeviceExtension;
  RtlZeroMemory(device, sizeof(*device));
  device->self = self;
  device->role = role;
  GUID interfaceClass;
  RtlCopyMemory(&interfaceClass, role->interfaceClass, sizeof(interfaceClass));
  status = IoRegisterDeviceInterface(physicalDevice, &interfaceClass, NULL, &device->interfaceName);
  if (!NT_SUCCESS(status)) {
    IoDeleteDevice(self);
    return status;
  }
  device->lower = IoAttachDeviceToDeviceStack(self, physicalDevice);
  lockMachine();
  const bool enlisted = device->lower != NULL && enlist(device);
  unlockMachine();
  if (!enlisted) {
    removeDevice(device);
    return STATUS_DEVICE_CONFIGURATION_ERROR;
  }
  self->Flags |= DO_BUFFERED_IO;
  self->Flags &= ~(ULONG)DO_DEVICE_INITIALIZING;
  return STATUS_SUCCESS;
}

/* ---- Plug and play ---- */

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
