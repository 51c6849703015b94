/* Trigger routes of a PXI controller, for C11 and C++: the interface through which a routing service
 * calculates routes between the trigger terminals of the controller (the PXI trigger lines, the
 * trigger connector, the watchdog), reserves and programs them, and tears them down.
 *
 * Conventions:
 *
 *  1. Status. A function that can fail has a status record as its last argument, unless documented
 *     otherwise. When the record holds an error (a negative code), the function does nothing and
 *     reads no other argument. Otherwise it reports by the merge rule: the first error is kept; an
 *     error replaces a warning (a positive code); a warning replaces only success (0). Without a
 *     record, with a null or misaligned pointer, the function does nothing.
 *  2. Results. A function that fails returns 0, false or null. A loop over the terminals must check the
 *     status as well as isEnd: while the record holds an error, next does nothing and isEnd, which has
 *     no status, stays false.
 *  3. Handles. The client owns a session and its terminal iterators from their creation until it
 *     destroys them. A null, destroyed or foreign handle fails with QUENRA_STATUS_INVALID_PARAMETER
 *     where there is a status, and is ignored elsewhere. The library does not use the
 *     value of a destroyed handle for another object before 256 more sessions and iterators have been
 *     destroyed. It cannot detect that one thread destroys a session that another thread uses.
 *  4. Threads. A session and its iterators are used by one thread at a time; different sessions are
 *     independent. The demotion callback runs on a thread of the session.
 *  5. Texts. Arguments end with a NUL. JSON texts are UTF-8; the name of a device is text of the
 *     process's code page, as QUENRA_ATTRIBUTE_DEVICE_PATH returns it. The library writes answers into
 *     buffers of the client's reallocation function, see zoroco_Reallocate. A misaligned output
 *     argument counts as null.
 *  6. Order of calls:
 *
 *       getAPIVersion
 *       createSession or createSessionWithDemotionFunc
 *         getHandledConstraints
 *         getAllTerminals, then TerminalIterator_isEnd / _get...Attribute / _next, and _destroy
 *         for each route:
 *           calculateRoute, reserveRoute, programRoute, (use)
 *           unprogramRoute, unreserveRoute, destroyRoute,
 *           after a failure preceded by beginExceptionalRouteDestruction;
 *           getRouteTerminalPath at any time after calculateRoute
 *       destroySession
 *
 *     The driver holds the routes and enforces the order; the library keeps no record of them.
 *     Routes that a client does not destroy remain with the driver.
 *  7. Codes. The library reports codes of the driver unchanged, so that codes other than those
 *     listed can appear; with a warning of the driver the operation succeeds. Every function with a
 *     status can report QUENRA_STATUS_MEMORY_FULL (out of memory) and QUENRA_STATUS_INTERNAL_ERROR
 *     (a defect of the library, or rule 10).
 *  8. Start-up and unloading. If the library could not initialise when it was loaded, every function
 *     with a status reports the reason and does nothing else. A static destructor of another module
 *     may still call functions while the process ends, after the library was unloaded: those with a
 *     status report QUENRA_STATUS_NOT_READY, the others work.
 *     Create and destroy no session in DllMain, or in a constructor or destructor of a library's static
 *     object: a session starts a thread and waits for its end, and threads start and end under the same
 *     lock of the loader. The call would never return.
 *  9. FreeLibrary with an open session leaves the library mapped until the session is destroyed: the
 *     thread of a session holds a reference to it. Destroy all sessions first nevertheless. A client
 *     that no longer has the functions cannot destroy a session, and its callback must stay loaded as
 *     long as the session exists: a library that supplied the callback and is unloaded earlier leaves
 *     the session calling unmapped code.
 * 10. Exceptions. No function throws, and the client's functions must not throw either. If one does,
 *     a call with a status reports QUENRA_STATUS_INTERNAL_ERROR by the merge rule. An exception of a
 *     session's reallocation function ends the call; an exception of a status's reallocation function
 *     leaves the code without a description. The library drops exceptions of a demotion callback, and
 *     of the release of the callback's status. */
#ifndef QUENRA_ROUTING_H
#define QUENRA_ROUTING_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include "quenra_annotations.h"
#include "quenra_status.h"

/* ---- Constants ---- */

/* The result of zoroco_ra_quenra_getAPIVersion. */
#define ZOROCO_API_VERSION 3

/* The longest device name of a session, in bytes without its NUL. */
#define ZOROCO_MAX_DEVICE_NAME_LENGTH 256
/* The largest document of a request, in bytes without its NUL, and its deepest nesting. */
#define ZOROCO_MAX_DOCUMENT_SIZE (4 * 1024 * 1024)
#define ZOROCO_MAX_DOCUMENT_DEPTH 64
/* The most conflicts of a reservation, and the most terminals of a path. */
#define ZOROCO_MAX_CONFLICTS 1024
#define ZOROCO_MAX_PATH_TERMINALS 1024

/* The reason that a demotion callback receives. */
#define ZOROCO_REASON_DEMOTED 101

/* Attributes of a terminal. */
#define ZOROCO_TERMINAL_NAME "name"
#define ZOROCO_TERMINAL_VISIBILITY "visibility"
#define ZOROCO_TERMINAL_BUS_TYPE "busType"
#define ZOROCO_TERMINAL_BUS_NAME "busName"
#define ZOROCO_TERMINAL_CANONICAL_NAME "canonicalName"
#define ZOROCO_TERMINAL_IS_EXTERNAL "isExternal"
#define ZOROCO_TERMINAL_IS_OWNED "isOwned"
#define ZOROCO_TERMINAL_IS_ALIAS "isAlias"
#define ZOROCO_TERMINAL_IS_MASKED_OUT "isMaskedOut"
#define ZOROCO_TERMINAL_ID "id"
#define ZOROCO_TERMINAL_BUS_LINE "busLine"

/* Values of attributes of a terminal. */
#define ZOROCO_VISIBILITY_PUBLIC "public"
#define ZOROCO_VISIBILITY_PRIVATE "private"
#define ZOROCO_BUS_TYPE_PXI_TRIGGER "PXI_Trig"
#define ZOROCO_NO_BUS_LINE UINT32_C(0xFFFFFFFF)

/* Modes of a terminal's reset. */
#define ZOROCO_RESET_DEFAULT "default"
#define ZOROCO_RESET_FLOATING "floating"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Status ---- */

/* The outcome of a chain of calls. Start with zoerr_Status_initial(), end with
 * zoerr_Status_release().
 *
 * description: the particulars of a failure, as one JSON object; null if there are none. The client owns
 *              it: the library changes its size only through `reallocate`. Members, where they apply:
 *                "file", "line", "component"  the location of the failure
 *                "error_constant"             the name of the code; codes of the driver have none
 *                "zoark_debug"                an unknown topography
 *              and for an invalid request:
 *                "zoroco_debug"               the fault
 *                "json"                       the document, byte for byte: the description is valid UTF-8
 *                                             only if the document is
 *                "constraint", "expected_type", "actual_type"  a constraint of the wrong type
 *                "offset"                     the position of the fault in the document, in bytes
 * capacity:    the size of the description's buffer in bytes. After the text and its NUL the buffer
 *              is zero, except for its last byte, which is 'J'.
 * reallocate:  makes the buffer at least newCapacity bytes, keeping the text, or "{}" for a new
 *              buffer, and the form above; 0 frees it. Returns false, with nothing changed, when it
 *              cannot. May be null: then codes are reported without descriptions. */
typedef struct zoerr_Status {
  int32_t code;
  uint32_t capacity;
  bool (*reallocate)(struct zoerr_Status* status, uint32_t newCapacity);
  char* description;
} zoerr_Status;

QUENRA_STATIC_ASSERT(sizeof(zoerr_Status) == 24 && offsetof(zoerr_Status, code) == 0 &&
                         offsetof(zoerr_Status, capacity) == 4 &&
                         offsetof(zoerr_Status, reallocate) == 8 &&
                         offsetof(zoerr_Status, description) == 16,
                     "the status record is part of the interface of a 64-bit library");

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

/* Supplies the buffer of an answer.
 *
 * current:                  the value of the output argument, which the client initialises: null, or a
 *                           buffer that the function may free or enlarge, such as that of an earlier
 *                           answer.
 * required, requiredAgain:  the size that the answer needs in bytes, with its NUL; the same number
 *                           twice.
 * text:                     the answer, valid during the call. The function need not copy it; the
 *                           library does.
 *
 * Returns the buffer, which the library stores in the output argument, or null when it has none: the
 * output argument then keeps its value, so that `current` must still be valid, and the call fails with
 * QUENRA_STATUS_MEMORY_FULL. The function must not throw and must not destroy the session or use it. The
 * library calls it once for each answer, during the call that answers. An answer without an output
 * argument (a null pointer) fails with QUENRA_STATUS_INVALID_PARAMETER. */
typedef char* (*zoroco_Reallocate)(char* current, size_t required, const char* text,
                                   size_t requiredAgain);

/* Called when the driver has demoted a route of the session: a route of higher priority took its
 * resources. The route is neither programmed nor reserved any more, and remains with the driver until the
 * client destroys it. The callback does not identify it.
 *
 * context:       the context pointer of the session.
 * reason:        ZOROCO_REASON_DEMOTED.
 * status:        a fresh record; the library releases it after the call.
 * notification:  identifies the session: one value for a session, another one for each other session
 *                that exists at the same time. Opaque; do not dereference.
 *
 * Runs on a thread of the session, concurrently with the client's calls, and should return soon: the
 * callbacks of a session follow one another, and destroySession waits for them. Inside it, calls with
 * the same session break convention 4, unless the client serialises them with its other calls, and
 * destroySession of the same session is ignored. Other sessions may be used, created and destroyed. */
typedef void (*zoroco_DemotionCallback)(void* context, int32_t reason, zoerr_Status* status,
                                        void* notification);

/* ---- Sessions ---- */

/* Returns the version of this interface: ZOROCO_API_VERSION. */
uint32_t zoroco_ra_quenra_getAPIVersion(void);

/* As createSessionWithDemotionFunc without a callback: demotions are dropped. */
QUENRA_NODISCARD QUENRA_MAYBE_NULL zoroco_RoutingAdaptorSession* zoroco_ra_quenra_createSession(
    QUENRA_IN_TEXT const char* deviceInterfaceName, zoroco_Reallocate reallocate,
    QUENRA_INOUT_OPT zoerr_Status* status);

/* Opens a session with the routing device.
 *
 * deviceInterfaceName: the path of the device, the value of QUENRA_ATTRIBUTE_DEVICE_PATH; at most
 *                      ZOROCO_MAX_DEVICE_NAME_LENGTH bytes. A longer name terminates the process: no
 *                      such device can exist.
 * reallocate:          supplies the buffers of this session's answers, until it is destroyed. Null:
 *                      every answer fails with QUENRA_STATUS_MEMORY_FULL.
 * callback:            called on demotions after the session is created; may be null.
 * context:             for the callback.
 *
 * Reports
 *   QUENRA_STATUS_INVALID_PARAMETER  the name is null
 *   QUENRA_STATUS_BAD_SELECTOR       the library does not know the terminals of the device
 *   QUENRA_STATUS_NOT_FOUND, QUENRA_STATUS_ACCESS_DENIED, ...  the device cannot be opened, or
 *                                    refuses notifications */
QUENRA_NODISCARD QUENRA_MAYBE_NULL zoroco_RoutingAdaptorSession*
zoroco_ra_quenra_createSessionWithDemotionFunc(QUENRA_IN_TEXT const char* deviceInterfaceName,
                                               zoroco_Reallocate reallocate,
                                               zoroco_DemotionCallback callback, void* context,
                                               QUENRA_INOUT_OPT zoerr_Status* status);

/* Closes a session. Waits for a callback that is running; none runs afterwards. Destroy the
 * session's iterators first. Null is ignored. */
void zoroco_ra_quenra_destroySession(zoroco_RoutingAdaptorSession* session);

/* Answers with the names of the constraints that a request can contain: ["inversionNeeded"]. */
void zoroco_ra_quenra_getHandledConstraints(zoroco_RoutingAdaptorSession* session,
                                            QUENRA_INOUT char** output,
                                            QUENRA_INOUT_OPT zoerr_Status* status);

/* ---- Routes ---- */

/* Calculates routes from any of several seeds to each of several destinations.
 *
 * seeds:         JSON array of possible starting points, each an object with
 *                  "terminal"        required; name of the terminal
 *                  "srcDeviceToken"  optional; text, a token of the device that drives the terminal. The
 *                                    library checks its type and does not use it
 *                  "cost"            required; number from 0 to 4294967295, the cost of this starting
 *                                    point; a fraction is truncated
 *                  "constraints"     required; object; "inversionNeeded": true requires an inverted
 *                                    signal
 * destinations:  JSON array of terminal names.
 * modifiers:     JSON object; its members are optional:
 *                  "required", "optional"  objects with "inversionNeeded" and
 *                                          "calculateIgnoresReservations", true or false
 *                Every route fulfils a required constraint. With an optional one the driver can return
 *                two routes for a destination, one without and one with it. In either object,
 *                "calculateIgnoresReservations": true makes the calculation ignore the reservations of
 *                other routes. Every member of "required" must be true or false, also one that the
 *                library does not know, which counts as met; members of "optional" are not checked.
 * output:        receives a JSON array with an object for each route:
 *                  {"ticket":7,"destination":"PXI_Trig0","cost":1,"indexOfStartingSeed":0,
 *                   "constraints":{"inversionNeeded":true}}
 *                The ticket identifies the route in all calls that follow. "constraints" is empty
 *                when the route does not invert the signal. Without a route the array is empty.
 *
 * Other members are ignored; of several members with one name the last counts. The driver refuses
 * the name of an unknown terminal. A document has at most ZOROCO_MAX_DOCUMENT_DEPTH levels and
 * ZOROCO_MAX_DOCUMENT_SIZE bytes. The digits and the exponent of a number are not limited.
 *
 * Returns the value of the driver's calculation, which the library does not interpret; the answer alone
 * shows the routes.
 *
 * Reports
 *   QUENRA_STATUS_INVALID_PARAMETER  a document is invalid, with the fault as "zoroco_debug" in the
 *                                    description; or output is null. The driver received no request.
 *   QUENRA_STATUS_MEMORY_FULL        also: the reallocation function supplied no buffer. The driver
 *                                    keeps the routes it has calculated. */
uint32_t zoroco_ra_quenra_calculateRoute(zoroco_RoutingAdaptorSession* session,
                                         QUENRA_IN_TEXT const char* seeds,
                                         QUENRA_IN_TEXT const char* destinations,
                                         QUENRA_IN_TEXT const char* modifiers,
                                         QUENRA_INOUT char** output,
                                         QUENRA_INOUT_OPT zoerr_Status* status);

/* Reserves the resources of a route.
 *
 * output: on QUENRA_STATUS_ROUTE_CONFLICT receives a JSON array of the conflicting routes,
 *         {"sessionId":4,"ticket":7} each; otherwise unchanged. The driver numbers its sessions, in this
 *         process and in others; no function returns the number of the client's own session.
 *
 * Reports
 *   QUENRA_STATUS_ROUTE_CONFLICT  other routes hold resources of this one
 *   QUENRA_STATUS_MEMORY_FULL     also: the driver reports more than ZOROCO_MAX_CONFLICTS of them */
void zoroco_ra_quenra_reserveRoute(zoroco_RoutingAdaptorSession* session, uint32_t ticket,
                                   QUENRA_INOUT char** output,
                                   QUENRA_INOUT_OPT zoerr_Status* status);

/* Programs a reserved route into the hardware. */
void zoroco_ra_quenra_programRoute(zoroco_RoutingAdaptorSession* session, uint32_t ticket,
                                   QUENRA_INOUT_OPT zoerr_Status* status);

/* The steps of a teardown. They report nothing, so that a teardown always runs to its end: a refusal
 * of the driver is dropped. The trailing words are reserved: pass 0. */
void zoroco_ra_quenra_unprogramRoute(zoroco_RoutingAdaptorSession* session, uint32_t ticket,
                                     uint64_t reserved, uint64_t reservedToo);
void zoroco_ra_quenra_unreserveRoute(zoroco_RoutingAdaptorSession* session, uint32_t ticket,
                                     uint64_t reserved, uint64_t reservedToo);
void zoroco_ra_quenra_destroyRoute(zoroco_RoutingAdaptorSession* session, uint32_t ticket,
                                   uint64_t reserved, uint64_t reservedToo);

/* Announces a teardown after a failure. This controller needs no action. */
void zoroco_ra_quenra_beginExceptionalRouteDestruction(zoroco_RoutingAdaptorSession* session,
                                                       uint32_t ticket, uint64_t reserved,
                                                       uint64_t reservedToo);

/* Answers with the names of the terminals along a route as a JSON array; an unknown terminal is an
 * empty text.
 *
 * Reports
 *   QUENRA_STATUS_MEMORY_FULL  also: the driver reports more than ZOROCO_MAX_PATH_TERMINALS */
void zoroco_ra_quenra_getRouteTerminalPath(zoroco_RoutingAdaptorSession* session, uint32_t ticket,
                                           QUENRA_INOUT char** output,
                                           QUENRA_INOUT_OPT zoerr_Status* status);

/* ---- Terminals ---- */

/* Starts a walk over all terminals, in a fixed order. The status is not the last argument; reserved:
 * pass 0.
 *
 *   zoroco_TerminalIterator* terminals = zoroco_ra_quenra_getAllTerminals(session, &status, 0);
 *   for (; status.code >= 0 && !zoroco_ra_quenra_TerminalIterator_isEnd(terminals);
 *        zoroco_ra_quenra_TerminalIterator_next(terminals, &status)) { ... } */
QUENRA_NODISCARD QUENRA_MAYBE_NULL zoroco_TerminalIterator* zoroco_ra_quenra_getAllTerminals(
    zoroco_RoutingAdaptorSession* session, QUENRA_INOUT_OPT zoerr_Status* status,
    uint64_t reserved);

/* Moves to the next terminal. Does nothing while the status holds an error. */
void zoroco_ra_quenra_TerminalIterator_next(zoroco_TerminalIterator* iterator,
                                            QUENRA_INOUT_OPT zoerr_Status* status);

/* True past the last terminal, and for an invalid iterator. */
QUENRA_NODISCARD bool zoroco_ra_quenra_TerminalIterator_isEnd(zoroco_TerminalIterator* iterator);

/* An attribute of the current terminal. Names are case-sensitive.
 *
 *   text   "name"           unique
 *          "visibility"     "public", or "private" for a terminal not offered to users
 *          "busType"        "PXI_Trig" for a trigger line, else null
 *          "busName"        null
 *          "canonicalName"
 *   bool   "isExternal"     the terminal leaves the controller
 *          "isOwned"        the terminal belongs to the controller
 *          "isAlias", "isMaskedOut"
 *   u32    "id"             unique, from 1
 *          "busLine"        number of the trigger line, ZOROCO_NO_BUS_LINE for none
 *
 * The library owns a text; it is valid as long as the library is loaded.
 *
 * Reports
 *   QUENRA_STATUS_BAD_SELECTOR       no attribute of that type has the name
 *   QUENRA_STATUS_INVALID_PARAMETER  the walk is past the last terminal */
QUENRA_MAYBE_NULL const char* zoroco_ra_quenra_TerminalIterator_getStringAttribute(
    zoroco_TerminalIterator* iterator, QUENRA_IN_TEXT const char* name,
    QUENRA_INOUT_OPT zoerr_Status* status);
bool zoroco_ra_quenra_TerminalIterator_getBoolAttribute(zoroco_TerminalIterator* iterator,
                                                        QUENRA_IN_TEXT const char* name,
                                                        QUENRA_INOUT_OPT zoerr_Status* status);
uint32_t zoroco_ra_quenra_TerminalIterator_getU32Attribute(zoroco_TerminalIterator* iterator,
                                                           QUENRA_IN_TEXT const char* name,
                                                           QUENRA_INOUT_OPT zoerr_Status* status);

/* Resets the current terminal.
 *
 * mode: ZOROCO_RESET_DEFAULT or ZOROCO_RESET_FLOATING.
 *
 * Reports
 *   QUENRA_STATUS_BAD_SELECTOR       unknown mode; the driver received no request
 *   QUENRA_STATUS_INVALID_PARAMETER  the walk is past the last terminal; the driver received no
 *                                    request */
void zoroco_ra_quenra_TerminalIterator_resetTerminal(zoroco_TerminalIterator* iterator,
                                                     QUENRA_IN_TEXT const char* mode,
                                                     QUENRA_INOUT_OPT zoerr_Status* status);

/* Calculates resetTerminal without performing it: returns the id of the terminal from which the
 * current one would be driven. `session` is the session of the iterator. */
uint32_t zoroco_ra_quenra_TerminalIterator_calculateResetTerminal(
    zoroco_RoutingAdaptorSession* session, zoroco_TerminalIterator* iterator,
    QUENRA_IN_TEXT const char* mode, QUENRA_INOUT_OPT zoerr_Status* status);

/* Ends a walk. Null is ignored. */
void zoroco_ra_quenra_TerminalIterator_destroy(zoroco_TerminalIterator* iterator);

#ifdef __cplusplus
}
#endif

#endif
