/* The terminals of the simulated trigger router and the connections it can make. */
#ifndef SIMULATOR_MODEL_TERMINALS_H
#define SIMULATOR_MODEL_TERMINALS_H

#include <stdbool.h>
#include <stdint.h>

/* Terminals are numbered from 1. */
bool isTerminal(uint32_t terminal);
/* False for the floating terminal, which is neither source nor destination. */
bool canBeRouted(uint32_t source, uint32_t destination, bool inverts);
/* The cost that a route adds to the cost of its seed. */
uint32_t costOf(uint32_t source, uint32_t destination, bool inverts);
/* The terminal that drives this one without a route. */
uint32_t restingSource(uint32_t terminal, bool floating);

#endif
