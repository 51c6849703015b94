#include "tests/component/user/firmware/plainimage.h"

#include <optional>

#include "tests/builders/firmwareimagebuilder.h"

namespace nTests {
namespace {

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

struct tFault {
  int32_t code;
  uint32_t line;
};

// The text from a key to the end of its line, or to the end of the text if no line end follows.
struct tValue {
  std::string_view text;
  bool isLine = true;
};

std::optional<tValue> valueOf(std::string_view section, std::string_view key) {
  const size_t place = section.find(key);
  if (place == std::string_view::npos) {
    return std::nullopt;
  }
  const std::string_view rest = section.substr(place + key.size());
  const size_t end = rest.find("\r\n");
  return tValue{rest.substr(0, end), end != std::string_view::npos};
}

uint32_t numberIn(std::string_view text) {
  const bool isHexadecimal = text.substr(0, 2) == "0x";
  const uint64_t base = isHexadecimal ? 16 : 10;
  size_t at = isHexadecimal ? 2 : 0;
  bool isNegative = false;
  if (!isHexadecimal) {
    while (at < text.size() && std::string_view(" \t\n\v\f\r").find(text[at]) != text.npos) {
      ++at;
    }
    if (at < text.size() && (text[at] == '-' || text[at] == '+')) {
      isNegative = text[at++] == '-';
    }
  }
  uint64_t value = 0;
  for (; at < text.size() && value <= UINT32_MAX; ++at) {
    const std::string_view digits = "0123456789abcdef0123456789ABCDEF";
    const size_t digit = digits.find(text[at]);
    if (digit == digits.npos || digit % 16 >= base) {
      break;
    }
    value = value * base + digit % 16;
  }
  if (value > UINT32_MAX) {
    return UINT32_MAX;
  }
  return static_cast<uint32_t>(isNegative ? 0 - value : value);
}

uint32_t readNumber(std::string_view section, std::string_view key) {
  const auto value = valueOf(section, key);
  if (!value || !value->isLine) {
    throw tFault{-26933, 351};
  }
  if (value->text.empty()) {
    throw tFault{-26938, 339};
  }
  return numberIn(value->text);
}

std::string readText(std::string_view section, std::string_view key) {
  const auto value = valueOf(section, key);
  if (!value) {
    throw tFault{-26938, 409};
  }
  const std::string text(value->text);
  if (text.empty()) {
    throw tFault{-26938, 425};
  }
  const size_t opening = text.find('"');
  if (opening == text.npos) {
    return text;
  }
  const size_t closing = text.find('"', opening + 1);
  if (closing == text.npos) {
    throw tFault{-26938, 487};
  }
  return closing == text.size() - 1 ? text.substr(opening + 1, closing - opening - 1) : text;
}

std::vector<uint8_t> readPayload(std::string_view image, uint32_t start, uint32_t end) {
  const uint32_t length = end - start;
  if (length > image.size() - start) {
    throw tFault{-26933, 214};
  }
  return plainDecode(image.substr(start, length));
}

// Adds the section at `place`; returns the place of the next one.
size_t parseSection(std::string_view image, std::string_view text, size_t place,
                    tPlainImage& parsed) {
  const std::string_view section = text.substr(place);
  tPlainRecord record;
  const uint32_t headerVersion = readNumber(section, "HeaderVersion::");
  const std::string updateType = readText(section, "UpdateType::");
  record.version = readText(section, "\nVersion::");
  record.targetDevice = readText(section, "TargetDevice::");
  if (record.targetDevice == "BIOS" && updateType == "CapsuleUpdate") {
    record.targetFileName = readText(section, "TargetFileName::");
  }
  const uint32_t crc = readNumber(section, "CRC::");
  const uint32_t byteCount = readNumber(section, "ByteCount::");
  if (headerVersion != 1) {
    throw tFault{-26941, 164};
  }
  if (updateType != "FWUpdate" && updateType != "CapsuleUpdate") {
    throw tFault{-26938, 176};
  }
  if (record.targetDevice != "BIOS" && record.targetDevice != "MARTEN" &&
      record.targetDevice != "SAFEMODE") {
    throw tFault{-26938, 186};
  }
  const size_t next = text.find("HeaderVersion::", place + 1);
  const size_t end = next == text.npos ? image.size() : next;
  const size_t separator = text.find("\r\n\r\n", place);
  const uint32_t start = separator == text.npos ? 3 : static_cast<uint32_t>(separator) + 4;
  record.data = readPayload(image, start, static_cast<uint32_t>(end));
  if (record.data.size() != byteCount) {
    throw tFault{-26938, 241};
  }
  if (firmwareCrc(record.data) != crc) {
    throw tFault{-26938, 258};
  }
  const bool goesFirst = (record.targetDevice == "BIOS" && updateType == "FWUpdate") ||
                         record.targetFileName.find(".inf") != std::string::npos;
  parsed.records.insert(goesFirst ? parsed.records.begin() : parsed.records.end(), record);
  return next;
}

}  // namespace

std::vector<uint8_t> plainDecode(std::string_view text) {
  std::vector<uint8_t> data;
  uint32_t bits = 0;
  unsigned count = 0;
  for (const char character : text) {
    const size_t sextet = kAlphabet.find(character);
    if (sextet == std::string_view::npos) {
      continue;
    }
    bits = bits << 6 | static_cast<uint32_t>(sextet);
    count += 6;
    if (count >= 8) {
      count -= 8;
      data.push_back(static_cast<uint8_t>(bits >> count));
    }
  }
  return data;
}

tPlainImage plainParse(std::string_view image) {
  const std::string_view text = image.substr(0, image.find('\0'));
  tPlainImage parsed;
  try {
    size_t place = text.find("HeaderVersion::");
    while (place != text.npos) {
      place = parseSection(image, text, place, parsed);
    }
  } catch (const tFault& fault) {
    parsed.code = fault.code;
    parsed.line = fault.line;
  }
  return parsed;
}

}  // namespace nTests
