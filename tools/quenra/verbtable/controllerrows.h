// The rows of the verbs that read and write attributes and test the controller.
#ifndef TOOLS_QUENRA_VERBTABLE_CONTROLLERROWS_H
#define TOOLS_QUENRA_VERBTABLE_CONTROLLERROWS_H

#include "tools/quenra/commandline.h"
#include "tools/quenra/verbtable/capturerows.h"

namespace nCommandLine::nRows {

inline constexpr std::string_view kInterface = "interface";

inline constexpr tOptionRow kInstance{nWords::kInstance, "N",
                                      "Memory module, processor or list position, from 0"};

// ---- info ----

inline constexpr tOptionRow kInfoOptions[] = {
    {nWords::kSubject,
     "SUBJECT",
     "Show the attributes of this subject only, such as memory; repeatable",
     {},
     false,
     &kSubjectWords,
     true},
    kFromCapture,
};
inline constexpr tExampleRow kInfoExamples[] = {
    {"info", "all attributes of this machine"},
    {"info --subject memory", "those of its memory"},
    {"info --json", "the same as JSON"},
    {"info --from rack-7.json", "all attributes of a captured machine"},
};

// ---- get ----

inline constexpr tPositionalRow kGetPositionals[] = {
    {nWords::kAttribute, "NAME|ID",
     "Name of the attribute, or its id in decimal or in hexadecimal after 0x", &kReadableWords,
     true, true},
};
inline constexpr tOptionRow kGetOptions[] = {
    kInstance,
    {nWords::kController, "", "Read from the controller interface", kInterface},
    {nWords::kMarten, "", "Read from the Marten interface", kInterface},
};
inline constexpr tExampleRow kGetExamples[] = {
    {"get product-name", "one attribute by its name"},
    {"get 0x10000100", "... and by its id"},
    {"get memory-size --instance 1", "the second populated memory module"},
    {"get firmware-version --controller", "the BIOS, not the Marten"},
    {"get product-name serial-number", "several attributes"},
};

// ---- set ----

inline constexpr tPositionalRow kSetPositionals[] = {
    {nWords::kAttribute, "NAME|ID",
     "Name of the attribute, or its id in decimal or in hexadecimal after 0x", &kWritableWords},
    {nWords::kValue, "VALUE",
     "A text, or a number in decimal or in hexadecimal after 0x, without its unit"},
};
inline constexpr tOptionRow kSetOptions[] = {
    kInstance,
    {nWords::kController, "", "Write to the controller interface, the default of numbers",
     kInterface},
    {nWords::kMarten, "", "Write to the Marten interface", kInterface},
    {nWords::kBoth, "", "Write to both, the default of text-setting-of-both", kInterface},
};
inline constexpr tExampleRow kSetExamples[] = {
    {"set driver-setting-1 7", "a number"},
    {"set driver-setting-2 0x1F --marten", "... on the Marten interface"},
    {"set text-setting-of-both rack-7", "a text for both interfaces"},
    {"set text-setting-of-both --marten -- -7", "... for one, beginning with a dash"},
};

// ---- self-test ----

inline constexpr tExampleRow kSelfTestExamples[] = {
    {"self-test", "check that the controller can be opened and used"},
};

// ---- doctor ----

inline constexpr tExampleRow kDoctorExamples[] = {
    {"doctor", "check driver, controller and requirements of an update"},
};

// clang-format off
inline constexpr tVerbRow kControllerVerbs[] = {
    {"info", "Show all attributes of this machine, by subject",
     "An attribute that the machine does not have is shown as such and is not an error. Other reads that fail are shown with their code.",
     {}, kInfoOptions, kInfoExamples},

    {"get", "Show attributes",
     "On a terminal a number comes with its unit and its meaning; elsewhere the bare value is printed. "
     "Several attributes are a table on a terminal; elsewhere each value is a line, which is empty for "
     "an attribute that cannot be read, and the exit code is that of the first failure. --instance then "
     "applies to the attributes that have instances. "
     "Without an interface option the library chooses the interface.",
     kGetPositionals, kGetOptions, kGetExamples},

    {"set", "Write one attribute",
     "The driver decides which attributes it accepts. Numbers go to the controller interface, or with "
     "--marten to the Marten interface. A text goes to the controller interface, or to the Marten "
     "interface where the controller does not accept it; text-setting-of-both goes to both, or with "
     "--marten to the Marten interface alone. On a terminal a line confirms the value that was "
     "written; elsewhere success is silent. A value that begins with a dash follows --, after all "
     "options.",
     kSetPositionals, kSetOptions, kSetExamples},

    {"self-test", "Test the controller",
     "Opens the controller and runs the self-test of the library, which passes if the controller can be opened.",
     {}, {}, kSelfTestExamples},

    {"doctor", "Check everything that a working controller and an update require",
     "A line for each check, with its result and a remedy: the version of the library, the device "
     "interfaces, the driver, the SMBIOS table, the rights of the account, the encryption of drive C:, "
     "the tool for driver packages, and an update that awaits a restart. A failed check means that the "
     "controller cannot be used, a warning that an update or something else would not work. Warnings "
     "leave the exit code 0. Nothing is changed.",
     {}, {}, kDoctorExamples},
};
// clang-format on

}  // namespace nCommandLine::nRows

#endif
