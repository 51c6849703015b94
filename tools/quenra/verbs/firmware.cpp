#include "tools/quenra/verbs/verbs.h"

#include <algorithm>
#include <iterator>

#include "source/user/firmware/imageformat.h"
#include "tools/commandline/argumenttext.h"
#include "tools/quenra/firmware/files.h"
#include "tools/quenra/firmware/firmwareimage.h"
#include "tools/quenra/output/diagnostics.h"

// The verbs that show and check a firmware image.

namespace nCommandLine {
namespace {

void printText(const tStreams& streams, const tFirmwareImage& image) {
  streams.out << countOf(image.sections.size(), "section") << ", " << countOf(image.size, "byte")
              << ", " << countOf(image.faults(), "fault") << '\n';
  if (!image.sections.empty()) {
    streams.out << '\n';
    printSections(streams, image);
  }
}

void printProblems(std::ostream& stream, const std::string& path, const tFirmwareImage& image) {
  printFaults(stream, path, image);
  if (image.sections.empty()) {
    printError(stream, notAnImage(path, image));
  }
}

namespace nImageFormat = nQUENRA1400::nImageFormat;

constexpr std::string_view kDevices[] = {nImageFormat::kBios, nImageFormat::kMarten,
                                         nImageFormat::kSafeMode};
// The line length of mail programs and base64(1).
constexpr uint32_t kDefaultLineLength = 76;
// The Base64 text is a third longer and must stay within the 32-bit positions of the format.
constexpr size_t kMaxPayloadSize = size_t{1} << 31;

[[noreturn]] void reject(const std::string& what, std::string advice,
                         std::vector<std::string> suggestions = {}) {
  throw tUsageError(what, std::move(advice), std::move(suggestions));
}

std::string parseDevice(const tArguments& arguments) {
  std::string device = arguments.text(nWords::kDevice);
  if (std::ranges::find(kDevices, device) == std::end(kDevices)) {
    reject("there is no device '" + device + "'", "Use BIOS, MARTEN or SAFEMODE.",
           suggest(device, {std::begin(kDevices), std::end(kDevices)}));
  }
  if (arguments.optional(nWords::kFileName) == "") {
    reject("the file name is empty",
           "Leave --file-name out for firmware that is sent to the device.");
  }
  if (arguments.has(nWords::kFileName) && device != nImageFormat::kBios) {
    reject("only a section for the BIOS has a file name", "Leave the file name out.");
  }
  return device;
}

std::string parseVersion(const tArguments& arguments) {
  std::string version = arguments.text(nWords::kFirmwareVersion);
  if (version.empty()) {
    reject("the version is empty", "Give a version such as 1.4.2f7.");
  }
  if (!isFirmwareVersion(version)) {
    reject(notAVersion(version),
           "Give major.minor.update, a phase letter (d, a, b or f) and a build number. The library "
           "counts any other text as the oldest version.");
  }
  return version;
}

std::string parseFileName(const tArguments& arguments) {
  std::string name = arguments.text(nWords::kFileName);
  if (const auto fault = faultOfFileName(name)) {
    reject("the file name '" + name + "' is not plain: " + *fault,
           "Give a name without a folder. The update writes the file into a folder of its own.");
  }
  return name;
}

size_t parseLineLength(const tArguments& arguments) {
  const auto given = arguments.optional(nWords::kLineLength);
  const auto length = given ? parseUnsigned(*given) : kDefaultLineLength;
  if (!length) {
    reject("'" + *given + "' is not a line length",
           "Give a number of characters, or 0 for one line.");
  }
  return *length;
}

// Never overwrites the payload, nor an existing image without --append or --force.
void checkFiles(const std::string& payload, const std::string& output,
                const tArguments& arguments) {
  if (isSameFile(payload, output)) {
    reject("'" + payload + "' is both the payload and the output",
           "Give the image a path of its own; --force does not replace the payload.");
  }
  const bool mayExist = arguments.has(nWords::kAppend) || arguments.has(nWords::kForce);
  if (!mayExist && fileExists(output)) {
    throw tCommandError(tExitCode::failure, "cannot write '" + output + "': the file exists",
                        std::nullopt, "--force replaces the file, --append adds a section to it.");
  }
}

std::string payloadOf(const std::string& path) {
  std::string payload = readFile(path);
  if (payload.size() > kMaxPayloadSize) {
    throw tCommandError(tExitCode::failure, "'" + path + "' is too large for a firmware image",
                        std::nullopt);
  }
  return payload;
}

// Checks the image to which the section is appended.
size_t sectionsIn(const std::string& path, std::string_view bytes, const tArguments& arguments) {
  if (!arguments.has(nWords::kAppend)) {
    return 0;
  }
  const tFirmwareImage image = inspectImage(bytes);
  if (image.sections.empty()) {
    throw notAnImage(path, image);
  }
  return image.sections.size();
}

bool matches(const tImageSection& section, const tNewSection& expected) {
  return section.header.version == expected.version &&
         section.header.targetDevice == expected.device &&
         section.header.targetFileName == expected.fileName &&
         section.header.byteCount == expected.payload.size();
}

// Reads the image back: that reveals values which the format cannot represent, such as a name in
// quotes, and an image to append to that ends in a NUL.
void checkResult(const tFirmwareImage& image, size_t before, const tNewSection& expected) {
  if (image.sections.size() != before + 1 || !matches(image.sections.back(), expected)) {
    throw tCommandError(tExitCode::failure,
                        "the section would be read back from the image with other values",
                        std::nullopt, "Check the existing image with 'quenra firmware inspect'.");
  }
  if (image.faults() > 0) {
    throw tCommandError(tExitCode::failure, "the existing image has a fault", std::nullopt,
                        "Check it with 'quenra firmware verify'.");
  }
}

void print(const tVerbContext& context, const std::string& path, const tFirmwareImage& image) {
  if (context.json) {
    tJsonDocument document("firmware-build", tExitCode::done);
    writeImage(document, path, image);
    document.writeTo(context.streams.out);
  } else if (context.streams.outIsTerminal) {
    printSections(context.streams, image);
  }
}

}  // namespace

tExitCode runFirmwareInspect(const tArguments& arguments, const tVerbContext& context) {
  const std::string path = arguments.text(nWords::kImage);
  const tFirmwareImage image = inspectImage(readFile(path));
  const bool isEmpty = image.sections.empty();
  const tExitCode exitCode = isEmpty ? tExitCode::failure : tExitCode::done;
  if (isEmpty) {
    printError(context.streams.error, notAnImage(path, image));
  }
  if (context.json) {
    tJsonDocument document("firmware-inspect", exitCode);
    writeImage(document, path, image);
    document.writeTo(context.streams.out);
  } else {
    printText(context.streams, image);
  }
  return exitCode;
}

tExitCode runFirmwareVerify(const tArguments& arguments, const tVerbContext& context) {
  const std::string path = arguments.text(nWords::kImage);
  const tFirmwareImage image = inspectImage(readFile(path));
  const tExitCode exitCode = image.isValid() ? tExitCode::done : tExitCode::failure;
  printProblems(context.streams.error, path, image);
  if (context.json) {
    tJsonDocument document("firmware-verify", exitCode);
    writeImage(document, path, image);
    document.writeTo(context.streams.out);
  } else if (image.isValid()) {
    context.streams.out << "good: " << countOf(image.sections.size(), "section") << '\n';
  }
  return exitCode;
}

tExitCode runFirmwareBuild(const tArguments& arguments, const tVerbContext& context) {
  tNewSection section;
  section.device = parseDevice(arguments);
  section.version = parseVersion(arguments);
  section.fileName = parseFileName(arguments);
  section.lineLength = parseLineLength(arguments);
  const std::string path = arguments.text(nWords::kOutput);
  checkFiles(arguments.text(nWords::kPayload), path, arguments);
  const std::string payload = payloadOf(arguments.text(nWords::kPayload));
  section.payload = payload;

  std::string bytes = arguments.has(nWords::kAppend) ? readFile(path) : "";
  const size_t before = sectionsIn(path, bytes, arguments);
  bytes += sectionText(section);
  const tFirmwareImage image = inspectImage(bytes);
  checkResult(image, before, section);
  const bool replaces = arguments.has(nWords::kAppend) || arguments.has(nWords::kForce);
  writeFile(path, bytes, replaces ? tExistingFile::replace : tExistingFile::keep);
  print(context, path, image);
  return tExitCode::done;
}

}  // namespace nCommandLine
