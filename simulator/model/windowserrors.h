/* The Windows errors with which the model fails a request, as winerror.h numbers them. */
#ifndef SIMULATOR_MODEL_WINDOWSERRORS_H
#define SIMULATOR_MODEL_WINDOWSERRORS_H

enum {
  kWindowsErrorNone = 0,
  kWindowsErrorInvalidFunction = 1,      /* the interface does not know the request code */
  kWindowsErrorInvalidParameter = 87,    /* the input has a wrong size or a bad member */
  kWindowsErrorInsufficientBuffer = 122, /* the output buffer is too small for the reply */
  kWindowsErrorNoSystemResources = 1450  /* a store of fixed capacity is full */
};

#endif
