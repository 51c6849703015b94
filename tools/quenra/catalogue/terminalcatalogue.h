#ifndef TOOLS_QUENRA_CATALOGUE_TERMINALCATALOGUE_H
#define TOOLS_QUENRA_CATALOGUE_TERMINALCATALOGUE_H

#include <string_view>

namespace nCommandLine {

struct tTerminalRow {
  std::string_view name;
  std::string_view meaning;
};

// The trigger terminals of the controllers that this version supports, in the order of the library. The
// verbs query the library; completion scripts, which run without it, contain this list.
inline constexpr tTerminalRow kTerminals[] = {
    {"FLOAT", "The floating terminal of the controller"},
    {"TRIG_SMB", "The trigger connector of the controller"},
    {"WD_Terminal", "The watchdog of the controller"},
    {"PXI_Trig0", "PXI trigger line 0"},
    {"PXI_Trig1", "PXI trigger line 1"},
    {"PXI_Trig2", "PXI trigger line 2"},
    {"PXI_Trig3", "PXI trigger line 3"},
    {"PXI_Trig4", "PXI trigger line 4"},
    {"PXI_Trig5", "PXI trigger line 5"},
    {"PXI_Trig6", "PXI trigger line 6"},
    {"PXI_Trig7", "PXI trigger line 7"},
};

}  // namespace nCommandLine

#endif
