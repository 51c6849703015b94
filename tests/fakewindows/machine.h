#ifndef TESTS_FAKEWINDOWS_MACHINE_H
#define TESTS_FAKEWINDOWS_MACHINE_H

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <tuple>
#include <vector>

#include "protocol/interfaces.h"
#include "simulator/model/model.h"

namespace nFakeWindows {

// A device interface that is present.
struct tDeviceInterface {
  tSimulatorInterface kind;
  uint32_t index;  // among those of its kind
  bool operator==(const tDeviceInterface&) const = default;
  bool operator<(const tDeviceInterface& other) const {
    return std::tie(kind, index) < std::tie(other.kind, other.index);
  }
};

// A device control request as a test's driver receives it. `output` has the size that the caller
// passed; the caller receives as many bytes as the reply reports. `byModel` may be called once.
struct tDriverRequest {
  tSimulatorInterface kind;
  uint32_t code;
  std::span<const uint8_t> input;
  std::span<uint8_t> output;
  std::function<tModelReply()> byModel;
};
using tDriver = std::function<tModelReply(const tDriverRequest& request)>;

// Handlers of a test's driver for ReadFile and WriteFile. `buffer` has the size that the caller
// passed. A read fills it, and the caller receives as many bytes as the reply reports. A write
// receives a copy of the caller's bytes, and its reply reports the bytes accepted. Without a
// handler transfers fail as with the simulated driver.
struct tTransferDriver {
  std::function<tModelReply(std::span<uint8_t> buffer)> read;
  std::function<tModelReply(std::span<const uint8_t> buffer)> write;
};

inline constexpr uint64_t kFakeProcess = 4242;

// The machine of the fake Windows: devices served by the model, and the SMBIOS table of the system
// firmware. Any thread.
class tMachine {
 public:
  tMachine();
  tMachine(const tMachine&) = delete;
  tMachine& operator=(const tMachine&) = delete;

  // Restores the default machine.
  void reset();

  // The present interfaces of a class, in order.
  [[nodiscard]] std::vector<tDeviceInterface> present(const tInterfaceClass& interfaceClass);
  // Makes this many interfaces present until the model changes their number. May exceed the
  // model's limit of one device path.
  void usePresence(const tSimulatorPresence& presence);
  [[nodiscard]] std::string pathOf(const tDeviceInterface& device);
  // Changes the path of a device interface.
  void usePath(const tDeviceInterface& device, const std::string& path);
  [[nodiscard]] std::optional<tDeviceInterface> findPath(const std::string& path);

  // Returns the new file.
  [[nodiscard]] tModelFile open(const tDeviceInterface& device);
  // Call when the last handle is closed. Completes the file's pending requests.
  void cleanUp(const tModelFile& file);
  void close(const tModelFile& file);
  // The token of a request is the address of its OVERLAPPED. A pending request may already have
  // completed when the call returns.
  [[nodiscard]] tModelReply request(const tModelRequest& request);
  // Replaces the model as the driver for later device control requests; an empty function restores
  // the model. A request that this driver leaves pending must be pending in the model. Requests on
  // the control interface always reach the model.
  void useDriver(tDriver driver);
  // Serves later reads and writes on every device with this driver.
  void useTransferDriver(tTransferDriver driver);
  // Serve one transfer.
  [[nodiscard]] tModelReply read(std::span<uint8_t> buffer);
  [[nodiscard]] tModelReply write(std::span<const uint8_t> buffer);
  // Passes a request to the current driver. `input` and `output` are copies for the driver.
  [[nodiscard]] tModelReply answer(const tModelRequest& request);
  // False if the request is not pending.
  [[nodiscard]] bool cancel(uint64_t token);

  // Makes the caller's memory in this range inaccessible to the driver.
  void makeUnreachable(const void* memory, uint64_t size);

  // Sets the raw SMBIOS data that GetSystemFirmwareTable returns; if empty, it fails with `error`.
  void useFirmwareTable(std::vector<uint8_t> raw, uint32_t error = 0);
  [[nodiscard]] std::vector<uint8_t> firmwareTable();
  [[nodiscard]] uint32_t firmwareError();

 private:
  struct tRange {
    uint64_t address;
    uint64_t size;
  };

  [[nodiscard]] bool isReachable(uint64_t address, uint32_t size) const;
  [[nodiscard]] static bool readCaller(void* context, uint64_t process, uint64_t address,
                                       void* destination, uint32_t size);
  [[nodiscard]] static bool writeCaller(void* context, uint64_t process, uint64_t address,
                                        const void* source, uint32_t size);
  [[nodiscard]] static bool signalEvent(void* context, uint64_t process, uint64_t event);
  static void completeRequest(void* context, uint64_t token, uint32_t windowsError,
                              const void* output, uint32_t size);
  static void presenceChanged(void* context, const tSimulatorPresence* presence);

  std::mutex mutex_;
  tModel model_;
  tDriver driver_;
  tTransferDriver transferDriver_;
  tSimulatorPresence presence_{};
  uint64_t nextFile_ = 1;
  std::map<tDeviceInterface, std::string> paths_;
  std::vector<tRange> unreachable_;
  std::vector<uint8_t> firmwareTable_;
  uint32_t firmwareError_ = 0;
};

[[nodiscard]] tMachine& machine();

}  // namespace nFakeWindows

#endif
