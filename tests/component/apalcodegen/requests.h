#ifndef TESTS_COMPONENT_APALCODEGEN_REQUESTS_H
#define TESTS_COMPONENT_APALCODEGEN_REQUESTS_H

#include <gtest/gtest.h>

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include "codegen/apalcodegen/tinterfaceproxy_hostcontroller.h"
#include "codegen/apalcodegen/tinterfaceproxy_hostmarten.h"
#include "tests/component/apalcodegen/trecordingdevice.h"

namespace nTests {

// The arguments that go in and come out; before a call they hold what the golden bytes show.
struct tOuts {
  uint32_t size = 0x51525354;       // textSize of exchangeValues, size of getAttribute
  int32_t tableSize = -0x01020304;  // tableSize of exchangeValues
  bool operator==(const tOuts&) const = default;
};
std::ostream& operator<<(std::ostream& out, const tOuts& outs);

struct tTypedInterfaces {
  explicit tTypedInterfaces(tRecordingDevice& device) : controller(device), marten(device) {}

  nQUENRA1400::nZOAPAL000::tInterfaceProxy_hostController controller;
  nQUENRA1400::nZOAPAL000::tInterfaceProxy_hostMarten marten;
};

// One request of a typed interface, and what is promised of it.
struct tRequestPromise {
  const char* name;
  void (*send)(tTypedInterfaces&, tOuts&, nZOAPALS100::tStatus&);
  uint32_t code;
  const char* goldenBytes;  // up to the caller's status code, which ends the request
  uint32_t replySize;       // the driver's status code are the last four bytes
  const char* file;
  uint32_t line;
  size_t outs;  // how many values the reply has
};

std::ostream& operator<<(std::ostream& out, const tRequestPromise& promise);

// All requests of both interfaces.
extern const std::vector<tRequestPromise> kAllRequests;

class EveryRequest : public testing::TestWithParam<tRequestPromise> {
 protected:
  void send(nZOAPALS100::tStatus& status) { GetParam().send(interfaces_, outs_, status); }
  // A reply of the request's full size with the values 0xA1A2A3A4, 0xB1B2B3B4 and the driver's code.
  [[nodiscard]] static std::vector<uint8_t> replyWith(int32_t driverCode);
  // What the arguments hold after that reply.
  [[nodiscard]] static tOuts outsOfReply();

  tRecordingDevice device_;
  tTypedInterfaces interfaces_{device_};
  tOuts outs_;
};

std::string nameOf(const testing::TestParamInfo<tRequestPromise>& info);

}  // namespace nTests

#endif
