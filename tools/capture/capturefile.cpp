#include "tools/capture/capturefile.h"

#include <rapidjson/document.h>
#include <rapidjson/error/en.h>

#include <algorithm>

#include "tools/capture/jsonarchives.h"

namespace nCapture {
namespace {

// Raised only if a member changes its meaning.
constexpr uint32_t kFormat = 1;
constexpr std::string_view kKind = "machine-capture";

// ---- The description ----

template <class Archive>
void describe(Archive& archive, tResult& result) {
  archive.number("status", result.code);
  archive.duration("microseconds", result.duration);
}

template <class Archive>
void describe(Archive& archive, tSizesAnswer& answer) {
  describe(archive, answer.result);
  archive.number("textSize", answer.textSize);
  archive.number("tableSize", answer.tableSize);
}

// The value as people read it: a number, or a text up to its NUL.
std::string shownValue(const tAttributeAnswer& answer) {
  constexpr uint32_t kTextType = 1;
  if (answer.id >> 28 == kTextType) {
    return {answer.value.begin(), std::ranges::find(answer.value, 0)};
  }
  uint32_t number = 0;
  for (size_t i = 0; i < std::min(answer.value.size(), sizeof number); ++i) {
    number |= uint32_t{answer.value[i]} << (8 * i);
  }
  return answer.value.empty() ? "" : std::to_string(number);
}

template <class Archive>
void describe(Archive& archive, tAttributeAnswer& answer) {
  archive.identifier("id", answer.id);
  describe(archive, answer.result);
  archive.number("size", answer.size);
  archive.bytes("bytes", answer.value);
  archive.remark("shown", shownValue(answer));
}

template <class Archive>
void describeDriver(Archive& archive, tInterface& interface) {
  archive.optionalObject("opening", interface.opening,
                         [&](tResult& result) { describe(archive, result); });
  archive.list("attributes", interface.attributes,
               [&](tAttributeAnswer& answer) { describe(archive, answer); });
}

template <class Archive>
void describe(Archive& archive, tHandover& handover) {
  const auto describeAnswer = [&](tSizesAnswer& answer) { describe(archive, answer); };
  archive.optionalObject("sizes", handover.query, describeAnswer);
  archive.optionalObject("values", handover.values, describeAnswer);
  archive.bytes("versionText", handover.versionText);
  archive.byteLines("table", handover.table);
}

template <class Archive>
void describe(Archive& archive, tTopography& topography) {
  describe(archive, topography.result);
  archive.bytes("bytes", topography.name);
  archive.remark("shown", {topography.name.begin(), topography.name.end()});
}

template <class Archive>
void describe(Archive& archive, tReadingRecord& reading) {
  archive.text("name", reading.name);
  archive.identifier("id", reading.id);
  describe(archive, reading.result);
  archive.value("value", reading.value);
}

template <class Archive>
void describe(Archive& archive, tTerminalRecord& terminal) {
  archive.text("name", terminal.name);
  archive.number("id", terminal.id);
  archive.text("visibility", terminal.visibility);
  archive.truth("external", terminal.isExternal);
  archive.truth("owned", terminal.isOwned);
  archive.text("busType", terminal.busType);
  archive.text("busName", terminal.busName);
  archive.optionalNumber("busLine", terminal.busLine);
}

template <class Archive>
void describe(Archive& archive, tUpdateEnvironment& environment) {
  archive.object("drive", [&] {
    archive.truth("encrypted", environment.driveIsEncrypted);
    archive.number("status", environment.encryptionCode);
    archive.number("line", environment.encryptionLine);
  });
  archive.object("driverStoreTool", [&] {
    archive.text("windowsFolder", environment.windowsFolder);
    archive.truth("exists", environment.toolExists);
    archive.truth("systemOwned", environment.toolIsSystemOwned);
    archive.text("owner", environment.toolOwner);
    archive.number("startError", environment.toolStartError);
  });
}

template <class Archive>
void describeLibrary(Archive& archive, tMachineRecord& record) {
  archive.object("opening", [&] { describe(archive, record.opening); });
  archive.object("selfTest", [&] { describe(archive, record.selfTest); });
  archive.list("readings", record.readings,
               [&](tReadingRecord& reading) { describe(archive, reading); });
  archive.object("terminals", [&] {
    describe(archive, record.terminals.listing);
    archive.list("list", record.terminals.terminals,
                 [&](tTerminalRecord& terminal) { describe(archive, terminal); });
  });
}

template <class Archive>
void describe(Archive& archive, tMachineRecord& record) {
  archive.fixed("kind", kKind);
  archive.fixed("format", kFormat);
  archive.truth("anonymous", record.isAnonymous);
  archive.object("versions", [&] {
    archive.text("program", record.versions.program);
    archive.text("library", record.versions.library);
    archive.text("system", record.versions.system);
  });
  archive.object("interfaces", [&] {
    archive.number("controller", record.controller.present);
    archive.number("marten", record.marten.present);
    archive.number("router", record.devicePaths);
  });
  archive.object("driver", [&] {
    archive.object("smbios", [&] { describe(archive, record.handover); });
    archive.object("controller", [&] { describeDriver(archive, record.controller); });
    archive.object("marten", [&] { describeDriver(archive, record.marten); });
    archive.optionalObject("topography", record.topography,
                           [&](tTopography& topography) { describe(archive, topography); });
  });
  archive.object("library", [&] { describeLibrary(archive, record); });
  archive.object("update", [&] { describe(archive, record.updateEnvironment); });
}

}  // namespace

std::string captureText(const tMachineRecord& record) {
  // The archives share their descriptions, so the writer's record is not const either.
  tMachineRecord written = record;
  tWriter writer;
  describe(writer, written);
  return writer.finish();
}

tMachineRecord parseCapture(std::string_view text) {
  rapidjson::Document document;
  // Iterative: a deeply nested text does not exhaust the stack.
  document.Parse<rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag>(
      text.data(), text.size());
  if (document.HasParseError()) {
    throw tCaptureFault("not JSON at byte " + std::to_string(document.GetErrorOffset()) + ": " +
                        rapidjson::GetParseError_En(document.GetParseError()));
  }
  if (!document.IsObject()) {
    throw tCaptureFault("not a JSON object");
  }
  tMachineRecord record;
  tReader reader(document);
  describe(reader, record);
  return record;
}

}  // namespace nCapture
