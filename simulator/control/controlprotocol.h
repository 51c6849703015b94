/* How `quenra-sim` and the tests talk to the simulated machine: device control requests on an
 * interface of its own, which no real controller has. All requests use the buffered method. */
#ifndef SIMULATOR_CONTROL_CONTROLPROTOCOL_H
#define SIMULATOR_CONTROL_CONTROLPROTOCOL_H

#include "protocol/interfaceclasses.h"
#include "protocol/notificationrequests.h"
#include "protocol/requestcodes.h"

/* {6F1A2C54-0B7D-4C1E-9E43-5D2B8F60A7C1} */
static const tInterfaceClass kSimulatorControlInterfaceClass = {
    0x6F1A2C54, 0x0B7D, 0x4C1E, {0x9E, 0x43, 0x5D, 0x2B, 0x8F, 0x60, 0xA7, 0xC1}};

#define SIMULATOR_CONTROL_CODE(function) PROTOCOL_REQUEST_CODE(0x80A0, 0, function)

/* No input, no output. Back to the default machine: table, text, attributes, presence; no scripted
 * answers; no firmware received; empty log, counting from 1 again. */
#define SIMULATOR_RESET SIMULATOR_CONTROL_CODE(0x900)
/* In: tSimulatorPresence. Which device interfaces are present from now on. */
#define SIMULATOR_SET_PRESENCE SIMULATOR_CONTROL_CODE(0x901)
/* Out: tSimulatorPresence. */
#define SIMULATOR_GET_PRESENCE SIMULATOR_CONTROL_CODE(0x902)
/* In: the SMBIOS structure table that the controller interface hands over, 0 to
 * SIMULATOR_TABLE_CAPACITY bytes, taken as it is. */
#define SIMULATOR_SET_TABLE SIMULATOR_CONTROL_CODE(0x903)
/* Out: the table. */
#define SIMULATOR_GET_TABLE SIMULATOR_CONTROL_CODE(0x904)
/* In: the SMBIOS version text as it is to be handed over, 0 to SIMULATOR_TEXT_CAPACITY bytes; a NUL
 * is sent only if it is among them. */
#define SIMULATOR_SET_VERSION_TEXT SIMULATOR_CONTROL_CODE(0x905)
/* In: tSimulatorAttribute. Gives an attribute of one of the two interfaces a value. */
#define SIMULATOR_SET_ATTRIBUTE SIMULATOR_CONTROL_CODE(0x906)
/* In: tSimulatorAttribute, of which only the interface and the id count. From now on the driver
 * refuses the attribute with SIMULATOR_STATUS_NOT_SUPPORTED. */
#define SIMULATOR_REMOVE_ATTRIBUTE SIMULATOR_CONTROL_CODE(0x907)
/* In: tSimulatorScript. Scripts are tried in the order in which they were added. */
#define SIMULATOR_ADD_SCRIPT SIMULATOR_CONTROL_CODE(0x908)
/* No input, no output. */
#define SIMULATOR_CLEAR_SCRIPTS SIMULATOR_CONTROL_CODE(0x909)
/* In: u64, the sequence number to begin with. Out: as many tSimulatorLogEntry as are kept from there
 * on and fit the output buffer, oldest first. The log keeps the last SIMULATOR_LOG_CAPACITY. */
#define SIMULATOR_READ_LOG SIMULATOR_CONTROL_CODE(0x90A)
/* No input, no output. The next entry has sequence number 1 again. */
#define SIMULATOR_CLEAR_LOG SIMULATOR_CONTROL_CODE(0x90B)
/* In: tSimulatorAttribute, of which only the interface and the id count. From now on the library can
 * write the attribute, which has a value; or no longer. An attribute that is given its first value is
 * not writable. */
#define SIMULATOR_ALLOW_WRITES SIMULATOR_CONTROL_CODE(0x90C)
#define SIMULATOR_REFUSE_WRITES SIMULATOR_CONTROL_CODE(0x90D)
/* Out: tSimulatorCounters. */
#define SIMULATOR_READ_COUNTERS SIMULATOR_CONTROL_CODE(0x90E)
/* Out: the latest SIMULATOR_PAYLOAD_CAPACITY firmware payloads of both interfaces as tSimulatorPayload,
 * oldest first. */
#define SIMULATOR_READ_FIRMWARE SIMULATOR_CONTROL_CODE(0x950)
/* No input, no output. The next payload of each interface is its first again. */
#define SIMULATOR_CLEAR_FIRMWARE SIMULATOR_CONTROL_CODE(0x951)

/* In: tSimulatorAcceptance. How pending requests are accepted from now on. Those that are waiting
 * stay. */
#define SIMULATOR_SET_ACCEPTANCE SIMULATOR_CONTROL_CODE(0x920)
/* No input, no output. Accepts all that are waiting. */
#define SIMULATOR_ACCEPT_PENDING SIMULATOR_CONTROL_CODE(0x921)
/* Out: as many tSimulatorPendingRequest as there are and fit the output buffer, oldest first. */
#define SIMULATOR_READ_PENDING SIMULATOR_CONTROL_CODE(0x922)
/* In: tSimulatorCompletion. Completes pending requests from the machine's side. */
#define SIMULATOR_COMPLETE_PENDING SIMULATOR_CONTROL_CODE(0x923)
/* In: tSimulatorNotice. Tells everybody who is registered for one of its events. */
#define SIMULATOR_NOTIFY SIMULATOR_CONTROL_CODE(0x924)
/* In: u32, a ticket. Demotes a route that is reserved or programmed, and tells its session. */
#define SIMULATOR_DEMOTE_ROUTE SIMULATOR_CONTROL_CODE(0x940)
/* Out: as many tSimulatorRoute as there are and fit the output buffer, oldest first. */
#define SIMULATOR_READ_ROUTES SIMULATOR_CONTROL_CODE(0x941)
/* In: u32, how many terminals every path has; 0: as many as it has, which are two. */
#define SIMULATOR_SET_PATH_LENGTH SIMULATOR_CONTROL_CODE(0x942)
/* In: the name of the topography, 0 to SIMULATOR_TOPOGRAPHY_NAME_CAPACITY bytes; a NUL is sent only
 * if it is among them. */
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
  SIMULATOR_HASH_SIZE = 32
};

/* The code with which the simulated driver refuses an attribute that it does not have. */
#define SIMULATOR_STATUS_NOT_SUPPORTED (-26934)
/* ... a value of a size that the attribute cannot have. */
#define SIMULATOR_STATUS_BAD_VALUE (-26935)
/* ... and a buffer of the caller that cannot be read or written. */
#define SIMULATOR_STATUS_BAD_ADDRESS (-52005)
/* The simulated trigger router: a terminal id, or a ticket, that it does not know; a step of a route's
 * life out of its order; more routes than it keeps. */
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
  uint32_t attribute;     /* the id with its instance; the selector does not count */
  uint32_t size;          /* bytes of `value` that count, at most SIMULATOR_VALUE_CAPACITY */
  uint8_t value[SIMULATOR_VALUE_CAPACITY]; /* a text holds its NUL itself */
} tSimulatorAttribute;
PROTOCOL_SIZE(tSimulatorAttribute, 268);

/* A firmware payload that an interface has received whole. */
typedef struct tSimulatorPayload {
  uint64_t process;       /* the caller's process id */
  uint32_t interfaceKind; /* tSimulatorInterface: controller or Marten */
  uint32_t number;        /* 1, 2, 3, ... on its interface */
  uint32_t size;          /* in bytes */
  int32_t callerStatus;   /* what the caller's status held */
  uint8_t sha256[SIMULATOR_HASH_SIZE];
  uint8_t start[SIMULATOR_PAYLOAD_START]; /* its first bytes, then zeros */
} tSimulatorPayload;
PROTOCOL_SIZE(tSimulatorPayload, 120);

typedef enum tSimulatorAction {
  /* The request is not carried out; the reply is zeros but for `driverStatus`. */
  kSimulatorActionAnswerCode = 1,
  /* The request itself fails with the Windows error `windowsError`; there is no reply. */
  kSimulatorActionFail = 2,
  /* The request is not carried out; the reply is the first `replySize` bytes of `reply`. */
  kSimulatorActionReply = 3,
  /* The request is carried out and its reply is cut to `replySize` bytes. */
  kSimulatorActionTruncate = 4,
  /* The request is carried out and `driverStatus` replaces the reply's own, as a warning would. */
  kSimulatorActionAddCode = 5
} tSimulatorAction;

typedef struct tSimulatorScript {
  uint32_t interfaceKind; /* tSimulatorInterface */
  uint32_t requestCode;   /* 0: any request on the interface */
  uint32_t skip;          /* matching requests to let through first */
  uint32_t times;         /* matching requests to answer then; 0: all that follow */
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
  kSimulatorEventAccepted = 4, /* a pending request has its handle: the output */
  kSimulatorEventCompleted = 5 /* it is over: its handle, 0 before it was accepted, and its error */
} tSimulatorEvent;

typedef enum tSimulatorAcceptance {
  kSimulatorAcceptAtOnce = 0,
  kSimulatorAcceptLater = 1, /* when SIMULATOR_ACCEPT_PENDING says so */
  kSimulatorAcceptNever = 2  /* pending requests complete at once, with success and no handle */
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
  uint64_t notification; /* 0: as registered; else a lie */
  uint32_t mask;
  uint32_t payloadSize; /* as it is told, which may be more than there is */
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

/* What began and what ended, of all programs, since the driver was started; resetting the machine ends
 * what is under way and keeps the counts. What has begun and not ended is there now. */
typedef struct tSimulatorCounters {
  uint64_t filesOpened; /* of all interfaces but the control interface */
  uint64_t filesClosed;
  uint64_t registrationsBegun;
  uint64_t registrationsEnded;
  uint64_t deliveriesArmed;
  uint64_t deliveriesEnded; /* with a notice or without one */
  uint64_t noticesRaised;   /* delivered, dropped or held back */
  uint64_t noticesDelivered;
  uint64_t noticesDropped; /* too many were held back, or nobody was left to tell */
  uint64_t pendingBegun;
  uint64_t pendingEnded;
  uint64_t routesCalculated;
  uint64_t routesGone;           /* destroyed, or released when their session was closed */
  uint64_t reservationsBegun;    /* ended in one of three ways, or held now */
  uint64_t reservationsEnded;    /* by their client */
  uint64_t reservationsDemoted;  /* taken away */
  uint64_t reservationsReleased; /* with their route */
  uint64_t programmingsBegun;
  uint64_t programmingsEnded; /* by their client, by demotion, or with their route */
} tSimulatorCounters;
PROTOCOL_SIZE(tSimulatorCounters, 152);

typedef struct tSimulatorCompletion {
  uint64_t handle;       /* 0: all that are waiting to be accepted */
  uint32_t windowsError; /* 0: they succeed */
  uint32_t padding;
} tSimulatorCompletion;
PROTOCOL_SIZE(tSimulatorCompletion, 16);

typedef struct tSimulatorLogEntry {
  uint64_t sequence; /* 1, 2, 3, ... */
  uint64_t process;  /* the caller's process id */
  uint64_t file;     /* names one open file on one interface */
  uint32_t event; /* tSimulatorEvent; opening and closing have no use for what follows the kind */
  uint32_t interfaceKind;
  uint32_t requestCode;
  uint32_t inputSize;    /* bytes sent; the first SIMULATOR_INPUT_CAPACITY are kept */
  uint32_t outputSize;   /* bytes answered */
  uint32_t windowsError; /* 0, or the error with which the request failed */
  uint8_t input[SIMULATOR_INPUT_CAPACITY];
  uint8_t output[SIMULATOR_OUTPUT_CAPACITY];
} tSimulatorLogEntry;
PROTOCOL_SIZE(tSimulatorLogEntry, 160);

#endif
