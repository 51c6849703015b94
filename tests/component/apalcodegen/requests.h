#ifndef TESTS_COMPONENT_APALCODEGEN_REQUESTS_H
#define TESTS_COMPONENT_APALCODEGEN_REQUESTS_H

#include <gtest/gtest.h>

#include <cstdint>
#include <iosfwd>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "codegen/apalcodegen/tinterfaceproxy_hostcontroller.h"
#include "codegen/apalcodegen/tinterfaceproxy_hostmarten.h"
#include "codegen/apalcodegen/tinterfaceproxy_routing.h"
#include "tests/component/apalcodegen/trecordingdevice.h"

namespace nTests {

// An out-value of a request.
enum class tOut {
  size,
  tableSize,
  result
};

// The in-out and out arguments of a call, initialised to their values in the golden bytes.
struct tOuts {
  uint32_t size = 0x51525354;       // textSize of exchangeValues, size of getAttribute, counts
  int32_t tableSize = -0x01020304;  // tableSize of exchangeValues
  uint32_t result = 0;              // of methods that return a value; 0 also when they fail
  bool operator==(const tOuts&) const = default;
};
std::ostream& operator<<(std::ostream& out, const tOuts& outs);

struct tTypedInterfaces {
  explicit tTypedInterfaces(tRecordingDevice& device)
      : controller(device), marten(device), routing(device) {}

  nQUENRA1400::nZOAPAL000::tInterfaceProxy_hostController controller;
  nQUENRA1400::nZOAPAL000::tInterfaceProxy_hostMarten marten;
  nQUENRA1400::nZOAPAL000::tInterfaceProxy_routing routing;
};

// One request of a typed interface, with its expected code, bytes, reply size and location.
struct tRequestPromise {
  const char* name;
  void (*send)(tTypedInterfaces&, tOuts&, nZOAPALS100::tStatus&);
  uint32_t code;
  const char* goldenBytes;  // up to the caller's status code
  uint32_t replySize;       // the last four bytes are the driver's status code
  const char* file;
  uint32_t line;
  std::vector<tOut> outs;      // destinations of the reply's values, in order
  const char* goldenEnd = "";  // bytes after the caller's status code
};

std::ostream& operator<<(std::ostream& out, const tRequestPromise& promise);

// All requests of all interfaces.
extern const std::vector<tRequestPromise> kAllRequests;

class EveryRequest : public testing::TestWithParam<tRequestPromise> {
 protected:
  void send(nZOAPALS100::tStatus& status) { GetParam().send(interfaces_, outs_, status); }
  // A reply of the request's full size with the values 0xA1A2A3A4, 0xB1B2B3B4 and the driver's code.
  [[nodiscard]] static std::vector<uint8_t> replyWith(int32_t driverCode);
  // The arguments after that reply, and after a reply of zeros.
  [[nodiscard]] static tOuts outsOfReply();
  [[nodiscard]] static tOuts outsOfZeros();

  tRecordingDevice device_;
  tTypedInterfaces interfaces_{device_};
  tOuts outs_;
};

// Convert "0A ff 00" to bytes, and bytes to "0a ff 00".
std::vector<uint8_t> bytesOf(std::string_view hexadecimal);
std::string hexadecimalOf(std::span<const uint8_t> bytes);

std::string nameOf(const testing::TestParamInfo<tRequestPromise>& info);

}  // namespace nTests

#endif
