#include "simulator/callermemory/callerevent.h"

#include <windows.h>

int callerEventSignal(uint64_t process, uint64_t event) {
  const HANDLE caller = OpenProcess(PROCESS_DUP_HANDLE, FALSE, (DWORD)process);
  if (caller == NULL) {
    return 0;
  }
  HANDLE own = NULL;
  const BOOL duplicated = DuplicateHandle(caller, (HANDLE)(uintptr_t)event, GetCurrentProcess(),
                                          &own, EVENT_MODIFY_STATE, FALSE, 0);
  CloseHandle(caller);
  if (!duplicated) {
    return 0;
  }
  const BOOL signalled = SetEvent(own);
  CloseHandle(own);
  return signalled != 0;
}
