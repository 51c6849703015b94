/* The Windows errors with which the model fails a request, as winerror.h numbers them. */
#ifndef SIMULATOR_MODEL_WINDOWSERRORS_H
#define SIMULATOR_MODEL_WINDOWSERRORS_H

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

#endif
