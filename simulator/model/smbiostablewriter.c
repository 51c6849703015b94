#include "simulator/model/smbiostablewriter.h"

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

void writerStart(tSmbiosTableWriter* writer, uint8_t* table, uint32_t capacity) {
  writer->table = table;
  writer->capacity = capacity;
  writer->size = 0;
  writer->structureStart = 0;
  writer->lastString = 0;
}

void writerBegin(tSmbiosTableWriter* writer, uint8_t type, uint16_t handle, uint8_t length) {
  writer->structureStart = writer->size;
  writer->lastString = 0;
  for (uint32_t i = 0; i < length; ++i) {
    append(writer, 0);
  }
  writerByte(writer, kTypeOffset, type);
  writerByte(writer, kLengthOffset, length);
  writerWord(writer, kHandleOffset, handle);
}

void writerEnd(tSmbiosTableWriter* writer) {
  if (writer->lastString == 0) {
    append(writer, 0);
  }
  append(writer, 0);
}

void writerByte(tSmbiosTableWriter* writer, uint8_t offset, uint8_t value) {
  const uint32_t position = writer->structureStart + offset;
  if (position < writer->size) {
    writer->table[position] = value;
  }
}

void writerWord(tSmbiosTableWriter* writer, uint8_t offset, uint16_t value) {
  writerByte(writer, offset, (uint8_t)value);
  writerByte(writer, (uint8_t)(offset + 1), (uint8_t)(value >> 8));
}

void writerQuadWord(tSmbiosTableWriter* writer, uint8_t offset, uint64_t value) {
  for (uint8_t i = 0; i < sizeof(value); ++i) {
    writerByte(writer, (uint8_t)(offset + i), (uint8_t)(value >> (8 * i)));
  }
}

void writerText(tSmbiosTableWriter* writer, uint8_t offset, const char* text) {
  ++writer->lastString;
  writerByte(writer, offset, writer->lastString);
  for (; *text != '\0'; ++text) {
    append(writer, (uint8_t)*text);
  }
  append(writer, 0);
}
