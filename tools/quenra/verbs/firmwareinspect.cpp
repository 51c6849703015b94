// The verbs that show and check a firmware image.
#include "tools/quenra/firmware/files.h"
#include "tools/quenra/firmware/sectionoutput.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/verbs/verbs.h"

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

}  // namespace nCommandLine
