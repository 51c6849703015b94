#include "zoapal/protons/enumeration/windows/tdeviceinterfaceiterator.h"

#include <bit>
#include <cstddef>
#include <cstring>

namespace nQUENRA1400::nZOAPAL000 {
namespace {

using nZOAPALS100::tSourceLocation;
using nZOAPALS100::tStatus;

constexpr const char* kFile = "tdeviceinterfaceiterator";
constexpr tSourceLocation kCreateSet{kFile, 45};
constexpr tSourceLocation kPathDoesNotFit{kFile, 224};
constexpr tSourceLocation kGetDetail{kFile, 232};

static_assert(sizeof(GUID) == sizeof(tInterfaceClass));
static_assert(sizeof(SP_DEVICE_INTERFACE_DATA) == 32);

// The detail record of an interface: a size field, which counts the record's fixed part and not the
// path, and the path right after it.
class tDetailArea {
 public:
  static constexpr DWORD kSize = tDevicePath::kCapacity;

  tDetailArea() noexcept {
    constexpr DWORD kFixedPart = sizeof(SP_DEVICE_INTERFACE_DETAIL_DATA_A);
    static_assert(kFixedPart == 8);
    std::memcpy(bytes_, &kFixedPart, sizeof kFixedPart);
  }
  [[nodiscard]] SP_DEVICE_INTERFACE_DETAIL_DATA_A* record() noexcept {
    return static_cast<SP_DEVICE_INTERFACE_DETAIL_DATA_A*>(static_cast<void*>(bytes_));
  }
  void copyPathTo(tDevicePath& path) const noexcept {
    constexpr size_t kPathOffset = offsetof(SP_DEVICE_INTERFACE_DETAIL_DATA_A, DevicePath);
    const size_t length = strnlen(bytes_ + kPathOffset, kSize - kPathOffset);
    std::memcpy(path.text, bytes_ + kPathOffset, length);
    path.text[length] = '\0';
    path.length = static_cast<uint32_t>(length + 1);
  }

 private:
  alignas(SP_DEVICE_INTERFACE_DETAIL_DATA_A) char bytes_[kSize] = {};
};

}  // namespace

tDeviceInterfaceIterator::tDeviceInterfaceIterator(const tInterfaceClass& interfaceClass,
                                                   tStatus& status) noexcept
    : interfaceClass_(std::bit_cast<GUID>(interfaceClass)) {
  interfaceData_.cbSize = sizeof interfaceData_;
  if (status.isError()) {
    return;
  }
  set_.reset(SetupDiGetClassDevsA(&interfaceClass_, nullptr, nullptr,
                                  DIGCF_PRESENT | DIGCF_DEVICEINTERFACE));
  if (!set_) {
    mergeWin32Failure(GetLastError(), status, kCreateSet);
    return;
  }
  findCurrent();
}

void tDeviceInterfaceIterator::findCurrent() noexcept {
  found_ = SetupDiEnumDeviceInterfaces(set_.get(), nullptr, &interfaceClass_, index_,
                                       &interfaceData_) != FALSE;
}

void tDeviceInterfaceIterator::next() noexcept {
  path_.text[0] = '\0';
  path_.length = 0;
  if (set_) {
    ++index_;
    findCurrent();
  }
}

const tDevicePath& tDeviceInterfaceIterator::getDevicePath(tStatus& status) noexcept {
  if (status.isError() || !path_.isEmpty()) {
    return path_;
  }
  if (isEnd()) {
    // The error that Windows reports for an interface that it has not enumerated. A query with the data of
    // the last interface would return that interface's path again.
    mergeWin32Failure(ERROR_INVALID_PARAMETER, status, kGetDetail);
    return path_;
  }
  tDetailArea detail;
  DWORD required = 0;
  const BOOL done = SetupDiGetDeviceInterfaceDetailA(set_.get(), &interfaceData_, detail.record(),
                                                     tDetailArea::kSize, &required, nullptr);
  const DWORD error = done ? ERROR_SUCCESS : GetLastError();
  if (required > tDetailArea::kSize) {
    mergeStatus(status, nZOAPALS100::kPathTooLong, kPathDoesNotFit);
  } else if (!done) {
    mergeWin32Failure(error, status, kGetDetail);
  } else {
    detail.copyPathTo(path_);
  }
  return path_;
}

void tDeviceInterfaceIterator::openCurrent(tDeviceInterfaceProxy& proxy, tStatus& status) noexcept {
  // After a failed fetch the proxy does nothing, because of the error in the status.
  proxy.open(getDevicePath(status), status);
}

}  // namespace nQUENRA1400::nZOAPAL000
