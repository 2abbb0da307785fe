#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/report.h"

namespace {

using cli::jsonReport;
using cli::jsonString;
using cli::State;

// Every member is different, so that swapped ones show.
State state() {
  return {.stored = {.language = "fr", .server = "192.0.2.1", .port = "4000", .profile = true},
          .daemonLoaded = true,
          .consoleUser = "alice",
          .agentLoaded = false,
          .consoleUserUnknown = false,
          .unfinished = true};
}

const cli::WantedSettings kWanted{
    .server = "192.0.2.10", .port = "6000", .language = "en", .profile = false};

TEST(JsonString, EscapesEverythingThatIsNotPrintableAscii) {
  struct {
    std::string text, json;
  } const cases[] = {
      {"", R"("")"},
      {"mdm.example-1_2", R"("mdm.example-1_2")"},
      {"a\"b\\c/d", R"("a\"b\\c/d")"},
      {std::string("\0\t\n\r\x1F", 5), R"("\u0000\u0009\u000a\u000d\u001f")"},
      {"\x7F", R"("\u007f")"},
      {"\xC2\x85", R"("\u0085")"},
      {"\xC3\xA9", R"("\u00e9")"},
      {"\xE2\x80\xA8", R"("\u2028")"},
      {"\xEF\xBF\xBF", R"("\uffff")"},
      {"\xF0\x9F\x98\x80", R"("\ud83d\ude00")"},
      {"\xF4\x8F\xBF\xBF", R"("\udbff\udfff")"},
      // Each byte that is not UTF-8 is replaced; the text after it is kept.
      {"\xFFx", R"("\ufffdx")"},
      {"\x80", R"("\ufffd")"},
      {"\xC3", R"("\ufffd")"},
      {"\xC3(", R"("\ufffd(")"},
      {"\xED\xA0\x80", R"("\ufffd\ufffd\ufffd")"},
      {"\xF0\x9F\x98", R"("\ufffd\ufffd\ufffd")"},
      {"\xC0\xAF", R"("\ufffd\ufffd")"},
      {"\xF5\x80\x80\x80", R"("\ufffd\ufffd\ufffd\ufffd")"},
  };
  for (const auto &c : cases)
    EXPECT_EQ(jsonString(c.text), c.json) << testing::PrintToString(c.text);
}

TEST(JsonReport, IsOneLineWithEveryMember) {
  cli::Report report{.changed = true,
                     .before = state(),
                     .after = state(),
                     .wanted = kWanted,
                     .problems = {"first", "a\nb"}};
  report.after->stored.server = "192.0.2.10";
  EXPECT_EQ(jsonReport(report),
            R"({"changed":true,"before":{"server":"192.0.2.1","port":4000,"language":"fr",)"
            R"("profile":true,"daemon":true,"agent":false,"console":"alice","unfinished":true},)"
            R"("after":{"server":"192.0.2.10","port":4000,"language":"fr","profile":true,)"
            R"("daemon":true,"agent":false,"console":"alice","unfinished":true},)"
            R"("wanted":{"server":"192.0.2.10","port":6000,"language":"en","profile":false},)"
            R"("problems":["first","a\u000ab"]})"
            "\n");
}

TEST(JsonReport, HasNullForWhatIsMissing) {
  EXPECT_EQ(jsonReport({}),
            R"({"changed":false,"before":null,"after":null,"wanted":null,"problems":[]})"
            "\n");
  const cli::Report empty{
      .changed = false, .before = State{}, .after = {}, .wanted = {}, .problems = {}};
  EXPECT_NE(jsonReport(empty).find(
                R"("before":{"server":null,"port":null,"language":null,"profile":null,)"
                R"("daemon":false,"agent":null,"console":null,"unfinished":false})"),
            std::string::npos)
      << jsonReport(empty);
}

TEST(JsonReport, GivesAnInvalidPortAsAString) {
  struct {
    const char *port, *json;
  } const cases[] = {{"0", "0,"},
                     {"65535", "65535,"},
                     {"-7", R"("-7",)"},
                     {"5000000000", R"("5000000000",)"},
                     {"", R"("",)"}};
  for (const auto &c : cases) {
    cli::Report report{
        .changed = false, .before = state(), .after = {}, .wanted = {}, .problems = {}};
    report.before->stored.port = c.port;
    EXPECT_NE(jsonReport(report).find(std::string(R"("port":)") + c.json), std::string::npos)
        << jsonReport(report);
  }
}

TEST(TextReport, ShowsWhatBecameOfEachValueAndEveryProblem) {
  cli::Report report{.changed = true,
                     .before = state(),
                     .after = state(),
                     .wanted = kWanted,
                     .problems = {"\x1B[2Jfirst", "second"}};
  report.after->stored.server = "192.0.2.10";
  report.after->agentLoaded.reset();
  report.after->consoleUser = "";
  EXPECT_EQ(textReport(report),
            "changed     yes\n"
            "server      192.0.2.1 -> 192.0.2.10\n"
            "port        4000\n"
            "language    fr\n"
            "profile     yes\n"
            "daemon      loaded\n"
            "agent       not loaded -> none\n"
            "console     alice -> nobody\n"
            "unfinished  yes\n"
            "problem     \\u001b[2Jfirst\n"
            "problem     second\n");
}

TEST(Differences, NameEachThingThatIsNotAsRequested) {
  EXPECT_EQ(
      differences(state(), kWanted),
      (std::vector<std::string>{
          "the stored server is 192.0.2.1 (requested: 192.0.2.10)",
          "the stored port is 4000 (requested: 6000)", "the stored language is fr (requested: en)",
          "the stored profile flag is yes (requested: no)",
          "the per-user job of alice is not loaded", "an earlier run was left unfinished"}));
  EXPECT_EQ(differences({}, kWanted),
            (std::vector<std::string>{
                "no server is stored (requested: 192.0.2.10)",
                "no port is stored (requested: 6000)", "no language is stored (requested: en)",
                "no profile flag is stored (requested: no)", "the daemon's job is not loaded"}));
}

TEST(Differences, AreNoneWhenEverythingIsAsRequested) {
  State unknown = state();
  EXPECT_TRUE(differences(asRequested(state(), kWanted), kWanted).empty());
  EXPECT_TRUE(differences(asRequested({}, kWanted), kWanted).empty());
  EXPECT_EQ(asRequested({}, kWanted).agentLoaded, std::nullopt);
  unknown.consoleUserUnknown = true;
  EXPECT_EQ(differences(asRequested(unknown, kWanted), kWanted).size(), 1U);
}

}  // namespace
