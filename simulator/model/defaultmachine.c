#include "simulator/model/model.h"

#include <stddef.h>

#include "simulator/model/bytes.h"

/* ---- A writer of SMBIOS structures ---- */

typedef struct tSmbiosTableWriter {
  uint8_t* table;
  uint32_t capacity;
  uint32_t size;           /* bytes written; bytes beyond the capacity are dropped */
  uint32_t structureStart; /* of the structure being written */
  uint8_t lastString;      /* number of its last string so far, 0 if none */
} tSmbiosTableWriter;

enum {
  kTypeOffset = 0,
  kLengthOffset = 1,
  kHandleOffset = 2
};

static void append(tSmbiosTableWriter* writer, uint8_t value) {
  if (writer->size < writer->capacity) {
    writer->table[writer->size] = value;
    ++writer->size;
  }
}

/* Write a field of the formatted area of the current structure. */
static void writeByte(tSmbiosTableWriter* writer, uint8_t offset, uint8_t value) {
  const uint32_t position = writer->structureStart + offset;
  if (position < writer->size) {
    writer->table[position] = value;
  }
}

static void writeWord(tSmbiosTableWriter* writer, uint8_t offset, uint16_t value) {
  writeByte(writer, offset, (uint8_t)value);
  writeByte(writer, (uint8_t)(offset + 1), (uint8_t)(value >> 8));
}

static void writeQuadWord(tSmbiosTableWriter* writer, uint8_t offset, uint64_t value) {
  for (uint8_t i = 0; i < sizeof(value); ++i) {
    writeByte(writer, (uint8_t)(offset + i), (uint8_t)(value >> (8 * i)));
  }
}

/* Appends the text to the structure's strings and writes its number to the field. */
static void writeText(tSmbiosTableWriter* writer, uint8_t offset, const char* text) {
  ++writer->lastString;
  writeByte(writer, offset, writer->lastString);
  for (; *text != '\0'; ++text) {
    append(writer, (uint8_t)*text);
  }
  append(writer, 0);
}

/* A unique handle: the structure's type and its number among the structures of that type. */
static uint16_t handleOf(uint8_t type, uint8_t instance) {
  return (uint16_t)((type << 8) | instance);
}

/* Begins a structure with a zeroed formatted area of `length` bytes, including the header. End it
 * before beginning the next. */
static void beginInstance(tSmbiosTableWriter* writer, uint8_t type, uint8_t instance,
                          uint8_t length) {
  writer->structureStart = writer->size;
  writer->lastString = 0;
  for (uint32_t i = 0; i < length; ++i) {
    append(writer, 0);
  }
  writeByte(writer, kTypeOffset, type);
  writeByte(writer, kLengthOffset, length);
  writeWord(writer, kHandleOffset, handleOf(type, instance));
}

static void beginStructure(tSmbiosTableWriter* writer, uint8_t type, uint8_t length) {
  beginInstance(writer, type, 0, length);
}

static void endStructure(tSmbiosTableWriter* writer) {
  if (writer->lastString == 0) {
    append(writer, 0);
  }
  append(writer, 0);
}

/* ---- The SMBIOS structure table ---- */

enum {
  kMemorySockets = 4,
  kNoHandle = 0xFFFF,
  kNoErrorHandle = 0xFFFE,
  kEndOfTable = 127,
};

static void writeBiosInformation(tSmbiosTableWriter* writer) {
  beginStructure(writer, 0, 0x1A);
  writeText(writer, 0x04, "Vellamar Firmware Works");
  writeText(writer, 0x05, "2.1.0f3");
  writeWord(writer, 0x06, 0xF000); /* starting segment */
  writeText(writer, 0x08, "03/14/2023");
  writeByte(writer, 0x09, 0xFF);        /* 16 MiB or more: see the extended size */
  writeQuadWord(writer, 0x0A, 1u << 7); /* PCI is supported */
  writeByte(writer, 0x13, 1u << 3);     /* UEFI */
  writeByte(writer, 0x14, 2);           /* system firmware release 2.1 */
  writeByte(writer, 0x15, 1);
  writeWord(writer, 0x16, 0xFFFF); /* no embedded controller */
  writeWord(writer, 0x18, 16);     /* MiB */
  endStructure(writer);
}

static void writeSystemInformation(tSmbiosTableWriter* writer) {
  beginStructure(writer, 1, 27);
  writeText(writer, 0x04, "Vellamar Instruments");
  writeText(writer, 0x05, "qctl-8840");
  writeText(writer, 0x06, "Revision C");
  writeText(writer, 0x07, "VQ02C47A9");
  writeQuadWord(writer, 0x08, 0x4D1877A390C6E25Bu); /* UUID */
  writeQuadWord(writer, 0x10, 0x91B2E45AF07C3D86u);
  writeByte(writer, 0x18, 6); /* woken by the power switch */
  writeText(writer, 0x19, "VQ-8840-C");
  writeText(writer, 0x1A, "Chassis controllers");
  endStructure(writer);
}

static void writeProcessorInformation(tSmbiosTableWriter* writer) {
  beginStructure(writer, 4, 0x30);
  writeText(writer, 0x04, "CPU 0");
  writeByte(writer, 0x05, 3);    /* central processor */
  writeByte(writer, 0x06, 0xFE); /* the family is in the word at 0x28 */
  writeText(writer, 0x07, "Tessarine Logic");
  writeQuadWord(writer, 0x08, 0x0000178B00030A2Au); /* the low four bits: stepping 10 */
  writeText(writer, 0x10, "Tessarine T6 Quad, 2800 MHz");
  writeByte(writer, 0x11, 0x80 | 10); /* 1.0 V */
  writeWord(writer, 0x12, 100);       /* external clock, MHz */
  writeWord(writer, 0x14, 4700);      /* maximum speed, MHz */
  writeWord(writer, 0x16, 2800);      /* current speed, MHz */
  writeByte(writer, 0x18, 0x41);      /* populated, enabled */
  writeByte(writer, 0x19, 6);         /* no upgrade socket */
  writeWord(writer, 0x1A, kNoHandle); /* caches are not described */
  writeWord(writer, 0x1C, kNoHandle);
  writeWord(writer, 0x1E, kNoHandle);
  writeByte(writer, 0x23, 4); /* cores, enabled cores, threads */
  writeByte(writer, 0x24, 4);
  writeByte(writer, 0x25, 8);
  writeWord(writer, 0x26, 0x00FC); /* 64-bit, multi-core, hardware threads and more */
  writeWord(writer, 0x28, 2);      /* unknown family */
  writeWord(writer, 0x2A, 4);
  writeWord(writer, 0x2C, 4);
  writeWord(writer, 0x2E, 8);
  endStructure(writer);
}

static void writeMemoryArray(tSmbiosTableWriter* writer) {
  beginStructure(writer, 16, 0x17);
  writeByte(writer, 0x04, 3);      /* on the system board */
  writeByte(writer, 0x05, 3);      /* system memory */
  writeByte(writer, 0x06, 3);      /* no error correction */
  writeWord(writer, 0x07, 0x0000); /* 128 GiB at most: 0x08000000 KiB */
  writeWord(writer, 0x09, 0x0800);
  writeWord(writer, 0x0B, kNoErrorHandle);
  writeWord(writer, 0x0D, kMemorySockets);
  endStructure(writer);
}

typedef struct tMemoryModule {
  uint16_t sizeMiB; /* 0: an empty socket */
  uint16_t speed;   /* MT/s */
  uint16_t configuredSpeed;
  const char* manufacturer;
  const char* serialNumber;
  const char* partNumber;
} tMemoryModule;

static const tMemoryModule kMemoryModules[kMemorySockets] = {
    {16384, 3200, 2933, "Orbulon Memory", "5A0C11D7", "OBM-16G32-A"},
    {0, 0, 0, NULL, NULL, NULL},
    {16384, 3200, 2933, "Orbulon Memory", "5A0C11E2", "OBM-16G32-A"},
    {8192, 2933, 2666, "Fennelite", "F3027B40", "FL8-2933S"},
};

static const char* const kSocketLocators[kMemorySockets] = {
    "Channel A socket 0", "Channel A socket 1", "Channel B socket 0", "Channel B socket 1"};

static void writeModule(tSmbiosTableWriter* writer, const tMemoryModule* module) {
  writeWord(writer, 0x08, 64); /* total and data width, bits */
  writeWord(writer, 0x0A, 64);
  writeWord(writer, 0x0C, module->sizeMiB);
  writeByte(writer, 0x12, 0x1A);   /* DDR4 */
  writeWord(writer, 0x13, 0x4080); /* synchronous, unbuffered */
  writeWord(writer, 0x15, module->speed);
  writeText(writer, 0x17, module->manufacturer);
  writeText(writer, 0x18, module->serialNumber);
  writeText(writer, 0x1A, module->partNumber);
  writeByte(writer, 0x1B, 1); /* rank */
  writeWord(writer, 0x20, module->configuredSpeed);
  writeWord(writer, 0x22, 1200); /* minimum, maximum and configured voltage, mV */
  writeWord(writer, 0x24, 1200);
  writeWord(writer, 0x26, 1200);
  writeByte(writer, 0x28, 3); /* DRAM */
}

static void writeMemoryDevice(tSmbiosTableWriter* writer, uint8_t socket) {
  const tMemoryModule* module = &kMemoryModules[socket];
  beginInstance(writer, 17, socket, 0x54);
  writeWord(writer, 0x04, handleOf(16, 0));
  writeWord(writer, 0x06, kNoErrorHandle);
  writeByte(writer, 0x0E, 0x0D); /* SODIMM */
  writeText(writer, 0x10, kSocketLocators[socket]);
  if (module->sizeMiB != 0) {
    writeModule(writer, module);
  } else {
    writeWord(writer, 0x08, 0xFFFF); /* widths and type unknown */
    writeWord(writer, 0x0A, 0xFFFF);
    writeByte(writer, 0x12, 2);
  }
  endStructure(writer);
}

/* ---- Structures of the manufacturer ---- */

static void writePlatform(tSmbiosTableWriter* writer) {
  beginStructure(writer, 0x96, 0x0E);
  writeByte(writer, 0x04, 8);      /* generation; 7 and later have an identifier */
  writeByte(writer, 0x05, 1);      /* the library rejects machines with a value above 2 */
  writeWord(writer, 0x06, 0x7A44); /* code */
  writeText(writer, 0x09, "QP-8840");
  writeText(writer, 0x0A, "Release 5");
  writeByte(writer, 0x0B, 3); /* option */
  writeByte(writer, 0x0C, 4); /* kind, used if the table has no bus structure */
  writeText(writer, 0x0D, "VQ8840-REV-C");
  endStructure(writer);

  beginStructure(writer, 0x9C, 0x05);
  writeText(writer, 0x04, "Standard cooling");
  endStructure(writer);
}

static void writeBus(tSmbiosTableWriter* writer) {
  beginStructure(writer, 0x97, 0x05);
  writeText(writer, 0x04, "7:12");
  endStructure(writer);
}

static void writeSlots(tSmbiosTableWriter* writer) {
  beginStructure(writer, 0x98, 0x0D);
  writeByte(writer, 0x04, 4); /* slots */
  writeText(writer, 0x05, "4:0");
  writeText(writer, 0x06, "4:1");
  writeText(writer, 0x07, "5:0");
  writeText(writer, 0x08, "11:0");
  writeByte(writer, 0x09, 2); /* slot numbers */
  writeByte(writer, 0x0A, 3);
  writeByte(writer, 0x0B, 5);
  writeByte(writer, 0x0C, 8);
  endStructure(writer);
}

static void writeLinkAndExpansion(tSmbiosTableWriter* writer) {
  beginStructure(writer, 0x99, 0x07);
  writeText(writer, 0x04, "Thunderbolt");
  writeText(writer, 0x05, "3:0");
  writeText(writer, 0x06, "Front panel, port 1");
  endStructure(writer);

  beginStructure(writer, 0x9A, 0x06);
  writeText(writer, 0x04, "PCI");
  writeText(writer, 0x05, "0:3");
  endStructure(writer);
}

static void writeBridges(tSmbiosTableWriter* writer) {
  beginStructure(writer, 0xA3, 0x11);
  writeByte(writer, 0x06, 5); /* bridges: location and members of each */
  writeText(writer, 0x07, "1:0");
  writeText(writer, 0x08, "1:2,3:4");
  writeText(writer, 0x09, "2:0");
  writeText(writer, 0x0A, "2:1,2:2,2:3");
  writeText(writer, 0x0B, "6:0");
  writeText(writer, 0x0C, "6:8");
  writeText(writer, 0x0D, "10:0");
  writeText(writer, 0x0E, "10:4,9:1");
  writeText(writer, 0x0F, "12:0");
  writeText(writer, 0x10, "12:1,12:2");
  endStructure(writer);
}

static void writeCapabilities(tSmbiosTableWriter* writer) {
  beginStructure(writer, 0x9D, 0x06);
  writeByte(writer, 0x04, 1); /* text settings can be written */
  writeByte(writer, 0x05, 0);
  endStructure(writer);

  beginStructure(writer, 0x9E, 0x06);
  writeByte(writer, 0x04, 1); /* firmware updates are accepted */
  writeByte(writer, 0x05, 1);
  endStructure(writer);

  beginStructure(writer, 0x9F, 0x06);
  writeByte(writer, 0x04, 5);
  writeByte(writer, 0x05, 9);
  endStructure(writer);

  beginStructure(writer, 0xB4, 0x08);
  writeByte(writer, 0x06, 0x15); /* revision base */
  writeByte(writer, 0x07, 0x20); /* revision: 0x10, 0x15, 0x20 or 0x30 */
  endStructure(writer);
}

/* Writes at most `capacity` bytes to `table`; returns the size of the table in bytes. */
static uint32_t writeDefaultTable(uint8_t* table, uint32_t capacity) {
  tSmbiosTableWriter writer = {.table = table, .capacity = capacity};
  writeBiosInformation(&writer);
  writeSystemInformation(&writer);
  writeProcessorInformation(&writer);
  writeMemoryArray(&writer);
  for (uint8_t socket = 0; socket < kMemorySockets; ++socket) {
    writeMemoryDevice(&writer, socket);
  }
  writePlatform(&writer);
  writeBus(&writer);
  writeSlots(&writer);
  writeLinkAndExpansion(&writer);
  writeBridges(&writer);
  writeCapabilities(&writer);
  beginStructure(&writer, kEndOfTable, 4);
  endStructure(&writer);
  return writer.size;
}

/* ---- Attributes ---- */

static const char kMartenVersion[] = "1.4.0f7";

typedef struct tDefaultAttribute {
  tSimulatorInterface interfaceKind;
  uint32_t attribute;
  bool writable;
  const void* value;
  uint32_t size;
} tDefaultAttribute;

static const uint32_t kProcessorSetting = 2;
static const uint32_t kDriverSetting1 = 5;
static const uint32_t kDriverSetting2 = 250;
static const uint32_t kMartenSetting = 1;
static const char kNoText[] = "";

static const tDefaultAttribute kDefaultAttributes[] = {
    {kSimulatorInterfaceController, 0x20013100, false, &kProcessorSetting,
     sizeof(kProcessorSetting)},
    {kSimulatorInterfaceController, 0x20044C00, true, &kDriverSetting1, sizeof(kDriverSetting1)},
    {kSimulatorInterfaceController, 0x20051400, true, &kDriverSetting2, sizeof(kDriverSetting2)},
    {kSimulatorInterfaceController, 0x18000000, true, kNoText, sizeof(kNoText)},
    {kSimulatorInterfaceMarten, 0x10000400, true, kMartenVersion, sizeof(kMartenVersion)},
    {kSimulatorInterfaceMarten, 0x20051400, true, &kMartenSetting, sizeof(kMartenSetting)},
    {kSimulatorInterfaceMarten, 0x18000000, true, kNoText, sizeof(kNoText)},
};

static void putAttribute(tAttributeStore* store, const tDefaultAttribute* source) {
  tSimulatorAttribute attribute;
  fillWithZeros(&attribute, sizeof(attribute));
  attribute.interfaceKind = source->interfaceKind;
  attribute.attribute = source->attribute;
  attribute.size = source->size;
  copyBytes(attribute.value, source->value, source->size);
  attributesPut(store, &attribute);
  attributesSetWritable(store, source->interfaceKind, source->attribute, source->writable);
}

static void putDefaultAttributes(tAttributeStore* store) {
  attributesClear(store);
  for (size_t i = 0; i < sizeof(kDefaultAttributes) / sizeof(kDefaultAttributes[0]); ++i) {
    putAttribute(store, &kDefaultAttributes[i]);
  }
}

/* ---- The machine ---- */

const tSimulatorPresence kDefaultPresence = {.controllers = 1, .martens = 1, .devicePaths = 1};

static const char kVersionText[] = "3.2";

void resetMachine(tModel* model) {
  handoverSetText(&model->handover, kVersionText, sizeof(kVersionText));
  model->handover.hasAnswer = false;
  model->handover.tableSize = writeDefaultTable(model->handover.table, SIMULATOR_TABLE_CAPACITY);
  putDefaultAttributes(&model->attributes);
  scriptsClear(&model->scripts);
  resetPending(model);
  abortAllNotifications(model);
  routerClear(&model->router);
  logClear(&model->log);
  firmwareClear(&model->firmware);
}
