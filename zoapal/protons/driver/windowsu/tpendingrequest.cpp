#include "zoapal/protons/driver/windowsu/tpendingrequest.h"

#include <limits>
#include <new>
#include <utility>

#include "protocol/pendingrequests.h"
#include "zoapal/protons/driver/windowsu/transfer.h"
#include "zoapal/protons/status/win32error.h"
#include "zoapal/protons/thread/windowsu/tthread.h"

namespace nQUENRA1400::nZOAPAL000 {
namespace {

using nZOAPALS100::tStatus;

constexpr uint32_t kAllocateLine = 246;
constexpr uint32_t kStartWorkerLine = 264;

// Blocks until the request completes. Has an event of its own, so that other transfers of the proxy
// can start and end meanwhile.
void sendPendingRequest(tPendingWork& work) noexcept {
  const tUniqueEvent completed(CreateEventA(nullptr, TRUE, FALSE, nullptr));
  if (!completed) {
    mergeWin32Failure(GetLastError(), work.status, kTransferFile, kDeviceControlLines.afterTheCall);
  } else if (work.wide) {
    controlDevice(work.file, completed.get(), REQUEST_PENDING_WIDE, &work.wideForm,
                  sizeof work.wideForm, nullptr, 0, work.status);
  } else {
    controlDevice(work.file, completed.get(), REQUEST_PENDING_NARROW, &work.narrowForm,
                  sizeof work.narrowForm, nullptr, 0, work.status);
  }
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
    mergeStatus(status, nZOAPALS100::kMemoryFull, "quenra", kTransferFile, kAllocateLine);
    return nullptr;
  }
}

tUniqueThread startWorker(const std::shared_ptr<tPendingWork>& work, tStatus& status) noexcept {
  work->workersShare = work;
  DWORD id = 0;
  tUniqueThread worker = startThread<&runWorker>(work.get(), id);
  if (!worker) {
    mergeWin32Failure(GetLastError(), status, kTransferFile, kStartWorkerLine);
    work->workersShare.reset();
  }
  return worker;
}

}  // namespace nQUENRA1400::nZOAPAL000
