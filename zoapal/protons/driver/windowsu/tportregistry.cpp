#include "zoapal/protons/driver/windowsu/tportregistry.h"

#include <algorithm>
#include <new>
#include <utility>

#include "zoapal/protons/driver/windowsu/transfer.h"

namespace nQUENRA1400::nZOAPAL000 {
namespace {

// As the driver names a notification.
uint64_t addressOf(const tIONotification* notification) noexcept {
  return reinterpret_cast<uintptr_t>(notification);
}

}  // namespace

tPortRegistry::tEntries::iterator tPortRegistry::find(const tPortRequest& request) noexcept {
  return std::find_if(entries_.begin(), entries_.end(),
                      [&request](const tEntry& entry) { return entry.request.get() == &request; });
}

bool tPortRegistry::add(std::shared_ptr<tPortRequest> request) noexcept {
  const tGuard guard(lock_);
  try {
    entries_.push_back({std::move(request)});
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

bool tPortRegistry::markSent(const tPortRequest& request) noexcept {
  const tGuard guard(lock_);
  const auto found = find(request);
  if (found == entries_.end() || found->state != tState::idle) {
    return false;
  }
  found->state = tState::sent;
  return true;
}

void tPortRegistry::markIdle(const tPortRequest& request) noexcept {
  const tGuard guard(lock_);
  if (const auto found = find(request); found != entries_.end()) {
    found->state = tState::idle;
    if (found->isRemoved) {
      entries_.erase(found);
    }
  }
}

void tPortRegistry::remove(const tPortRequest& request) noexcept {
  const tGuard guard(lock_);
  if (const auto found = find(request); found != entries_.end()) {
    found->isRemoved = true;
    if (found->state == tState::idle) {
      entries_.erase(found);
    }
  }
}

tDequeued tPortRegistry::resolve(const OVERLAPPED* overlapped) noexcept {
  const tGuard guard(lock_);
  const auto found = std::find_if(entries_.begin(), entries_.end(), [=](const tEntry& entry) {
    return &entry.request->overlapped == overlapped && entry.state == tState::sent;
  });
  if (found == entries_.end() || isPending(found->request->overlapped)) {
    return {};
  }
  found->state = tState::dequeued;
  return {found->request, found->request->notification};
}

void tPortRegistry::cancelEntry(const tEntry& entry) noexcept {
  if (entry.state == tState::sent && entry.request->file != INVALID_HANDLE_VALUE) {
    CancelIoEx(entry.request->file, &entry.request->overlapped);
  }
}

void tPortRegistry::cancel(const tPortRequest& request) noexcept {
  const tGuard guard(lock_);
  if (const auto found = find(request); found != entries_.end()) {
    cancelEntry(*found);
  }
}

bool tPortRegistry::cancelAll() noexcept {
  const tGuard guard(lock_);
  bool isAnySent = false;
  for (const tEntry& entry : entries_) {
    cancelEntry(entry);
    isAnySent |= entry.state == tState::sent;
  }
  return isAnySent;
}

void tPortRegistry::detach(HANDLE file) noexcept {
  const tGuard guard(lock_);
  for (tEntry& entry : entries_) {
    if (entry.request->file == file) {
      cancelEntry(entry);
      entry.request->file = INVALID_HANDLE_VALUE;
      entry.isRemoved = true;
    }
  }
  std::erase_if(entries_,
                [](const tEntry& entry) { return entry.isRemoved && entry.state == tState::idle; });
}

void tPortRegistry::abandon(std::shared_ptr<tPortRegistry> registry) noexcept {
  tPortRegistry& abandoned = *registry;
  const tGuard guard(abandoned.lock_);
  abandoned.self_ = std::move(registry);
}

bool tPortRegistry::add(tIONotification& notification) noexcept {
  const tGuard guard(lock_);
  try {
    if (std::find(notifications_.begin(), notifications_.end(), &notification) ==
        notifications_.end()) {
      notifications_.push_back(&notification);
    }
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

void tPortRegistry::remove(const tIONotification& notification) noexcept {
  const tGuard guard(lock_);
  std::erase(notifications_, &notification);
  for (const tEntry& entry : entries_) {
    if (entry.request->notification == &notification) {
      entry.request->notification = nullptr;
    }
  }
}

tIONotification* tPortRegistry::find(uint64_t address) noexcept {
  const tGuard guard(lock_);
  const auto found = std::find_if(
      notifications_.begin(), notifications_.end(),
      [address](const tIONotification* candidate) { return addressOf(candidate) == address; });
  return found == notifications_.end() ? nullptr : *found;
}

}  // namespace nQUENRA1400::nZOAPAL000
