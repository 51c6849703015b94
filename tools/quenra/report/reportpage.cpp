#include <algorithm>
#include <string>

#include "quenra_version.h"
#include "tools/quenra/report/drawing.h"
#include "tools/quenra/report/reportfacts.h"
#include "tools/quenra/report/stylesheet.h"
#include "tools/quenra/report/thtml.h"
#include "tools/quenra/tables/statustable.h"

namespace nCommandLine {
namespace {

// ---- Texts ----

// "Configured speed" of "memory-configured-speed" without the prefix "memory-".
std::string titleOf(std::string_view name, std::string_view prefix = "") {
  std::string title(name.starts_with(prefix) ? name.substr(prefix.size()) : name);
  std::ranges::replace(title, '-', ' ');
  if (!title.empty() && title.front() >= 'a' && title.front() <= 'z') {
    title.front() = static_cast<char>(title.front() - 'a' + 'A');
  }
  return title;
}

bool hasInstances(const tAttributeRow& row) noexcept {
  return row.instances->maximum > 1;
}

tHtml faint(std::string_view text) {
  tHtml html;
  html << "<span class=\"faint\">" << tShown{text} << "</span>";
  return html;
}

tHtml valueOf(const tAttributeRow& row, const tReading& reading) {
  tHtml html;
  switch (reading.state()) {
    case tReadingState::value: {
      const std::string shown = shownValue(&row, reading.value);
      html << (shown.empty() ? faint("empty") : tHtml() << tShown{shown});
      break;
    }
    case tReadingState::notSupported:
      html << faint("not supported");
      break;
    case tReadingState::notAvailable:
      html << faint("not available");
      break;
    case tReadingState::failed:
      html << "<span class=\"held\">failed: " << tShown{codeAndConstant(reading.code)} << "</span>";
      break;
  }
  return html;
}

// ---- Tables ----

// A table of names and values.
class tFields {
 public:
  void add(std::string_view name, const tHtml& value) {
    rows_ << "<tr><th scope=\"row\">" << tShown{name} << "</th><td>" << value << "</td></tr>";
  }
  // The caption names the table for readers that do not see it.
  [[nodiscard]] tHtml table(std::string_view label) const {
    tHtml html;
    if (!rows_.empty()) {
      html << "<table class=\"fields\" aria-label=\"" << tShown{label} << "\"><tbody>" << rows_
           << "</tbody></table>";
    }
    return html;
  }

 private:
  tHtml rows_;
};

// A table with a row of headings. On a narrow screen it scrolls by itself, also by keys.
class tGrid {
 public:
  explicit tGrid(const std::vector<std::string>& headings) {
    for (const std::string& heading : headings) {
      head_ << "<th scope=\"col\">" << tShown{heading} << "</th>";
    }
  }

  // The first cell is the heading of its row.
  void addRow(const std::vector<tHtml>& cells) {
    rows_ << "<tr><th scope=\"row\">" << cells.front() << "</th>";
    for (size_t i = 1; i < cells.size(); ++i) {
      rows_ << "<td>" << cells[i] << "</td>";
    }
    rows_ << "</tr>";
  }
  // `isAlone`: the heading of the section says the same, and only readers that do not see it need the caption.
  [[nodiscard]] tHtml table(std::string_view caption, bool isAlone = false) const {
    tHtml html;
    html << "<div class=\"scroll\" role=\"region\" tabindex=\"0\" aria-label=\"" << tShown{caption}
         << "\"><table><caption" << (isAlone ? tMarkup(" class=\"unseen\"") : tMarkup("")) << ">"
         << tShown{caption} << "</caption><thead><tr>" << head_ << "</tr></thead><tbody>" << rows_
         << "</tbody></table></div>";
    return html;
  }

 private:
  tHtml head_;
  tHtml rows_;
};

tHtml shownHtml(std::string_view text) {
  return tHtml() << tShown{text};
}

tHtml orDash(std::string_view text) {
  return text.empty() ? faint("-") : shownHtml(text);
}

// A part of the page with a heading.
tHtml section(tMarkup id, std::string_view title, const tHtml& content) {
  tHtml html;
  html << "<section aria-labelledby=\"" << id << "\"><h2 id=\"" << id << "\">" << tShown{title}
       << "</h2>" << content << "</section>\n";
  return html;
}

// ---- Header and warnings ----

std::string titleOf(const tReportFacts& facts) {
  const std::string product = facts.shown(QUENRA_ATTRIBUTE_PRODUCT_NAME);
  return product.empty() ? "Unknown controller" : product;
}

tHtml header(const tReportFacts& facts) {
  tHtml html;
  html << "<header><div><h1>" << tShown{titleOf(facts)} << "</h1>";
  std::string identity = facts.shown(QUENRA_ATTRIBUTE_SYSTEM_MANUFACTURER);
  const std::string serial = facts.shown(QUENRA_ATTRIBUTE_SERIAL_NUMBER);
  if (!serial.empty()) {
    identity += (identity.empty() ? "serial number " : ", serial number ") + serial;
  }
  if (!identity.empty()) {
    html << "<p>" << tShown{identity} << "</p>";
  }
  html << "<p class=\"faint\">State of " << tShown{facts.origin} << "</p></div>";
  const size_t warnings = facts.warnings.size();
  if (warnings == 0) {
    html << "<p class=\"verdict good\">No warnings</p>";
  } else {
    html << "<p class=\"verdict bad\">" << warnings
         << (warnings == 1 ? tMarkup(" warning") : tMarkup(" warnings")) << "</p>";
  }
  html << "</header>\n";
  return html;
}

tHtml warnings(const tReportFacts& facts) {
  if (facts.warnings.empty()) {
    return {};
  }
  tHtml list;
  list << "<ul>";
  for (const tReportWarning& warning : facts.warnings) {
    list << "<li><strong>" << tShown{warning.fact} << "</strong>";
    if (!warning.remedy.empty()) {
      list << "<p>" << tShown{warning.remedy} << "</p>";
    }
    if (!warning.detail.empty()) {
      list << "<p class=\"faint\">" << tShown{warning.detail} << "</p>";
    }
    list << "</li>";
  }
  list << "</ul>";
  return section("warnings", "Warnings", list);
}

// ---- Attributes ----

// The attributes of a subject that have one value, or one for each interface.
tHtml fieldsOf(const tReportFacts& facts, std::string_view subject) {
  tFields fields;
  std::string title;
  for (const tAttributeReadings& attribute : facts.machine) {
    if (attribute.row->subject->key != subject || hasInstances(*attribute.row)) {
      continue;
    }
    title = attribute.row->subject->title;
    for (const tReading& reading : attribute.readings) {
      const std::string name = titleOf(attribute.row->name);
      fields.add(!attribute.row->perInterface                  ? name
                 : reading.address.which == tInterface::marten ? name + ", Marten"
                                                               : name + ", BIOS",
                 valueOf(*attribute.row, reading));
    }
  }
  return fields.table(title);
}

// The attributes of a kind of instance: a row for each instance.
tHtml gridOf(const tReportFacts& facts, const std::string& kind, std::string_view caption,
             bool isAlone = false) {
  const std::string prefix = kind + "-";
  std::vector<std::string> headings{"No."};
  std::vector<const tAttributeReadings*> columns;
  size_t rows = 0;
  for (const tAttributeReadings& attribute : facts.machine) {
    if (hasInstances(*attribute.row) && attribute.row->name.starts_with(prefix)) {
      headings.push_back(titleOf(attribute.row->name, prefix));
      columns.push_back(&attribute);
      rows = std::max(rows, attribute.readings.size());
    }
  }
  tGrid grid(headings);
  for (size_t row = 0; row < rows; ++row) {
    std::vector<tHtml> cells{tHtml() << row};
    for (const tAttributeReadings* const column : columns) {
      cells.push_back(row < column->readings.size() ? valueOf(*column->row, column->readings[row])
                                                    : faint("-"));
    }
    grid.addRow(cells);
  }
  return grid.table(caption, isAlone);
}

// ---- Drawings ----

tHtml drawing(const tReportFacts& facts) {
  tHtml html;
  html << "<figure>" << chassisDrawing(facts)
       << "<figcaption>Solid slots are those that the firmware lists, with their locations; dashed "
          "ones "
          "it does not mention.</figcaption></figure>";
  return section("chassis", "Chassis", html);
}

tHtml memory(const tReportFacts& facts) {
  tHtml html;
  const tHtml picture = memoryDrawing(facts);
  if (!picture.empty()) {
    html << "<figure>" << picture << "</figure>";
  }
  return section("memory", "Memory", html << fieldsOf(facts, "memory"));
}

// ---- Trigger lines ----

tHtml useOf(const tTerminalFacts& terminal) {
  switch (terminal.use) {
    case tTerminalUse::held:
      return tHtml() << "<span class=\"held\">held</span>";
    case tTerminalUse::free:
      return shownHtml("free");
    case tTerminalUse::unknown:
      break;
  }
  return faint(terminal.terminal.visibility == "public" ? "unknown" : "internal");
}

tHtml holdersText(const tTerminalFacts& terminal, bool areKnown) {
  if (terminal.use != tTerminalUse::held) {
    return faint("-");
  }
  if (!areKnown) {
    return faint("unknown");
  }
  std::string text;
  for (const tRouteHolder& holder : terminal.holders) {
    text += (text.empty() ? "session " : ", session ") + std::to_string(holder.session) +
            " ticket " + std::to_string(holder.ticket);
  }
  return text.empty() ? faint("released meanwhile")
                      : tHtml() << "<div class=\"wraps\">" << tShown{text} << "</div>";
}

tHtml triggers(const tReportFacts& facts) {
  tHtml html;
  if (facts.terminals.empty()) {
    html << "<p>" << tShown{facts.whyNoTerminals} << "</p>";
    return section("triggers", "Trigger lines", html);
  }
  tGrid grid({"Terminal", "Line", "Use", "Held by"});
  for (const tTerminalFacts& terminal : facts.terminals) {
    const bool hasLine = terminal.terminal.busLine != tTerminal::kNoBusLine;
    grid.addRow({shownHtml(terminal.terminal.name),
                 hasLine ? tHtml() << terminal.terminal.busLine : faint("-"), useOf(terminal),
                 holdersText(terminal, facts.holdersAreKnown)});
  }
  html << grid.table("Terminals and their use", true);
  const bool isAnyHeld =
      std::ranges::count(facts.terminals, tTerminalUse::held, &tTerminalFacts::use) != 0;
  if (isAnyHeld && !facts.holdersAreKnown) {
    html << "<p class=\"faint\">A report made with --holders names the holders.</p>";
  }
  return section("triggers", "Trigger lines", html);
}

// ---- Firmware ----

tHtml installed(const tReportFacts& facts) {
  tFields fields;
  const tUpdateMachine& machine = *facts.updateMachine;
  fields.add("BIOS", orDash(machine.biosVersion().value_or("")));
  fields.add("Marten", !machine.hasMarten        ? faint("not present")
                       : machine.awaitsRestart() ? shownHtml("awaits a restart")
                                                 : orDash(machine.martenVersion().value_or("")));
  const bool isKnown = machine.takesUpdates.state() == tReadingState::value;
  fields.add("Updates", !isKnown ? faint("unknown whether supported")
                        : std::get<uint32_t>(machine.takesUpdates.value) != 0
                            ? shownHtml("supported")
                            : shownHtml("not supported"));
  return fields.table("Installed firmware");
}

tHtml planned(const tReportPlan& plan) {
  tGrid grid({"Section", "Device", "Version", "Bytes", "What an update would do"});
  for (const tPlannedSection& section : plan.sections) {
    const auto& header = section.section->header;
    grid.addRow({tHtml() << section.number, orDash(header.targetDevice), orDash(header.version),
                 section.section->byteCount ? shownHtml(std::to_string(*section.section->byteCount))
                                            : faint("-"),
                 tHtml() << "<div class=\"prose\">" << tShown{plannedText(section)} << "</div>"});
  }
  tHtml html;
  html << "<p>Image " << tShown{plan.path} << ". ";
  if (!plan.obstacles.empty()) {
    html << "The update is blocked; see the warnings.";
  } else {
    html << (changesAnything(plan.sections) ? tMarkup("No obstacle was found.")
                                            : tMarkup("There is nothing to do."));
  }
  html << "</p>" << grid.table("Sections in the order of application");
  return html;
}

tHtml firmware(const tReportFacts& facts) {
  tHtml html;
  html << (facts.updateMachine ? installed(facts)
                               : tHtml() << "<p>The controller could not be opened.</p>");
  return section("firmware", "Firmware", html);
}

tHtml plan(const tReportFacts& facts) {
  return facts.plan ? section("plan", "Plan of an update", planned(*facts.plan)) : tHtml();
}

// ---- The page ----

tHtml head(const tReportFacts& facts) {
  tHtml html;
  // The policy forbids scripts and requests even if this program had a fault.
  html << "<!doctype html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
          "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
          "style-src 'unsafe-inline'; base-uri 'none'; form-action 'none'\">\n"
          "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
          "<meta name=\"generator\" content=\"quenra " QUENRA_VERSION "\">\n<title>"
       << tShown{titleOf(facts)} << " - controller report</title>\n<style>" << kStyleSheet
       << "</style>\n</head>\n";
  return html;
}

// Two columns on a wide screen and on paper.
tHtml pair(const tHtml& left, const tHtml& right) {
  tHtml html;
  html << "<div class=\"pair\">\n<div class=\"column\">\n"
       << left << "</div>\n<div class=\"column\">\n"
       << right << "</div>\n</div>\n";
  return html;
}

tHtml overview(const tReportFacts& facts) {
  if (facts.machine.empty()) {
    return pair(firmware(facts), triggers(facts));
  }
  return pair(tHtml() << section("identity", "Identity", fieldsOf(facts, "identity"))
                      << memory(facts) << firmware(facts),
              tHtml() << drawing(facts) << triggers(facts));
}

tHtml details(const tReportFacts& facts) {
  tHtml html;
  if (facts.machine.empty()) {
    return html;
  }
  html << "<div class=\"column\">\n"
       << section("modules", "Memory modules and processors",
                  tHtml() << gridOf(facts, "memory", "Memory modules")
                          << gridOf(facts, "processor", "Processors")
                          << fieldsOf(facts, "processor"))
       << pair(tHtml() << section("slots", "Slots and buses",
                                  tHtml() << fieldsOf(facts, "slots-and-buses")
                                          << gridOf(facts, "slot", "Slots"))
                       << section("driver", "Driver", fieldsOf(facts, "driver")),
               tHtml() << section("platform", "Platform", fieldsOf(facts, "platform"))
                       << section("bridges", "Bridges",
                                  gridOf(facts, "bridge", "Locations of the bridges", true)))
       << "</div>\n";
  return html;
}

}  // namespace

std::string reportPage(const tReportFacts& facts) {
  tHtml html;
  html << head(facts) << "<body>\n<a class=\"skip\" href=\"#content\">Skip to the content</a>\n"
       << header(facts) << "<main id=\"content\" class=\"column\">\n"
       << warnings(facts) << overview(facts) << plan(facts) << details(facts)
       << "</main>\n<footer><p>Made by quenra " QUENRA_VERSION ".</p></footer>\n</body>\n</html>\n";
  return html.text();
}

}  // namespace nCommandLine
