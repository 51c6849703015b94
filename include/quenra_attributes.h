/* Attribute ids of the controller.
 *
 * An id is a 32-bit word:
 *
 *   bits 28-31  value type: 1 text (UTF-8), 2 unsigned 32-bit
 *   bit  27     private attribute
 *   bits 20-23  interface selector: 0 default, 1 the controller interface, 2 the Marten interface
 *   bits 8-19   attribute number, decimal
 *   bits 0-7    instance: memory module, processor or list position, from 0
 *
 * To address an instance or an interface, add it: QUENRA_ATTRIBUTE_MEMORY_SIZE + 1 is the second
 * populated memory module. Attributes that a machine does not have answer
 * QUENRA_STATUS_NOT_SUPPORTED.
 *
 * What the maker's own SMBIOS structures (types 0x96 to 0xB4) mean is known to the machine's
 * firmware alone; the names below say no more than the way the fields are used. */
#ifndef QUENRA_ATTRIBUTES_H
#define QUENRA_ATTRIBUTES_H

#include <stdint.h>

/* Interface selectors. They are no enumeration, so that C++ lets them be added to an id. */
#define QUENRA_SELECTOR_DEFAULT UINT32_C(0x00000000)
#define QUENRA_SELECTOR_CONTROLLER UINT32_C(0x00100000)
#define QUENRA_SELECTOR_MARTEN UINT32_C(0x00200000)

enum QUENRA_TextAttribute {
  /* Path of the controller's device interface. Needs no open controller and accepts any handle. */
  QUENRA_ATTRIBUTE_DEVICE_PATH = 0x18000100,

  /* Identity: System Information (SMBIOS type 1) and BIOS Information (type 0). */
  QUENRA_ATTRIBUTE_SYSTEM_MANUFACTURER = 0x10000000,
  QUENRA_ATTRIBUTE_PRODUCT_NAME = 0x10000100,
  /* Not supported when the firmware says "Not Applicable". */
  QUENRA_ATTRIBUTE_SERIAL_NUMBER = 0x10000200,
  /* Not supported when it merely repeats the BIOS version. */
  QUENRA_ATTRIBUTE_SYSTEM_VERSION = 0x10000300,
  /* The BIOS version; asked of the Marten interface instead where that is open and the controller
   * interface is not selected. */
  QUENRA_ATTRIBUTE_FIRMWARE_VERSION = 0x10000400,
  /* A text of structure 0x96, on platforms of generation 7 or later and unless it is "Not
   * Applicable". */
  QUENRA_ATTRIBUTE_PLATFORM_IDENTIFIER = 0x10000700,

  /* Platform: further texts of structures 0x96 and 0x9C. */
  QUENRA_ATTRIBUTE_PLATFORM_TEXT_1 = 0x10006400,
  QUENRA_ATTRIBUTE_PLATFORM_TEXT_2 = 0x10006500,
  QUENRA_ATTRIBUTE_PLATFORM_TEXT_3 = 0x10038400,

  /* Memory: Memory Device (type 17). Instance: populated module, from 0. */
  QUENRA_ATTRIBUTE_MEMORY_MANUFACTURER = 0x1000CC00,
  QUENRA_ATTRIBUTE_MEMORY_PART_NUMBER = 0x1000CD00,
  QUENRA_ATTRIBUTE_MEMORY_SERIAL_NUMBER = 0x1000CE00,
  QUENRA_ATTRIBUTE_MEMORY_LOCATOR = 0x1000CF00,

  /* Processor: Processor Information (type 4). Instance: processor, from 0. */
  QUENRA_ATTRIBUTE_PROCESSOR_MANUFACTURER = 0x10012C00,
  QUENRA_ATTRIBUTE_PROCESSOR_VERSION = 0x10012D00,

  /* Slots and buses: locations such as "07:12", a one-digit leading group with a zero before it. */
  /* Structure 0x97. */
  QUENRA_ATTRIBUTE_BUS_LOCATION = 0x1001F400,
  /* Structure 0x98; instance: position in a list of QUENRA_ATTRIBUTE_SLOT_COUNT, at most 4. */
  QUENRA_ATTRIBUTE_SLOT_LOCATION = 0x10025900,
  /* Structure 0x99. */
  QUENRA_ATTRIBUTE_LINK_LOCATION = 0x1002BD00,
  QUENRA_ATTRIBUTE_LINK_TEXT = 0x1002BE00,
  /* Structure 0x9A. */
  QUENRA_ATTRIBUTE_EXPANSION_LOCATION = 0x10032100,
  /* Structure 0xA3; instance: position in a list of QUENRA_ATTRIBUTE_BRIDGE_COUNT, at most 5. */
  QUENRA_ATTRIBUTE_BRIDGE_LOCATION = 0x1006A500,
  /* As above; several locations separated by commas. */
  QUENRA_ATTRIBUTE_BRIDGE_MEMBERS = 0x1006A600
};

enum QUENRA_TextSetting {
  /* Private, and only written: a text that the controller and the Marten interface take at once. */
  QUENRA_TEXT_SETTING_OF_BOTH = 0x18000000
};

enum QUENRA_UnsignedAttribute {
  /* Identity. */
  /* 1, 2 and 3 by the bus structures found (0x97, 0x98, 0x9F); else byte 0x0C of structure 0x96
   * when that is 1 to 5; else 0xFFFFFFFF. */
  QUENRA_ATTRIBUTE_CONTROLLER_KIND = 0x20000500,
  /* A word of structure 0x96. */
  QUENRA_ATTRIBUTE_PLATFORM_CODE = 0x20000600,
  /* Private: the platform generation, a byte of structure 0x96. */
  QUENRA_ATTRIBUTE_PLATFORM_GENERATION = 0x28000200,

  /* Platform: bytes of structures 0x96, 0xB4 and 0x9F. */
  QUENRA_ATTRIBUTE_PLATFORM_OPTION = 0x20006600,
  /* 0x10, 0x15, 0x20 or 0x30; other values are not supported. */
  QUENRA_ATTRIBUTE_PLATFORM_REVISION = 0x20019600,
  QUENRA_ATTRIBUTE_PLATFORM_REVISION_BASE = 0x20019800,
  QUENRA_ATTRIBUTE_CAPABILITY_1 = 0x2003E800,
  QUENRA_ATTRIBUTE_CAPABILITY_2 = 0x2003E900,
  /* 1 when the platform takes firmware updates, else 0 (structure 0x9E). */
  QUENRA_ATTRIBUTE_FIRMWARE_UPDATE_SUPPORT = 0x2001F400,
  /* Not 0 when the platform lets text settings be written (structure 0x9D). */
  QUENRA_ATTRIBUTE_TEXT_SETTING_SUPPORT = 0x2004B000,

  /* Memory: Memory Device (type 17). Instance: populated module, from 0. */
  /* The memory type as SMBIOS numbers it. */
  QUENRA_ATTRIBUTE_MEMORY_TYPE = 0x2000C800,
  /* In MT/s. */
  QUENRA_ATTRIBUTE_MEMORY_SPEED = 0x2000C900,
  /* In MT/s. */
  QUENRA_ATTRIBUTE_MEMORY_CONFIGURED_SPEED = 0x2000CA00,
  /* Populated modules. An instance other than 0 is not supported, yet the count is written. */
  QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT = 0x2000CB00,
  /* SMBIOS size word: MiB, or KiB when bit 15 is set. */
  QUENRA_ATTRIBUTE_MEMORY_SIZE = 0x2000D000,

  /* Processor: Processor Information (type 4). Instance: processor, from 0. */
  /* The low four bits of the processor id: the stepping. */
  QUENRA_ATTRIBUTE_PROCESSOR_STEPPING = 0x20012E00,
  /* In MHz. */
  QUENRA_ATTRIBUTE_PROCESSOR_MAXIMUM_SPEED = 0x20012F00,
  QUENRA_ATTRIBUTE_PROCESSOR_THREAD_COUNT = 0x20013000,
  /* Answered by the driver. */
  QUENRA_ATTRIBUTE_PROCESSOR_SETTING = 0x20013100,

  /* Slots and buses. */
  QUENRA_ATTRIBUTE_SLOT_COUNT = 0x20025800,
  /* Structure 0x98; instance: position in the list, at most 4. */
  QUENRA_ATTRIBUTE_SLOT_NUMBER = 0x20025A00,
  /* 1 ExpressCard, 2 GPIB, 3 Thunderbolt, 0xFFFFFFFF another. */
  QUENRA_ATTRIBUTE_LINK_KIND = 0x2002BC00,
  /* 1 PCI, 0xFFFFFFFF another. */
  QUENRA_ATTRIBUTE_EXPANSION_KIND = 0x20032000,
  QUENRA_ATTRIBUTE_BRIDGE_COUNT = 0x2006A400,

  /* The driver. */
  /* Answered by the driver's controller interface. */
  QUENRA_ATTRIBUTE_DRIVER_SETTING_1 = 0x20044C00,
  QUENRA_ATTRIBUTE_DRIVER_SETTING_2 = 0x20051400,
  /* Interfaces present: 0x100000 the controller, 0x200000 the Marten interface. */
  QUENRA_ATTRIBUTE_INTERFACES_PRESENT = 0x2005DC00
};

#endif
