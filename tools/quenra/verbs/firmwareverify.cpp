#include "tools/quenra/verbs/firmwareverify.h"

#include "tools/quenra/firmware/files.h"
#include "tools/quenra/firmware/sectionoutput.h"
#include "tools/quenra/grammar/words.h"
#include "tools/quenra/output/diagnostics.h"

namespace nCommandLine {
namespace {

void printProblems(std::ostream& stream, const std::string& path, const tFirmwareImage& image) {
  printFaults(stream, path, image);
  if (image.sections.empty()) {
    printError(stream, notAnImage(path, image));
  }
}

}  // namespace

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
