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
 * QUENRA_ATTRIBUTE_AT(QUENRA_ATTRIBUTE_MEMORY_SIZE, 1) addresses the second populated memory module;
 * add a selector to address an interface. Reading an attribute that a machine does not have returns
 * QUENRA_STATUS_NOT_SUPPORTED.
 *
 * Selectors of a read:
 *
 *   0        from the machine's table or the controller interface. If these have no value for instance 0
 *            of an unsigned attribute, from an open Marten interface.
 *   1        as 0, except that QUENRA_ATTRIBUTE_FIRMWARE_VERSION is the BIOS version.
 *   2        unsigned attributes of any number, and QUENRA_ATTRIBUTE_FIRMWARE_VERSION, from the Marten
 *            interface. Other texts as 0, but only if the Marten interface is open.
 *   3 to 15  as 0.
 *
 * The maker defines the content of its SMBIOS structures (types 0x96 to 0xB4); the names below describe
 * no more than the way in which the library uses the fields. */
#ifndef QUENRA_ATTRIBUTES_H
#define QUENRA_ATTRIBUTES_H

#include <stdint.h>

/* Interface selectors. Macros instead of an enumeration, so that C++ can add them to an id. */
#define QUENRA_SELECTOR_DEFAULT UINT32_C(0x00000000)
#define QUENRA_SELECTOR_CONTROLLER UINT32_C(0x00100000)
#define QUENRA_SELECTOR_MARTEN UINT32_C(0x00200000)

/* The parts of an id. */
#define QUENRA_ATTRIBUTE_TYPE_MASK UINT32_C(0xF0000000)
#define QUENRA_ATTRIBUTE_TYPE_TEXT UINT32_C(0x10000000)
#define QUENRA_ATTRIBUTE_TYPE_UNSIGNED UINT32_C(0x20000000)
#define QUENRA_ATTRIBUTE_PRIVATE_MASK UINT32_C(0x08000000)
#define QUENRA_ATTRIBUTE_SELECTOR_MASK UINT32_C(0x00F00000)
#define QUENRA_ATTRIBUTE_NUMBER_MASK UINT32_C(0x000FFF00)
#define QUENRA_ATTRIBUTE_INSTANCE_MASK UINT32_C(0x000000FF)

/* An instance, from 0 to 255, of an attribute. */
#define QUENRA_ATTRIBUTE_AT(id, instance) \
  (((id) & ~QUENRA_ATTRIBUTE_INSTANCE_MASK) | (QUENRA_ATTRIBUTE_INSTANCE_MASK & (instance)))

/* Values of QUENRA_ATTRIBUTE_LINK_KIND. */
#define QUENRA_LINK_EXPRESSCARD UINT32_C(1)
#define QUENRA_LINK_GPIB UINT32_C(2)
#define QUENRA_LINK_THUNDERBOLT UINT32_C(3)
/* Value of QUENRA_ATTRIBUTE_EXPANSION_KIND. */
#define QUENRA_EXPANSION_PCI UINT32_C(1)
/* A controller, link or expansion of another kind. */
#define QUENRA_KIND_OTHER UINT32_C(0xFFFFFFFF)

enum QUENRA_TextAttribute {
  /* Path of the controller's device interface. Needs no open controller and accepts any handle. */
  QUENRA_ATTRIBUTE_DEVICE_PATH = 0x18000100,

  /* Identity: System Information (SMBIOS type 1) and BIOS Information (type 0). */
  QUENRA_ATTRIBUTE_SYSTEM_MANUFACTURER = 0x10000000,
  QUENRA_ATTRIBUTE_PRODUCT_NAME = 0x10000100,
  /* Not supported when the firmware's text is "Not Applicable". */
  QUENRA_ATTRIBUTE_SERIAL_NUMBER = 0x10000200,
  /* Not supported when it repeats the BIOS version. */
  QUENRA_ATTRIBUTE_SYSTEM_VERSION = 0x10000300,
  /* With QUENRA_SELECTOR_CONTROLLER, and on a machine without a Marten, the BIOS version. On a machine
   * with a Marten, with QUENRA_SELECTOR_MARTEN the installed version of the Marten, otherwise its version
   * marker, which reads "0.0.0f0" after an update. */
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
  /* Private, write only: a text for the controller and the Marten interface. */
  QUENRA_TEXT_SETTING_OF_BOTH = 0x18000000
};

enum QUENRA_UnsignedAttribute {
  /* Identity. */
  /* 1, 2 and 3 by the bus structures found (0x97, 0x98, 0x9F); else byte 0x0C of structure 0x96
   * when that is 1 to 5; else QUENRA_KIND_OTHER. */
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
  /* 1 when the platform accepts firmware updates, else 0 (structure 0x9E). */
  QUENRA_ATTRIBUTE_FIRMWARE_UPDATE_SUPPORT = 0x2001F400,
  /* Not 0 when the platform permits text settings (structure 0x9D). */
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
  /* Read from the driver's controller interface. */
  QUENRA_ATTRIBUTE_PROCESSOR_SETTING = 0x20013100,

  /* Slots and buses. */
  QUENRA_ATTRIBUTE_SLOT_COUNT = 0x20025800,
  /* Structure 0x98; instance: position in the list, at most 4. */
  QUENRA_ATTRIBUTE_SLOT_NUMBER = 0x20025A00,
  /* QUENRA_LINK_..., or QUENRA_KIND_OTHER. */
  QUENRA_ATTRIBUTE_LINK_KIND = 0x2002BC00,
  /* QUENRA_EXPANSION_PCI, or QUENRA_KIND_OTHER. */
  QUENRA_ATTRIBUTE_EXPANSION_KIND = 0x20032000,
  QUENRA_ATTRIBUTE_BRIDGE_COUNT = 0x2006A400,

  /* The driver. */
  /* Read from the driver's controller interface. */
  QUENRA_ATTRIBUTE_DRIVER_SETTING_1 = 0x20044C00,
  QUENRA_ATTRIBUTE_DRIVER_SETTING_2 = 0x20051400,
  /* The selectors of the interfaces that are open: QUENRA_SELECTOR_CONTROLLER, QUENRA_SELECTOR_MARTEN. */
  QUENRA_ATTRIBUTE_INTERFACES_PRESENT = 0x2005DC00
};

/* Inventories: X(id, name) for each attribute that can be read. The name is that of the command line.
 *
 *   #define PRINT_TEXT(id, name) printText(id, name);
 *   QUENRA_FOR_EACH_TEXT_ATTRIBUTE(PRINT_TEXT) */
#define QUENRA_FOR_EACH_TEXT_ATTRIBUTE(X)                              \
  X(QUENRA_ATTRIBUTE_DEVICE_PATH, "device-path")                       \
  X(QUENRA_ATTRIBUTE_SYSTEM_MANUFACTURER, "system-manufacturer")       \
  X(QUENRA_ATTRIBUTE_PRODUCT_NAME, "product-name")                     \
  X(QUENRA_ATTRIBUTE_SERIAL_NUMBER, "serial-number")                   \
  X(QUENRA_ATTRIBUTE_SYSTEM_VERSION, "system-version")                 \
  X(QUENRA_ATTRIBUTE_FIRMWARE_VERSION, "firmware-version")             \
  X(QUENRA_ATTRIBUTE_PLATFORM_IDENTIFIER, "platform-identifier")       \
  X(QUENRA_ATTRIBUTE_PLATFORM_TEXT_1, "platform-text-1")               \
  X(QUENRA_ATTRIBUTE_PLATFORM_TEXT_2, "platform-text-2")               \
  X(QUENRA_ATTRIBUTE_PLATFORM_TEXT_3, "platform-text-3")               \
  X(QUENRA_ATTRIBUTE_MEMORY_MANUFACTURER, "memory-manufacturer")       \
  X(QUENRA_ATTRIBUTE_MEMORY_PART_NUMBER, "memory-part-number")         \
  X(QUENRA_ATTRIBUTE_MEMORY_SERIAL_NUMBER, "memory-serial-number")     \
  X(QUENRA_ATTRIBUTE_MEMORY_LOCATOR, "memory-locator")                 \
  X(QUENRA_ATTRIBUTE_PROCESSOR_MANUFACTURER, "processor-manufacturer") \
  X(QUENRA_ATTRIBUTE_PROCESSOR_VERSION, "processor-version")           \
  X(QUENRA_ATTRIBUTE_BUS_LOCATION, "bus-location")                     \
  X(QUENRA_ATTRIBUTE_SLOT_LOCATION, "slot-location")                   \
  X(QUENRA_ATTRIBUTE_LINK_LOCATION, "link-location")                   \
  X(QUENRA_ATTRIBUTE_LINK_TEXT, "link-text")                           \
  X(QUENRA_ATTRIBUTE_EXPANSION_LOCATION, "expansion-location")         \
  X(QUENRA_ATTRIBUTE_BRIDGE_LOCATION, "bridge-location")               \
  X(QUENRA_ATTRIBUTE_BRIDGE_MEMBERS, "bridge-members")

#define QUENRA_FOR_EACH_UNSIGNED_ATTRIBUTE(X)                            \
  X(QUENRA_ATTRIBUTE_CONTROLLER_KIND, "controller-kind")                 \
  X(QUENRA_ATTRIBUTE_PLATFORM_CODE, "platform-code")                     \
  X(QUENRA_ATTRIBUTE_PLATFORM_GENERATION, "platform-generation")         \
  X(QUENRA_ATTRIBUTE_PLATFORM_OPTION, "platform-option")                 \
  X(QUENRA_ATTRIBUTE_PLATFORM_REVISION, "platform-revision")             \
  X(QUENRA_ATTRIBUTE_PLATFORM_REVISION_BASE, "platform-revision-base")   \
  X(QUENRA_ATTRIBUTE_CAPABILITY_1, "capability-1")                       \
  X(QUENRA_ATTRIBUTE_CAPABILITY_2, "capability-2")                       \
  X(QUENRA_ATTRIBUTE_FIRMWARE_UPDATE_SUPPORT, "firmware-update-support") \
  X(QUENRA_ATTRIBUTE_TEXT_SETTING_SUPPORT, "text-setting-support")       \
  X(QUENRA_ATTRIBUTE_MEMORY_TYPE, "memory-type")                         \
  X(QUENRA_ATTRIBUTE_MEMORY_SPEED, "memory-speed")                       \
  X(QUENRA_ATTRIBUTE_MEMORY_CONFIGURED_SPEED, "memory-configured-speed") \
  X(QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT, "memory-module-count")         \
  X(QUENRA_ATTRIBUTE_MEMORY_SIZE, "memory-size")                         \
  X(QUENRA_ATTRIBUTE_PROCESSOR_STEPPING, "processor-stepping")           \
  X(QUENRA_ATTRIBUTE_PROCESSOR_MAXIMUM_SPEED, "processor-maximum-speed") \
  X(QUENRA_ATTRIBUTE_PROCESSOR_THREAD_COUNT, "processor-thread-count")   \
  X(QUENRA_ATTRIBUTE_PROCESSOR_SETTING, "processor-setting")             \
  X(QUENRA_ATTRIBUTE_SLOT_COUNT, "slot-count")                           \
  X(QUENRA_ATTRIBUTE_SLOT_NUMBER, "slot-number")                         \
  X(QUENRA_ATTRIBUTE_LINK_KIND, "link-kind")                             \
  X(QUENRA_ATTRIBUTE_EXPANSION_KIND, "expansion-kind")                   \
  X(QUENRA_ATTRIBUTE_BRIDGE_COUNT, "bridge-count")                       \
  X(QUENRA_ATTRIBUTE_DRIVER_SETTING_1, "driver-setting-1")               \
  X(QUENRA_ATTRIBUTE_DRIVER_SETTING_2, "driver-setting-2")               \
  X(QUENRA_ATTRIBUTE_INTERFACES_PRESENT, "interfaces-present")

#endif
