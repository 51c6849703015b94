// The shells that complete command lines of quenra.
#ifndef TOOLS_QUENRA_COMPLETION_SHELLS_H
#define TOOLS_QUENRA_COMPLETION_SHELLS_H

#include <string>
#include <string_view>

#include "tools/quenra/completion/bashscript.h"
#include "tools/quenra/completion/powershellscript.h"

namespace nCommandLine {

struct tShellRow {
  std::string_view name;
  std::string_view use;  // how its users load the script
  std::string (*script)();
};

inline constexpr tShellRow kShells[] = {
    {"bash", "For bash: source <(quenra completion bash)", bashScript},
    {"powershell", "For PowerShell: quenra completion powershell | Out-String | Invoke-Expression",
     powershellScript},
};

}  // namespace nCommandLine

#endif
