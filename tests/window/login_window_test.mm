#import "window/window_test.h"

#include <csignal>

#include "app/edition.h"
#include "app/ns_string.h"
#include "doubles/fake_directory.h"
#include "doubles/intercepted_method.h"
#include "doubles/recording_shell.h"

namespace {
/// How many observed windows live.
int observedWindows = 0;
}  // namespace

@interface ObservedWindow : NSObject
@end

@implementation ObservedWindow
- (id)init {
  ++observedWindows;
  return [super init];
}
- (void)dealloc {
  --observedWindows;
  [super dealloc];
}
@end

namespace windowtest {
namespace {

constexpr const char *kOutlets[] = {"window",   "admin_msg",  "username_label",
                                    "username", "password",   "password_label",
                                    "OkButton", "QuitButton", "MainMenu"};

class LoginWindow : public WindowTest {
 protected:
  static void acceptOnly(const std::string &user, const std::string &pwd) {
    doubles::fakeDirectory().authenticate = [=](const std::string &name,
                                                const std::string &password) {
      return name == user && password == pwd;
    };
  }
  static std::string strings(AppDelegate *delegate) {
    return fieldText(delegate, "admin_msg") + " | " + fieldText(delegate, "username_label") +
           " | " + fieldText(delegate, "password_label") + " | " +
           buttonTitle(delegate, "OkButton") + " | " + buttonTitle(delegate, "QuitButton");
  }
  static std::string catalogueStrings(const std::string &entry) {
    return catalogueString(entry, "Common", "adminmsg") + " | " +
           catalogueString(entry, "Common", "username") + " | " +
           catalogueString(entry, "Common", "password") + " | " +
           catalogueString(entry, "Common", "ok") + " | " +
           catalogueString(entry, "Common", "quit");
  }
};

TEST_F(LoginWindow, ConnectsEveryOutletOfItsInterfaceFile) {
  AppDelegate *delegate = loadLogin();
  for (const char *name : kOutlets) {
    EXPECT_TRUE([delegate valueForKey:[NSString stringWithUTF8String:name]] != nil) << name;
  }
  EXPECT_TRUE(
      [outlet<NSSecureTextField>(delegate, "password") isKindOfClass:[NSSecureTextField class]]);
}

TEST_F(LoginWindow, IsOnScreenAtLaunchWithTheTitleOfItsEdition) {
  for (const app::Edition &edition : app::kEditions) {
    becomeEdition(std::string(edition.oem));
    AppDelegate *delegate = launch();
    NSWindow *window = outlet<NSWindow>(delegate, "window");
    EXPECT_EQ(app::utf8([window title]), edition.appName);
    EXPECT_TRUE([window isVisible]);
    [window orderOut:nil];
  }
}

int activationsAboveOthers = 0;

void countActivation(id, SEL, BOOL ignoringOthers) {
  if (ignoringOthers) ++activationsAboveOthers;
}

TEST_F(LoginWindow, ComesAboveTheWindowsOfOtherProgramsAtLaunch) {
  activationsAboveOthers = 0;
  const auto intercepted = doubles::InterceptedMethod::ofInstances(
      [NSApplication class], @selector(activateIgnoringOtherApps:),
      reinterpret_cast<IMP>(countActivation));
  launch();
  EXPECT_EQ(activationsAboveOthers, 1);
}

TEST_F(LoginWindow, HasAnEmptyMainMenuAfterLaunch) {
  AppDelegate *delegate = loadLogin();
  EXPECT_GT([outlet<NSMenu>(delegate, "MainMenu") numberOfItems], 0);
  [delegate applicationDidFinishLaunching:launchNotification()];
  EXPECT_EQ([outlet<NSMenu>(delegate, "MainMenu") numberOfItems], 0);
}

TEST_F(LoginWindow, GivesTheOkButtonTheReturnKeyAndTheDefaultLook) {
  NSButton *ok = outlet<NSButton>(launch(), "OkButton");
  EXPECT_EQ(app::utf8([ok keyEquivalent]), "\r");
  EXPECT_TRUE([ok isHighlighted]);
}

TEST_F(LoginWindow, OpensInTheLanguageThatTheStoredSettingsName) {
  struct {
    const char *code;
    i18n::Language lang;
    const char *entry;
  } const rows[] = {
      {"en", i18n::Language::En, "En"}, {"fr", i18n::Language::Fr, "Fr"},
      {"it", i18n::Language::It, "It"}, {"de", i18n::Language::Ge, "Ge"},
      {"es", i18n::Language::Es, "Es"}, {"xx", i18n::Language::En, "En"},
      {"DE", i18n::Language::En, "En"},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(row.code);
    store(row.code, "", "6000");
    AppDelegate *delegate = launch();
    EXPECT_EQ(app::appStatics().lang, row.lang);
    EXPECT_EQ(strings(delegate), catalogueStrings(row.entry));
    [outlet<NSWindow>(delegate, "window") orderOut:nil];
  }
}

TEST_F(LoginWindow, ReadsTheStoredLanguageOnEachTranslation) {
  store("de", "", "6000");
  AppDelegate *delegate = launch();
  store("en", "", "6000");
  [delegate translate];
  EXPECT_EQ(app::appStatics().lang, i18n::Language::En);
  EXPECT_EQ(strings(delegate), catalogueStrings("En"));
}

TEST_F(LoginWindow, KeepsTheStringsOfItsInterfaceFileWithoutAUsableCatalogue) {
  store("de", "", "6000");
  AppDelegate *delegate = loadLogin();
  const std::string before = strings(delegate);
  setCatalogue("{\"En\": {}}");
  testing::internal::CaptureStderr();
  [delegate applicationDidFinishLaunching:launchNotification()];
  EXPECT_TRUE(testing::internal::GetCapturedStderr().ends_with(
      " error to get language: En.Common: missing\n"));
  EXPECT_EQ(strings(delegate), before);
  EXPECT_EQ(app::appStatics().lang, i18n::Language::Ge);
}

TEST_F(LoginWindow, EmptiesBothFieldsSilentlyOnAWrongPassword) {
  acceptOnly("alice", "right");
  AppDelegate *delegate = launch();
  const std::string message = fieldText(delegate, "admin_msg");
  [outlet<NSWindow>(delegate, "window")
      makeFirstResponder:outlet<NSTextField>(delegate, "password")];
  type(delegate, "username", " alice ");
  type(delegate, "password", " wrong ");
  [delegate OkAction:nil];
  EXPECT_EQ(fieldText(delegate, "username"), "");
  EXPECT_EQ(fieldText(delegate, "password"), "");
  EXPECT_EQ(fieldText(delegate, "admin_msg"), message);
  EXPECT_TRUE([outlet<NSWindow>(delegate, "window") isVisible]);
  // The rejected values stay until the next press, as typed.
  EXPECT_EQ(app::appStatics().user, " alice ");
  EXPECT_EQ(app::appStatics().pwd, " wrong ");
  // The field with the keyboard focus has the window's field editor.
  EXPECT_TRUE([outlet<NSTextField>(delegate, "username") currentEditor] != nil);
}

TEST_F(LoginWindow, LetsTheDirectoryDecideOnEmptyFields) {
  std::string asked = "nothing";
  doubles::fakeDirectory().authenticate = [&](const std::string &user, const std::string &pwd) {
    asked = "'" + user + "' '" + pwd + "'";
    return false;
  };
  [launch() OkAction:nil];
  EXPECT_EQ(asked, "'' ''");
}

TEST_F(LoginWindow, ChecksWhatIsTypedAtEachAttempt) {
  std::string attempts;
  doubles::fakeDirectory().authenticate = [&](const std::string &user, const std::string &pwd) {
    attempts += user + "/" + pwd + " ";
    return false;
  };
  AppDelegate *delegate = launch();
  type(delegate, "username", "alice");
  type(delegate, "password", "wrong");
  [delegate OkAction:nil];
  type(delegate, "username", "bob");
  [delegate OkAction:nil];
  type(delegate, "password", "right");
  [delegate OkAction:nil];
  EXPECT_EQ(attempts, "alice/wrong bob/ /right ");
}

TEST_F(LoginWindow, IsReplacedByTheSettingsWindowOnReturnWithTheRightPassword) {
  acceptOnly("alice", "  p w ");
  AppDelegate *delegate = launch();
  NSWindow *window = outlet<NSWindow>(delegate, "window");
  type(delegate, "username", "alice");
  type(delegate, "password", "  p w ");
  pressReturn(window);
  EXPECT_FALSE([window isVisible]);
  ServerWindowController *settings = [AppDelegate serverWindow];
  ASSERT_TRUE(settings != nil);
  EXPECT_TRUE([[settings window] isVisible]);
  EXPECT_EQ(app::appStatics().user, "alice");
  EXPECT_EQ(app::appStatics().pwd, "  p w ");
  const std::vector<std::string> commands = doubles::recordingShell().commandLines();
  ASSERT_EQ(commands.size(), 1U);
  EXPECT_NE(commands.front().find("profiles list"), std::string::npos) << commands.front();

  // Once more: the same controller, not loaded again.
  [window makeKeyAndOrderFront:nil];
  [delegate OkAction:nil];
  EXPECT_EQ([AppDelegate serverWindow], settings);
  EXPECT_EQ(doubles::recordingShell().commandLines(), commands);
}

// A program without a window would keep the password in memory.
TEST_F(LoginWindow, CannotBeClosed) {
  AppDelegate *delegate = launch();
  NSWindow *window = outlet<NSWindow>(delegate, "window");
  [window performClose:nil];
  EXPECT_TRUE([window isVisible]);
  EXPECT_FALSE(
      [delegate respondsToSelector:@selector(applicationShouldTerminateAfterLastWindowClosed:)]);
}

TEST_F(LoginWindow, LivesAsLongAsTheDelegate) {
  AppDelegate *delegate = [[AppDelegate alloc] init];
  ObservedWindow *window = [[ObservedWindow alloc] init];
  [delegate setWindow:(NSWindow *)window];
  [delegate setWindow:(NSWindow *)window];
  [window release];
  EXPECT_EQ(observedWindows, 1);
  ObservedWindow *other = [[ObservedWindow alloc] init];
  [delegate setWindow:(NSWindow *)other];
  [other release];
  EXPECT_EQ(observedWindows, 1) << "the first window is still there";
  [delegate release];
  EXPECT_EQ(observedWindows, 0);
}

using LoginWindowDeathTest = LoginWindow;

TEST_F(LoginWindowDeathTest, EndsTheProgramWithStatus0ByQuit) {
  EXPECT_EXIT(runAndSend(outlet<NSButton>(launch(), "QuitButton"), @selector(performClick:), nil),
              testing::ExitedWithCode(0), "");
}

TEST_F(LoginWindowDeathTest, StopsTheProgramWhereALaunchNeedsAMissingOutlet) {
  for (const char *name : {"MainMenu", "window", "OkButton", "admin_msg", "username_label",
                           "password_label", "QuitButton"}) {
    EXPECT_EXIT(
        {
          AppDelegate *delegate = loadLogin();
          disconnect(delegate, name);
          [delegate applicationDidFinishLaunching:launchNotification()];
        },
        testing::KilledBySignal(SIGABRT),
        std::string("fatal error: outlet ") + name + " is not connected");
  }
}

TEST_F(LoginWindowDeathTest, StopsTheProgramWhereALoginNeedsAMissingOutlet) {
  for (const char *name : {"username", "password", "window"}) {
    EXPECT_EXIT(
        {
          acceptOnly("", "");
          AppDelegate *delegate = launch();
          disconnect(delegate, name);
          [delegate OkAction:nil];
        },
        testing::KilledBySignal(SIGABRT),
        std::string("fatal error: outlet ") + name + " is not connected");
  }
}

TEST_F(LoginWindowDeathTest, LogsTheErrorAndKeepsItsStringsWhenTheCatalogueCannotBeRead) {
  EXPECT_EXIT(
      {
        AppDelegate *delegate = loadLogin();
        const std::string before = strings(delegate);
        store("de", "", "6000");
        lockCatalogue();
        [delegate translate];
        std::_Exit(strings(delegate) == before ? 0 : 1);
      },
      testing::ExitedWithCode(0), " error to get language: [^\n]+\n$");
}

/// The login window of a process that is about to stop, and what it says then.
NSWindow *loginWindowAtTheEnd = nil;

void sayWhetherTheLoginWindowIsVisible(int) {
  std::fputs([loginWindowAtTheEnd isVisible] ? "login window visible\n" : "login window hidden\n",
             stderr);
}

TEST_F(LoginWindowDeathTest, StopsTheProgramStillVisibleWithoutTheSettingsWindowsInterfaceFile) {
  const MissingResource missing("ServerWindowController.xib");
  EXPECT_EXIT(
      {
        acceptOnly("", "");
        AppDelegate *delegate = launch();
        loginWindowAtTheEnd = outlet<NSWindow>(delegate, "window");
        std::signal(SIGABRT, sayWhetherTheLoginWindowIsVisible);
        [delegate OkAction:nil];
      },
      testing::KilledBySignal(SIGABRT),
      "fatal error: interface file ServerWindowController is missing from the bundle\n"
      "login window visible\n$");
}

TEST_F(LoginWindowDeathTest, StopsTheProgramWithoutTheCatalogueResource) {
  EXPECT_EXIT(
      {
        AppDelegate *delegate = loadLogin();
        removeCatalogue();
        [delegate translate];
      },
      testing::KilledBySignal(SIGABRT), "fatal error: resource translate.json is missing");
}

}  // namespace
}  // namespace windowtest
