/* The SMBIOS structure table of the default machine. */
#ifndef SIMULATOR_MODEL_DEFAULTTABLE_H
#define SIMULATOR_MODEL_DEFAULTTABLE_H

#include <stdint.h>

/* Writes the table to `table`, which has room for `capacity` bytes; returns its size in bytes. */
uint32_t writeDefaultTable(uint8_t* table, uint32_t capacity);

#endif
