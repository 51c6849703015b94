#ifndef ZOAPAL_PROTONS_ENUMERATION_WINDOWS_TDEVICEINTERFACEITERATOR_H
#define ZOAPAL_PROTONS_ENUMERATION_WINDOWS_TDEVICEINTERFACEITERATOR_H

#include <windows.h>
// setupapi.h needs windows.h first.
#include <setupapi.h>

#include "protocol/interfaces.h"
#include "zoapal/protons/driver/windowsu/tdeviceinterfaceproxy.h"
#include "zoapal/protons/handles/windowsu/tuniquehandle.h"

namespace nQUENRA1400::nZOAPAL000 {

struct tDeviceInformationSetPolicy {
  using tHandle = HDEVINFO;
  static tHandle none() noexcept { return INVALID_HANDLE_VALUE; }
  static void close(tHandle set) noexcept { SetupDiDestroyDeviceInfoList(set); }
};

// Walks the present device interfaces of one class:
//
//   for (tDeviceInterfaceIterator i(interfaceClass, status); !i.isEnd(); i.next()) { ... }
//
// No present interface is not an error: the iterator is at its end from the start. Failures are
// mapped Windows errors, located at "tdeviceinterfaceiterator".
class tDeviceInterfaceIterator {
 public:
  tDeviceInterfaceIterator(const tInterfaceClass& interfaceClass,
                           nZOAPALS100::tStatus& status) noexcept;
  tDeviceInterfaceIterator(const tDeviceInterfaceIterator&) = delete;
  tDeviceInterfaceIterator& operator=(const tDeviceInterfaceIterator&) = delete;

  [[nodiscard]] bool isEnd() const noexcept { return !found_; }
  void next() noexcept;

  // The path of the current interface, at most 251 characters; fetched once. Empty on failure:
  // kPathTooLong for a longer path, kInvalidParameter at the end, otherwise the mapped Windows error.
  [[nodiscard]] const tDevicePath& getDevicePath(nZOAPALS100::tStatus& status) noexcept;

  // Opens the proxy on the current interface.
  void openCurrent(tDeviceInterfaceProxy& proxy, nZOAPALS100::tStatus& status) noexcept;

 private:
  void findCurrent() noexcept;

  GUID interfaceClass_;
  tUniqueHandle<tDeviceInformationSetPolicy> set_;
  DWORD index_ = 0;
  SP_DEVICE_INTERFACE_DATA interfaceData_{};
  bool found_ = false;
  tDevicePath path_;
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
