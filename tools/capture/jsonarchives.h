// Writing and reading a JSON document by one description: a function that names each member and its
// variable, and that both archives accept.
#ifndef TOOLS_CAPTURE_JSONARCHIVES_H
#define TOOLS_CAPTURE_JSONARCHIVES_H

#include <rapidjson/document.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "tools/capture/capturefile.h"
#include "tools/capture/machinerecord.h"
#include "tools/commandline/argumenttext.h"
#include "tools/commandline/utf8text.h"

namespace nCapture {

// ---- Bytes ----

inline constexpr std::string_view kDigits = "0123456789abcdef";
inline constexpr size_t kBytesInLine = 32;
// The library accepts no larger table.
inline constexpr size_t kMaxBytes = size_t{1} << 24;

[[nodiscard]] inline std::string hexadecimal(std::span<const uint8_t> bytes) {
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const uint8_t byte : bytes) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 0xF];
  }
  return text;
}

// Returns false unless the text is pairs of lower-case hexadecimal digits.
[[nodiscard]] inline bool appendBytes(std::string_view text, tBytes& bytes) {
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

// ---- The archives ----

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
    text(name, nCommandLine::hexadecimalText(value, kIdDigits));
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

}  // namespace nCapture

#endif
