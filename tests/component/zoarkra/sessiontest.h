#ifndef TESTS_COMPONENT_ZOARKRA_SESSIONTEST_H
#define TESTS_COMPONENT_ZOARKRA_SESSIONTEST_H

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/component/zoarkra/expectfailure.h"
#include "tests/component/zoarkra/tanswer.h"
#include "tests/component/zoarkra/tscriptedroutingdevice.h"
#include "zoarkra/arkroutingadaptorsession.h"

namespace nTests {

// A session on a scripted device, open from the beginning.
class SessionTest : public testing::Test {
 protected:
  using tStrings = std::vector<std::string>;

  SessionTest() {
    create({&tAnswer::supplyBuffer, nullptr, nullptr});
    script_.router.calls.clear();
  }

  void create(const zoark::tClientFunctions& client, const char* name = "device") {
    session_.reset();
    script_.events.clear();
    session_ = std::make_unique<zoark::ARKRoutingAdaptorSession>(
        std::make_unique<tScriptedRoutingDevice>(script_), name, client, status_);
  }
  [[nodiscard]] tScriptedRouter& router() { return script_.router; }
  [[nodiscard]] const tStrings& calls() const { return script_.router.calls; }

  tRoutingDeviceScript script_;
  zoerr::tOwnedStatus status_;
  std::unique_ptr<zoark::ARKRoutingAdaptorSession> session_;
  tAnswer answer_;
};

inline const tFailure kNoBuffer{
    -52000, R"({"error_constant":"zoapalerr_memoryFull","file":"zoarkra\\arkroutingadaptor",)"
            R"("line":127,"component":"quenra"})"};
inline const tFailure kCountImplausible{
    -52000, R"({"error_constant":"zoapalerr_memoryFull","file":"zoarkra\\arkroutingadaptor",)"
            R"("line":288,"component":"quenra"})"};
inline const tFailure kOutputMissing{
    -52005, R"({"error_constant":"zoapalerr_invalidParameter","file":"zoarkra\\arkroutingadaptor",)"
            R"("line":118,"component":"quenra"})"};

}  // namespace nTests

#endif
