/* The records that pass between the model and its host, and the services that the host provides. */
#ifndef SIMULATOR_MODEL_HOST_H
#define SIMULATOR_MODEL_HOST_H

#include <stdbool.h>
#include <stdint.h>

#include "simulator/protocol/controlprotocol.h"

/* The Windows errors with which the model fails a request, as winerror.h numbers them. */
enum {
  kWindowsErrorNone = 0,
  kWindowsErrorInvalidFunction = 1,      /* the interface does not support the request code */
  kWindowsErrorInvalidHandle = 6,        /* the caller's event handle is invalid */
  kWindowsErrorInvalidParameter = 87,    /* the input has an invalid size or member */
  kWindowsErrorInsufficientBuffer = 122, /* the output buffer is too small for the reply */
  kWindowsErrorOperationAborted = 995,   /* a pending request was cancelled, or its file closed */
  kWindowsErrorIoPending = 997,          /* the request is pending */
  kWindowsErrorNoAccess = 998,           /* the caller's memory is not writable */
  kWindowsErrorNotFound = 1168,          /* no pending request of the file has this handle */
  kWindowsErrorNoSystemResources = 1450  /* a store of fixed capacity is full */
};

/* An open file: its interface and its process. The host chooses `file`, which is not 0. */
typedef struct tModelFile {
  uint64_t file;
  uint64_t process;
  tSimulatorInterface interfaceKind;
} tModelFile;

/* One device control request. `input` and `output` may be the same memory. */
typedef struct tModelRequest {
  tModelFile file;
  uint32_t code;
  const void* input;
  uint32_t inputSize;
  void* output;
  uint32_t outputSize; /* its capacity in bytes */
  uint64_t token;      /* identifies it while pending; 0: the host cannot keep it pending */
} tModelRequest;

typedef struct tModelReply {
  uint32_t windowsError; /* 0: success; 997: pending; otherwise the reason of the failure */
  uint32_t size;         /* bytes written to `output`; 0 on failure */
} tModelReply;

static inline tModelReply emptyReply(uint32_t windowsError) {
  const tModelReply reply = {windowsError, 0};
  return reply;
}

/* The complete state of the model; model.h defines it. */
typedef struct tModel tModel;

/* Services that the host provides to the model. No function is null. */
typedef struct tModelHost {
  void* context;
  /* Copy between the memory of the calling process and the model's. False if any byte of the
   * caller's range is not accessible; the contents of the destination are then unspecified. */
  bool (*readCaller)(void* context, uint64_t process, uint64_t address, void* destination,
                     uint32_t size);
  bool (*writeCaller)(void* context, uint64_t process, uint64_t address, const void* source,
                      uint32_t size);
  /* Signals an event of the calling process. False if `event` is not an event. */
  bool (*signalEvent)(void* context, uint64_t process, uint64_t event);
  /* Completes a pending request; `output` fits its buffer. The host may use the token again
   * afterwards. */
  void (*completeRequest)(void* context, uint64_t token, uint32_t windowsError, const void* output,
                          uint32_t size);
  /* Enables and disables device interfaces to match the changed presence. */
  void (*presenceChanged)(void* context, const tSimulatorPresence* presence);
} tModelHost;

/* The two copies above for the caller of a file. An empty range is accessible at any address. */
static inline bool readFromCaller(const tModelHost* host, const tModelFile* file, uint64_t address,
                                  void* destination, uint32_t size) {
  return size == 0 || host->readCaller(host->context, file->process, address, destination, size);
}

static inline bool writeToCaller(const tModelHost* host, const tModelFile* file, uint64_t address,
                                 const void* source, uint32_t size) {
  return size == 0 || host->writeCaller(host->context, file->process, address, source, size);
}

#endif
