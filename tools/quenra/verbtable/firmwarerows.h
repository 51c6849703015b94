// The rows of the verbs of firmware images and of the update.
#ifndef TOOLS_QUENRA_VERBTABLE_FIRMWAREROWS_H
#define TOOLS_QUENRA_VERBTABLE_FIRMWAREROWS_H

#include "tools/quenra/commandline.h"

namespace nCommandLine::nRows {

// ---- firmware ----

inline constexpr tPositionalRow kImagePositionals[] = {
    {nWords::kImage, "IMAGE", "File of the firmware image"},
};
inline constexpr tPositionalRow kPayloadPositionals[] = {
    {nWords::kPayload, "PAYLOAD", "File of the payload"},
};
inline constexpr tOptionRow kFirmwareBuildOptions[] = {
    {nWords::kOutput, "IMAGE", "File of the firmware image; must not exist", {}, true},
    {nWords::kDevice,
     "BIOS|MARTEN|SAFEMODE",
     "The device that the section is for",
     {},
     true,
     &kDeviceWords},
    {nWords::kFirmwareVersion, "VERSION", "The version of the payload, such as 1.4.2f7", {}, true},
    {nWords::kFileName, "NAME", "Build a capsule for the BIOS: a file of this plain name"},
    {nWords::kLineLength, "N",
     "Characters in a line of the payload (default 76); 0 for a single line"},
    {nWords::kAppend, "", "Add the section to an existing image"},
    {nWords::kForce, "", "Replace an existing image"},
};
inline constexpr tOptionRow kFirmwareExtractOptions[] = {
    {nWords::kSection, "N", "Number of the section in the image, from 1", {}, true},
    {nWords::kOutput, "FILE", "File of the decoded payload; must not exist", {}, true},
    {nWords::kForce, "", "Replace an existing file"},
};
inline constexpr tExampleRow kFirmwareInspectExamples[] = {
    {"firmware inspect update.fwi", "the sections of an image"},
};
inline constexpr tExampleRow kFirmwareVerifyExamples[] = {
    {"firmware verify update.fwi", "check an image"},
};
inline constexpr tExampleRow kFirmwareBuildExamples[] = {
    {"firmware build a.bin --output update.fwi --device MARTEN --firmware-version 1.4.2f7",
     "an image of one section"},
    {"firmware build b.bin --append --output update.fwi --device BIOS --firmware-version 3.1.0f2",
     "... and a second one"},
};
inline constexpr tExampleRow kFirmwareExtractExamples[] = {
    {"firmware extract update.fwi --section 1 --output a.bin", "the payload of the first section"},
};

// ---- update ----

inline constexpr tOptionRow kUpdateOptions[] = {
    {nWords::kOnlyNewer, "",
     "Leave out the firmware of a device if one of its sections is not newer"},
    {nWords::kForce, "", "With --only-newer, compare although an update awaits a restart"},
    {nWords::kAllowAnyPath, "", "Accept file names that are not plain, such as paths"},
    {nWords::kNoWait, "", "Fail when another update is running, instead of waiting for its end"},
    {nWords::kPlan, "", "Change nothing; show the plan and every obstacle"},
    {nWords::kFrom, "CAPTURE", "With --plan: plan for the machine of a capture file"},
    kJsonLinesOption,
};
inline constexpr tExampleRow kUpdateExamples[] = {
    {"update --plan update.fwi", "the plan of an update, and its obstacles"},
    {"update --plan update.fwi --from rack-7.json", "... of a captured machine"},
    {"update update.fwi", "apply the image regardless of the installed versions"},
    {"update update.fwi --only-newer", "... except firmware that is not newer"},
};

// clang-format off
inline constexpr tVerbRow kFirmwareVerbs[] = {
    {"firmware inspect", "Show the sections of a firmware image",
     "Each section with its device, type, version, file name, size and CRC, its place in the order of application, and the verdict of the library; then the SHA-256 of each decoded payload. A section that the library rejects is shown with the reason; the sections after it are checked as well, although one fault prevents the whole image from being applied. Needs no controller.",
     kImagePositionals, {}, kFirmwareInspectExamples},

    {"firmware verify", "Check whether an update would apply a firmware image",
     "The exit code is 1 when a section is refused or has a file name that is not plain, or the file has "
     "no section; every fault is printed on the standard error stream. The devices of the machine and "
     "their versions are not considered. Needs no controller.",
     kImagePositionals, {}, kFirmwareVerifyExamples},

    {"firmware build", "Build a firmware image, one section at a time",
     "A version has the form major.minor.update, a phase letter (d, a, b or f) and a build number: "
     "1.4.2f7. The image is read back before it is written, and an existing file is replaced with "
     "--force only. Needs no controller.",
     kPayloadPositionals, kFirmwareBuildOptions, kFirmwareBuildExamples},

    {"firmware extract", "Write the payload of a section to a file",
     "The payload is decoded and checked by the library's own parser. A section that the library "
     "refuses is not extracted. An existing file is replaced with --force only. Needs no controller.",
     kImagePositionals, kFirmwareExtractOptions, kFirmwareExtractExamples},

    {"update", "Apply a firmware image, or show its plan",
     "Prints the plan, shows the elapsed time of the update, and reports the result of each section. An "
     "update with an obstacle is not started: every obstacle is printed on the standard error stream "
     "with a remedy. An update that would send, install and write nothing does not call the library. "
     "Ctrl-C does not interrupt an update that has started. With --plan nothing is changed, and the "
     "exit code is that of the update.",
     kImagePositionals, kUpdateOptions, kUpdateExamples},
};
// clang-format on

}  // namespace nCommandLine::nRows

#endif
