#include "tools/quenra/verbs/firmwareinspect.h"

#include "tools/quenra/firmware/files.h"
#include "tools/quenra/firmware/sectionoutput.h"
#include "tools/quenra/grammar/words.h"
#include "tools/quenra/output/diagnostics.h"

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

}  // namespace nCommandLine
