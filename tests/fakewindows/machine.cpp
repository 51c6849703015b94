#include "tests/fakewindows/machine.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>

#include "tests/fakewindows/faultplan.h"
#include "tests/fakewindows/objects.h"

namespace nFakeWindows {
namespace {

struct tKind {
  tSimulatorInterface kind;
  const tInterfaceClass& interfaceClass;
  const char* name;
  uint32_t tSimulatorPresence::*count;  // null: always one
};
constexpr tKind kKinds[] = {
    {kSimulatorInterfaceController, kControllerInterfaceClass, "controller",
     &tSimulatorPresence::controllers},
    {kSimulatorInterfaceMarten, kMartenInterfaceClass, "marten", &tSimulatorPresence::martens},
    {kSimulatorInterfaceDevicePath, kDevicePathInterfaceClass, "devicepath",
     &tSimulatorPresence::devicePaths},
    {kSimulatorInterfaceControl, kSimulatorControlInterfaceClass, "control", nullptr},
};

bool areEqual(const tInterfaceClass& left, const tInterfaceClass& right) {
  return std::memcmp(&left, &right, sizeof left) == 0;
}

const tKind& kindOf(tSimulatorInterface kind) {
  return *std::find_if(std::begin(kKinds), std::end(kKinds),
                       [kind](const tKind& candidate) { return candidate.kind == kind; });
}

std::string defaultPath(const tDeviceInterface& device) {
  const tKind& kind = kindOf(device.kind);
  const tInterfaceClass& c = kind.interfaceClass;
  std::array<char, 128> path{};
  std::snprintf(path.data(), path.size(),
                "\\\\?\\root#quenra_%s#%u#{%08x-%04x-%04x-%02x%02x-%02x%02x%02x%02x%02x%02x}",
                kind.name, device.index, c.data1, c.data2, c.data3, c.data4[0], c.data4[1],
                c.data4[2], c.data4[3], c.data4[4], c.data4[5], c.data4[6], c.data4[7]);
  return path.data();
}

void* pointerTo(uint64_t address) {
  return reinterpret_cast<void*>(static_cast<uintptr_t>(address));
}

}  // namespace

tMachine& machine() {
  // Never destroyed: the library under test may still close handles while the program ends.
  static tMachine& theMachine = *new tMachine;
  return theMachine;
}

tMachine::tMachine() {
  reset();
}

void tMachine::reset() {
  const std::lock_guard lock(mutex_);
  const tModelHost host = {this,
                           &tMachine::readCaller,
                           &tMachine::writeCaller,
                           &tMachine::signalEvent,
                           &tMachine::completeRequest,
                           &tMachine::presenceChanged};
  modelInitialise(&model_, &host);
  driver_ = nullptr;
  transferDriver_ = {};
  paths_.clear();
  unreachable_.clear();
  firmwareTable_.clear();
  firmwareError_ = 0;
}

std::vector<tDeviceInterface> tMachine::present(const tInterfaceClass& interfaceClass) {
  const std::lock_guard lock(mutex_);
  std::vector<tDeviceInterface> found;
  for (const tKind& kind : kKinds) {
    if (areEqual(kind.interfaceClass, interfaceClass)) {
      const uint32_t count = kind.count == nullptr ? 1 : presence_.*kind.count;
      for (uint32_t index = 0; index < count; ++index) {
        found.push_back({kind.kind, index});
      }
    }
  }
  return found;
}

void tMachine::usePresence(const tSimulatorPresence& presence) {
  const std::lock_guard lock(mutex_);
  presence_ = presence;
}

std::string tMachine::pathOf(const tDeviceInterface& device) {
  const std::lock_guard lock(mutex_);
  const auto own = paths_.find(device);
  return own == paths_.end() ? defaultPath(device) : own->second;
}

void tMachine::usePath(const tDeviceInterface& device, const std::string& path) {
  const std::lock_guard lock(mutex_);
  paths_[device] = path;
}

std::optional<tDeviceInterface> tMachine::findPath(const std::string& path) {
  for (const tKind& kind : kKinds) {
    for (const tDeviceInterface& device : present(kind.interfaceClass)) {
      if (pathOf(device) == path) {
        return device;
      }
    }
  }
  return std::nullopt;
}

tModelFile tMachine::open(const tDeviceInterface& device) {
  const std::lock_guard lock(mutex_);
  const tModelFile file = {nextFile_++, kFakeProcess, device.kind};
  modelOpen(&model_, &file);
  return file;
}

void tMachine::cleanUp(const tModelFile& file) {
  const std::lock_guard lock(mutex_);
  modelCleanUp(&model_, &file);
}

void tMachine::close(const tModelFile& file) {
  const std::lock_guard lock(mutex_);
  modelClose(&model_, &file);
}

tModelReply tMachine::request(const tModelRequest& request) {
  const std::lock_guard lock(mutex_);
  const tModelReply reply = modelRequest(&model_, &request);
  if (reply.windowsError == ERROR_IO_PENDING) {
    modelPended(&model_, request.token);
  }
  return reply;
}

void tMachine::useDriver(tDriver driver) {
  const std::lock_guard lock(mutex_);
  driver_ = std::move(driver);
}

void tMachine::useTransferDriver(tTransferDriver driver) {
  const std::lock_guard lock(mutex_);
  transferDriver_ = std::move(driver);
}

tModelReply tMachine::read(std::span<uint8_t> buffer) {
  std::function<tModelReply(std::span<uint8_t>)> reader;
  {
    const std::lock_guard lock(mutex_);
    reader = transferDriver_.read;
  }
  return reader ? reader(buffer) : tModelReply{ERROR_INVALID_FUNCTION, 0};
}

tModelReply tMachine::write(std::span<const uint8_t> buffer) {
  std::function<tModelReply(std::span<const uint8_t>)> writer;
  {
    const std::lock_guard lock(mutex_);
    writer = transferDriver_.write;
  }
  return writer ? writer(buffer) : tModelReply{ERROR_INVALID_FUNCTION, 0};
}

tModelReply tMachine::answer(const tModelRequest& received) {
  tDriver driver;
  {
    const std::lock_guard lock(mutex_);
    driver = driver_;
  }
  const auto kind = static_cast<tSimulatorInterface>(received.file.interfaceKind);
  if (!driver || kind == kSimulatorInterfaceControl) {
    return request(received);
  }
  // Not locked: a test's driver may block, and may call the model.
  return driver({kind,
                 received.code,
                 {static_cast<const uint8_t*>(received.input), received.inputSize},
                 {static_cast<uint8_t*>(received.output), received.outputSize},
                 [this, &received] { return request(received); }});
}

bool tMachine::cancel(uint64_t token) {
  const std::lock_guard lock(mutex_);
  return modelCancel(&model_, token);
}

void tMachine::makeUnreachable(const void* memory, uint64_t size) {
  const std::lock_guard lock(mutex_);
  unreachable_.push_back({reinterpret_cast<uintptr_t>(memory), size});
}

void tMachine::useFirmwareTable(std::vector<uint8_t> raw, uint32_t error) {
  const std::lock_guard lock(mutex_);
  firmwareTable_ = std::move(raw);
  firmwareError_ = error;
}

std::vector<uint8_t> tMachine::firmwareTable() {
  const std::lock_guard lock(mutex_);
  return firmwareTable_;
}

uint32_t tMachine::firmwareError() {
  const std::lock_guard lock(mutex_);
  return firmwareError_;
}

bool tMachine::isReachable(uint64_t address, uint32_t size) const {
  constexpr uint64_t kFirstUsable = 0x10000;  // as on Windows
  return address >= kFirstUsable &&
         std::none_of(unreachable_.begin(), unreachable_.end(), [=](const tRange& range) {
           return address < range.address + range.size && range.address < address + size;
         });
}

bool tMachine::readCaller(void* context, uint64_t process, uint64_t address, void* destination,
                          uint32_t size) {
  if (process != kFakeProcess) {
    stop("tMachine", "the model accesses the memory of another process");
  }
  if (!static_cast<tMachine*>(context)->isReachable(address, size)) {
    return false;
  }
  std::memcpy(destination, pointerTo(address), size);
  return true;
}

bool tMachine::writeCaller(void* context, uint64_t process, uint64_t address, const void* source,
                           uint32_t size) {
  if (process != kFakeProcess) {
    stop("tMachine", "the model accesses the memory of another process");
  }
  if (!static_cast<tMachine*>(context)->isReachable(address, size)) {
    return false;
  }
  std::memcpy(pointerTo(address), source, size);
  return true;
}

bool tMachine::signalEvent(void*, uint64_t, uint64_t event) {
  return objects().signal(pointerTo(event));
}

void tMachine::completeRequest(void*, uint64_t token, uint32_t windowsError, const void* output,
                               uint32_t size) {
  const std::lock_guard lock(objects().mutex);
  OVERLAPPED& overlapped = *static_cast<OVERLAPPED*>(pointerTo(token));
  objects().handOver(overlapped, output, size);
  objects().complete(overlapped, windowsError, size);
}

void tMachine::presenceChanged(void* context, const tSimulatorPresence* presence) {
  static_cast<tMachine*>(context)->presence_ = *presence;
}

}  // namespace nFakeWindows

using namespace nFakeWindows;

UINT WINAPI GetSystemFirmwareTable(DWORD provider, DWORD id, PVOID buffer, DWORD size) {
  const tInside inside;
  constexpr auto kCall = tCall::getSystemFirmwareTable;
  expectSupported(provider == 0x52534D42 && id == 0, kCall, "only 'RSMB', table 0, exists");
  expectSupported(buffer != nullptr || size == 0, kCall, "a size without a buffer");
  if (const auto error = faultPlan().enter(kCall, std::to_string(size))) {
    SetLastError(*error);
    return 0;
  }
  const std::vector<uint8_t> table = machine().firmwareTable();
  if (table.empty()) {
    SetLastError(machine().firmwareError());
    return 0;
  }
  if (size < table.size()) {
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
  } else {
    std::copy(table.begin(), table.end(), static_cast<uint8_t*>(buffer));
  }
  return static_cast<UINT>(table.size());
}
