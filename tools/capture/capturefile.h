// The capture file: a machine record as a JSON document, which docs/schema/machine-capture.schema.json describes.
#ifndef TOOLS_CAPTURE_CAPTUREFILE_H
#define TOOLS_CAPTURE_CAPTUREFILE_H

#include <stdexcept>
#include <string>
#include <string_view>

#include "tools/capture/machinerecord.h"

namespace nCapture {

// A text that is not a capture. what() names the member and the reason:
// "driver.controller.attributes[3].bytes: 'zz' is not hexadecimal".
class tCaptureFault : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The document, with a line end at its end. The same record gives the same text.
[[nodiscard]] std::string captureText(const tMachineRecord& record);

// Throws tCaptureFault. Ignores unknown members, which later versions may add.
[[nodiscard]] tMachineRecord parseCapture(std::string_view text);

}  // namespace nCapture

#endif
