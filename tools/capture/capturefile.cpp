#include "tools/capture/capturefile.h"

#include <rapidjson/document.h>
#include <rapidjson/error/en.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <algorithm>
#include <span>
#include <utility>

#include "tools/commandline/argumenttext.h"
#include "tools/commandline/utf8text.h"

namespace nCapture {
namespace {

using nCommandLine::hexadecimalText;

// Raised only if a member changes its meaning.
constexpr uint32_t kFormat = 1;
constexpr std::string_view kKind = "machine-capture";

// ---- Bytes ----

constexpr std::string_view kDigits = "0123456789abcdef";
constexpr size_t kBytesInLine = 32;
// The library accepts no larger table.
constexpr size_t kMaxBytes = size_t{1} << 24;

std::string hexadecimal(std::span<const uint8_t> bytes) {
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const uint8_t byte : bytes) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 0xF];
  }
  return text;
}

// Returns false unless the text is pairs of lower-case hexadecimal digits.
bool appendBytes(std::string_view text, tBytes& bytes) {
  if (text.size() % 2 != 0) {
    return false;
  }
  for (size_t i = 0; i < text.size(); i += 2) {
    const size_t high = kDigits.find(text[i]);
    const size_t low = kDigits.find(text[i + 1]);
    if (high == std::string_view::npos || low == std::string_view::npos) {
      return false;
    }
    bytes.push_back(static_cast<uint8_t>(high << 4 | low));
  }
  return true;
}

// ---- The two archives: the same description of a record writes and reads its document ----

class tWriter {
 public:
  tWriter() {
    writer_.SetIndent(' ', 2);
    writer_.StartObject();
  }
  [[nodiscard]] std::string finish() {
    writer_.EndObject();
    return std::string(buffer_.GetString(), buffer_.GetSize()) + '\n';
  }

  template <class Body>
  void object(std::string_view name, Body body) {
    key(name);
    writer_.StartObject();
    body();
    writer_.EndObject();
  }
  template <class Type, class Describe>
  void optionalObject(std::string_view name, std::optional<Type>& value, Describe describe) {
    if (value) {
      object(name, [&] { describe(*value); });
    } else {
      key(name);
      writer_.Null();
    }
  }
  template <class Type, class Describe>
  void list(std::string_view name, std::vector<Type>& values, Describe describe) {
    key(name);
    writer_.StartArray();
    for (Type& value : values) {
      writer_.StartObject();
      describe(value);
      writer_.EndObject();
    }
    writer_.EndArray();
  }

  void text(std::string_view name, const std::string& value) {
    key(name);
    item(value);
  }
  void number(std::string_view name, uint32_t value) {
    key(name);
    writer_.Uint(value);
  }
  void number(std::string_view name, int32_t value) {
    key(name);
    writer_.Int(value);
  }
  void optionalNumber(std::string_view name, const std::optional<uint32_t>& value) {
    key(name);
    value ? writer_.Uint(*value) : writer_.Null();
  }
  void truth(std::string_view name, bool value) {
    key(name);
    writer_.Bool(value);
  }
  void identifier(std::string_view name, uint32_t value) {
    constexpr int kIdDigits = 8;
    text(name, hexadecimalText(value, kIdDigits));
  }
  void duration(std::string_view name, tDuration value) {
    key(name);
    writer_.Int64(value.count());
  }
  void bytes(std::string_view name, const tBytes& value) { text(name, hexadecimal(value)); }
  void byteLines(std::string_view name, const tBytes& value) {
    key(name);
    writer_.StartArray();
    for (size_t i = 0; i < value.size(); i += kBytesInLine) {
      item(hexadecimal(std::span(value).subspan(i, std::min(kBytesInLine, value.size() - i))));
    }
    writer_.EndArray();
  }
  // A remark for people, which the reader skips.
  void remark(std::string_view name, const std::string& value) { text(name, value); }
  void value(std::string_view name, const tReadingValue& value) {
    if (const auto* const asNumber = std::get_if<uint32_t>(&value)) {
      number(name, *asNumber);
    } else if (const auto* const asText = std::get_if<std::string>(&value)) {
      text(name, *asText);
      if (!nCommandLine::isUtf8(*asText)) {
        bytes("bytes", tBytes(asText->begin(), asText->end()));
      }
    } else {
      key(name);
      writer_.Null();
    }
  }
  void fixed(std::string_view name, std::string_view value) { text(name, std::string(value)); }
  void fixed(std::string_view name, uint32_t value) { number(name, value); }

 private:
  void key(std::string_view name) {
    writer_.Key(name.data(), static_cast<rapidjson::SizeType>(name.size()));
  }
  void item(const std::string& value) {
    const std::string text = nCommandLine::jsonText(value);
    writer_.RawValue(text.data(), text.size(), rapidjson::kStringType);
  }

  rapidjson::StringBuffer buffer_;
  rapidjson::PrettyWriter<rapidjson::StringBuffer> writer_{buffer_};
};

class tReader {
 public:
  using tValue = rapidjson::Value;

  explicit tReader(const tValue& root) : current_(&root) {}

  template <class Body>
  void object(std::string_view name, Body body) {
    inside(requireObject(name, member(name)), name, body);
  }
  template <class Type, class Describe>
  void optionalObject(std::string_view name, std::optional<Type>& value, Describe describe) {
    if (!member(name).IsNull()) {
      object(name, [&] { describe(value.emplace()); });
    }
  }
  template <class Type, class Describe>
  void list(std::string_view name, std::vector<Type>& values, Describe describe) {
    const tValue& items = array(name);
    for (rapidjson::SizeType i = 0; i < items.Size(); ++i) {
      const std::string step = std::string(name) + "[" + std::to_string(i) + "]";
      inside(requireObject(step, items[i]), step, [&] { describe(values.emplace_back()); });
    }
  }

  void text(std::string_view name, std::string& value) { value = textOf(name, member(name)); }
  void number(std::string_view name, uint32_t& value) {
    const tValue& found = member(name);
    require(found.IsUint(), name, "a number from 0 to 4294967295");
    value = found.GetUint();
  }
  void number(std::string_view name, int32_t& value) {
    const tValue& found = member(name);
    require(found.IsInt(), name, "a number from -2147483648 to 2147483647");
    value = found.GetInt();
  }
  void optionalNumber(std::string_view name, std::optional<uint32_t>& value) {
    if (!member(name).IsNull()) {
      number(name, value.emplace());
    }
  }
  void truth(std::string_view name, bool& value) {
    const tValue& found = member(name);
    require(found.IsBool(), name, "true or false");
    value = found.GetBool();
  }
  void identifier(std::string_view name, uint32_t& value) {
    const auto number = nCommandLine::parseUnsigned(textOf(name, member(name)));
    require(number.has_value(), name, "an id such as \"0x10000100\"");
    value = *number;
  }
  void duration(std::string_view name, tDuration& value) {
    const tValue& found = member(name);
    require(found.IsInt64() && found.GetInt64() >= 0, name, "a number of microseconds");
    value = tDuration(found.GetInt64());
  }
  void bytes(std::string_view name, tBytes& value) { appendHexadecimal(name, member(name), value); }
  void byteLines(std::string_view name, tBytes& value) {
    for (const tValue& line : array(name).GetArray()) {
      appendHexadecimal(name, line, value);
    }
    require(value.size() <= kMaxBytes, name, "at most 16 MiB");
  }
  void remark(std::string_view, const std::string&) noexcept {}
  void value(std::string_view name, tReadingValue& value) {
    const tValue& found = member(name);
    if (found.IsNull()) {
      value = std::monostate();
    } else if (found.IsUint()) {
      value = found.GetUint();
    } else if (const auto raw = current_->FindMember("bytes"); raw != current_->MemberEnd()) {
      tBytes read;
      appendHexadecimal("bytes", raw->value, read);
      value = std::string(read.begin(), read.end());
    } else {
      value = textOf(name, found);
    }
  }
  void fixed(std::string_view name, std::string_view expected) {
    require(textOf(name, member(name)) == expected, name, '"' + std::string(expected) + '"');
  }
  void fixed(std::string_view name, uint32_t expected) {
    uint32_t found = 0;
    number(name, found);
    require(found == expected, name,
            std::to_string(expected) + "; a newer version wrote the capture");
  }

 private:
  template <class Body>
  void inside(const tValue& value, std::string_view name, Body body) {
    const tValue* const outer = std::exchange(current_, &value);
    const size_t length = path_.size();
    path_ += std::string(name) + '.';
    body();
    path_.resize(length);
    current_ = outer;
  }

  void require(bool condition, std::string_view name, const std::string& expectation) const {
    if (!condition) {
      throw tCaptureFault(path_ + std::string(name) + " is not " + expectation);
    }
  }
  const tValue& member(std::string_view name) const {
    const auto found = current_->FindMember(
        tValue(rapidjson::StringRef(name.data(), static_cast<rapidjson::SizeType>(name.size()))));
    if (found == current_->MemberEnd()) {
      throw tCaptureFault(path_ + std::string(name) + " is missing");
    }
    return found->value;
  }
  const tValue& requireObject(std::string_view name, const tValue& value) const {
    require(value.IsObject(), name, "an object");
    return value;
  }
  const tValue& array(std::string_view name) const {
    const tValue& found = member(name);
    require(found.IsArray(), name, "a list");
    return found;
  }
  std::string textOf(std::string_view name, const tValue& value) const {
    require(value.IsString(), name, "a text");
    return {value.GetString(), value.GetStringLength()};
  }
  void appendHexadecimal(std::string_view name, const tValue& value, tBytes& bytes) const {
    require(appendBytes(textOf(name, value), bytes), name,
            "pairs of hexadecimal digits in lower case");
  }

  const tValue* current_;
  std::string path_;
};

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
