#include <concepts>
#include <filesystem>
#include <regex>

#include "quenra_attributes.h"
#include "tests/builders/repositoryfile.h"
#include "tests/component/commandline/updateverbtest.h"
#include "tools/quenra/report/reportfacts.h"
#include "tools/quenra/report/thtml.h"

namespace nTests {
namespace {

using nCommandLine::tHtml;
using nCommandLine::tShown;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr std::string_view kHostile = "</title><script>alert(1)</script>\" onload='x' & <b>";
constexpr std::string_view kHostileEscaped =
    "&lt;/title&gt;&lt;script&gt;alert(1)&lt;/script&gt;&quot; onload=&#39;x&#39; &amp; &lt;b&gt;";

// ---- HTML ----

template <class Text>
concept tIsAppendable = requires(tHtml html, Text text) {
  html << text;
};

static_assert(tIsAppendable<tShown>);
static_assert(!tIsAppendable<std::string>, "a text of the machine must be escaped");
static_assert(!tIsAppendable<std::string_view>);
static_assert(!tIsAppendable<const char*>);

TEST(Html, Texts_AreEscapedForElementsAndForAttributes) {
  tHtml html;
  html << "<p title=\"" << tShown{kHostile} << "\">" << tShown{kHostile} << "</p>";
  EXPECT_EQ(html.text(), "<p title=\"" + std::string(kHostileEscaped) + "\">" +
                             std::string(kHostileEscaped) + "</p>");
}

TEST(Html, BytesThatAreNoText_AreReplacedOrEscaped) {
  tHtml html;
  html << tShown{std::string_view("a\xFF\x1B\0b\xE2\x80\xAE", 8)};
  EXPECT_EQ(html.text(), "a\xEF\xBF\xBD\\x1B\\x00b\\u202E");
}

// ---- The report ----

class Report : public UpdateVerb {
 protected:
  void SetUp() override {
    UpdateVerb::SetUp();
    library_.text(QUENRA_ATTRIBUTE_SYSTEM_MANUFACTURER, "Maker");
    library_.text(QUENRA_ATTRIBUTE_PRODUCT_NAME, "qctl-8840");
    library_.text(QUENRA_ATTRIBUTE_SERIAL_NUMBER, "VQ02C47A9");
    library_.number(QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT, 2);
    library_.text(QUENRA_ATTRIBUTE_MEMORY_LOCATOR, "Socket 0");
    library_.text(QUENRA_ATTRIBUTE_MEMORY_LOCATOR + 1, "Socket 1");
    library_.number(QUENRA_ATTRIBUTE_MEMORY_SIZE, 16384);
    library_.number(QUENRA_ATTRIBUTE_MEMORY_SIZE + 1, 8192);
    library_.number(QUENRA_ATTRIBUTE_MEMORY_TYPE, 26);
    library_.number(QUENRA_ATTRIBUTE_SLOT_COUNT, 1);
    library_.number(QUENRA_ATTRIBUTE_SLOT_NUMBER, 3);
    library_.text(QUENRA_ATTRIBUTE_SLOT_LOCATION, "04:1");
    library_.text(QUENRA_ATTRIBUTE_DEVICE_PATH, "device");
  }

  // The page of a run that succeeds.
  std::string page(const tWords& more = {}) {
    tWords words{"report", folder_.path("a.html"), "--force"};
    words.insert(words.end(), more.begin(), more.end());
    const tRun result = run(words);
    EXPECT_EQ(result.exitCode, 0) << result.error;
    return folder_.content("a.html");
  }
  // The texts of the elements that a regular expression with one group finds.
  static std::vector<std::string> found(const std::string& text, const char* pattern) {
    const std::regex expression(pattern);
    std::vector<std::string> texts;
    for (auto at = std::sregex_iterator(text.begin(), text.end(), expression);
         at != std::sregex_iterator(); ++at) {
      texts.push_back((*at)[1]);
    }
    return texts;
  }
  static std::vector<std::string> warnings(const std::string& text) {
    return found(text, "<li><strong>([^<]*)</strong>");
  }
  std::vector<std::string> callsOf(std::string_view first) const {
    std::vector<std::string> calls;
    for (const std::string& call : routing_.calls) {
      if (call.starts_with(first)) {
        calls.push_back(call);
      }
    }
    return calls;
  }
  static std::string routeOf(uint32_t ticket, uint32_t cost) {
    return R"([{"ticket":)" + std::to_string(ticket) + R"(,"destination":"PXI_Trig0","cost":)" +
           std::to_string(cost) + R"(,"indexOfStartingSeed":0,"constraints":{}}])";
  }
};

TEST_F(Report, Page_IsSelfContained) {
  const std::string text = page();
  EXPECT_THAT(text,
              StartsWith("<!doctype html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">"));
  EXPECT_THAT(text, HasSubstr("Content-Security-Policy\" content=\"default-src 'none'; "));
  EXPECT_THAT(text, Not(HasSubstr("<script")));
  EXPECT_THAT(text, Not(HasSubstr("<link")));
  EXPECT_THAT(text, Not(HasSubstr("<img")));
  EXPECT_THAT(text, Not(HasSubstr("src=")));
  EXPECT_THAT(text, Not(HasSubstr("url(")));
  EXPECT_THAT(text, Not(HasSubstr("@import")));
  EXPECT_THAT(found(text, "href=\"([^\"]*)\""), ElementsAre("#content"));
  EXPECT_TRUE(text.ends_with("</html>\n"));
}

TEST_F(Report, Parts_HaveHeadingsInOrderAndTablesHaveHeadersWithScope) {
  const std::string text = page({"--image", fileOf({section("MARTEN", "1.4.2f7")})});
  EXPECT_THAT(found(text, "<h1>([^<]*)</h1>"), ElementsAre("qctl-8840"));
  EXPECT_THAT(found(text, "<h2 id=\"[a-z]*\">([^<]*)</h2>"),
              ElementsAre("Identity", "Memory", "Firmware", "Chassis", "Trigger lines",
                          "Plan of an update", "Memory modules and processors", "Slots and buses",
                          "Driver", "Platform", "Bridges"));
  EXPECT_THAT(found(text, "(<th>)"), IsEmpty());
  for (const char* landmark : {"<header>", "<main id=\"content\"", "<footer>"}) {
    EXPECT_EQ(found(text, ("(" + std::string(landmark) + ")").c_str()).size(), 1u) << landmark;
  }
  EXPECT_EQ(found(text, "(<table)").size(), found(text, "(</table>)").size());
  EXPECT_EQ(found(text, "(<svg)").size(), found(text, "(<desc )").size());
}

TEST_F(Report, EveryAttribute_IsInThePage) {
  for (const nCommandLine::tAttributeRow& row : nCommandLine::kAttributes) {
    if (row.type() == nCommandLine::tAttributeType::text &&
        row.id != QUENRA_ATTRIBUTE_DEVICE_PATH && !row.perInterface) {
      library_.text(row.id, "<" + std::string(row.name) + ">");
    }
  }
  library_.number(QUENRA_ATTRIBUTE_BRIDGE_COUNT, 1);
  const std::string text = page();
  for (const nCommandLine::tAttributeRow& row : nCommandLine::kAttributes) {
    if (row.type() == nCommandLine::tAttributeType::text &&
        row.id != QUENRA_ATTRIBUTE_DEVICE_PATH && !row.perInterface) {
      EXPECT_THAT(text, HasSubstr("<td>&lt;" + std::string(row.name) + "&gt;</td>"));
      EXPECT_THAT(text, Not(HasSubstr("<" + std::string(row.name) + ">")));
    }
  }
}

TEST_F(Report, TextsOfEverySource_AreEscaped) {
  const std::string hostile(kHostile);
  for (const uint32_t id :
       {uint32_t{QUENRA_ATTRIBUTE_SYSTEM_MANUFACTURER}, uint32_t{QUENRA_ATTRIBUTE_PRODUCT_NAME},
        uint32_t{QUENRA_ATTRIBUTE_SERIAL_NUMBER}, uint32_t{QUENRA_ATTRIBUTE_MEMORY_LOCATOR},
        uint32_t{QUENRA_ATTRIBUTE_SLOT_LOCATION}, kBiosVersion, kMartenVersion}) {
    library_.text(id, hostile);
  }
  const std::string image = fileOf({section("MARTEN", "<script>alert(2)</script>")});
  const std::string text = page({"--image", image});
  EXPECT_THAT(text,
              HasSubstr("<title>" + std::string(kHostileEscaped) + " - controller report</title>"));
  EXPECT_THAT(text, HasSubstr("<h1>" + std::string(kHostileEscaped) + "</h1>"));
  EXPECT_THAT(text, Not(HasSubstr("<script")));
  EXPECT_THAT(text, Not(HasSubstr("onload='")));
  EXPECT_THAT(text, Not(HasSubstr("\" onload")));
  EXPECT_THAT(text, HasSubstr("&lt;script&gt;alert(2)&lt;/script&gt;"));
}

TEST_F(Report, TextsThatAreLong_EndWithAnEllipsisInTheDrawing) {
  library_.text(QUENRA_ATTRIBUTE_PRODUCT_NAME, "ABCDEFGHIJKLMNOPQRSTUVWXYZ");
  std::string umlauts;
  for (int i = 0; i < 30; ++i) {
    umlauts += "\xC3\xA4";
  }
  library_.text(QUENRA_ATTRIBUTE_MEMORY_LOCATOR, umlauts);
  const std::string text = page();
  EXPECT_THAT(text, HasSubstr(">ABCDEFGHIJKL\xE2\x80\xA6</text>"));
  EXPECT_THAT(text, HasSubstr("<td>ABCDEFGHIJKLMNOPQRSTUVWXYZ</td>"));
  EXPECT_THAT(text, HasSubstr(">" + umlauts.substr(0, 46) + "\xE2\x80\xA6</text>"));
}

TEST_F(Report, MissingValues_AreShownAsSuch) {
  library_.code(QUENRA_ATTRIBUTE_SERIAL_NUMBER, QUENRA_STATUS_NOT_SUPPORTED);
  library_.text(QUENRA_ATTRIBUTE_SYSTEM_VERSION, "");
  library_.number(QUENRA_ATTRIBUTE_INTERFACES_PRESENT, QUENRA_SELECTOR_CONTROLLER);
  library_.code(kMartenVersion, QUENRA_STATUS_NO_CONTROLLER);
  library_.number(QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT, 0);
  library_.code(QUENRA_ATTRIBUTE_MEMORY_SIZE, QUENRA_STATUS_NOT_SUPPORTED);
  const std::string text = page();
  EXPECT_THAT(
      text,
      HasSubstr("<th scope=\"row\">Serial number</th><td><span class=\"faint\">not supported"));
  EXPECT_THAT(text,
              HasSubstr("<th scope=\"row\">System version</th><td><span class=\"faint\">empty"));
  EXPECT_THAT(text,
              HasSubstr("<th scope=\"row\">Marten</th><td><span class=\"faint\">not present"));
  EXPECT_THAT(text, Not(HasSubstr("memory-title")));
  EXPECT_THAT(text, HasSubstr("No warnings"));
  EXPECT_THAT(text, Not(HasSubstr("serial number")));
}

TEST_F(Report, ManyModulesAndSlots_AreLimitedInTheDrawingOnly) {
  library_.number(QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT, 11);
  for (uint32_t module = 0; module < 11; ++module) {
    library_.number(QUENRA_ATTRIBUTE_MEMORY_SIZE + module, 1000 + module);
  }
  library_.number(QUENRA_ATTRIBUTE_SLOT_NUMBER, 255);
  const std::string text = page();
  EXPECT_THAT(text, HasSubstr("and 3 more</text>"));
  EXPECT_THAT(text, HasSubstr("<td>1010 MiB</td>"));
  EXPECT_THAT(found(text, "(<rect class=\"(?:slot|place)\")").size(), 1u);
}

// ---- Warnings ----

TEST_F(Report, ControllerThatCannotBeOpened_IsReportedInThePage) {
  library_.openCode = QUENRA_STATUS_NO_CONTROLLER;
  const tRun result = run({"report", folder_.path("a.html")});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out, "report: 1 warning\n");
  const std::string text = folder_.content("a.html");
  EXPECT_THAT(text, HasSubstr("<h1>Unknown controller</h1>"));
  EXPECT_THAT(warnings(text), ElementsAre("cannot open the controller"));
  EXPECT_THAT(text, HasSubstr("-26932 QUENRA_STATUS_NO_CONTROLLER: "));
  EXPECT_THAT(found(text, "<h2 id=\"[a-z]*\">([^<]*)</h2>"),
              ElementsAre("Warnings", "Firmware", "Trigger lines"));
}

TEST_F(Report, Faults_AreWarningsBeforeTheRest) {
  library_.selfTestCode = QUENRA_STATUS_TIME_OUT;
  library_.code(QUENRA_ATTRIBUTE_DRIVER_SETTING_1, QUENRA_STATUS_TIME_OUT);
  library_.code(QUENRA_ATTRIBUTE_DRIVER_SETTING_2, QUENRA_STATUS_TIME_OUT);
  library_.text(kMartenVersion, "0.0.0f0");
  facts_.protection.isOn = true;
  const std::string text = page({"--image", fileOf({section("MARTEN", "1.4.2f7")})});
  const std::vector<std::string> facts = warnings(text);
  ASSERT_EQ(facts.size(), 4u);
  EXPECT_EQ(facts[0], "the self-test failed");
  EXPECT_EQ(facts[1], "cannot read driver-setting-1, driver-setting-2");
  EXPECT_EQ(facts[2], "an update of the Marten awaits a restart");
  EXPECT_THAT(facts[3], StartsWith("the update is blocked: drive C: is encrypted"));
  EXPECT_LT(text.find(">Warnings</h2>"), text.find(">Identity</h2>"));
  EXPECT_THAT(text, HasSubstr("<span class=\"held\">failed: -52007 QUENRA_STATUS_TIME_OUT</span>"));
  EXPECT_THAT(text, HasSubstr("The update is blocked; see the warnings."));
}

TEST_F(Report, WarningsOfTheLibrary_AreWarnings) {
  library_.openCode = 77;
  library_.number(QUENRA_ATTRIBUTE_DRIVER_SETTING_1, 5, 78);
  EXPECT_THAT(warnings(page()), ElementsAre("opening the controller succeeded with a warning",
                                            "a warning at reading driver-setting-1"));
}

// ---- Firmware ----

TEST_F(Report, Plan_ShowsEachSection) {
  const std::string text =
      page({"--image", fileOf({section("MARTEN", "1.4.2f7"), section("BIOS", "3.1.0f2")})});
  EXPECT_THAT(text, HasSubstr("No obstacle was found."));
  EXPECT_THAT(text, HasSubstr("<td>MARTEN</td><td>1.4.2f7</td><td>9</td>"
                              "<td><div class=\"prose\">send to the Marten interface</div></td>"));
  EXPECT_THAT(library_.updates, IsEmpty());
}

TEST_F(Report, WithoutImage_HasNoPlan) {
  EXPECT_THAT(page(), Not(HasSubstr("Plan of an update")));
}

TEST_F(Report, FileThatIsNoImage_IsAFailure) {
  const tRun result = run({"report", folder_.path("a.html"), "--image", folder_.file("x", "text")});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(folder_.content("a.html"), "(none)");
  EXPECT_EQ(run({"report", folder_.path("a.html"), "--image", folder_.path("none")}).exitCode, 1);
}

// ---- Trigger lines ----

TEST_F(Report, LinesOfTheSameCost_AreFreeAndNothingIsReserved) {
  const std::string text = page({"--holders"});
  EXPECT_THAT(text, HasSubstr("<th scope=\"row\">PXI_Trig0</th><td>0</td><td>free</td>"));
  EXPECT_THAT(text, HasSubstr("<th scope=\"row\">FLOAT</th><td><span class=\"faint\">-</span></td>"
                              "<td><span class=\"faint\">internal"));
  EXPECT_THAT(callsOf("reserve"), IsEmpty());
  EXPECT_EQ(callsOf("calculate").size(), callsOf("destroy").size());
}

class HeldLine : public Report {
 protected:
  void SetUp() override {
    Report::SetUp();
    // A greater cost unless the calculation ignores reservations.
    routing_.beforeCalculation = [this](const std::string& call) {
      const bool ignores = call.find("calculateIgnoresReservations\":true") != std::string::npos;
      routing_.routes = routeOf(7, ignores ? 1 : 1001);
    };
    routing_.codes["reserve"] = QUENRA_STATUS_ROUTE_CONFLICT;
    routing_.conflicts = R"([{"sessionId":4,"ticket":9},{"sessionId":5,"ticket":2}])";
  }
};

TEST_F(HeldLine, Cost_ShowsThatItIsHeldWithoutAReservation) {
  const std::string text = page();
  EXPECT_THAT(text, HasSubstr("<th scope=\"row\">PXI_Trig0</th><td>0</td>"
                              "<td><span class=\"held\">held</span></td>"
                              "<td><span class=\"faint\">unknown</span></td>"));
  EXPECT_THAT(text, HasSubstr("A report made with --holders names the holders."));
  EXPECT_THAT(text, HasSubstr("1 trigger line of which 1 is held"));
  EXPECT_THAT(text, HasSubstr("<path class=\"held\""));
  EXPECT_THAT(callsOf("reserve"), IsEmpty());
  EXPECT_THAT(callsOf("program"), IsEmpty());
  EXPECT_EQ(callsOf("calculate").size(), callsOf("destroy").size());
}

TEST_F(HeldLine, Holders_AreNamedOnRequest) {
  const std::string text = page({"--holders"});
  EXPECT_THAT(text, HasSubstr(">session 4 ticket 9, session 5 ticket 2</div></td>"));
  EXPECT_EQ(callsOf("reserve").size(), 2u) << "TRIG_SMB and PXI_Trig0";
  EXPECT_THAT(callsOf("program"), IsEmpty());
  EXPECT_THAT(callsOf("unreserve"), IsEmpty());
  EXPECT_EQ(callsOf("calculate").size(), callsOf("destroy").size());
}

TEST_F(HeldLine, LineThatBecomesFreeMeanwhile_IsReleasedAtOnce) {
  routing_.codes.clear();
  const std::string text = page({"--holders"});
  EXPECT_THAT(text, HasSubstr("released meanwhile"));
  EXPECT_EQ(callsOf("reserve").size(), callsOf("unreserve").size());
  EXPECT_THAT(callsOf("program"), IsEmpty());
}

TEST_F(Report, RouterThatFails_IsAWarning) {
  routing_.codes["calculate"] = QUENRA_STATUS_DEVICE_REMOVED;
  const std::string text = page();
  EXPECT_THAT(warnings(text), ElementsAre("cannot calculate the route"));
  EXPECT_THAT(text, HasSubstr("The trigger lines could not be examined."));
  library_.code(QUENRA_ATTRIBUTE_DEVICE_PATH, QUENRA_STATUS_NO_CONTROLLER);
  EXPECT_THAT(warnings(page()), ElementsAre("cannot find the trigger routing device"));
}

// ---- Captures ----

TEST_F(Report, CapturedMachine_IsDescribedWithoutThisMachine) {
  const std::string capture = repositoryPath("tests/machines/without-marten.json");
  const std::string text = page({"--from", capture});
  EXPECT_EQ(library_.opens, 0);
  EXPECT_THAT(routing_.calls, IsEmpty());
  EXPECT_THAT(text, HasSubstr("State of the capture " + capture));
  EXPECT_THAT(text,
              HasSubstr("<th scope=\"row\">Marten</th><td><span class=\"faint\">not present"));
  EXPECT_THAT(
      text,
      HasSubstr("<th scope=\"row\">PXI_Trig0</th><td>0</td><td><span class=\"faint\">unknown"));
}

TEST_F(Report, EveryCapturedMachine_HasAPage) {
  size_t pages = 0;
  for (const auto& file : std::filesystem::directory_iterator(repositoryPath("tests/machines"))) {
    if (file.path().extension() == ".json") {
      ++pages;
      const std::string text =
          page({"--from", file.path().string(), "--image", fileOf({section("MARTEN", "1.4.2f7")})});
      EXPECT_TRUE(text.ends_with("</html>\n")) << file.path();
      EXPECT_EQ(found(text, "(<section)").size(), found(text, "(</section>)").size())
          << file.path();
    }
  }
  EXPECT_GE(pages, 14u);
}

TEST_F(Report, HoldersOfACapture_AreWrongUsage) {
  EXPECT_EQ(run({"report", folder_.path("a.html"), "--from", "x", "--holders"}).exitCode, 2);
}

// ---- The file ----

TEST_F(Report, ExistingFile_IsReplacedWithForceOnly) {
  const std::string path = folder_.file("a.html", "old");
  const tRun result = run({"report", path});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.error, HasSubstr("a.html': the file exists\n"));
  EXPECT_EQ(folder_.content("a.html"), "old");
  EXPECT_EQ(library_.opens, 0) << "the machine is not disturbed in vain";
  EXPECT_THAT(page(), StartsWith("<!doctype html>"));
  EXPECT_EQ(folder_.files(), 1u);
}

TEST_F(Report, Document_ListsTheWarnings) {
  library_.selfTestCode = QUENRA_STATUS_TIME_OUT;
  const std::string path = folder_.path("a.html");
  const auto document = run({"report", path, "--json"}).document();
  EXPECT_THAT(memberNames(document),
              ElementsAre("format", "kind", "exitCode", "warnings", "path", "reported"));
  EXPECT_STREQ(document["path"].GetString(), path.c_str());
  EXPECT_STREQ(document["reported"][0].GetString(), "the self-test failed");
}

TEST_F(Report, Time_IsThatOfTheReport) {
  EXPECT_THAT(
      page(),
      ContainsExpression(
          "State of this machine on 20[0-9][0-9]-[01][0-9]-[0-3][0-9] [0-2][0-9]:[0-5][0-9] UTC"));
}

}  // namespace
}  // namespace nTests
