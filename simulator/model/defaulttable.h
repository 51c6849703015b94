/* The SMBIOS structure table of the default machine. */
#ifndef SIMULATOR_MODEL_DEFAULTTABLE_H
#define SIMULATOR_MODEL_DEFAULTTABLE_H

#include <stdint.h>

/* Writes at most `capacity` bytes to `table`; returns the size of the table in bytes. */
uint32_t writeDefaultTable(uint8_t* table, uint32_t capacity);

#endif
