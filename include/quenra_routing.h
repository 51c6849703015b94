/* Trigger routes of a PXI controller, for C11 and C++: the interface by which a routing service
 * asks the controller for routes between its trigger terminals (the PXI trigger lines, the trigger
 * connector, the watchdog), reserves and programs them, and tears them down.
 *
 * Conventions:
 *
 *  1. Status. A function that can fail has a status record as its last argument, unless told
 *     otherwise. It does nothing when the record holds an error (a negative code) already, and then
 *     looks at no other argument. Else it reports by the merge rule: the first error is kept; an
 *     error replaces a warning (a positive code); a warning replaces nothing but success (0).
 *     Without a record, a null pointer or one that is not aligned, nothing is done.
 *  2. Results. A function that fails returns 0, false or null.
 *  3. Handles. A session and its terminal iterators are the client's from their creation until it
 *     destroys them. A handle that is null, destroyed or none of the library gives
 *     QUENRA_STATUS_INVALID_PARAMETER where there is a status, and is ignored elsewhere. A handle
 *     that is destroyed can come back for another session, and a session that is destroyed while
 *     another thread uses it is beyond what the library can tell.
 *  4. Threads. A session and its iterators are used by one thread at a time; different sessions are
 *     independent. The demotion callback runs on a thread of the session.
 *  5. Texts. Arguments are terminated by a NUL. JSON texts are UTF-8. Answers come through the
 *     client's reallocation function, see zoroco_Reallocate. An output argument that is not aligned
 *     counts as null.
 *  6. Order of calls:
 *
 *       getAPIVersion
 *       createSession or createSessionWithDemotionFunc
 *         getHandledConstraints
 *         getAllTerminals, then TerminalIterator_isEnd / _get...Attribute / _next, and _destroy
 *         for each route:
 *           calculateRoute, reserveRoute, programRoute, (use)
 *           unprogramRoute, unreserveRoute, destroyRoute
 *           with beginExceptionalRouteDestruction first when a failure is the reason;
 *           getRouteTerminalPath at any time after calculateRoute
 *       destroySession
 *
 *     The driver holds the routes and sees to the order; the library keeps no record of them.
 *     Routes that a client leaves behind stay in the driver's hands.
 *  7. Codes. A code from the driver is passed on unchanged, so codes beyond those listed can
 *     appear; a warning from the driver is reported, and the work is done. Every function with a
 *     status can report QUENRA_STATUS_MEMORY_FULL (memory is short), and
 *     QUENRA_STATUS_INTERNAL_ERROR (a fault of the library).
 *  8. If the library could not initialise when it was loaded, every function with a status reports
 *     the reason and does nothing else. A static destructor of another module may still call
 *     functions while the process ends, after the library was unloaded: those with a status report
 *     QUENRA_STATUS_NOT_READY, the others work.
 *  9. Unloading the library with an open session leaves it mapped until the session's thread ends.
 * 10. Exceptions. No function throws, and the client's functions must not throw either. When one
 *     does, the library reports QUENRA_STATUS_INTERNAL_ERROR, by the merge rule, where the call has
 *     a status: the reallocation function of a session ends its call, that of a status leaves the
 *     code without a description and does not replace an error. Exceptions of a demotion callback,
 *     and of the release of its status, are dropped. */
#ifndef QUENRA_ROUTING_H
#define QUENRA_ROUTING_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include "quenra_status.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Status ---- */

/* The outcome of a chain of calls. Start with zoerr_Status_initial(), end with
 * zoerr_Status_release().
 *
 * description: what is known of a failure, as one JSON object: where it arose ("file", "line",
 *              "component"), the name of its code ("error_constant") and for a bad request what is
 *              wrong with it ("zoroco_debug") and its text ("json"). Null when there is none. It is
 *              the client's: the library only asks the client's own `reallocate` for it.
 * capacity:    the size of the description's buffer in bytes. Behind the text and its NUL the
 *              buffer is zero, but for its last byte, which is 'J'.
 * reallocate:  makes the buffer at least newCapacity bytes, keeping the text, or "{}" where there
 *              was none, and the form told above; 0 frees it. False, with nothing changed, when it
 *              cannot. May be null: then codes arrive without descriptions. */
typedef struct zoerr_Status {
  int32_t code;
  uint32_t capacity;
  bool (*reallocate)(struct zoerr_Status* status, uint32_t newCapacity);
  char* description;
} zoerr_Status;

/* A reallocation function on the C heap, for clients that have none of their own. */
static inline bool zoerr_Status_reallocate(zoerr_Status* status, uint32_t newCapacity) {
  if (newCapacity == 0) {
    free(status->description);
    status->description = NULL;
    status->capacity = 0;
    return true;
  }
  if (newCapacity <= status->capacity) {
    return true;
  }
  if (newCapacity > UINT32_C(0x7FFFFFFF)) {
    return false;
  }
  uint32_t size = 512;
  while (size < newCapacity) {
    size *= 2;
  }
#ifdef __cplusplus
  char* const buffer = static_cast<char*>(calloc(size, 1));
#else
  char* const buffer = calloc(size, 1);
#endif
  if (buffer == NULL) {
    return false;
  }
  if (status->description == NULL) {
    memcpy(buffer, "{}", 2);
  } else {
    memcpy(buffer, status->description, strlen(status->description));
  }
  buffer[size - 1] = 'J';
  free(status->description);
  status->description = buffer;
  status->capacity = size;
  return true;
}

/* A fresh record: success, no description, descriptions on the C heap. */
static inline zoerr_Status zoerr_Status_initial(void) {
  const zoerr_Status status = {0, 0, zoerr_Status_reallocate, NULL};
  return status;
}

/* Frees the description. The code stays. May be called more than once. */
static inline void zoerr_Status_release(zoerr_Status* status) {
  if (status->description != NULL && status->reallocate != NULL) {
    status->reallocate(status, 0);
  }
}

/* ---- Types ---- */

/* A session with one routing device. */
typedef struct zoroco_RoutingAdaptorSession zoroco_RoutingAdaptorSession;

/* A walk over the terminals of a session. */
typedef struct zoroco_TerminalIterator zoroco_TerminalIterator;

/* Gives the library room for an answer.
 *
 * current:                  what the output argument points to, null or the buffer of an earlier
 *                           answer; the function may free it or make it larger.
 * required, requiredAgain:  the bytes that are needed, the NUL included; twice the same number.
 * text:                     the answer. The function need not copy it, the library does.
 *
 * Returns the buffer, which the library stores in the output argument, or null when it has none:
 * the output argument then stays as it was, and the call fails with QUENRA_STATUS_MEMORY_FULL.
 * Called once for an answer, in the call that answers, and never when there is no answer. A
 * call that has an answer and no output argument, a null pointer, fails with
 * QUENRA_STATUS_INVALID_PARAMETER. */
typedef char* (*zoroco_Reallocate)(char* current, size_t required, const char* text,
                                   size_t requiredAgain);

/* Told that the driver has demoted a route.
 *
 * context:       as given when the session was created.
 * reason:        101.
 * status:        a fresh record; what the callback leaves in it is released after the call.
 * notification:  the session's notification, to tell sessions apart. It is no address to follow.
 *
 * Runs on a thread of the session, at the same time as the client's calls. It must not destroy its
 * session, and should not take long: destroySession waits for it. */
typedef void (*zoroco_DemotionCallback)(void* context, int32_t reason, zoerr_Status* status,
                                        void* notification);

/* ---- Sessions ---- */

/* Returns the version of this interface: 3. */
uint32_t zoroco_ra_quenra_getAPIVersion(void);

/* As createSessionWithDemotionFunc without a callback: demotions are not told. */
zoroco_RoutingAdaptorSession* zoroco_ra_quenra_createSession(const char* deviceInterfaceName,
                                                             zoroco_Reallocate reallocate,
                                                             zoerr_Status* status);

/* Opens a session with the routing device.
 *
 * deviceInterfaceName: the path of the device, as QUENRA_ATTRIBUTE_DEVICE_PATH tells it; at most
 *                      256 characters. A longer one ends the process: no such device can exist.
 * reallocate:          gives room for the answers of this session; kept until it is destroyed.
 *                      Null: every answer fails with QUENRA_STATUS_MEMORY_FULL.
 * callback:            told of demotions from then on; may be null.
 * context:             for the callback.
 *
 * Reports
 *   QUENRA_STATUS_INVALID_PARAMETER  the name is null
 *   QUENRA_STATUS_BAD_SELECTOR       the device has terminals that the library does not know
 *   QUENRA_STATUS_NOT_FOUND, QUENRA_STATUS_ACCESS_DENIED, ...  the device cannot be opened, or
 *                                    refuses notifications */
zoroco_RoutingAdaptorSession* zoroco_ra_quenra_createSessionWithDemotionFunc(
    const char* deviceInterfaceName, zoroco_Reallocate reallocate, zoroco_DemotionCallback callback,
    void* context, zoerr_Status* status);

/* Closes a session. Waits for a callback that is running; none runs afterwards. Destroy the
 * session's iterators before. Null is ignored. */
void zoroco_ra_quenra_destroySession(zoroco_RoutingAdaptorSession* session);

/* Answers the names of the constraints that requests may have: ["inversionNeeded"]. */
void zoroco_ra_quenra_getHandledConstraints(zoroco_RoutingAdaptorSession* session, char** output,
                                            zoerr_Status* status);

/* ---- Routes ---- */

/* Calculates routes from any of several seeds to each of several destinations.
 *
 * seeds:         JSON array of where a route may start, each an object with
 *                  "terminal"        name of the terminal
 *                  "srcDeviceToken"  optional text, a token of the device that drives the terminal
 *                  "cost"            number from 0 to 4294967295, the cost of starting there; a
 *                                    fraction is cut off
 *                  "constraints"     object; "inversionNeeded": true asks for an inverted signal
 * destinations:  JSON array of terminal names.
 * modifiers:     JSON object; its members are optional:
 *                  "required", "optional"  objects with "inversionNeeded" and
 *                                          "calculateIgnoresReservations", true or false
 * output:        receives a JSON array with an object for each route:
 *                  {"ticket":7,"destination":"PXI_Trig0","cost":1,"indexOfStartingSeed":0,
 *                   "constraints":{"inversionNeeded":true}}
 *                The ticket names the route in all calls that follow. "constraints" is empty when
 *                the route does not invert. Without a route the array is empty.
 *
 * Members that are not named here are ignored; of several members with one name the last counts.
 * The driver refuses the name of a terminal that does not exist. Documents may be 64 levels deep and
 * 4 MiB large.
 *
 * Returns the value that the driver's calculation gives.
 *
 * Reports
 *   QUENRA_STATUS_INVALID_PARAMETER  a document is not as told; the description's "zoroco_debug"
 *                                    tells what is wrong. Nothing was sent to the driver. Also:
 *                                    output is null.
 *   QUENRA_STATUS_MEMORY_FULL        also: the reallocation function gave no room. The driver keeps
 *                                    the routes it has calculated. */
uint32_t zoroco_ra_quenra_calculateRoute(zoroco_RoutingAdaptorSession* session, const char* seeds,
                                         const char* destinations, const char* modifiers,
                                         char** output, zoerr_Status* status);

/* Reserves what a route needs.
 *
 * output: on QUENRA_STATUS_ROUTE_CONFLICT receives a JSON array of the routes in its way,
 *         {"sessionId":4,"ticket":7} each; else it is not touched.
 *
 * Reports
 *   QUENRA_STATUS_ROUTE_CONFLICT  other routes hold what the route needs
 *   QUENRA_STATUS_MEMORY_FULL     also: the driver reports more than 1024 of them */
void zoroco_ra_quenra_reserveRoute(zoroco_RoutingAdaptorSession* session, uint32_t ticket,
                                   char** output, zoerr_Status* status);

/* Makes a reserved route in the hardware. */
void zoroco_ra_quenra_programRoute(zoroco_RoutingAdaptorSession* session, uint32_t ticket,
                                   zoerr_Status* status);

/* The steps of taking a route down. They report nothing, so that taking down always runs to its
 * end: what the driver refuses is dropped. The trailing words are reserved: pass 0. */
void zoroco_ra_quenra_unprogramRoute(zoroco_RoutingAdaptorSession* session, uint32_t ticket,
                                     uint64_t reserved, uint64_t reservedToo);
void zoroco_ra_quenra_unreserveRoute(zoroco_RoutingAdaptorSession* session, uint32_t ticket,
                                     uint64_t reserved, uint64_t reservedToo);
void zoroco_ra_quenra_destroyRoute(zoroco_RoutingAdaptorSession* session, uint32_t ticket,
                                   uint64_t reserved, uint64_t reservedToo);

/* Announces that a route is taken down after a failure. Needs nothing of this controller. */
void zoroco_ra_quenra_beginExceptionalRouteDestruction(zoroco_RoutingAdaptorSession* session,
                                                       uint32_t ticket, uint64_t reserved,
                                                       uint64_t reservedToo);

/* Answers the names of the terminals along a route as a JSON array; a terminal that the library
 * does not know is an empty text.
 *
 * Reports
 *   QUENRA_STATUS_MEMORY_FULL  also: the driver reports more than 1024 terminals */
void zoroco_ra_quenra_getRouteTerminalPath(zoroco_RoutingAdaptorSession* session, uint32_t ticket,
                                           char** output, zoerr_Status* status);

/* ---- Terminals ---- */

/* Begins a walk over all terminals, in an order that stays. The status is not the last argument;
 * reserved: pass 0. */
zoroco_TerminalIterator* zoroco_ra_quenra_getAllTerminals(zoroco_RoutingAdaptorSession* session,
                                                          zoerr_Status* status, uint64_t reserved);

/* Goes on to the next terminal. */
void zoroco_ra_quenra_TerminalIterator_next(zoroco_TerminalIterator* iterator,
                                            zoerr_Status* status);

/* True when no terminal is left; also for a null iterator. */
bool zoroco_ra_quenra_TerminalIterator_isEnd(zoroco_TerminalIterator* iterator);

/* An attribute of the current terminal. Names are told from one another by case.
 *
 *   text   "name"           unique
 *          "visibility"     "public" or "private", which are not for users
 *          "busType"        "PXI_Trig" for a trigger line, else null
 *          "busName"        null
 *          "canonicalName"
 *   bool   "isExternal"     it leaves the controller
 *          "isOwned"        it is the controller's own
 *          "isAlias", "isMaskedOut"
 *   u32    "id"             unique, from 1
 *          "busLine"        number of the trigger line, 4294967295 for none
 *
 * A text is the library's: it stays as long as the library is loaded.
 *
 * Reports
 *   QUENRA_STATUS_BAD_SELECTOR       no attribute of that type has the name
 *   QUENRA_STATUS_INVALID_PARAMETER  the walk is at its end */
const char* zoroco_ra_quenra_TerminalIterator_getStringAttribute(zoroco_TerminalIterator* iterator,
                                                                 const char* name,
                                                                 zoerr_Status* status);
bool zoroco_ra_quenra_TerminalIterator_getBoolAttribute(zoroco_TerminalIterator* iterator,
                                                        const char* name, zoerr_Status* status);
uint32_t zoroco_ra_quenra_TerminalIterator_getU32Attribute(zoroco_TerminalIterator* iterator,
                                                           const char* name, zoerr_Status* status);

/* Returns the current terminal to a state of rest.
 *
 * mode: "default" or "floating".
 *
 * Reports
 *   QUENRA_STATUS_BAD_SELECTOR       another mode; the driver was not asked
 *   QUENRA_STATUS_INVALID_PARAMETER  the walk is at its end; the driver was not asked */
void zoroco_ra_quenra_TerminalIterator_resetTerminal(zoroco_TerminalIterator* iterator,
                                                     const char* mode, zoerr_Status* status);

/* Tells what resetTerminal would do, without doing it: returns the id of the terminal that the
 * current one would be driven from. `session` is the one that the iterator belongs to. */
uint32_t zoroco_ra_quenra_TerminalIterator_calculateResetTerminal(
    zoroco_RoutingAdaptorSession* session, zoroco_TerminalIterator* iterator, const char* mode,
    zoerr_Status* status);

/* Ends a walk. Null is ignored. */
void zoroco_ra_quenra_TerminalIterator_destroy(zoroco_TerminalIterator* iterator);

#ifdef __cplusplus
}
#endif

#endif
