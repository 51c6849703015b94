#include "simulator/model/terminals.h"

#include <stddef.h>

enum {
  kFloat = 1,
  kTriggerConnector = 2,
  kWatchdog = 3,
  kFirstLine = 4,
  kLastLine = 11
};

/* The watchdog accepts one polarity only; every other terminal has an inverter at its input. */
typedef struct tTerminal {
  bool isSource;
  bool isDestination;
  bool canBeInverted;
  uint32_t restingSource;
} tTerminal;

static const tTerminal kOwnTerminals[] = {
    [kFloat] = {false, false, false, kFloat},
    [kTriggerConnector] = {true, true, true, kWatchdog},
    [kWatchdog] = {true, true, false, kFloat},
};
static const tTerminal kLine = {true, true, true, kFloat};

static const tTerminal* terminalOf(uint32_t terminal) {
  if (terminal >= kFirstLine && terminal <= kLastLine) {
    return &kLine;
  }
  return terminal >= kFloat && terminal < kFirstLine ? &kOwnTerminals[terminal] : NULL;
}

bool isTerminal(uint32_t terminal) {
  return terminalOf(terminal) != NULL;
}

bool canBeRouted(uint32_t source, uint32_t destination, bool inverts) {
  const tTerminal* from = terminalOf(source);
  const tTerminal* to = terminalOf(destination);
  return from != NULL && to != NULL && from->isSource && to->isDestination &&
         source != destination && (!inverts || to->canBeInverted);
}

uint32_t costOf(uint32_t source, uint32_t destination, bool inverts) {
  const bool crossesLines = source >= kFirstLine && destination >= kFirstLine;
  return (crossesLines ? 2u : 1u) + (inverts ? 1u : 0u);
}

uint32_t restingSource(uint32_t terminal, bool floating) {
  return floating ? (uint32_t)kFloat : terminalOf(terminal)->restingSource;
}
