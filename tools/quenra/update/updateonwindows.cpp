#include "tools/quenra/update/updateonwindows.h"

#include <windows.h>
// Need the types of windows.h.
#include <aclapi.h>
#include <sddl.h>

#include <array>
#include <memory>
#include <string_view>

#include "source/user/preconditions/preconditions.h"
#include "source/user/update/driverpackage.h"
#include "tools/commandline/utf8text.h"
#include "tools/quenra/firmware/firmwareimage.h"

namespace nCommandLine {
namespace {

// The account of TrustedInstaller, the service that owns the files of Windows.
constexpr const wchar_t* kTrustedInstaller =
    L"S-1-5-80-956008885-3418522649-1831038044-1853292631-2271478464";

struct tLocalFree {
  void operator()(void* memory) const noexcept { LocalFree(memory); }
};
template <class Type>
using tLocal = std::unique_ptr<Type, tLocalFree>;

std::error_code windowsError(DWORD number) noexcept {
  return {static_cast<int>(number), std::system_category()};
}

std::string utf8(std::wstring_view text) {
  return utf8Word(std::u16string(text.begin(), text.end()));
}

std::string windowsFolder() {
  std::array<wchar_t, MAX_PATH> path{};
  // GetWindowsDirectory would return a private folder of the user on a terminal server.
  const UINT length = GetSystemWindowsDirectoryW(path.data(), static_cast<UINT>(path.size()));
  return length < path.size() ? utf8({path.data(), length}) : std::string();
}

// The security identifier is valid as long as the descriptor exists.
struct tOwner {
  tLocal<void> descriptor;
  PSID identifier = nullptr;
};

tOwner ownerOf(const wchar_t* path) noexcept {
  tOwner owner;
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  const DWORD error =
      GetNamedSecurityInfoW(path, SE_FILE_OBJECT, OWNER_SECURITY_INFORMATION, &owner.identifier,
                            nullptr, nullptr, nullptr, &descriptor);
  owner.descriptor.reset(descriptor);
  if (error != ERROR_SUCCESS) {
    owner.identifier = nullptr;
  }
  return owner;
}

tLocal<wchar_t> identifierText(PSID identifier) noexcept {
  LPWSTR text = nullptr;
  ConvertSidToStringSidW(identifier, &text);
  return tLocal<wchar_t>(text);
}

bool isSystemAccount(PSID identifier) noexcept {
  if (IsWellKnownSid(identifier, WinLocalSystemSid) ||
      IsWellKnownSid(identifier, WinBuiltinAdministratorsSid)) {
    return true;
  }
  const tLocal<wchar_t> text = identifierText(identifier);
  return text && std::wstring_view(text.get()) == kTrustedInstaller;
}

// The owner of the system files already controls the system, so it is trusted. On Windows it is
// TrustedInstaller; Wine has no such account.
bool ownsTheSystem(PSID identifier) noexcept {
  const tOwner owner = ownerOf(L"C:\\Windows\\System32\\kernel32.dll");
  return owner.identifier != nullptr && EqualSid(owner.identifier, identifier);
}

// DOMAIN\name, or the security identifier if the account was deleted.
std::string accountName(PSID identifier) {
  std::array<wchar_t, 256> name{};
  std::array<wchar_t, 256> domain{};
  DWORD nameSize = name.size();
  DWORD domainSize = domain.size();
  SID_NAME_USE use{};
  if (LookupAccountSidW(nullptr, identifier, name.data(), &nameSize, domain.data(), &domainSize,
                        &use)) {
    return utf8(domain.data()) + '\\' + utf8(name.data());
  }
  const tLocal<wchar_t> text = identifierText(identifier);
  return text ? utf8(text.get()) : std::string();
}

struct tFreeLibrary {
  void operator()(HMODULE module) const noexcept { FreeLibrary(module); }
};

// Maps the program without running it: a file that is not a program fails with the same error as
// when the system starts it.
std::error_code startFailureOf(const char* path) noexcept {
  const std::unique_ptr<std::remove_pointer_t<HMODULE>, tFreeLibrary> program(
      LoadLibraryExA(path, nullptr, LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE));
  return program ? std::error_code() : windowsError(GetLastError());
}

std::wstring temporaryPath() {
  std::array<wchar_t, MAX_PATH + 1> path{};
  const DWORD length = GetTempPathW(static_cast<DWORD>(path.size()), path.data());
  return length < path.size() ? std::wstring(path.data(), length) : std::wstring();
}

}  // namespace

tDriveProtection tUpdateFacts::driveProtection() noexcept {
  zoerr::tOwnedStatus status;
  const bool isOn = nQUENRA1400::IsSystemDriveEncrypted(status);
  return {isOn, status.code, lineOf(status)};
}

tDriverStoreTool tUpdateFacts::driverStoreTool() {
  const char* const path = nQUENRA1400::kDriverStoreTool;
  tDriverStoreTool tool;
  tool.windowsFolder = windowsFolder();
  const DWORD attributes = GetFileAttributesA(path);
  tool.exists =
      attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
  if (tool.exists) {
    const std::string_view narrow(path);
    const tOwner owner = ownerOf(std::wstring(narrow.begin(), narrow.end()).c_str());
    tool.isSystemOwned = owner.identifier != nullptr &&
                         (isSystemAccount(owner.identifier) || ownsTheSystem(owner.identifier));
    tool.owner = owner.identifier == nullptr ? "" : accountName(owner.identifier);
    tool.startFailure = startFailureOf(path);
  }
  return tool;
}

std::string tUpdateFacts::temporaryFolder() {
  return utf8(temporaryPath());
}

std::error_code tUpdateFacts::temporaryFolderFailure() {
  const std::wstring folder = temporaryPath() + L"quenra-" + std::to_wstring(GetCurrentProcessId());
  if (!CreateDirectoryW(folder.c_str(), nullptr)) {
    return windowsError(GetLastError());
  }
  RemoveDirectoryW(folder.c_str());
  return {};
}

tLockState tUpdateLock::acquire(std::chrono::milliseconds timeout) noexcept {
  if (!mutex_) {
    mutex_.reset(CreateMutexW(nullptr, FALSE, L"Global\\quenra-firmware-update"));
  }
  const DWORD waited =
      mutex_ ? WaitForSingleObject(mutex_.get(), static_cast<DWORD>(timeout.count())) : WAIT_FAILED;
  switch (waited) {
    case WAIT_OBJECT_0:
      return tLockState::acquired;
    case WAIT_ABANDONED:
      return tLockState::abandoned;
    case WAIT_TIMEOUT:
      return tLockState::busy;
    default:
      failure_ = windowsError(GetLastError());
      return tLockState::failed;
  }
}

void tUpdateLock::release() noexcept {
  ReleaseMutex(mutex_.get());
}

}  // namespace nCommandLine
