// A machine as a program sees it through the library, and as the driver answered the library: the content
// of a capture file.
#ifndef TOOLS_CAPTURE_MACHINERECORD_H
#define TOOLS_CAPTURE_MACHINERECORD_H

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace nCapture {

using tBytes = std::vector<uint8_t>;
using tDuration = std::chrono::microseconds;

// A completed call: its status code, 0 for success, positive for a warning.
struct tResult {
  int32_t code = 0;
  tDuration duration{0};
};

// ---- The driver ----

// The answer to a request for the sizes or the bytes of the SMBIOS version text and table. Sizes as the
// driver reported them, in bytes.
struct tSizesAnswer {
  tResult result;
  uint32_t textSize = 0;
  int32_t tableSize = 0;
};

// The SMBIOS version text and table, as the controller interface returns them. The library queries the
// sizes first, then requests the bytes.
struct tHandover {
  std::optional<tSizesAnswer> query;   // unset if the library sent no such request
  std::optional<tSizesAnswer> values;  // ... likewise
  tBytes versionText;
  tBytes table;
};

// The answer to a read of an attribute. The library offers 4 bytes for a number, and more for a text.
struct tAttributeAnswer {
  uint32_t id = 0;  // as requested, with its instance
  tResult result;
  uint32_t size = 0;  // as the driver reported it
  tBytes value;       // the bytes that the driver filled; empty after an error
};

struct tInterface {
  uint32_t present = 0;            // number of device interfaces of the kind
  std::optional<tResult> opening;  // unset if the program did not open it
  std::vector<tAttributeAnswer> attributes;

  [[nodiscard]] bool isOpen() const noexcept { return opening && opening->code >= 0; }
};

// The answer of the trigger router to the request for the name of its topography, which decides the
// terminals. The name ends at its NUL or fills the buffer.
struct tTopography {
  tResult result;
  tBytes name;
};

// ---- The library ----

// Nothing after an error, otherwise a text or a number.
using tReadingValue = std::variant<std::monostate, std::string, uint32_t>;

struct tReadingRecord {
  std::string name;  // of the attribute
  uint32_t id = 0;   // with selector and instance
  tResult result;
  tReadingValue value;
};

struct tTerminalRecord {
  std::string name;
  uint32_t id = 0;
  std::string visibility;
  std::string busType;
  std::string busName;
  std::optional<uint32_t> busLine;
  bool isExternal = false;
  bool isOwned = false;
};

struct tTerminals {
  tResult listing;
  std::vector<tTerminalRecord> terminals;
};

// ---- Properties of the system that decide about an update ----

struct tUpdateEnvironment {
  bool driveIsEncrypted = false;
  int32_t encryptionCode = 0;  // negative when the encryption cannot be read
  uint32_t encryptionLine = 0;
  std::string windowsFolder;
  bool toolExists = false;
  bool toolIsSystemOwned = false;
  std::string toolOwner;
  int32_t toolStartError = 0;  // the Windows error; 0 if the tool can be started
};

// ---- The machine ----

struct tVersions {
  std::string program;
  std::string library;  // empty if unknown
  std::string system;
};

struct tMachineRecord {
  bool isAnonymous = false;  // serial numbers are pseudonyms
  tVersions versions;
  tInterface controller;
  tInterface marten;
  uint32_t devicePaths = 0;               // number of interfaces of the trigger router
  std::optional<tTopography> topography;  // unset if there is no trigger router
  tHandover handover;
  tResult opening;
  tResult selfTest;
  std::vector<tReadingRecord> readings;
  tTerminals terminals;
  tUpdateEnvironment updateEnvironment;

  // True if the driver's interfaces permit a session: every present one could be opened.
  [[nodiscard]] bool hasOpenInterfaces() const noexcept {
    return controller.isOpen() && (marten.present == 0 || marten.isOpen());
  }
};

}  // namespace nCapture

#endif
