#include "tools/quenra/verbs/verbs.h"

#include <algorithm>
#include <iterator>

#include "source/user/firmware/imageformat.h"
#include "tools/commandline/argumenttext.h"
#include "tools/commandline/utf8text.h"
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
    streams.out << '\n';
    printDigests(streams, image);
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

// Never overwrites the input, nor an existing output unless an option permits it.
void checkFiles(const std::string& input, std::string_view kind, const std::string& output,
                bool mayExist, const char* remedy) {
  if (isSameFile(input, output)) {
    reject("'" + input + "' is both the " + std::string(kind) + " and the output",
           "Give the output a path of its own; --force does not replace the " + std::string(kind) +
               ".");
  }
  if (!mayExist && fileExists(output)) {
    throw tCommandError(tExitCode::failure, "cannot write '" + output + "': the file exists",
                        std::nullopt, remedy);
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

// ---- extract ----

size_t parseSection(const tArguments& arguments) {
  const std::string text = arguments.text(nWords::kSection);
  const auto number = parseUnsigned(text);
  if (!number || *number == 0) {
    reject("'" + text + "' is not the number of a section",
           "Sections are numbered from 1; run 'quenra firmware inspect' to list them.");
  }
  return *number;
}

void printExtracted(const tVerbContext& context, const std::string& image, size_t number,
                    const tImageSection& section, const std::string& output) {
  if (context.json) {
    tJsonDocument document("firmware-extract", tExitCode::done);
    document.text("path", image);
    document.number("section", static_cast<int64_t>(number));
    document.text("device", section.header.targetDevice);
    document.text("updateType", section.header.updateType);
    document.text("version", section.header.version);
    document.optionalText("fileName", section.header.targetFileName);
    document.number("byteCount", section.header.byteCount);
    document.number("crc", section.header.crc);
    document.text("sha256", section.sha256);
    document.text("output", output);
    document.writeTo(context.streams.out);
  } else if (context.streams.outIsTerminal) {
    context.streams.out << "section " << number << ", "
                        << printableText(section.header.targetDevice.view()) << ' '
                        << printableText(section.header.version.view()) << ", "
                        << countOf(section.header.byteCount, "byte") << ": written to '"
                        << printableText(output) << "'\n";
  }
}

}  // namespace

tExitCode runFirmwareInspect(const tArguments& arguments, const tVerbContext& context) {
  const std::string path = arguments.text(nWords::kImage);
  const tFirmwareImage image = inspectWithDigests(readFile(path));
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
  const tFirmwareImage image = inspectWithDigests(readFile(path));
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
  const bool replaces = arguments.has(nWords::kAppend) || arguments.has(nWords::kForce);
  checkFiles(arguments.text(nWords::kPayload), "payload", path, replaces,
             "--force replaces the file, --append adds a section to it.");
  const std::string payload = payloadOf(arguments.text(nWords::kPayload));
  section.payload = payload;

  std::string bytes = arguments.has(nWords::kAppend) ? readFile(path) : "";
  const size_t before = sectionsIn(path, bytes, arguments);
  bytes += sectionText(section);
  const tFirmwareImage image = inspectWithDigests(bytes);
  checkResult(image, before, section);
  writeFile(path, bytes, replaces ? tExistingFile::replace : tExistingFile::keep);
  print(context, path, image);
  return tExitCode::done;
}

tExitCode runFirmwareExtract(const tArguments& arguments, const tVerbContext& context) {
  const std::string image = arguments.text(nWords::kImage);
  const std::string output = arguments.text(nWords::kOutput);
  const size_t number = parseSection(arguments);
  const bool replaces = arguments.has(nWords::kForce);
  checkFiles(image, "image", output, replaces, "--force replaces the file.");
  const tExtractedPayload payload = extractPayload(image, readFile(image), number);
  writeFile(output, payload.bytes, replaces ? tExistingFile::replace : tExistingFile::keep);
  printExtracted(context, image, number, payload.section, output);
  return tExitCode::done;
}

}  // namespace nCommandLine
