#include "tools/quenra/firmware/firmwareimage.h"

#include <algorithm>
#include <cctype>

#include "source/user/firmware/imageformat.h"
#include "source/user/update/updateplan.h"

namespace nCommandLine {
namespace {

constexpr std::string_view kDevices[] = {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$", "CLOCK$"};
constexpr std::string_view kNumberedDevices[] = {"COM", "LPT"};
// Windows also accepts the superscript digits 1 to 3: here in the system code page and in UTF-8.
constexpr std::string_view kDeviceNumbers[] = {
    "0", "1", "2",    "3",    "4",    "5",        "6",        "7",
    "8", "9", "\xB9", "\xB2", "\xB3", "\xC2\xB9", "\xC2\xB2", "\xC2\xB3"};

bool isControl(char character) noexcept {
  const auto byte = static_cast<unsigned char>(character);
  return byte < 0x20 || byte == 0x7F;
}

// The part that Windows compares with device names: "nul.txt" and "NUL .x" also open the device.
std::string stemOf(std::string_view name) {
  std::string stem(name.substr(0, name.find('.')));
  stem.erase(stem.find_last_not_of(' ') + 1);
  std::ranges::transform(stem, stem.begin(),
                         [](unsigned char character) { return std::toupper(character); });
  return stem;
}

bool isDeviceName(std::string_view name) {
  const std::string stem = stemOf(name);
  const bool isNumbered =
      std::ranges::count(kNumberedDevices, stem.substr(0, 3)) != 0 &&
      std::ranges::count(kDeviceNumbers,
                         std::string_view(stem).substr(std::min<size_t>(3, stem.size()))) != 0;
  return isNumbered || std::ranges::count(kDevices, stem) != 0;
}

bool isDigit(char character) noexcept {
  return character >= '0' && character <= '9';
}

}  // namespace

std::optional<std::string> faultOfFileName(std::string_view name) {
  if (name.find_first_of("/\\") != std::string_view::npos) {
    return "it has a path separator";
  }
  if (name.find(':') != std::string_view::npos) {
    return "it has a colon";
  }
  if (name == "." || name == "..") {
    return "it names a folder";
  }
  if (std::ranges::any_of(name, isControl)) {
    return "it has a control character";
  }
  if (name.find_first_of("<>\"|?*") != std::string_view::npos) {
    return "it has a character that Windows does not allow";
  }
  if (name.ends_with('.') || name.ends_with(' ')) {
    return "it ends in a dot or a blank, which Windows removes";
  }
  if (isDeviceName(name)) {
    return "it names a device of Windows";
  }
  if (name.find(nQUENRA1400::nImageFormat::kDriverPackage) != std::string_view::npos &&
      name.find(' ') != std::string_view::npos) {
    return "it has a blank, which splits the command line of the driver-store tool";
  }
  return std::nullopt;
}

bool isFirmwareVersion(std::string_view text) noexcept {
  // The library ignores characters after the build number.
  const size_t phase = text.find_first_of("dabf");
  return nQUENRA1400::packedVersion(text) != 0 &&
         std::ranges::all_of(text.substr(phase + 1), isDigit);
}

std::string notAVersion(std::string_view text) {
  return "'" + std::string(text) + "' is not a version of the form 1.4.2f7";
}

std::vector<tSectionRemark> remarksOn(std::string_view version, std::string_view fileName) {
  std::vector<tSectionRemark> remarks;
  if (const auto fault = faultOfFileName(fileName)) {
    remarks.push_back({"the file name '" + std::string(fileName) + "' is not plain: " + *fault,
                       "Use an image from a source that you trust; --allow-any-path applies it.",
                       true});
  }
  if (!version.empty() && !isFirmwareVersion(version)) {
    const bool isOldest = nQUENRA1400::packedVersion(version) == 0;
    remarks.push_back({notAVersion(version) + (isOldest ? " and counts as the oldest" : ""),
                       "Build the section with a version of the form major.minor.update, a phase "
                       "letter (d, a, b or f) and a build number."});
  }
  return remarks;
}

}  // namespace nCommandLine
