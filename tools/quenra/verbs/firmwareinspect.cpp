#include "tools/quenra/verbs/firmwareinspect.h"

#include "tools/quenra/firmware/files.h"
#include "tools/quenra/firmware/sectionoutput.h"
#include "tools/quenra/grammar/words.h"

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
  if (context.json) {
    tJsonDocument document("firmware-inspect", tExitCode::done);
    writeImage(document, path, image);
    document.writeTo(context.streams.out);
  } else {
    printText(context.streams, image);
  }
  return tExitCode::done;
}

}  // namespace nCommandLine
