#include "zoapal/protons/driver/windowsu/tpendingrequest.h"

#include <limits>
#include <new>
#include <utility>

#include "protocol/pendingrequests.h"
#include "zoapal/protons/driver/windowsu/transfer.h"
#include "zoapal/protons/thread/windowsu/tthread.h"

namespace nQUENRA1400::nZOAPAL000 {
namespace {

using nZOAPALS100::tStatus;

constexpr nZOAPALS100::tSourceLocation kAllocate{kTransferFile, 246};
constexpr nZOAPALS100::tSourceLocation kStartWorker{kTransferFile, 264};

// Blocks until the request completes. Has an event of its own, so that other transfers of the proxy
// can start and end meanwhile.
void sendPendingRequest(tPendingWork& work) noexcept {
  const DWORD code = work.wide ? REQUEST_PENDING_WIDE : REQUEST_PENDING_NARROW;
  void* const form = work.wide ? static_cast<void*>(&work.wideForm) : &work.narrowForm;
  const DWORD size = work.wide ? sizeof work.wideForm : sizeof work.narrowForm;
  const tUniqueEvent completed(CreateEventA(nullptr, TRUE, FALSE, nullptr));
  transfer(work.file, completed.get(), kDeviceControlSites, work.status,
           [=, &work](OVERLAPPED* overlapped, DWORD* bytes) noexcept {
             return DeviceIoControl(work.file, code, form, size, nullptr, 0, bytes, overlapped);
           });
}

void runWorker(void* argument) noexcept {
  const std::shared_ptr<tPendingWork> work =
      std::move(static_cast<tPendingWork*>(argument)->workersShare);
  sendPendingRequest(*work);
}

uint64_t numberOf(const void* pointer) noexcept {
  return reinterpret_cast<uintptr_t>(pointer);
}

}  // namespace

std::shared_ptr<tPendingWork> makePendingWork(HANDLE file, HANDLE accepted, uint16_t a, uint64_t b,
                                              uint8_t c, tStatus& status) noexcept {
  try {
    auto work = std::make_shared<tPendingWork>();
    work->file = file;
    work->wide = b > std::numeric_limits<uint32_t>::max();
    const uint64_t handleAddress = numberOf(&work->handle);
    work->narrowForm = {handleAddress, numberOf(accepted), static_cast<uint32_t>(b), a, c, 0};
    work->wideForm = {handleAddress, numberOf(accepted), b, a, c, {}};
    return work;
  } catch (const std::bad_alloc&) {
    mergeStatus(status, nZOAPALS100::kMemoryFull, kAllocate);
    return nullptr;
  }
}

tUniqueThread startWorker(const std::shared_ptr<tPendingWork>& work, tStatus& status) noexcept {
  work->workersShare = work;
  DWORD id = 0;
  tUniqueThread worker = startThread<&runWorker>(work.get(), id);
  if (!worker) {
    mergeWin32Failure(GetLastError(), status, kStartWorker);
    work->workersShare.reset();
  }
  return worker;
}

}  // namespace nQUENRA1400::nZOAPAL000
