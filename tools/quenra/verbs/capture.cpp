// The verbs for a machine that is not present: capture writes one to a file, diff compares two files.
#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "quenra_status.h"
#include "tools/capture/capturefile.h"
#include "tools/commandline/argumenttext.h"
#include "tools/commandline/utf8text.h"
#include "tools/quenra/capture/capturing.h"
#include "tools/quenra/capture/pseudonyms.h"
#include "tools/quenra/capture/treplayedmachine.h"
#include "tools/quenra/firmware/files.h"
#include "tools/quenra/firmware/firmwareimage.h"
#include "tools/quenra/output/table.h"
#include "tools/quenra/reading/reading.h"
#include "tools/quenra/tables/statustable.h"
#include "tools/quenra/verbs/verbs.h"

namespace nCommandLine {
namespace {

using nCapture::tMachineRecord;
using nCapture::tReadingRecord;

// ---- capture ----

std::string timeText(nCapture::tDuration time) {
  const auto microseconds = time.count();
  return std::to_string(microseconds / 1000) + "." + std::to_string(microseconds % 1000 / 100) +
         " ms";
}

nCapture::tDuration sumOf(const std::vector<tReadingRecord>& readings) {
  nCapture::tDuration sum{0};
  for (const tReadingRecord& reading : readings) {
    sum += reading.result.duration;
  }
  return sum;
}

void printSummary(const tStreams& streams, const tMachineRecord& record) {
  tTable table;
  table.addRow({"Step", "Result", "Time"});
  table.addRow({"Open the controller", codeAndConstant(record.opening.code),
                timeText(record.opening.duration)});
  table.addRow({"Read the attributes", countOf(record.readings.size(), "reading"),
                timeText(sumOf(record.readings))});
  table.addRow(
      {"Self-test", codeAndConstant(record.selfTest.code), timeText(record.selfTest.duration)});
  table.addRow({"List the terminals", countOf(record.terminals.terminals.size(), "terminal"),
                timeText(record.terminals.listing.duration)});
  table.addRow({"SMBIOS table of the driver", countOf(record.handover.table.size(), "byte"),
                timeText(record.handover.values ? record.handover.values->result.duration
                                                : nCapture::tDuration(0))});
  table.write(streams.out, tStyle(streams.outTakesStyles));
}

// The record is complete without a controller: such a machine needs its support most.
void printRemarks(std::ostream& stream, const tMachineRecord& record,
                  const std::vector<std::string>& deviations) {
  if (record.opening.code < 0) {
    stream << "quenra: the controller cannot be opened, which the capture shows: "
           << codeAndConstant(record.opening.code) << '\n';
  }
  if (!deviations.empty()) {
    stream << "quenra: warning: replaying the capture gives another result for "
           << alternatives(deviations) << ": the machine changed meanwhile. Capture it again.\n";
  }
}

void printDocument(std::ostream& stream, const std::string& path, size_t size,
                   const tMachineRecord& record, const std::vector<std::string>& deviations) {
  tJsonDocument document("capture", tExitCode::done);
  document.text("path", path);
  document.unsignedNumber("size", size);
  document.truth("anonymous", record.isAnonymous);
  document.beginObject("opening");
  document.status("status", record.opening.code);
  document.endObject();
  document.unsignedNumber("readings", record.readings.size());
  document.unsignedNumber("terminals", record.terminals.terminals.size());
  document.beginArray("deviations");
  for (const std::string& name : deviations) {
    document.textItem(name);
  }
  document.endArray();
  document.writeTo(stream);
}

// ---- diff ----

struct tDifference {
  std::string subject;
  std::string before;
  std::string after;
};

// Names of one machine's properties and their values as text, in the order of the file.
using tProperties = std::vector<std::pair<std::string, std::string>>;

std::string resultText(const nCapture::tReadingValue& value, int32_t code) {
  if (code < 0) {
    return codeAndConstant(code);
  }
  const auto* const number = std::get_if<uint32_t>(&value);
  const auto* const text = std::get_if<std::string>(&value);
  const std::string shown = number != nullptr ? std::to_string(*number)
                            : text != nullptr ? printableText(*text)
                                              : "";
  return code == 0 ? shown : shown + " (" + codeAndConstant(code) + ")";
}

std::string labelOf(const tReadingRecord& reading) {
  const uint32_t instance = reading.id & tAttributeAddress::kInstanceMask;
  const auto selected = static_cast<tInterface>((reading.id & tAttributeAddress::kSelectorMask) >>
                                                tAttributeAddress::kSelectorShift);
  std::string label = reading.name;
  label += instance == 0 ? "" : "[" + std::to_string(instance) + "]";
  return selected == tInterface::byDefault
             ? label
             : label + "[" + std::string(interfaceName(selected)) + "]";
}

std::string hexadecimalBytes(const nCapture::tBytes& bytes) {
  std::string text;
  for (const uint8_t byte : bytes) {
    constexpr int kByteDigits = 2;
    text += (text.empty() ? "" : " ") + hexadecimalText(byte, kByteDigits).substr(2);
  }
  return text;
}

void addAttributes(tProperties& properties, const std::string& driver,
                   const nCapture::tInterface& interface) {
  for (const nCapture::tAttributeAnswer& answer : interface.attributes) {
    constexpr int kIdDigits = 8;
    properties.emplace_back(driver + " " + hexadecimalText(answer.id, kIdDigits),
                            answer.result.code < 0 ? codeAndConstant(answer.result.code)
                                                   : hexadecimalBytes(answer.value));
  }
}

tProperties propertiesOf(const tMachineRecord& record) {
  tProperties properties{
      {"program version", record.versions.program},
      {"library version", record.versions.library},
      {"system version", record.versions.system},
      {"controller interfaces", std::to_string(record.controller.present)},
      {"Marten interfaces", std::to_string(record.marten.present)},
      {"trigger router interfaces", std::to_string(record.devicePaths)},
      {"opening", codeAndConstant(record.opening.code)},
      {"self-test", codeAndConstant(record.selfTest.code)},
  };
  for (const tReadingRecord& reading : record.readings) {
    properties.emplace_back(labelOf(reading), resultText(reading.value, reading.result.code));
  }
  for (const nCapture::tTerminalRecord& terminal : record.terminals.terminals) {
    properties.emplace_back("terminal " + printableText(terminal.name),
                            std::to_string(terminal.id) + ", " + terminal.visibility);
  }
  properties.emplace_back("listing of terminals", codeAndConstant(record.terminals.listing.code));
  if (record.topography) {
    properties.emplace_back(
        "topography of the trigger router",
        resultText(std::string(record.topography->name.begin(), record.topography->name.end()),
                   record.topography->result.code));
  }
  addAttributes(properties, "driver attribute of the controller", record.controller);
  addAttributes(properties, "driver attribute of the Marten", record.marten);
  properties.emplace_back("encryption of drive C:",
                          record.updateEnvironment.driveIsEncrypted ? "on" : "off");
  properties.emplace_back("driver-store tool",
                          record.updateEnvironment.toolExists ? "present" : "missing");
  return properties;
}

// Where two tables differ, as text; both empty if they are equal.
tDifference differenceOfTables(const nCapture::tBytes& left, const nCapture::tBytes& right) {
  const auto [first, second] = std::ranges::mismatch(left, right);
  const auto describe = [](const nCapture::tBytes& table, auto at) {
    const auto offset = static_cast<uint32_t>(at - table.begin());
    return countOf(table.size(), "byte") + ", at " + hexadecimalText(offset) + ": " +
           (at == table.end() ? "its end" : hexadecimalBytes({*at}));
  };
  return {"SMBIOS table, first difference", describe(left, first), describe(right, second)};
}

std::vector<tDifference> differencesOf(const tMachineRecord& left, const tMachineRecord& right) {
  constexpr const char* kMissing = "-";
  const tProperties before = propertiesOf(left);
  const tProperties after = propertiesOf(right);
  const std::map<std::string, std::string> known(before.begin(), before.end());
  std::map<std::string, std::string> later(after.begin(), after.end());
  std::vector<tDifference> differences;
  for (const auto& [name, value] : before) {
    const auto found = later.find(name);
    if (found == later.end()) {
      differences.push_back({name, value, kMissing});
    } else if (found->second != value) {
      differences.push_back({name, value, found->second});
    }
  }
  for (const auto& [name, value] : after) {
    if (!known.contains(name)) {
      differences.push_back({name, kMissing, value});
    }
  }
  if (left.handover.table != right.handover.table) {
    differences.push_back(differenceOfTables(left.handover.table, right.handover.table));
  }
  return differences;
}

void printDifferences(std::ostream& stream, tExitCode exitCode, const std::string& left,
                      const std::string& right, const std::vector<tDifference>& differences) {
  tJsonDocument document("diff", exitCode);
  document.text("before", left);
  document.text("after", right);
  document.beginArray("differences");
  for (const tDifference& difference : differences) {
    document.beginObject();
    document.text("subject", difference.subject);
    document.text("before", difference.before);
    document.text("after", difference.after);
    document.endObject();
  }
  document.endArray();
  document.writeTo(stream);
}

void printDifferenceTable(const tStreams& streams, const std::string& left,
                          const std::string& right, const std::vector<tDifference>& differences) {
  if (differences.empty()) {
    streams.out << "no differences\n";
    return;
  }
  tTable table;
  table.addRow({"", printableText(left), printableText(right)});
  for (const tDifference& difference : differences) {
    table.addRow({difference.subject, difference.before, difference.after});
  }
  table.write(streams.out, tStyle(streams.outTakesStyles));
}

}  // namespace

tExitCode runCapture(const tArguments& arguments, const tVerbContext& context) {
  const std::string path = arguments.text(nWords::kFile);
  if (arguments.has(nWords::kPseudonymKey) && !arguments.has(nWords::kAnonymous)) {
    throw tUsageError("--pseudonym-key has no meaning without --anonymous", "Add --anonymous.");
  }
  const bool replaces = arguments.has(nWords::kForce);
  if (!replaces && fileExists(path)) {
    throw tCommandError(tExitCode::failure, "'" + path + "' already exists", std::nullopt,
                        "Name another file, or replace it with --force.");
  }
  const tPorts& ports = context.ports;
  tMachineRecord record = captureMachine(
      {ports.library, ports.routing, ports.updateFacts, ports.driver, ports.installation});
  if (arguments.has(nWords::kAnonymous)) {
    replaceSerialNumbers(record, arguments.optional(nWords::kPseudonymKey).value_or(""));
  }
  const std::vector<std::string> deviations = deviationsOf(record);
  const std::string text = nCapture::captureText(record);
  writeFile(path, text, replaces ? tExistingFile::replace : tExistingFile::keep);
  printRemarks(context.streams.error, record, deviations);
  if (context.json) {
    printDocument(context.streams.out, path, text.size(), record, deviations);
  } else {
    printSummary(context.streams, record);
    context.streams.out << "\nwrote '" << path << "' (" << countOf(text.size(), "byte") << ")\n";
  }
  return tExitCode::done;
}

tExitCode runDiff(const tArguments& arguments, const tVerbContext& context) {
  const std::string left = arguments.text(nWords::kBefore);
  const std::string right = arguments.text(nWords::kAfter);
  // In this order, so that the first of two faulty files is named.
  const tMachineRecord before = readCapture(left);
  const tMachineRecord after = readCapture(right);
  const std::vector<tDifference> differences = differencesOf(before, after);
  const tExitCode exitCode = differences.empty() ? tExitCode::done : tExitCode::capturesDiffer;
  if (context.json) {
    printDifferences(context.streams.out, exitCode, left, right, differences);
  } else {
    printDifferenceTable(context.streams, left, right, differences);
  }
  return exitCode;
}

}  // namespace nCommandLine
