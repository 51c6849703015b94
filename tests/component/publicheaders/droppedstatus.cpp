// Drops a status, so that the compiler warns. Not part of a program.
#include "quenra.h"

void dropStatus() {
  QUENRA_performSelfTest(QUENRA_HANDLE);
}
