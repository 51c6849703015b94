// Properties of a section that the library accepts although they can harm the user's machine.
#ifndef TOOLS_QUENRA_FIRMWARE_SECTIONREMARK_H
#define TOOLS_QUENRA_FIRMWARE_SECTIONREMARK_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nCommandLine {

struct tSectionRemark {
  std::string fact;        // a sentence without its full stop
  std::string remedy;      // a sentence
  bool isRefused = false;  // an update requires --allow-any-path
};

// The reason why a file name of an image is not one plain path component; empty if it is one. The
// library joins the name to its folder, so any other name can write elsewhere with its rights.
[[nodiscard]] std::optional<std::string> faultOfFileName(std::string_view name);

// True if a text is a version that the library can compare: major.minor.update, a phase letter d, a, b
// or f, and a build number, as in 1.4.2f7.
[[nodiscard]] bool isFirmwareVersion(std::string_view text) noexcept;

// "'3.0' is not a version of the form 1.4.2f7"
[[nodiscard]] std::string notAVersion(std::string_view text);

[[nodiscard]] std::vector<tSectionRemark> remarksOn(std::string_view version,
                                                    std::string_view fileName);

}  // namespace nCommandLine

#endif
