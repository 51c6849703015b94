#include "tools/quenra/report/drawing.h"

#include <algorithm>
#include <map>

#include "tools/commandline/utf8text.h"

namespace nCommandLine {
namespace {

bool beginsCharacter(char byte) noexcept {
  return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
}

// The texts of a drawing do not wrap: a longer one ends with an ellipsis. The tables have it completely.
std::string shortened(const std::string& text, size_t characters) {
  std::string printable = printableText(text);
  if (widthOf(printable) <= characters) {
    return printable;
  }
  constexpr std::string_view kEllipsis = "\xE2\x80\xA6";
  size_t end = 0;
  for (size_t count = 0; count < characters; ++end) {
    count += beginsCharacter(printable[end]) ? 1 : 0;
  }
  --end;  // the first byte of the character that the ellipsis replaces
  return printable.substr(0, end).append(kEllipsis);
}

const tAttributeReadings* find(const tReportFacts& facts, uint32_t attribute) {
  const auto found =
      std::ranges::find(facts.machine, attribute,
                        [](const tAttributeReadings& readings) { return readings.row->id; });
  return found == facts.machine.end() ? nullptr : &*found;
}

// The readings of all instances that have a value, by instance.
std::map<size_t, tAttributeValue> valuesOf(const tReportFacts& facts, uint32_t attribute) {
  std::map<size_t, tAttributeValue> values;
  if (const tAttributeReadings* const readings = find(facts, attribute)) {
    for (const tReading& reading : readings->readings) {
      if (reading.state() == tReadingState::value) {
        values.emplace(reading.address.instance, reading.value);
      }
    }
  }
  return values;
}

std::string textAt(const std::map<size_t, tAttributeValue>& values, size_t instance,
                   const tAttributeRow* row = nullptr) {
  const auto found = values.find(instance);
  return found == values.end() ? "" : shownValue(row, found->second);
}

// ---- The chassis ----

// The slots that the firmware lists: their locations by their numbers.
std::map<size_t, std::string> slotsOf(const tReportFacts& facts) {
  std::map<size_t, std::string> slots;
  const auto locations = valuesOf(facts, QUENRA_ATTRIBUTE_SLOT_LOCATION);
  for (const auto& [instance, number] : valuesOf(facts, QUENRA_ATTRIBUTE_SLOT_NUMBER)) {
    slots.emplace(std::get<uint32_t>(number), textAt(locations, instance));
  }
  return slots;
}

// The positions to draw: every one of a chassis of usual size, otherwise the listed ones.
std::vector<size_t> positionsOf(const std::map<size_t, std::string>& slots) {
  constexpr size_t kSmallChassis = 8;
  constexpr size_t kLargeChassis = 18;
  std::vector<size_t> positions;
  const size_t last =
      slots.empty() ? kSmallChassis : std::max(slots.rbegin()->first, kSmallChassis);
  if (last <= kLargeChassis) {
    for (size_t position = 2; position <= last; ++position) {
      positions.push_back(position);
    }
  } else {
    for (const auto& [number, location] : slots) {
      positions.push_back(number);
    }
  }
  return positions;
}

void drawController(tHtml& svg, const tReportFacts& facts) {
  constexpr size_t kCharacters = 15;
  svg << "<rect class=\"module\" x=\"14\" y=\"16\" width=\"98\" height=\"136\" rx=\"4\"/>"
         "<rect class=\"handle\" x=\"50\" y=\"22\" width=\"26\" height=\"6\" rx=\"3\"/>"
         "<text class=\"strong\" x=\"63\" y=\"54\" text-anchor=\"middle\">"
      << tShown{shortened(facts.shown(QUENRA_ATTRIBUTE_PRODUCT_NAME), kCharacters - 2)}
      << "</text>";
  const auto line = [&svg](size_t y, const std::string& text) {
    svg << "<text x=\"63\" y=\"" << y << "\" text-anchor=\"middle\">"
        << tShown{shortened(text, kCharacters)} << "</text>";
  };
  constexpr size_t kFirstLine = 80;
  constexpr size_t kLineHeight = 15;
  if (facts.updateMachine) {
    const auto bios = facts.updateMachine->biosVersion();
    const auto marten = facts.updateMachine->martenVersion();
    line(kFirstLine, bios ? "BIOS " + *bios : "");
    line(kFirstLine + kLineHeight, marten ? "Marten " + *marten : "");
  } else {
    line(kFirstLine, "not opened");
  }
  svg << "<text class=\"faint\" x=\"63\" y=\"143\" text-anchor=\"middle\">controller</text>";
}

void drawSlots(tHtml& svg, const tReportFacts& facts) {
  constexpr size_t kLeft = 120;
  constexpr size_t kWidth = 228;
  constexpr size_t kLocationCharacters = 14;
  const auto slots = slotsOf(facts);
  const std::vector<size_t> positions = positionsOf(slots);
  const size_t step = kWidth / std::max<size_t>(positions.size(), 1);
  for (size_t i = 0; i < positions.size(); ++i) {
    const auto slot = slots.find(positions[i]);
    const size_t x = kLeft + i * step;
    const size_t middle = x + (step - 3) / 2;
    svg << "<rect class=\"" << (slot == slots.end() ? tMarkup("place") : tMarkup("slot"))
        << "\" x=\"" << x << "\" y=\"16\" width=\"" << step - 3
        << "\" height=\"118\" rx=\"3\"/><text class=\"faint\" x=\"" << middle
        << "\" y=\"149\" text-anchor=\"middle\">" << positions[i] << "</text>";
    if (slot != slots.end()) {
      svg << "<text class=\"strong\" transform=\"translate(" << middle + 4 << " 124) rotate(-90)\">"
          << tShown{shortened(slot->second, kLocationCharacters)} << "</text>";
    }
  }
}

std::vector<const tTerminalFacts*> linesOf(const tReportFacts& facts) {
  constexpr size_t kMaxLines = 16;
  std::vector<const tTerminalFacts*> lines;
  for (const tTerminalFacts& terminal : facts.terminals) {
    if (terminal.terminal.busLine != tTerminal::kNoBusLine && lines.size() < kMaxLines) {
      lines.push_back(&terminal);
    }
  }
  return lines;
}

constexpr size_t kFirstTriggerLine = 178;
constexpr size_t kTriggerLineHeight = 16;

void drawTriggerLines(tHtml& svg, const std::vector<const tTerminalFacts*>& lines) {
  constexpr size_t kNameCharacters = 14;
  size_t y = kFirstTriggerLine;
  for (const tTerminalFacts* const line : lines) {
    const bool isHeld = line->use == tTerminalUse::held;
    svg << "<text x=\"14\" y=\"" << y + 4 << "\">"
        << tShown{shortened(line->terminal.name, kNameCharacters)} << "</text><path class=\""
        << (isHeld ? tMarkup("held") : tMarkup("line")) << "\" d=\"M112 " << y
        << "H306\"/><text class=\"" << (isHeld ? tMarkup("strong alert") : tMarkup("faint"))
        << "\" x=\"346\" y=\"" << y + 4 << "\" text-anchor=\"end\">"
        << (isHeld                            ? tMarkup("held")
            : line->use == tTerminalUse::free ? tMarkup("free")
                                              : tMarkup("-"))
        << "</text>";
    y += kTriggerLineHeight;
  }
}

// ---- Memory ----

constexpr size_t kMaxModules = 8;
constexpr size_t kModuleHeight = 44;

void drawModule(tHtml& svg, size_t y, const std::string& locator, const std::string& size,
                const std::string& type) {
  constexpr size_t kLocatorCharacters = 24;
  constexpr size_t kSizeCharacters = 16;
  svg << "<rect class=\"module\" x=\"8\" y=\"" << y << "\" width=\"344\" height=\"34\" rx=\"4\"/>"
      << "<path class=\"contacts\" d=\"M16 " << y + 31 << "H168M184 " << y + 31 << "H344\"/>"
      << "<text class=\"strong\" x=\"18\" y=\"" << y + 20 << "\">"
      << tShown{shortened(locator, kLocatorCharacters)} << "</text><text x=\"342\" y=\"" << y + 20
      << "\" text-anchor=\"end\"><tspan class=\"strong\">"
      << tShown{shortened(size, kSizeCharacters)} << "</tspan> "
      << tShown{shortened(type, kSizeCharacters)} << "</text>";
}

// "DDR4" of "26 (DDR4)"
std::string nameIn(const std::string& shown) {
  const size_t open = shown.find('(');
  return open == std::string::npos ? "" : shown.substr(open + 1, shown.size() - open - 2);
}

}  // namespace

tHtml chassisDrawing(const tReportFacts& facts) {
  const auto lines = linesOf(facts);
  const auto held = static_cast<size_t>(std::ranges::count_if(
      lines, [](const tTerminalFacts* line) { return line->use == tTerminalUse::held; }));
  constexpr size_t kHeightWithoutLines = 166;
  const size_t height =
      lines.empty() ? kHeightWithoutLines : kFirstTriggerLine + lines.size() * kTriggerLineHeight;
  tHtml svg;
  svg << "<svg viewBox=\"0 0 360 " << height
      << "\" role=\"img\" aria-labelledby=\"chassis-title chassis-description\">"
         "<title id=\"chassis-title\">The chassis</title><desc id=\"chassis-description\">"
      << tShown{"The controller " + facts.shown(QUENRA_ATTRIBUTE_PRODUCT_NAME)} << ", "
      << tShown{countOf(slotsOf(facts).size(), "listed slot")};
  if (!lines.empty()) {
    svg << ", " << tShown{countOf(lines.size(), "trigger line")} << " of which " << held
        << (held == 1 ? tMarkup(" is held") : tMarkup(" are held"));
  }
  svg << ". The tables of this page have the same content.</desc>"
         "<rect class=\"frame\" x=\"2\" y=\"2\" width=\"356\" height=\""
      << height - 4 << "\" rx=\"8\"/>";
  drawController(svg, facts);
  drawSlots(svg, facts);
  drawTriggerLines(svg, lines);
  svg << "</svg>";
  return svg;
}

tHtml memoryDrawing(const tReportFacts& facts) {
  const tAttributeReadings* const sizeReadings = find(facts, QUENRA_ATTRIBUTE_MEMORY_SIZE);
  const tAttributeReadings* const typeReadings = find(facts, QUENRA_ATTRIBUTE_MEMORY_TYPE);
  const auto locators = valuesOf(facts, QUENRA_ATTRIBUTE_MEMORY_LOCATOR);
  const auto sizes = valuesOf(facts, QUENRA_ATTRIBUTE_MEMORY_SIZE);
  const auto types = valuesOf(facts, QUENRA_ATTRIBUTE_MEMORY_TYPE);
  if (sizes.empty() || sizeReadings == nullptr || typeReadings == nullptr) {
    return {};
  }
  const size_t modules = sizes.rbegin()->first + 1;
  const size_t drawn = std::min(modules, kMaxModules);
  const size_t height = drawn * kModuleHeight + (modules > drawn ? 18 : 0);
  tHtml svg;
  svg << "<svg viewBox=\"0 0 360 " << height
      << "\" role=\"img\" aria-labelledby=\"memory-title memory-description\">"
         "<title id=\"memory-title\">The memory modules</title><desc id=\"memory-description\">"
      << tShown{countOf(modules, "populated module")}
      << ". The table of the memory has the same content.</desc>";
  for (size_t module = 0; module < drawn; ++module) {
    drawModule(svg, module * kModuleHeight + 4, textAt(locators, module),
               textAt(sizes, module, sizeReadings->row),
               nameIn(textAt(types, module, typeReadings->row)));
  }
  if (modules > drawn) {
    svg << "<text class=\"faint\" x=\"18\" y=\"" << height - 5 << "\">and " << modules - drawn
        << " more</text>";
  }
  svg << "</svg>";
  return svg;
}

}  // namespace nCommandLine
