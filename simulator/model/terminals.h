/* What the simulated trigger router can connect. */
#ifndef SIMULATOR_MODEL_TERMINALS_H
#define SIMULATOR_MODEL_TERMINALS_H

#include <stdbool.h>
#include <stdint.h>

/* Terminals are numbered from 1. */
bool isTerminal(uint32_t terminal);
/* Nothing is driven by a terminal that floats, and nothing drives it. */
bool canBeRouted(uint32_t source, uint32_t destination, bool inverts);
/* What a route adds to the cost of its seed. */
uint32_t costOf(uint32_t source, uint32_t destination, bool inverts);
/* The terminal that drives this one when no route does. */
uint32_t restingSource(uint32_t terminal, bool floating);

#endif
