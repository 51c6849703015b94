/* The protocol between the simulated machine and `quenra-sim` or the tests: device control requests
 * on an interface that no real controller has. All requests use the buffered method. */
#ifndef SIMULATOR_PROTOCOL_CONTROLPROTOCOL_H
#define SIMULATOR_PROTOCOL_CONTROLPROTOCOL_H

#include "protocol/interfaces.h"
#include "protocol/pendingrequests.h"

/* {6F1A2C54-0B7D-4C1E-9E43-5D2B8F60A7C1} */
static const tInterfaceClass kSimulatorControlInterfaceClass = {
    0x6F1A2C54, 0x0B7D, 0x4C1E, {0x9E, 0x43, 0x5D, 0x2B, 0x8F, 0x60, 0xA7, 0xC1}};

#define SIMULATOR_CONTROL_CODE(function) PROTOCOL_REQUEST_CODE(0x80A0, 0, function)

/* No input, no output. Restores the default machine: table, text, attributes, presence; removes the
 * scripted answers and received firmware; clears the log, whose numbers start at 1 again. */
#define SIMULATOR_RESET SIMULATOR_CONTROL_CODE(0x900)
/* In: tSimulatorPresence. Sets the number of device interfaces of each kind. */
#define SIMULATOR_SET_PRESENCE SIMULATOR_CONTROL_CODE(0x901)
/* Out: tSimulatorPresence. */
#define SIMULATOR_GET_PRESENCE SIMULATOR_CONTROL_CODE(0x902)
/* In: the SMBIOS structure table that the controller interface returns, 0 to
 * SIMULATOR_TABLE_CAPACITY bytes, not validated. */
#define SIMULATOR_SET_TABLE SIMULATOR_CONTROL_CODE(0x903)
/* Out: the table. */
#define SIMULATOR_GET_TABLE SIMULATOR_CONTROL_CODE(0x904)
/* In: the SMBIOS version text that the controller interface returns, 0 to SIMULATOR_TEXT_CAPACITY
 * bytes; the driver appends no NUL. */
#define SIMULATOR_SET_VERSION_TEXT SIMULATOR_CONTROL_CODE(0x905)
/* In: tSimulatorAttribute. Sets the value of an attribute of one of the two interfaces. */
#define SIMULATOR_SET_ATTRIBUTE SIMULATOR_CONTROL_CODE(0x906)
/* In: tSimulatorAttribute; only the interface and the id are used. Removes the attribute: the
 * driver rejects it with SIMULATOR_STATUS_NOT_SUPPORTED. */
#define SIMULATOR_REMOVE_ATTRIBUTE SIMULATOR_CONTROL_CODE(0x907)
/* In: tSimulatorScript. Scripts are tried in the order in which they were added. */
#define SIMULATOR_ADD_SCRIPT SIMULATOR_CONTROL_CODE(0x908)
/* No input, no output. */
#define SIMULATOR_CLEAR_SCRIPTS SIMULATOR_CONTROL_CODE(0x909)
/* In: u64, the first sequence number to return. Out: the kept tSimulatorLogEntry records from there
 * on that fit the output buffer, oldest first. The log keeps the last SIMULATOR_LOG_CAPACITY. */
#define SIMULATOR_READ_LOG SIMULATOR_CONTROL_CODE(0x90A)
/* No input, no output. The next entry has sequence number 1 again. */
#define SIMULATOR_CLEAR_LOG SIMULATOR_CONTROL_CODE(0x90B)
/* In: tSimulatorAttribute; only the interface and the id are used. Allows or refuses writes by the
 * library to an attribute that has a value. SIMULATOR_SET_ATTRIBUTE creates attributes that are not
 * writable. */
#define SIMULATOR_ALLOW_WRITES SIMULATOR_CONTROL_CODE(0x90C)
#define SIMULATOR_REFUSE_WRITES SIMULATOR_CONTROL_CODE(0x90D)
/* Out: tSimulatorCounters. */
#define SIMULATOR_READ_COUNTERS SIMULATOR_CONTROL_CODE(0x90E)
/* In: tSimulatorAttributeAnswer. Sets the driver's answer to later reads of an attribute that has a
 * value. Setting the value restores the plain answer. */
#define SIMULATOR_SET_ATTRIBUTE_ANSWER SIMULATOR_CONTROL_CODE(0x910)
/* No input, no output. Removes every attribute of both interfaces. */
#define SIMULATOR_CLEAR_ATTRIBUTES SIMULATOR_CONTROL_CODE(0x912)
/* In: tSimulatorHandoverAnswer. Sets the driver's answers to later requests for the SMBIOS text and
 * table. Setting either restores the plain answers. */
#define SIMULATOR_SET_HANDOVER_ANSWER SIMULATOR_CONTROL_CODE(0x911)
/* Out: the latest SIMULATOR_PAYLOAD_CAPACITY firmware payloads of both interfaces as
 * tSimulatorPayload, oldest first. */
#define SIMULATOR_READ_FIRMWARE SIMULATOR_CONTROL_CODE(0x950)
/* No input, no output. The next payload of each interface has number 1 again. */
#define SIMULATOR_CLEAR_FIRMWARE SIMULATOR_CONTROL_CODE(0x951)

/* In: tSimulatorAcceptance. Sets when later requests are accepted. Requests that already wait for
 * acceptance keep waiting. */
#define SIMULATOR_SET_ACCEPTANCE SIMULATOR_CONTROL_CODE(0x920)
/* No input, no output. Accepts all requests that wait for acceptance. */
#define SIMULATOR_ACCEPT_PENDING SIMULATOR_CONTROL_CODE(0x921)
/* Out: the tSimulatorPendingRequest records that fit the output buffer, oldest first. */
#define SIMULATOR_READ_PENDING SIMULATOR_CONTROL_CODE(0x922)
/* In: tSimulatorCompletion. Completes pending requests from the machine's side. */
#define SIMULATOR_COMPLETE_PENDING SIMULATOR_CONTROL_CODE(0x923)
/* In: tSimulatorNotice. Notifies every caller that is registered for one of its events. */
#define SIMULATOR_NOTIFY SIMULATOR_CONTROL_CODE(0x924)
/* In: u32, a ticket. Demotes a reserved or programmed route and notifies its session. */
#define SIMULATOR_DEMOTE_ROUTE SIMULATOR_CONTROL_CODE(0x940)
/* Out: the tSimulatorRoute records that fit the output buffer, oldest first. */
#define SIMULATOR_READ_ROUTES SIMULATOR_CONTROL_CODE(0x941)
/* In: u32, the number of terminals in every path; 0: the real number, two. */
#define SIMULATOR_SET_PATH_LENGTH SIMULATOR_CONTROL_CODE(0x942)
/* In: the name of the topography, 0 to SIMULATOR_TOPOGRAPHY_NAME_CAPACITY bytes; the driver appends
 * no NUL. */
#define SIMULATOR_SET_TOPOGRAPHY_NAME SIMULATOR_CONTROL_CODE(0x943)

enum {
  SIMULATOR_TABLE_CAPACITY = 65536,
  SIMULATOR_TEXT_CAPACITY = 1024,
  SIMULATOR_VALUE_CAPACITY = 256,
  SIMULATOR_ATTRIBUTE_CAPACITY = 64,
  SIMULATOR_SCRIPT_CAPACITY = 32,
  SIMULATOR_LOG_CAPACITY = 1024,
  SIMULATOR_PENDING_CAPACITY = 64,
  SIMULATOR_NOTIFICATION_CAPACITY = 64,
  SIMULATOR_ROUTE_CAPACITY = 256,
  SIMULATOR_TOPOGRAPHY_NAME_CAPACITY = 256,
  SIMULATOR_INPUT_CAPACITY = 64,
  SIMULATOR_OUTPUT_CAPACITY = 48,
  SIMULATOR_PAYLOAD_CAPACITY = 64,
  SIMULATOR_PAYLOAD_START = 64,
  SIMULATOR_HASH_SIZE = 32,
  SIMULATOR_MAX_DELAY = 10000000 /* microseconds */
};

/* The simulated driver's codes: an attribute that it does not have, */
#define SIMULATOR_STATUS_NOT_SUPPORTED (-26934)
/* a value whose size is invalid for the attribute, */
#define SIMULATOR_STATUS_BAD_VALUE (-26935)
/* a buffer of the caller that cannot be read or written. */
#define SIMULATOR_STATUS_BAD_ADDRESS (-52005)
/* The simulated trigger router's codes: an unknown terminal id; an unknown ticket; a request that
 * the state of the route does not allow; the capacity for routes exceeded. */
#define SIMULATOR_STATUS_NO_SUCH_TERMINAL (-240601)
#define SIMULATOR_STATUS_NO_SUCH_TICKET (-240602)
#define SIMULATOR_STATUS_WRONG_ORDER (-240603)
#define SIMULATOR_STATUS_TOO_MANY_ROUTES (-240604)

typedef enum tSimulatorInterface {
  kSimulatorInterfaceController = 1,
  kSimulatorInterfaceMarten = 2,
  kSimulatorInterfaceDevicePath = 3,
  kSimulatorInterfaceControl = 4
} tSimulatorInterface;

typedef struct tSimulatorPresence {
  uint32_t controllers; /* 0 to 2 */
  uint32_t martens;     /* 0 to 2 */
  uint32_t devicePaths; /* 0 or 1 */
} tSimulatorPresence;
PROTOCOL_SIZE(tSimulatorPresence, 12);

typedef struct tSimulatorAttribute {
  uint32_t interfaceKind; /* tSimulatorInterface: controller or Marten */
  uint32_t attribute;     /* the id with its instance; the selector is ignored */
  uint32_t size;          /* bytes used in `value`, at most SIMULATOR_VALUE_CAPACITY */
  uint8_t value[SIMULATOR_VALUE_CAPACITY]; /* a text includes its NUL */
} tSimulatorAttribute;
PROTOCOL_SIZE(tSimulatorAttribute, 268);

/* The answer to a read of an attribute. */
typedef struct tSimulatorAttributeAnswer {
  uint32_t interfaceKind; /* tSimulatorInterface: controller or Marten */
  uint32_t attribute;     /* the id with its instance; the selector is ignored */
  int32_t driverStatus;   /* negative: the value is not returned */
  uint32_t size;          /* reported with a negative status */
  uint32_t delay;         /* before the reply, in microseconds, at most SIMULATOR_MAX_DELAY */
} tSimulatorAttributeAnswer;
PROTOCOL_SIZE(tSimulatorAttributeAnswer, 20);

/* The answer to one of the two requests for the SMBIOS text and table. */
typedef struct tSimulatorSizesAnswer {
  int32_t driverStatus;
  uint32_t textSize;
  uint32_t tableSize;
  uint32_t delay; /* as above */
} tSimulatorSizesAnswer;

typedef struct tSimulatorHandoverAnswer {
  tSimulatorSizesAnswer query;  /* to the request that offers no buffers */
  tSimulatorSizesAnswer values; /* to the other; a negative status: no bytes are returned */
} tSimulatorHandoverAnswer;
PROTOCOL_SIZE(tSimulatorHandoverAnswer, 32);

/* A firmware payload that an interface has received completely. */
typedef struct tSimulatorPayload {
  uint64_t process;       /* the caller's process id */
  uint32_t interfaceKind; /* tSimulatorInterface: controller or Marten */
  uint32_t number;        /* 1, 2, 3, ... on its interface */
  uint32_t size;          /* in bytes */
  int32_t callerStatus;   /* the code in the caller's status */
  uint8_t sha256[SIMULATOR_HASH_SIZE];
  uint8_t start[SIMULATOR_PAYLOAD_START]; /* its first bytes, then zeros */
} tSimulatorPayload;
PROTOCOL_SIZE(tSimulatorPayload, 120);

typedef enum tSimulatorAction {
  /* The request is not carried out; the reply is zero except for `driverStatus`. */
  kSimulatorActionAnswerCode = 1,
  /* The request itself fails with the Windows error `windowsError`; there is no reply. */
  kSimulatorActionFail = 2,
  /* The request is not carried out; the reply is the first `replySize` bytes of `reply`. */
  kSimulatorActionReply = 3,
  /* The request is carried out and its reply is truncated to `replySize` bytes. */
  kSimulatorActionTruncate = 4,
  /* The request is carried out; `driverStatus` replaces the status of the reply, as a warning. */
  kSimulatorActionAddCode = 5
} tSimulatorAction;

typedef struct tSimulatorScript {
  uint32_t interfaceKind; /* tSimulatorInterface */
  uint32_t requestCode;   /* 0: any request on the interface */
  uint32_t skip;          /* matching requests to let through first */
  uint32_t times;         /* matching requests to answer after those; 0: all */
  uint32_t action;        /* tSimulatorAction */
  int32_t driverStatus;
  uint32_t windowsError; /* below 65536 */
  uint32_t replySize;
  uint8_t reply[SIMULATOR_OUTPUT_CAPACITY];
} tSimulatorScript;
PROTOCOL_SIZE(tSimulatorScript, 80);

typedef enum tSimulatorEvent {
  kSimulatorEventOpen = 1,
  kSimulatorEventClose = 2,
  kSimulatorEventRequest = 3,  /* a pending one is logged with Windows error 997 */
  kSimulatorEventAccepted = 4, /* a pending request received its handle: the output */
  kSimulatorEventCompleted = 5 /* it completed: its handle, 0 if never accepted, and its error */
} tSimulatorEvent;

typedef enum tSimulatorAcceptance {
  kSimulatorAcceptAtOnce = 0,
  kSimulatorAcceptLater = 1, /* on SIMULATOR_ACCEPT_PENDING */
  kSimulatorAcceptNever = 2  /* requests complete immediately, with success and no handle */
} tSimulatorAcceptance;

typedef struct tSimulatorPendingRequest {
  uint64_t process; /* of the caller */
  uint64_t file;    /* as in the log */
  uint64_t handle;  /* 0: not accepted yet */
  uint64_t b;
  uint32_t interfaceKind;
  uint16_t a;
  uint8_t c;
  uint8_t padding;
} tSimulatorPendingRequest;
PROTOCOL_SIZE(tSimulatorPendingRequest, 40);

typedef struct tSimulatorNotice {
  uint64_t file;         /* as in the log; 0: all */
  uint64_t notification; /* 0: as registered; otherwise a wrong value */
  uint32_t mask;
  uint32_t payloadSize; /* as reported to the caller; may exceed the payload */
  uint8_t payload[NOTIFICATION_PAYLOAD_CAPACITY];
} tSimulatorNotice;
PROTOCOL_SIZE(tSimulatorNotice, 56);

typedef enum tSimulatorRouteState {
  kSimulatorRouteCalculated = 0,
  kSimulatorRouteReserved = 1,
  kSimulatorRouteProgrammed = 2
} tSimulatorRouteState;

typedef struct tSimulatorRoute {
  uint64_t process; /* of the session that made it */
  uint64_t session; /* its open file, as in the log */
  uint32_t ticket;
  uint32_t source;
  uint32_t destination;
  uint32_t state;   /* tSimulatorRouteState */
  uint32_t inverts; /* 0 or 1 */
  uint32_t padding;
} tSimulatorRoute;
PROTOCOL_SIZE(tSimulatorRoute, 40);

/* Counts of all programs since the driver was started. Resetting the machine ends everything that
 * is open and keeps the counts. Begun minus ended is the number that exists now. */
typedef struct tSimulatorCounters {
  uint64_t filesOpened; /* on all interfaces except the control interface */
  uint64_t filesClosed;
  uint64_t registrationsBegun;
  uint64_t registrationsEnded;
  uint64_t deliveriesArmed;
  uint64_t deliveriesEnded; /* with a notice or without one */
  uint64_t noticesRaised;   /* delivered, dropped or held back */
  uint64_t noticesDelivered;
  uint64_t noticesDropped; /* too many were held back, or no receiver was left */
  uint64_t pendingBegun;
  uint64_t pendingEnded;
  uint64_t routesCalculated;
  uint64_t routesGone;           /* destroyed, or released when their session was closed */
  uint64_t reservationsBegun;    /* each ends as one of the next three, or is held now */
  uint64_t reservationsEnded;    /* by their client */
  uint64_t reservationsDemoted;  /* by demotion */
  uint64_t reservationsReleased; /* with their route */
  uint64_t programmingsBegun;
  uint64_t programmingsEnded; /* by their client, by demotion, or with their route */
} tSimulatorCounters;
PROTOCOL_SIZE(tSimulatorCounters, 152);

typedef struct tSimulatorCompletion {
  uint64_t handle;       /* 0: all requests that wait for acceptance */
  uint32_t windowsError; /* 0: they succeed */
  uint32_t padding;
} tSimulatorCompletion;
PROTOCOL_SIZE(tSimulatorCompletion, 16);

typedef struct tSimulatorLogEntry {
  uint64_t sequence; /* 1, 2, 3, ... */
  uint64_t process;  /* the caller's process id */
  uint64_t file;     /* identifies one open file on one interface */
  uint32_t event;    /* tSimulatorEvent; opening and closing use no member after interfaceKind */
  uint32_t interfaceKind;
  uint32_t requestCode;
  uint32_t inputSize;    /* bytes sent; the first SIMULATOR_INPUT_CAPACITY are kept */
  uint32_t outputSize;   /* bytes of the reply */
  uint32_t windowsError; /* 0, or the error with which the request failed */
  uint8_t input[SIMULATOR_INPUT_CAPACITY];
  uint8_t output[SIMULATOR_OUTPUT_CAPACITY];
} tSimulatorLogEntry;
PROTOCOL_SIZE(tSimulatorLogEntry, 160);

#endif
