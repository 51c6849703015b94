#include "simulator/model/defaulttable.h"

#include <stddef.h>

#include "simulator/model/smbiostablewriter.h"

enum {
  kMemorySockets = 4,
  kNoHandle = 0xFFFF,
  kNoErrorHandle = 0xFFFE,
  kEndOfTable = 127,
};

/* A unique handle: the structure's type and its number among the structures of that type. */
static uint16_t handleOf(uint8_t type, uint8_t instance) {
  return (uint16_t)((type << 8) | instance);
}

static void begin(tSmbiosTableWriter* writer, uint8_t type, uint8_t length) {
  writerBegin(writer, type, handleOf(type, 0), length);
}

static void writeBiosInformation(tSmbiosTableWriter* writer) {
  begin(writer, 0, 0x1A);
  writerText(writer, 0x04, "Vellamar Firmware Works");
  writerText(writer, 0x05, "2.1.0f3");
  writerWord(writer, 0x06, 0xF000); /* starting segment */
  writerText(writer, 0x08, "03/14/2023");
  writerByte(writer, 0x09, 0xFF);        /* 16 MiB or more: see the extended size */
  writerQuadWord(writer, 0x0A, 1u << 7); /* PCI is supported */
  writerByte(writer, 0x13, 1u << 3);     /* UEFI */
  writerByte(writer, 0x14, 2);           /* system firmware release 2.1 */
  writerByte(writer, 0x15, 1);
  writerWord(writer, 0x16, 0xFFFF); /* no embedded controller */
  writerWord(writer, 0x18, 16);     /* MiB */
  writerEnd(writer);
}

static void writeSystemInformation(tSmbiosTableWriter* writer) {
  begin(writer, 1, 27);
  writerText(writer, 0x04, "Vellamar Instruments");
  writerText(writer, 0x05, "qctl-8840");
  writerText(writer, 0x06, "Revision C");
  writerText(writer, 0x07, "VQ02C47A9");
  writerQuadWord(writer, 0x08, 0x4D1877A390C6E25Bu); /* UUID */
  writerQuadWord(writer, 0x10, 0x91B2E45AF07C3D86u);
  writerByte(writer, 0x18, 6); /* woken by the power switch */
  writerText(writer, 0x19, "VQ-8840-C");
  writerText(writer, 0x1A, "Chassis controllers");
  writerEnd(writer);
}

static void writeProcessorInformation(tSmbiosTableWriter* writer) {
  begin(writer, 4, 0x30);
  writerText(writer, 0x04, "CPU 0");
  writerByte(writer, 0x05, 3);    /* central processor */
  writerByte(writer, 0x06, 0xFE); /* the family is in the word at 0x28 */
  writerText(writer, 0x07, "Tessarine Logic");
  writerQuadWord(writer, 0x08, 0x0000178B00030A2Au); /* the low four bits: stepping 10 */
  writerText(writer, 0x10, "Tessarine T6 Quad, 2800 MHz");
  writerByte(writer, 0x11, 0x80 | 10); /* 1.0 V */
  writerWord(writer, 0x12, 100);       /* external clock, MHz */
  writerWord(writer, 0x14, 4700);      /* maximum speed, MHz */
  writerWord(writer, 0x16, 2800);      /* current speed, MHz */
  writerByte(writer, 0x18, 0x41);      /* populated, enabled */
  writerByte(writer, 0x19, 6);         /* no upgrade socket */
  writerWord(writer, 0x1A, kNoHandle); /* caches are not described */
  writerWord(writer, 0x1C, kNoHandle);
  writerWord(writer, 0x1E, kNoHandle);
  writerByte(writer, 0x23, 4); /* cores, enabled cores, threads */
  writerByte(writer, 0x24, 4);
  writerByte(writer, 0x25, 8);
  writerWord(writer, 0x26, 0x00FC); /* 64-bit, multi-core, hardware threads and more */
  writerWord(writer, 0x28, 2);      /* unknown family */
  writerWord(writer, 0x2A, 4);
  writerWord(writer, 0x2C, 4);
  writerWord(writer, 0x2E, 8);
  writerEnd(writer);
}

static void writeMemoryArray(tSmbiosTableWriter* writer) {
  begin(writer, 16, 0x17);
  writerByte(writer, 0x04, 3);      /* on the system board */
  writerByte(writer, 0x05, 3);      /* system memory */
  writerByte(writer, 0x06, 3);      /* no error correction */
  writerWord(writer, 0x07, 0x0000); /* 128 GiB at most: 0x08000000 KiB */
  writerWord(writer, 0x09, 0x0800);
  writerWord(writer, 0x0B, kNoErrorHandle);
  writerWord(writer, 0x0D, kMemorySockets);
  writerEnd(writer);
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
  writerWord(writer, 0x08, 64); /* total and data width, bits */
  writerWord(writer, 0x0A, 64);
  writerWord(writer, 0x0C, module->sizeMiB);
  writerByte(writer, 0x12, 0x1A);   /* DDR4 */
  writerWord(writer, 0x13, 0x4080); /* synchronous, unbuffered */
  writerWord(writer, 0x15, module->speed);
  writerText(writer, 0x17, module->manufacturer);
  writerText(writer, 0x18, module->serialNumber);
  writerText(writer, 0x1A, module->partNumber);
  writerByte(writer, 0x1B, 1); /* rank */
  writerWord(writer, 0x20, module->configuredSpeed);
  writerWord(writer, 0x22, 1200); /* minimum, maximum and configured voltage, mV */
  writerWord(writer, 0x24, 1200);
  writerWord(writer, 0x26, 1200);
  writerByte(writer, 0x28, 3); /* DRAM */
}

static void writeMemoryDevice(tSmbiosTableWriter* writer, uint8_t socket) {
  const tMemoryModule* module = &kMemoryModules[socket];
  writerBegin(writer, 17, handleOf(17, socket), 0x54);
  writerWord(writer, 0x04, handleOf(16, 0));
  writerWord(writer, 0x06, kNoErrorHandle);
  writerByte(writer, 0x0E, 0x0D); /* SODIMM */
  writerText(writer, 0x10, kSocketLocators[socket]);
  if (module->sizeMiB != 0) {
    writeModule(writer, module);
  } else {
    writerWord(writer, 0x08, 0xFFFF); /* widths and type unknown */
    writerWord(writer, 0x0A, 0xFFFF);
    writerByte(writer, 0x12, 2);
  }
  writerEnd(writer);
}

/* The manufacturer's own structures follow. */

static void writePlatform(tSmbiosTableWriter* writer) {
  begin(writer, 0x96, 0x0E);
  writerByte(writer, 0x04, 8);      /* generation; 7 and later have an identifier */
  writerByte(writer, 0x05, 1);      /* the library rejects machines with a value above 2 */
  writerWord(writer, 0x06, 0x7A44); /* code */
  writerText(writer, 0x09, "QP-8840");
  writerText(writer, 0x0A, "Release 5");
  writerByte(writer, 0x0B, 3); /* option */
  writerByte(writer, 0x0C, 4); /* kind, used if the table has no bus structure */
  writerText(writer, 0x0D, "VQ8840-REV-C");
  writerEnd(writer);

  begin(writer, 0x9C, 0x05);
  writerText(writer, 0x04, "Standard cooling");
  writerEnd(writer);
}

static void writeBus(tSmbiosTableWriter* writer) {
  begin(writer, 0x97, 0x05);
  writerText(writer, 0x04, "7:12");
  writerEnd(writer);
}

static void writeSlots(tSmbiosTableWriter* writer) {
  begin(writer, 0x98, 0x0D);
  writerByte(writer, 0x04, 4); /* slots */
  writerText(writer, 0x05, "4:0");
  writerText(writer, 0x06, "4:1");
  writerText(writer, 0x07, "5:0");
  writerText(writer, 0x08, "11:0");
  writerByte(writer, 0x09, 2); /* slot numbers */
  writerByte(writer, 0x0A, 3);
  writerByte(writer, 0x0B, 5);
  writerByte(writer, 0x0C, 8);
  writerEnd(writer);
}

static void writeLinkAndExpansion(tSmbiosTableWriter* writer) {
  begin(writer, 0x99, 0x07);
  writerText(writer, 0x04, "Thunderbolt");
  writerText(writer, 0x05, "3:0");
  writerText(writer, 0x06, "Front panel, port 1");
  writerEnd(writer);

  begin(writer, 0x9A, 0x06);
  writerText(writer, 0x04, "PCI");
  writerText(writer, 0x05, "0:3");
  writerEnd(writer);
}

static void writeBridges(tSmbiosTableWriter* writer) {
  begin(writer, 0xA3, 0x11);
  writerByte(writer, 0x06, 5); /* bridges: location and members of each */
  writerText(writer, 0x07, "1:0");
  writerText(writer, 0x08, "1:2,3:4");
  writerText(writer, 0x09, "2:0");
  writerText(writer, 0x0A, "2:1,2:2,2:3");
  writerText(writer, 0x0B, "6:0");
  writerText(writer, 0x0C, "6:8");
  writerText(writer, 0x0D, "10:0");
  writerText(writer, 0x0E, "10:4,9:1");
  writerText(writer, 0x0F, "12:0");
  writerText(writer, 0x10, "12:1,12:2");
  writerEnd(writer);
}

static void writeCapabilities(tSmbiosTableWriter* writer) {
  begin(writer, 0x9D, 0x06);
  writerByte(writer, 0x04, 1); /* text settings can be written */
  writerByte(writer, 0x05, 0);
  writerEnd(writer);

  begin(writer, 0x9E, 0x06);
  writerByte(writer, 0x04, 1); /* firmware updates are accepted */
  writerByte(writer, 0x05, 1);
  writerEnd(writer);

  begin(writer, 0x9F, 0x06);
  writerByte(writer, 0x04, 5);
  writerByte(writer, 0x05, 9);
  writerEnd(writer);

  begin(writer, 0xB4, 0x08);
  writerByte(writer, 0x06, 0x15); /* revision base */
  writerByte(writer, 0x07, 0x20); /* revision: 0x10, 0x15, 0x20 or 0x30 */
  writerEnd(writer);
}

uint32_t writeDefaultTable(uint8_t* table, uint32_t capacity) {
  tSmbiosTableWriter writer;
  writerStart(&writer, table, capacity);
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
  begin(&writer, kEndOfTable, 4);
  writerEnd(&writer);
  return writer.size;
}
