#import "window/window_test.h"

#include <algorithm>
#include <cstdio>

#include "app/ns_string.h"
#include "doubles/recording_shell.h"

namespace {
/// The window of a process that is about to end.
NSWindow *theWindow = nil;
}  // namespace

@interface EndOfApplication : NSObject
@end

@implementation EndOfApplication
+ (void)applicationEnds:(NSNotification *)notification {
  std::fprintf(stderr, "%s at the end after %zu commands\n",
               [theWindow isVisible] ? "visible" : "hidden",
               doubles::recordingShell().commands.size());
}
@end

namespace windowtest {
namespace {

using doubles::recordingShell;

/// The settings window with nothing recorded yet.
class Actions : public WindowTest {
 protected:
  void SetUp() override {
    WindowTest::SetUp();
    store("en", "", "");
    controller_ = openSettings();
    doubles::resetShell();
  }

  void fill(const std::string &server, const std::string &port, int mode, int test = 0) {
    type(controller_, "servername", server);
    type(controller_, "port", port);
    [outlet<NSPopUpButton>(controller_, "mode") selectItemAtIndex:mode];
    [outlet<NSPopUpButton>(controller_, "testChoice") selectItemAtIndex:test];
  }
  std::string fields() const {
    return "'" + fieldText(controller_, "servername") + "' '" + fieldText(controller_, "port") +
           "'";
  }
  std::string status() const {
    NSImage *image = [outlet<NSImageView>(controller_, "testStatus") image];
    for (NSString *name in
         @[ NSImageNameStatusNone, NSImageNameStatusAvailable, NSImageNameStatusUnavailable ]) {
      if (image == [NSImage imageNamed:name]) return app::utf8(name);
    }
    return image == nil ? "no image" : "another image";
  }

  ServerWindowController *controller_ = nil;
};

constexpr int kIPAddress = 0, kHostName = 1, kPing = 0, kPort = 1, kNoItem = -1;

struct TestRow {
  const char *server, *port;
  int mode, test;
  const char *fields, *printed, *command;  // no command: nothing is run
};

const TestRow kTestRows[] = {
    {" 192.0.2.10 ", "6000", kIPAddress, kPing, "'192.0.2.10' '6000'", "0\n",
     "/sbin/ping -c 1 \"192.0.2.10\""},
    {"\t192.0.2.10\n", " 4000\t", kIPAddress, kPort, "'192.0.2.10' '4000'", "1\n",
     "/usr/bin/nc -vz \"192.0.2.10\" 4000"},
    {"\xC2\xA0::1\xE2\x80\x83", "6000", kIPAddress, kPing, "'::1' '6000'", "0\n",
     "/sbin/ping -c 1 \"::1\""},
    {"fileserver", "6000", kIPAddress, kPing, "'' '6000'", "", ""},
    {"fileserver", "70000", kIPAddress, kPort, "'' '70000'", "", ""},
    {"fileserver", "6000", kHostName, kPing, "'fileserver' '6000'", "0\n",
     "/sbin/ping -c 1 \"fileserver\""},
    {"a b\"; c", "x", kHostName, kPing, "'a b\"; c' 'x'", "0\n", "/sbin/ping -c 1 \"a b\"; c\""},
    {"", "6000", kHostName, kPing, "'' '6000'", "", ""},
    {"  ", "6000", kIPAddress, kPing, "'' '6000'", "", ""},
    {"::1", "70000", kIPAddress, kPort, "'::1' '6000'", "1\n", ""},
    {"::1", "letters", kIPAddress, kPort, "'::1' '6000'", "1\n", ""},
    {"::1", "", kIPAddress, kPort, "'::1' '6000'", "1\n", ""},
    {"::1", "0", kIPAddress, kPort, "'::1' '0'", "1\n", "/usr/bin/nc -vz \"::1\" 0"},
    {"::1", "letters", kIPAddress, kPing, "'::1' 'letters'", "0\n", "/sbin/ping -c 1 \"::1\""},
    {"::1", "6000", kIPAddress, kNoItem, "'::1' '6000'", "-1\n", "/sbin/ping -c 1 \"::1\""},
    {"fileserver", "6000", kNoItem, kPing, "'fileserver' '6000'", "0\n",
     "/sbin/ping -c 1 \"fileserver\""},
};

// The status is drawn by the time that the command blocks the window.
TEST_F(Actions, TestCorrectsTheFieldsRunsOneCommandAndShowsTheOutcome) {
  for (const TestRow &row : kTestRows) {
    for (const int exitStatus : {0, 1, 127}) {
      SCOPED_TRACE(std::string(row.server) + " " + row.port + " -> " + std::to_string(exitStatus));
      fill(row.server, row.port, row.mode, row.test);
      doubles::resetShell();
      std::string duringCommand;
      recordingShell().answer = [&](const doubles::RecordedCommand &) {
        duringCommand = status();
        EXPECT_FALSE([outlet<NSView>(controller_, "testStatus") needsDisplay]);
        return agent::ShellResult{.text = {}, .status = exitStatus};
      };
      testing::internal::CaptureStdout();
      [outlet<NSButton>(controller_, "TestButton") performClick:nil];
      EXPECT_EQ(testing::internal::GetCapturedStdout(), row.printed);
      EXPECT_EQ(fields(), row.fields);
      const std::string unknown = app::utf8(NSImageNameStatusNone);
      if (row.command[0] == '\0') {
        EXPECT_TRUE(recordingShell().commands.empty());
        EXPECT_EQ(status(), unknown);
        continue;
      }
      ASSERT_EQ(recordingShell().commands.size(), 1U);
      EXPECT_EQ(recordingShell().commands[0],
                (doubles::RecordedCommand{"/bin/sh", row.command, agent::ShellMode::Status}));
      EXPECT_EQ(duringCommand, unknown);
      EXPECT_EQ(status(), app::utf8(exitStatus == 0 ? NSImageNameStatusAvailable
                                                    : NSImageNameStatusUnavailable));
    }
  }
}

TEST_F(Actions, TestSaysItsResultInTheLanguageOfTheWindow) {
  const auto said = [&] {
    NSView *view = outlet<NSView>(controller_, "testStatus");
    return app::utf8([view toolTip]) + "/" + app::utf8([view accessibilityLabel]);
  };
  NSPopUpButton *languages = outlet<NSPopUpButton>(controller_, "selectLanguage");
  EXPECT_EQ(said(), "Not tested/Not tested");
  fill("192.0.2.10", "6000", kIPAddress);
  testing::internal::CaptureStdout();
  for (const auto &[status, english, french] :
       {std::tuple(0, "Server reachable", "Serveur joignable"),
        {1, "Server unreachable", "Serveur injoignable"}}) {
    recordingShell().answer = [&, status = status](const doubles::RecordedCommand &) {
      EXPECT_EQ(said(), "Not tested/Not tested");
      return agent::ShellResult{.text = {}, .status = status};
    };
    [controller_ TestAction:nil];
    EXPECT_EQ(said(), std::string(english) + "/" + english);
    [languages selectItemAtIndex:1];
    [controller_ languageAction:nil];
    EXPECT_EQ(said(), std::string(french) + "/" + french);
    [languages selectItemAtIndex:0];
    [controller_ languageAction:nil];
  }
  testing::internal::GetCapturedStdout();
  type(controller_, "servername", "");
  [controller_ TestAction:nil];
  EXPECT_EQ(said(), "Not tested/Not tested");
}

TEST_F(Actions, ApplyStopsOnBadInputAndTakesOnlyTheLanguage) {
  struct {
    const char *server, *port;
    int mode;
    const char *fields;
  } const rows[] = {
      {"192.0.2.10", "65536", kIPAddress, "'192.0.2.10' '6000'"},
      {"192.0.2.10", "", kIPAddress, "'192.0.2.10' '6000'"},
      {"fileserver", "x", kIPAddress, "'fileserver' '6000'"},  // the port is checked first
      {"", "x", kHostName, "'' '6000'"},
      {" ", " 4000 ", kIPAddress, "'' '4000'"},
      {"", "4000", kHostName, "'' '4000'"},
      {" fileserver ", "4000 ", kIPAddress, "'' '4000'"},
      {"192.0.2.256", "4000", kIPAddress, "'' '4000'"},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(std::string(row.server) + " " + row.port);
    fill(row.server, row.port, row.mode);
    app::appStatics().lang = i18n::Language::It;
    testing::internal::CaptureStdout();
    [controller_ ApplyAction:nil];
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(fields(), row.fields);
    EXPECT_TRUE(recordingShell().commands.empty());
    EXPECT_TRUE([[controller_ window] isVisible]);
    EXPECT_EQ(app::appStatics().server, "");
    EXPECT_EQ(app::appStatics().port, "");
    EXPECT_EQ(app::appStatics().lang, i18n::Language::En);
  }
}

using ActionsDeathTest = Actions;

/// Set in the process that applies: said on its standard error as it ends.
std::string thePlist;

void reportAtExit() {
  const app::AppStatics &statics = app::appStatics();
  std::string report = "statics " + statics.server + " " + statics.port + "\n";
  for (const std::string &line : recordingShell().commandLines()) report += line + "\n";
  report += doubles::ScratchFolder::read(thePlist) + "\nend\n";
  std::fputs(report.c_str(), stderr);
}

TEST_F(ActionsDeathTest, ApplyByReturnPassesOnWhatTheWindowShowsAndEndsTheProgramWithStatus0) {
  const std::string expected =
      "statics fileserver \\+80\n.*asuser 777 [^\n]*carol.*echo .pw. [^\n]*bob.*/bin/rm .*"
      "<.xml version.*<string>fr</string>.*<string>fileserver</string>.*<integer>\\+80</integer>"
      ".*<true/>.*</plist>\nend\n";
  app::appStatics().user = "bob";
  app::appStatics().pwd = "pw";
  app::appStatics().mdm_profile = true;
  app::appStatics().consoleUser = agent::ConsoleUser{.user = "carol", .uid = "777"};
  fill(" fileserver ", " +80 ", kHostName);
  [outlet<NSPopUpButton>(controller_, "selectLanguage") selectItemAtIndex:1];
  [outlet<NSButton>(controller_, "reset_settings") setState:NSControlStateValueOn];
  thePlist = plist_;
  EXPECT_EXIT(
      {
        std::atexit(reportAtExit);
        NSWindow *window = [controller_ window];
        runAndSend(window, @selector(performKeyEquivalent:), keyEvent(window, "\r"));
      },
      testing::ExitedWithCode(0), expected);
}

TEST_F(ActionsDeathTest, ApplyHidesTheWindowAfterItsLastCommandAndBeforeTheProgramEnds) {
  fill("192.0.2.10", "6000", kIPAddress);
  theWindow = [controller_ window];
  recordingShell().answer = [](const doubles::RecordedCommand &) {
    std::fputs([theWindow isVisible] ? "visible " : "hidden ", stderr);
    return agent::ShellResult{.text = {}, .status = 0};
  };
  EXPECT_EXIT(
      {
        [[NSNotificationCenter defaultCenter] addObserver:[EndOfApplication class]
                                                 selector:@selector(applicationEnds:)
                                                     name:NSApplicationWillTerminateNotification
                                                   object:nil];
        runAndSend(controller_, @selector(ApplyAction:), nil);
      },
      // Two look up the console user; the jobs stay loaded, so that none is started.
      testing::ExitedWithCode(0), "(visible ){8}hidden at the end after 8 commands\n$");
}

}  // namespace
}  // namespace windowtest
