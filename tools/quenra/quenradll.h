// The interfaces to the library, implemented by calls of quenra.dll and of Windows.
#ifndef TOOLS_QUENRA_QUENRADLL_H
#define TOOLS_QUENRA_QUENRADLL_H

#include <windows.h>
// setupapi.h requires windows.h before it.
#include <setupapi.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "protocol/interfaces.h"
#include "quenra.h"
#include "quenra_routing.h"
#include "tools/quenra/reading/iquenra.h"
#include "tools/quenra/routing/irouting.h"

namespace nCommandLine {

class tQuenraLibrary final : public iQuenra {
 public:
  int32_t openController(uint64_t* handle) noexcept override {
    return QUENRA_openController(handle);
  }
  void closeController(uint64_t handle) noexcept override { QUENRA_closeController(handle); }
  int32_t getAttributeUTF8(uint64_t handle, uint32_t attribute, char* buffer,
                           uint64_t* size) noexcept override {
    return QUENRA_getAttributeUTF8(handle, attribute, buffer, size);
  }
  int32_t getAttributeU32(uint64_t handle, uint32_t attribute, uint32_t* value) noexcept override {
    return QUENRA_getAttributeU32(handle, attribute, value);
  }
  int32_t setAttributeUTF8(uint64_t handle, uint32_t attribute,
                           const char* text) noexcept override {
    return QUENRA_setAttributeUTF8(handle, attribute, text);
  }
  int32_t setAttributeU32(uint64_t handle, uint32_t attribute, uint32_t value) noexcept override {
    return QUENRA_setAttributeU32(handle, attribute, value);
  }
  int32_t updateFirmware2(uint64_t handle, const void* image, uint64_t size,
                          uint32_t options) noexcept override {
    return QUENRA_updateFirmware2(handle, image, size, options);
  }
  int32_t performSelfTest(uint64_t handle) noexcept override {
    return QUENRA_performSelfTest(handle);
  }
  [[nodiscard]] uint32_t presentInterfaces(tInterface which) const noexcept override {
    return countPresent(which == tInterface::marten ? kMartenInterfaceClass
                                                    : kControllerInterfaceClass);
  }

 private:
  static uint32_t countPresent(const tInterfaceClass& interfaceClass) noexcept {
    const auto guid = std::bit_cast<GUID>(interfaceClass);
    const HDEVINFO set =
        SetupDiGetClassDevsA(&guid, nullptr, nullptr, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
    if (set == INVALID_HANDLE_VALUE) {
      return 0;
    }
    SP_DEVICE_INTERFACE_DATA data{};
    data.cbSize = sizeof data;
    uint32_t count = 0;
    while (SetupDiEnumDeviceInterfaces(set, nullptr, &guid, count, &data)) {
      ++count;
    }
    SetupDiDestroyDeviceInfoList(set);
    return count;
  }
};

class tInstallation final : public iInstallation {
 public:
  [[nodiscard]] std::string libraryVersion() override {
    const HMODULE library = GetModuleHandleW(L"quenra.dll");
    const HRSRC place = FindResourceA(library, MAKEINTRESOURCEA(VS_VERSION_INFO), RT_VERSION);
    const HGLOBAL resource = place == nullptr ? nullptr : LoadResource(library, place);
    const std::string_view bytes =
        resource == nullptr ? std::string_view()
                            : std::string_view(static_cast<const char*>(LockResource(resource)),
                                               SizeofResource(library, place));
    return versionIn(bytes);
  }
  [[nodiscard]] bool isAdministrator() noexcept override {
    std::array<std::byte, SECURITY_MAX_SID_SIZE> administrators{};
    DWORD size = administrators.size();
    BOOL isMember = FALSE;
    return CreateWellKnownSid(WinBuiltinAdministratorsSid, nullptr, administrators.data(), &size) &&
           CheckTokenMembership(nullptr, administrators.data(), &isMember) && isMember;
  }

 private:
  // The fixed part of a version resource begins with a signature, aligned to 32 bits.
  static std::string versionIn(std::string_view resource) {
    VS_FIXEDFILEINFO info{};
    for (size_t at = 0; at + sizeof info <= resource.size(); at += sizeof(DWORD)) {
      std::memcpy(&info, resource.data() + at, sizeof info);
      if (info.dwSignature == kVersionSignature) {
        return std::to_string(HIWORD(info.dwFileVersionMS)) + "." +
               std::to_string(LOWORD(info.dwFileVersionMS)) + "." +
               std::to_string(HIWORD(info.dwFileVersionLS));
      }
    }
    return "";
  }

  static constexpr DWORD kVersionSignature = 0xFEEF04BD;
};

class tQuenraRouting final : public iRouting {
 public:
  tSession* createSession(const char* device, zoroco_Reallocate reallocate,
                          zoroco_DemotionCallback callback, void* context,
                          zoerr_Status* status) noexcept override {
    return zoroco_ra_quenra_createSessionWithDemotionFunc(device, reallocate, callback, context,
                                                          status);
  }
  void destroySession(tSession* session) noexcept override {
    zoroco_ra_quenra_destroySession(session);
  }
  void calculateRoute(tSession* session, const char* seeds, const char* destinations,
                      const char* modifiers, char** output,
                      zoerr_Status* status) noexcept override {
    zoroco_ra_quenra_calculateRoute(session, seeds, destinations, modifiers, output, status);
  }
  void reserveRoute(tSession* session, uint32_t ticket, char** output,
                    zoerr_Status* status) noexcept override {
    zoroco_ra_quenra_reserveRoute(session, ticket, output, status);
  }
  void programRoute(tSession* session, uint32_t ticket, zoerr_Status* status) noexcept override {
    zoroco_ra_quenra_programRoute(session, ticket, status);
  }
  void unprogramRoute(tSession* session, uint32_t ticket) noexcept override {
    zoroco_ra_quenra_unprogramRoute(session, ticket, 0, 0);
  }
  void unreserveRoute(tSession* session, uint32_t ticket) noexcept override {
    zoroco_ra_quenra_unreserveRoute(session, ticket, 0, 0);
  }
  void destroyRoute(tSession* session, uint32_t ticket) noexcept override {
    zoroco_ra_quenra_destroyRoute(session, ticket, 0, 0);
  }
  void beginExceptionalRouteDestruction(tSession* session, uint32_t ticket) noexcept override {
    zoroco_ra_quenra_beginExceptionalRouteDestruction(session, ticket, 0, 0);
  }
  void getRouteTerminalPath(tSession* session, uint32_t ticket, char** output,
                            zoerr_Status* status) noexcept override {
    zoroco_ra_quenra_getRouteTerminalPath(session, ticket, output, status);
  }
  tIterator* getAllTerminals(tSession* session, zoerr_Status* status) noexcept override {
    return zoroco_ra_quenra_getAllTerminals(session, status, 0);
  }
  void next(tIterator* iterator, zoerr_Status* status) noexcept override {
    zoroco_ra_quenra_TerminalIterator_next(iterator, status);
  }
  bool isEnd(tIterator* iterator) noexcept override {
    return zoroco_ra_quenra_TerminalIterator_isEnd(iterator);
  }
  const char* getStringAttribute(tIterator* iterator, const char* name,
                                 zoerr_Status* status) noexcept override {
    return zoroco_ra_quenra_TerminalIterator_getStringAttribute(iterator, name, status);
  }
  bool getBoolAttribute(tIterator* iterator, const char* name,
                        zoerr_Status* status) noexcept override {
    return zoroco_ra_quenra_TerminalIterator_getBoolAttribute(iterator, name, status);
  }
  uint32_t getU32Attribute(tIterator* iterator, const char* name,
                           zoerr_Status* status) noexcept override {
    return zoroco_ra_quenra_TerminalIterator_getU32Attribute(iterator, name, status);
  }
  void destroyIterator(tIterator* iterator) noexcept override {
    zoroco_ra_quenra_TerminalIterator_destroy(iterator);
  }
};

}  // namespace nCommandLine

#endif
