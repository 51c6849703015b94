/* Writes an SMBIOS structure table structure by structure. */
#ifndef SIMULATOR_MODEL_SMBIOSTABLEWRITER_H
#define SIMULATOR_MODEL_SMBIOSTABLEWRITER_H

#include <stdint.h>

typedef struct tSmbiosTableWriter {
  uint8_t* table;
  uint32_t capacity;
  uint32_t size;           /* bytes written; what exceeds the capacity is dropped */
  uint32_t structureStart; /* of the structure being written */
  uint8_t lastString;      /* number of its last string so far, 0 for none */
} tSmbiosTableWriter;

/* The table is `capacity` bytes of the caller's, and stays the caller's. */
void writerStart(tSmbiosTableWriter* writer, uint8_t* table, uint32_t capacity);

/* Begins a structure whose formatted area, header included, has `length` bytes, all zero so far.
 * Each structure is ended before the next is begun. */
void writerBegin(tSmbiosTableWriter* writer, uint8_t type, uint16_t handle, uint8_t length);
void writerEnd(tSmbiosTableWriter* writer);

/* Fill a field of the formatted area of the structure being written. */
void writerByte(tSmbiosTableWriter* writer, uint8_t offset, uint8_t value);
void writerWord(tSmbiosTableWriter* writer, uint8_t offset, uint16_t value);
void writerQuadWord(tSmbiosTableWriter* writer, uint8_t offset, uint64_t value);
/* Appends the text to the structure's strings and puts its number into the field. */
void writerText(tSmbiosTableWriter* writer, uint8_t offset, const char* text);

#endif
