#include "simulator/callermemory/callermemory.h"

#include <stdbool.h>
#include <windows.h>
/* winternl.h requires windows.h. */
#include <winternl.h>

/* Exported by ntdll; winternl.h does not declare it. */
NTSYSAPI NTSTATUS NTAPI NtReadVirtualMemory(HANDLE process, const void* address, void* buffer,
                                            SIZE_T size, SIZE_T* copied);
NTSYSAPI NTSTATUS NTAPI NtWriteVirtualMemory(HANDLE process, void* address, const void* buffer,
                                             SIZE_T size, SIZE_T* copied);

static HANDLE openProcess(uint64_t process) {
  return OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE, FALSE,
                     (DWORD)process);
}

static int wasCopied(NTSTATUS status, SIZE_T copied, uint32_t size) {
  return status >= 0 && copied == size;
}

int callerMemoryRead(uint64_t process, uint64_t address, void* destination, uint32_t size) {
  const HANDLE handle = openProcess(process);
  if (handle == NULL) {
    return 0;
  }
  SIZE_T copied = 0;
  const NTSTATUS status =
      NtReadVirtualMemory(handle, (const void*)(uintptr_t)address, destination, size, &copied);
  CloseHandle(handle);
  return wasCopied(status, copied, size);
}

int callerMemoryWrite(uint64_t process, uint64_t address, const void* source, uint32_t size) {
  const HANDLE handle = openProcess(process);
  if (handle == NULL) {
    return 0;
  }
  SIZE_T copied = 0;
  const NTSTATUS status =
      NtWriteVirtualMemory(handle, (void*)(uintptr_t)address, source, size, &copied);
  CloseHandle(handle);
  return wasCopied(status, copied, size);
}

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
