/* Writes an SMBIOS structure table, one structure at a time. */
#ifndef SIMULATOR_MODEL_SMBIOSTABLEWRITER_H
#define SIMULATOR_MODEL_SMBIOSTABLEWRITER_H

#include <stdint.h>

typedef struct tSmbiosTableWriter {
  uint8_t* table;
  uint32_t capacity;
  uint32_t size;           /* bytes written; bytes beyond the capacity are dropped */
  uint32_t structureStart; /* of the structure being written */
  uint8_t lastString;      /* number of its last string so far, 0 if none */
} tSmbiosTableWriter;

/* The caller owns the table, of `capacity` bytes. */
void writerStart(tSmbiosTableWriter* writer, uint8_t* table, uint32_t capacity);

/* Begins a structure with a zeroed formatted area of `length` bytes, including the header. End it
 * before beginning the next. */
void writerBegin(tSmbiosTableWriter* writer, uint8_t type, uint16_t handle, uint8_t length);
void writerEnd(tSmbiosTableWriter* writer);

/* Write a field in the formatted area of the current structure. */
void writerByte(tSmbiosTableWriter* writer, uint8_t offset, uint8_t value);
void writerWord(tSmbiosTableWriter* writer, uint8_t offset, uint16_t value);
void writerQuadWord(tSmbiosTableWriter* writer, uint8_t offset, uint64_t value);
/* Appends the text to the structure's strings and writes its number to the field. */
void writerText(tSmbiosTableWriter* writer, uint8_t offset, const char* text);

#endif
