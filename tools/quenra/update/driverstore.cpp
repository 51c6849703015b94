#include "tools/quenra/update/driverstore.h"

#include <algorithm>
#include <cctype>

#include "quenra_status.h"
#include "tools/quenra/output/streams.h"

namespace nCommandLine {
namespace {

constexpr uint32_t kToolMissingLine = 2331;
constexpr uint32_t kToolNotStartedLine = 2359;

constexpr std::string_view kWindowsFolder = "C:\\Windows";
constexpr std::string_view kTool = "C:\\Windows\\Sysnative\\pnputil.exe";

// Not a copy: updates of the system would not replace it, and its owner could change it.
constexpr const char* kMakeLink =
    "As an administrator, run 'mklink /d C:\\Windows\\Sysnative C:\\Windows\\System32': a link, "
    "never "
    "a copy of the tool.";

bool isWindowsFolder(std::string_view path) {
  return std::ranges::equal(path, kWindowsFolder, [](unsigned char one, unsigned char other) {
    return std::tolower(one) == std::tolower(other);
  });
}

}  // namespace

tDriverStoreFault toolNotStarted(const std::error_code& reason) {
  return {"the driver-store tool could not be started" + (reason ? ": " + reasonOf(reason) : ""),
          "Check that " + std::string(kTool) + " is the system's own tool. " + kMakeLink,
          QUENRA_STATUS_INVALID_IMAGE, kToolNotStartedLine};
}

std::optional<tDriverStoreFault> faultOf(const tDriverStoreTool& tool) {
  if (!isWindowsFolder(tool.windowsFolder)) {
    return tDriverStoreFault{
        "Windows is installed in '" + tool.windowsFolder + "', and the library starts " +
            std::string(kTool),
        "Install the driver package with the tool of this Windows, and use an image without it."};
  }
  if (!tool.exists) {
    return tDriverStoreFault{
        "the system has no " + std::string(kTool) + " to install a driver package with", kMakeLink,
        QUENRA_STATUS_UPDATE_ENVIRONMENT, kToolMissingLine};
  }
  if (!tool.isSystemOwned) {
    const std::string owner = tool.owner.empty() ? "an unknown account" : "'" + tool.owner + "'";
    return tDriverStoreFault{
        "the owner of " + std::string(kTool) + " is " + owner +
            ", not SYSTEM, Administrators or TrustedInstaller",
        std::string("Remove the tool: its owner could replace it. ") + kMakeLink};
  }
  return tool.startFailure ? std::optional(toolNotStarted(tool.startFailure)) : std::nullopt;
}

}  // namespace nCommandLine
