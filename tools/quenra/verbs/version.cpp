#include "tools/quenra/verbs/version.h"

#include "quenra_version.h"
#include "tools/quenra/output/tjsondocument.h"

namespace nCommandLine {

tExitCode runVersion(const tArguments& /*arguments*/, const tVerbContext& context) {
  if (context.json) {
    tJsonDocument document("version", tExitCode::done);
    document.text("version", QUENRA_VERSION);
    document.writeTo(context.streams.out);
  } else {
    context.streams.out << "quenra " QUENRA_VERSION "\n";
  }
  return tExitCode::done;
}

}  // namespace nCommandLine
