#import "window/window_test.h"

#include <unistd.h>

#include <algorithm>

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
  std::fputs([theWindow isVisible] ? "visible at the end\n" : "hidden at the end\n", stderr);
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

constexpr int kIPAddress = 0, kHostName = 1, kPing = 0, kPort = 1;

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
};

TEST_F(Actions, TestCorrectsTheFieldsRunsOneCommandAndShowsTheOutcome) {
  for (const TestRow &row : kTestRows) {
    for (const int exitStatus : {0, 1, 127}) {
      SCOPED_TRACE(std::string(row.server) + " " + row.port + " -> " + std::to_string(exitStatus));
      fill(row.server, row.port, row.mode, row.test);
      doubles::resetShell();
      std::string duringCommand;
      recordingShell().answer = [&](const doubles::RecordedCommand &) {
        duringCommand = status();
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

TEST_F(Actions, TestHasDrawnItsStatusWhenTheCommandBlocksTheWindow) {
  fill("192.0.2.10", "6000", kIPAddress);
  for (const int exitStatus : {0, 1, 0}) {
    bool drawn = false;
    recordingShell().answer = [&](const doubles::RecordedCommand &) {
      drawn = ![outlet<NSView>(controller_, "testStatus") needsDisplay];
      EXPECT_EQ(status(), app::utf8(NSImageNameStatusNone));
      return agent::ShellResult{.text = {}, .status = exitStatus};
    };
    testing::internal::CaptureStdout();
    [controller_ TestAction:nil];
    testing::internal::GetCapturedStdout();
    EXPECT_TRUE(drawn);
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

TEST_F(Actions, TestPingsWhenNoKindIsSelected) {
  fill("::1", "6000", kIPAddress, -1);
  testing::internal::CaptureStdout();
  [controller_ TestAction:nil];
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "-1\n");
  EXPECT_EQ(recordingShell().commandLines(), std::vector<std::string>{"/sbin/ping -c 1 \"::1\""});
}

TEST_F(Actions, TestDoesNotValidateWhenNoModeIsSelected) {
  fill("fileserver", "6000", -1);
  testing::internal::CaptureStdout();
  [controller_ TestAction:nil];
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "0\n");
  EXPECT_EQ(recordingShell().commandLines(),
            std::vector<std::string>{"/sbin/ping -c 1 \"fileserver\""});
}

TEST_F(Actions, ApplyStopsOnBadInputCorrectsTheFieldAndKeepsTheWindow) {
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
    testing::internal::CaptureStdout();
    [controller_ ApplyAction:nil];
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(fields(), row.fields);
    EXPECT_TRUE(recordingShell().commands.empty());
    EXPECT_TRUE([[controller_ window] isVisible]);
    EXPECT_EQ(app::appStatics().server, "");
    EXPECT_EQ(app::appStatics().port, "");
  }
}

TEST_F(Actions, ApplyTakesTheLanguageAlsoWhenTheInputStopsIt) {
  fill("", "6000", kHostName);
  [outlet<NSPopUpButton>(controller_, "selectLanguage") selectItemAtIndex:1];
  [controller_ ApplyAction:nil];
  EXPECT_EQ(app::appStatics().lang, i18n::Language::Fr);
}

using ActionsDeathTest = Actions;

/// Set in the process that applies: said on its standard error as it ends.
std::string thePlist;

void reportAtExit() {
  const app::AppStatics &statics = app::appStatics();
  const auto deletions = std::ranges::count_if(
      recordingShell().commandLines(),
      [](const auto &line) { return line.find("/bin/rm ") != std::string::npos; });
  std::string report = "statics " + statics.server + " " + statics.port + "\n" + "deletions " +
                       std::to_string(deletions) + "\n" + doubles::ScratchFolder::read(thePlist) +
                       "\nend\n";
  std::fputs(report.c_str(), stderr);
}

TEST_F(ActionsDeathTest, ApplyByReturnWritesTheTrimmedValuesAndEndsTheProgramWithStatus0) {
  const std::string expected =
      "statics fileserver \\+80\ndeletions 3\n"
      "<.xml version.*<string>fr</string>.*<string>fileserver</string>.*<integer>\\+80</integer>"
      ".*<true/>.*</plist>\nend\n";
  app::appStatics().user = "bob";
  app::appStatics().pwd = "pw";
  app::appStatics().mdm_profile = true;
  fill(" fileserver ", " +80 ", kHostName);
  [outlet<NSPopUpButton>(controller_, "selectLanguage") selectItemAtIndex:1];
  [outlet<NSButton>(controller_, "reset_settings") setState:NSControlStateValueOn];
  // Neither job is loaded: both get started.
  recordingShell().answer = [](const doubles::RecordedCommand &command) {
    const bool isCheck = command.command.find(" list ") != std::string::npos;
    return agent::ShellResult{.text = {}, .status = isCheck ? 1 : 0};
  };
  thePlist = plist_;
  EXPECT_EXIT(
      {
        std::atexit(reportAtExit);
        runAndSend([controller_ window], @selector(performKeyEquivalent:),
                   returnKey([controller_ window]));
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
      testing::ExitedWithCode(0), "(visible )+hidden at the end\n$");
}

TEST_F(ActionsDeathTest, ApplyTakesTheConsoleUserThatTheProgramWasStartedWith) {
  fill("192.0.2.10", "6000", kIPAddress);
  app::appStatics().consoleUser = agent::ConsoleUser{.user = "carol", .uid = "777"};
  recordingShell().answer = [](const doubles::RecordedCommand &command) {
    if (command.command.find("loggedIn") != std::string::npos) ::_exit(3);
    if (command.command.find("asuser 777") != std::string::npos) std::fputs("carol ", stderr);
    return agent::ShellResult{.text = {}, .status = 0};
  };
  EXPECT_EXIT(runAndSend(controller_, @selector(ApplyAction:), nil), testing::ExitedWithCode(0),
              "carol carol ");
}

TEST_F(ActionsDeathTest, ApplyTakesWhatIsTypedAfterAStoppedAttempt) {
  fill("fileserver", "x", kIPAddress);
  [controller_ ApplyAction:nil];
  [controller_ ApplyAction:nil];
  ASSERT_EQ(fields(), "'' '6000'");
  fill("192.0.2.10", "4000", kIPAddress);
  [outlet<NSPopUpButton>(controller_, "selectLanguage") selectItemAtIndex:0];
  thePlist = plist_;
  EXPECT_EXIT(
      {
        std::atexit(reportAtExit);
        runAndSend(controller_, @selector(ApplyAction:), nil);
      },
      testing::ExitedWithCode(0),
      "statics 192.0.2.10 4000\ndeletions 0\n.*<string>en</string>.*<string>192.0.2.10</string>"
      ".*<integer>4000</integer>");
}

}  // namespace
}  // namespace windowtest
