/* Device control codes of the driver's interfaces: device type in bits 16-31, access in bits 14-15,
 * function in bits 2-13, transfer method in bits 0-1. Every request uses the buffered method, 0. */
#ifndef PROTOCOL_REQUESTCODES_H
#define PROTOCOL_REQUESTCODES_H

#include "protocol/layout.h"

#define PROTOCOL_REQUEST_CODE(deviceType, access, function) \
  ((0u + (deviceType)) << 16 | (0u + (access)) << 14 | (0u + (function)) << 2)

#define PROTOCOL_CONTROLLER_CODE(function) PROTOCOL_REQUEST_CODE(0x807B, 3, function)

/* On the controller and on the Marten interface. */
#define REQUEST_GET_ATTRIBUTE PROTOCOL_CONTROLLER_CODE(0x801)
#define REQUEST_SET_ATTRIBUTE PROTOCOL_CONTROLLER_CODE(0x802)
/* On the controller interface only. */
#define REQUEST_EXCHANGE_VALUES PROTOCOL_CONTROLLER_CODE(0x80A)
#define REQUEST_CONTROLLER_SEND_COMMAND PROTOCOL_CONTROLLER_CODE(0x80B)
/* On the Marten interface only. */
#define REQUEST_MARTEN_SEND_COMMAND PROTOCOL_CONTROLLER_CODE(0x814)

PROTOCOL_ASSERT(REQUEST_GET_ATTRIBUTE == 0x807BE004u);
PROTOCOL_ASSERT(REQUEST_SET_ATTRIBUTE == 0x807BE008u);
PROTOCOL_ASSERT(REQUEST_EXCHANGE_VALUES == 0x807BE028u);
PROTOCOL_ASSERT(REQUEST_CONTROLLER_SEND_COMMAND == 0x807BE02Cu);
PROTOCOL_ASSERT(REQUEST_MARTEN_SEND_COMMAND == 0x807BE050u);

/* The driver's own status code for a caller's buffer that is too small, 0xFFFC564D. */
#define DRIVER_STATUS_BUFFER_TOO_SMALL (-240563)

#endif
