// The rows of the verbs of trigger routes.
#ifndef TOOLS_QUENRA_VERBTABLE_ROUTEROWS_H
#define TOOLS_QUENRA_VERBTABLE_ROUTEROWS_H

#include "tools/quenra/commandline.h"

namespace nCommandLine::nRows {

// ---- terminals, route ----

inline constexpr tOptionRow kFrom{nWords::kFrom, "A", "Source terminal", {}, true, &kTerminalWords};
inline constexpr tOptionRow kTo{nWords::kTo, "B",  "Destination terminal",
                                {},          true, &kTerminalWords};
inline constexpr tOptionRow kInvert{nWords::kInvert, "", "Invert the signal"};

inline constexpr tExampleRow kTerminalsExamples[] = {
    {"terminals", "the terminals that a route can connect"},
};
inline constexpr tOptionRow kRoutePlanOptions[] = {kFrom, kTo, kInvert};
inline constexpr tExampleRow kRoutePlanExamples[] = {
    {"route plan --from TRIG_SMB --to PXI_Trig0", "the routes, with their paths and costs"},
};
inline constexpr std::string_view kHoldLimit = "limit";
inline constexpr tOptionRow kRouteConnectOptions[] = {
    kFrom,
    kTo,
    kInvert,
    {nWords::kFor, "SECONDS",
     "Hold the route for SECONDS, such as 2 or 0.25, instead of until Ctrl-C", kHoldLimit},
    {nWords::kUntilDemoted, "", "Hold the route until the driver demotes it", kHoldLimit},
    {nWords::kWait, "SECONDS", "Wait at most SECONDS for a line that another route holds"},
    {nWords::kGrace, "SECONDS",
     "The time for the program to end after a demotion (default 5), before it is terminated"},
    kJsonLinesOption,
};
inline constexpr tPositionalRow kRouteConnectProgram{
    nWords::kProgram, "PROGRAM [ARGUMENT...]", "Run the program, and hold the route until it ends",
    nullptr, false};
inline constexpr tExampleRow kRouteConnectExamples[] = {
    {"route connect --from TRIG_SMB --to PXI_Trig0", "until Ctrl-C"},
    {"route connect --from PXI_Trig0 --to TRIG_SMB --invert --for 60", "a minute, inverted"},
    {"route connect --from TRIG_SMB --to PXI_Trig0 --wait 30 -- measure.exe --runs 5",
     "while a program runs"},
};

// clang-format off
inline constexpr tVerbRow kRouteVerbs[] = {
    {"terminals", "List the trigger terminals",
     "A trigger route begins and ends at one of them: the trigger lines of the chassis, the trigger "
     "connector, the watchdog.",
     {}, {}, kTerminalsExamples},

    {"route plan", "Show the routes between two terminals",
     "The driver calculates them; nothing is reserved. A cost far above the others is that of a line "
     "that another route holds. Without a route the exit code is 3.",
     {}, kRoutePlanOptions, kRoutePlanExamples},

    {"route connect", "Connect two terminals",
     "Calculates a route, reserves it, programs it, and holds it until Ctrl-C, for the given time, until a "
     "demotion or while a program runs; "
     "then releases it in order. When other routes hold a line that it needs, their tickets and "
     "sessions are reported. When the driver demotes the route and takes its line away, the standard "
     "error stream reports it at once, and the exit code is 1, or with --until-demoted 0. A program after -- receives "
     "the standard streams, and its exit code is that of quenra. Ctrl-C reaches it as Ctrl-Break, and a second "
     "one terminates it. On a demotion quenra sends it Ctrl-Break, and after the time of --grace "
     "terminates it with all processes that it has started; the exit code is then 124.",
     {}, kRouteConnectOptions, kRouteConnectExamples, &kRouteConnectProgram},
};
// clang-format on

}  // namespace nCommandLine::nRows

#endif
