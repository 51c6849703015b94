/* Requests and replies of the controller and the Marten interface, byte for byte, little-endian.
 *
 * A request ends with the caller's status code, which shows the driver a warning that the caller
 * already has. A reply ends with the driver's status code. Members named `padding` are zero.
 * The caller owns the buffers and passes their addresses as 64-bit numbers. */
#ifndef PROTOCOL_CONTROLLERREQUESTS_H
#define PROTOCOL_CONTROLLERREQUESTS_H

#include "protocol/interfaces.h"

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

/* The driver's status code for a caller's buffer that is too small, 0xFFFC564D. */
#define DRIVER_STATUS_BUFFER_TOO_SMALL (-240563)

/* REQUEST_EXCHANGE_VALUES: returns the SMBIOS version text and the SMBIOS structure table. With
 * both addresses and sizes 0 it returns only the sizes. */
typedef struct tExchangeValuesRequest {
  uint64_t textBuffer;
  uint32_t textSize;
  uint32_t padding;
  uint64_t tableBuffer;
  int32_t tableSize;
  int32_t callerStatus;
} tExchangeValuesRequest;
PROTOCOL_SIZE(tExchangeValuesRequest, 32);
PROTOCOL_OFFSET(tExchangeValuesRequest, textBuffer, 0);
PROTOCOL_OFFSET(tExchangeValuesRequest, textSize, 8);
PROTOCOL_OFFSET(tExchangeValuesRequest, padding, 12);
PROTOCOL_OFFSET(tExchangeValuesRequest, tableBuffer, 16);
PROTOCOL_OFFSET(tExchangeValuesRequest, tableSize, 24);
PROTOCOL_OFFSET(tExchangeValuesRequest, callerStatus, 28);

typedef struct tExchangeValuesReply {
  uint32_t textSize;
  uint32_t tableSize;
  int32_t driverStatus;
} tExchangeValuesReply;
PROTOCOL_SIZE(tExchangeValuesReply, 12);
PROTOCOL_OFFSET(tExchangeValuesReply, textSize, 0);
PROTOCOL_OFFSET(tExchangeValuesReply, tableSize, 4);
PROTOCOL_OFFSET(tExchangeValuesReply, driverStatus, 8);

/* REQUEST_CONTROLLER_SEND_COMMAND, REQUEST_MARTEN_SEND_COMMAND: a firmware payload. */
typedef struct tSendCommandRequest {
  uint64_t payload;
  uint32_t payloadSize;
  int32_t callerStatus;
} tSendCommandRequest;
PROTOCOL_SIZE(tSendCommandRequest, 16);
PROTOCOL_OFFSET(tSendCommandRequest, payload, 0);
PROTOCOL_OFFSET(tSendCommandRequest, payloadSize, 8);
PROTOCOL_OFFSET(tSendCommandRequest, callerStatus, 12);

/* REQUEST_GET_ATTRIBUTE: `size` is the capacity of the buffer in bytes. */
typedef struct tGetAttributeRequest {
  uint32_t attribute;
  uint32_t padding;
  uint64_t buffer;
  uint32_t size;
  int32_t callerStatus;
} tGetAttributeRequest;
PROTOCOL_SIZE(tGetAttributeRequest, 24);
PROTOCOL_OFFSET(tGetAttributeRequest, attribute, 0);
PROTOCOL_OFFSET(tGetAttributeRequest, padding, 4);
PROTOCOL_OFFSET(tGetAttributeRequest, buffer, 8);
PROTOCOL_OFFSET(tGetAttributeRequest, size, 16);
PROTOCOL_OFFSET(tGetAttributeRequest, callerStatus, 20);

/* `size` is the number of bytes that the driver wrote, or the size that it requires. */
typedef struct tGetAttributeReply {
  uint32_t size;
  int32_t driverStatus;
} tGetAttributeReply;
PROTOCOL_SIZE(tGetAttributeReply, 8);
PROTOCOL_OFFSET(tGetAttributeReply, size, 0);
PROTOCOL_OFFSET(tGetAttributeReply, driverStatus, 4);

/* REQUEST_SET_ATTRIBUTE: `size` is the size of the value in bytes, including the NUL of a text. */
typedef struct tSetAttributeRequest {
  uint32_t attribute;
  uint32_t padding;
  uint64_t buffer;
  int32_t size;
  int32_t callerStatus;
} tSetAttributeRequest;
PROTOCOL_SIZE(tSetAttributeRequest, 24);
PROTOCOL_OFFSET(tSetAttributeRequest, attribute, 0);
PROTOCOL_OFFSET(tSetAttributeRequest, padding, 4);
PROTOCOL_OFFSET(tSetAttributeRequest, buffer, 8);
PROTOCOL_OFFSET(tSetAttributeRequest, size, 16);
PROTOCOL_OFFSET(tSetAttributeRequest, callerStatus, 20);

/* The reply of every request that returns nothing but the driver's status code. */
typedef struct tStatusReply {
  int32_t driverStatus;
} tStatusReply;
PROTOCOL_SIZE(tStatusReply, 4);
PROTOCOL_OFFSET(tStatusReply, driverStatus, 0);

#endif
