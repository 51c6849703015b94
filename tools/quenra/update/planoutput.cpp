#include "tools/quenra/update/updateplan.h"

#include "tools/commandline/utf8text.h"
#include "tools/quenra/firmware/firmwareimage.h"
#include "tools/quenra/output/table.h"
#include "tools/quenra/tables/statustable.h"

namespace nCommandLine {
namespace {

struct tActionWords {
  std::string_view planned;
  std::string_view done;  // empty if the action does not change the machine
};

// In the order of tSectionAction.
constexpr tActionWords kWords[] = {
    {"send to the controller interface", "sent to the controller interface"},
    {"send to the Marten interface", "sent to the Marten interface"},
    {"write to a file and install as a driver package",
     "written to a file; package passed to the driver store, which reports no result"},
    {"write to a file", "written to a file"},
    {"nothing", ""},
    {"leave out", ""},
    {"refused", ""},
    {"keep back", ""},
};

const tActionWords& wordsOf(tSectionAction action) noexcept {
  return kWords[static_cast<size_t>(action)];
}

constexpr const char* kNotAvailable = "not available";

std::string versionText(const std::optional<std::string>& version) {
  return version ? printableText(*version) : kNotAvailable;
}

std::string installedText(const tUpdateMachine* machine) {
  if (machine == nullptr) {
    return kNotAvailable;
  }
  return "BIOS " + versionText(machine->biosVersion()) +
         (machine->hasMarten ? ", Marten " + versionText(machine->martenVersion()) : "");
}

std::string orDash(const std::string& text) {
  return text.empty() ? "-" : printableText(text);
}

std::string sizeText(const tImageSection& section) {
  return section.byteCount ? std::to_string(*section.byteCount) : "-";
}

template <class Text>
void writeVersion(tJsonDocument& document, std::string_view name,
                  const std::optional<Text>& version) {
  if (version) {
    document.text(name, *version);
  } else {
    document.null(name);
  }
}

std::string_view resultText(const tPlannedSection& planned, tSectionResult result) {
  switch (result) {
    case tSectionResult::applied:
    case tSectionResult::handedOver:
      return wordsOf(planned.action).done;
    case tSectionResult::failed:
      return "failed";
    case tSectionResult::notApplied:
      return "not applied";
    case tSectionResult::unknown:
      return "unknown whether it was applied";
  }
  return "";
}

// Writes null for 0.
void writePositive(tJsonDocument& document, std::string_view name, int64_t number) {
  if (number == 0) {
    document.null(name);
  } else {
    document.number(name, number);
  }
}

void writeSection(tJsonDocument& document, const tPlannedSection& planned) {
  const auto& header = planned.section->header;
  document.number("section", static_cast<int64_t>(planned.number));
  document.optionalText("device", header.targetDevice);
  document.optionalText("version", header.version);
  document.optionalText("fileName", header.targetFileName);
  document.number("byteCount", static_cast<int64_t>(planned.section->byteCount.value_or(0)));
  document.text("action", actionName(planned.action));
  document.optionalText("reason", planned.reason);
  document.optionalText("remedy", planned.remedy());
  writeRemarks(document, planned.section->remarks);
}

}  // namespace

std::string plannedText(const tPlannedSection& planned) {
  std::string text(wordsOf(planned.action).planned);
  if (!planned.reason.empty()) {
    text += wordsOf(planned.action).done.empty() ? ": " : ", although ";
    text += printableText(planned.reason);
  }
  if (!planned.remedy().empty()) {
    text.append("; ").append(planned.remedy());
  }
  return text;
}

void printPlan(const tStreams& streams, const tUpdateMachine* machine,
               const std::vector<tPlannedSection>& plan, std::string_view heading) {
  streams.out << "installed: " << installedText(machine) << '\n';
  if (machine != nullptr && machine->awaitsRestart()) {
    streams.out << pendingRestartText() << '\n';
  }
  tTable table;
  table.addRow({"Section", "Device", "Version", "File", "Bytes", std::string(heading)});
  for (const tPlannedSection& planned : plan) {
    const auto& header = planned.section->header;
    table.addRow({std::to_string(planned.number), orDash(header.targetDevice),
                  orDash(header.version), orDash(header.targetFileName), sizeText(*planned.section),
                  plannedText(planned)});
  }
  streams.out << '\n';
  table.write(streams.out, tStyle(streams.outTakesStyles));
  streams.out << '\n';
}

void printObstacles(std::ostream& stream, const std::vector<tObstacle>& obstacles) {
  for (const tObstacle& obstacle : obstacles) {
    stream << "quenra: ";
    if (obstacle.section) {
      stream << "section " << *obstacle.section << ": ";
    }
    stream << printableText(obstacle.fact);
    if (obstacle.code) {
      stream << "\n  " << codeAndConstant(*obstacle.code);
    }
    if (obstacle.line != 0) {
      stream << ", line " << obstacle.line;
    }
    stream << "\n  Advice: " << printableText(obstacle.remedy) << '\n';
  }
}

void printRemarks(std::ostream& stream, const std::vector<tPlannedSection>& plan,
                  const tUpdateOptions& options) {
  for (const tPlannedSection& planned : plan) {
    for (const tSectionRemark& remark : planned.section->remarks) {
      if (!remark.isRefused || options.allowAnyPath) {
        stream << "quenra: warning: section " << planned.number << ": "
               << printableText(remark.fact) << '\n';
      }
    }
  }
}

void printResults(std::ostream& stream, const std::vector<tPlannedSection>& plan,
                  const tUpdateResult& result) {
  for (size_t i = 0; i < plan.size(); ++i) {
    const tPlannedSection& planned = plan[i];
    if (!wordsOf(planned.action).done.empty()) {
      const auto& header = planned.section->header;
      stream << "  section " << planned.number << ", " << printableText(header.targetDevice) << ' '
             << printableText(header.version) << ", "
             << countOf(static_cast<size_t>(planned.section->byteCount.value_or(0)), "byte") << ": "
             << resultText(planned, result.sections[i]) << '\n';
    }
  }
}

void writeInstalled(tJsonDocument& document, const tUpdateMachine* machine) {
  document.beginObject("installed");
  writeVersion(document, "bios", machine == nullptr ? std::nullopt : machine->biosVersion());
  writeVersion(document, "marten", machine == nullptr ? std::nullopt : machine->martenVersion());
  document.truth("awaitsRestart", machine != nullptr && machine->awaitsRestart());
  document.endObject();
}

void writePlan(tJsonDocument& document, const std::vector<tPlannedSection>& plan) {
  document.beginArray("sections");
  for (const tPlannedSection& planned : plan) {
    document.beginObject();
    writeSection(document, planned);
    document.endObject();
  }
  document.endArray();
}

void writePlan(tJsonDocument& document, const std::vector<tPlannedSection>& plan,
               const tUpdateResult& result) {
  document.beginArray("sections");
  for (size_t i = 0; i < plan.size(); ++i) {
    document.beginObject();
    writeSection(document, plan[i]);
    document.text("result", resultName(result.sections[i]));
    document.endObject();
  }
  document.endArray();
}

void writeObstacles(tJsonDocument& document, const std::vector<tObstacle>& obstacles) {
  document.beginArray("obstacles");
  for (const tObstacle& obstacle : obstacles) {
    document.beginObject();
    document.text("fact", obstacle.fact);
    document.text("remedy", obstacle.remedy);
    if (obstacle.code) {
      document.status("status", *obstacle.code);
    } else {
      document.null("status");
    }
    writePositive(document, "line", obstacle.line);
    writePositive(document, "section", static_cast<int64_t>(obstacle.section.value_or(0)));
    document.endObject();
  }
  document.endArray();
}

}  // namespace nCommandLine
