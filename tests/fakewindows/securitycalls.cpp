// Tokens, security descriptors and random bytes.
#include <windows.h>
// Require windows.h.
#include <sddl.h>

#include <sys/random.h>
#include <cerrno>
#include <cstring>
#include <memory>

#include "tests/fakewindows/disk.h"
#include "tests/fakewindows/faultplan.h"
#include "tests/fakewindows/objects.h"

namespace nFakeWindows {
namespace {

struct tDescriptor {
  std::string text;
};

// The SACL with the mandatory label, if any, is last.
bool isKnownForm(const std::string& text) {
  return text.starts_with("D:") && text.ends_with(")");
}

}  // namespace

std::string textOf(PSECURITY_DESCRIPTOR descriptor) {
  return static_cast<const tDescriptor*>(descriptor)->text;
}

}  // namespace nFakeWindows

using namespace nFakeWindows;

BOOL WINAPI GetTokenInformation(HANDLE token, TOKEN_INFORMATION_CLASS information, LPVOID out,
                                DWORD size, LPDWORD needed) {
  const tInside inside;
  constexpr auto kCall = tCall::getTokenInformation;
  expectSupported(token == GetCurrentThreadEffectiveToken() && information == TokenIntegrityLevel,
                  kCall, "only the integrity level of the calling thread is queried");
  if (const auto error = faultPlan().enter(kCall)) {
    SetLastError(*error);
    return FALSE;
  }
  *needed = sizeof(TOKEN_MANDATORY_LABEL) + sizeof(SID);
  if (size < *needed) {
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return FALSE;
  }
  auto* const label = static_cast<TOKEN_MANDATORY_LABEL*>(out);
  auto* const sid = reinterpret_cast<SID*>(label + 1);
  *sid = SID{SID_REVISION, 1, {SECURITY_MANDATORY_LABEL_AUTHORITY}, {disk().integrityLevel()}};
  label->Label = {sid, SE_GROUP_INTEGRITY | SE_GROUP_INTEGRITY_ENABLED};
  return TRUE;
}

BOOL WINAPI ConvertStringSecurityDescriptorToSecurityDescriptorW(LPCWSTR text, DWORD revision,
                                                                 PSECURITY_DESCRIPTOR* descriptor,
                                                                 PULONG size) {
  const tInside inside;
  constexpr auto kCall = tCall::convertSecurityDescriptor;
  expectSupported(revision == SDDL_REVISION_1 && size == nullptr, kCall, "the one revision");
  if (const auto error = faultPlan().enter(kCall)) {
    SetLastError(*error);
    return FALSE;
  }
  std::string narrow;
  for (; *text != 0; ++text) {
    narrow.push_back(static_cast<char>(*text));
  }
  if (!isKnownForm(narrow)) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  *descriptor = new tDescriptor{narrow};
  return TRUE;
}

// The library passes only security descriptors to LocalFree.
HLOCAL WINAPI LocalFree(HLOCAL memory) {
  const tInside inside;
  const std::unique_ptr<tDescriptor> owned(static_cast<tDescriptor*>(memory));
  return nullptr;
}

BOOL WINAPI SetKernelObjectSecurity(HANDLE handle, SECURITY_INFORMATION parts,
                                    PSECURITY_DESCRIPTOR descriptor) {
  const tInside inside;
  constexpr auto kCall = tCall::setKernelObjectSecurity;
  if (const auto error = faultPlan().enter(kCall)) {
    SetLastError(*error);
    return FALSE;
  }
  const std::lock_guard lock(objects().mutex);
  const tDiskFile* const file = objects().find<tDiskFile>(handle);
  if (file == nullptr) {
    stop(nameOf(kCall), "not a file or folder, or one that was closed");
  }
  constexpr DWORD kNeeded = WRITE_DAC | WRITE_OWNER;
  if ((file->access & kNeeded) != kNeeded) {
    SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
  }
  disk().noteProtection({file->path.string(), textOf(descriptor), false, parts});
  return TRUE;
}

extern "C" {
ssize_t __real_getrandom(void* bytes, size_t count, unsigned flags);
ssize_t __wrap_getrandom(void* bytes, size_t count, unsigned flags);
}

ssize_t __wrap_getrandom(void* bytes, size_t count, unsigned flags) {
  const tInside inside;
  if (const auto error = faultPlan().enter(tCall::getRandom)) {
    const bool isMemory = *error == ERROR_NOT_ENOUGH_MEMORY || *error == ERROR_NO_SYSTEM_RESOURCES;
    errno = isMemory ? ENOMEM : EIO;
    return -1;
  }
  return __real_getrandom(bytes, count, flags);
}
