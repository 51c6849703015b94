#include "tools/quenra/verbs/selftest.h"

#include <vector>

#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/output/tjsondocument.h"
#include "tools/quenra/reading/tcontroller.h"
#include "tools/quenra/verbs/opening.h"

namespace nCommandLine {
namespace {

int32_t test(iQuenra& library, std::vector<tWarning>& warnings) {
  const tController controller(library);
  judgeOpening(controller, warnings);
  const int32_t code = controller.selfTest();
  if (code < 0) {
    throw tCommandError(tExitCode::failure, "the self-test failed", code);
  }
  if (code > 0) {
    warnings.push_back({"the self-test", code});
  }
  return code;
}

void printDocument(std::ostream& stream, int32_t code, const std::vector<tWarning>& warnings) {
  tJsonDocument document("self-test", tExitCode::done, warnings);
  document.beginObject("selfTest");
  document.truth("passed", true);
  document.status("status", code);
  document.endObject();
  document.writeTo(stream);
}

}  // namespace

tExitCode runSelfTest(const tArguments& /*arguments*/, const tVerbContext& context) {
  std::vector<tWarning> warnings;
  const int32_t code = test(context.ports.library, warnings);
  printWarnings(context.streams.error, warnings);
  if (context.json) {
    printDocument(context.streams.out, code, warnings);
  } else {
    context.streams.out << "self-test: passed\n";
  }
  return tExitCode::done;
}

}  // namespace nCommandLine
