#include "simulator/callermemory/callerevent.h"
#include "simulator/callermemory/callermemory.h"
#include "simulator/driver/driver.h"

/* Static, so that DriverEntry cannot fail for lack of memory. */
static tModel theMachine;
static tSimulatorPresence thePresence;
static tPresenceListener* theListener;
static FAST_MUTEX theLock;

static bool readCaller(void* context, uint64_t process, uint64_t address, void* destination,
                       uint32_t size) {
  (void)context;
  return callerMemoryRead(process, address, destination, size) != 0;
}

static bool writeCaller(void* context, uint64_t process, uint64_t address, const void* source,
                        uint32_t size) {
  (void)context;
  return callerMemoryWrite(process, address, source, size) != 0;
}

static bool signalEvent(void* context, uint64_t process, uint64_t event) {
  (void)context;
  return callerEventSignal(process, event) != 0;
}

static void presenceChanged(void* context, const tSimulatorPresence* presence) {
  (void)context;
  thePresence = *presence;
  theListener(presence);
}

void initialiseMachine(tPresenceListener* listener) {
  static const tModelHost kHost = {NULL,        readCaller,         writeCaller,
                                   signalEvent, completePendingIrp, presenceChanged};
  theListener = listener;
  ExInitializeFastMutex(&theLock);
  modelInitialise(&theMachine, &kHost);
}

void lockMachine(void) {
  ExAcquireFastMutex(&theLock);
}

void unlockMachine(void) {
  ExReleaseFastMutex(&theLock);
}

tModel* lockedMachine(void) {
  return &theMachine;
}

const tSimulatorPresence* lockedPresence(void) {
  return &thePresence;
}
