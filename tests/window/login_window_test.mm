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

using Strings = std::vector<std::string>;

class LoginWindow : public WindowTest {
 protected:
  static void acceptOnly(const std::string &user, const std::string &pwd) {
    doubles::fakeDirectory().authenticate = [=](const std::string &name,
                                                const std::string &password) {
      return name == user && password == pwd;
    };
  }
  static Strings strings(AppDelegate *delegate) {
    return {fieldText(delegate, "admin_msg"), fieldText(delegate, "username_label"),
            fieldText(delegate, "password_label"), buttonTitle(delegate, "OkButton"),
            buttonTitle(delegate, "QuitButton")};
  }
  static Strings catalogueStrings(const std::string &entry) {
    Strings strings;
    for (const char *key : {"adminmsg", "username", "password", "ok", "quit"}) {
      strings.push_back(catalogueString(entry, "Common", key));
    }
    return strings;
  }
};

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

TEST_F(LoginWindow, IsTranslatedEachTimeIntoTheLanguageThatTheStoredSettingsName) {
  AppDelegate *delegate = launch();
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
    [delegate translate];
    EXPECT_EQ(app::appStatics().lang, row.lang);
    EXPECT_EQ(strings(delegate), catalogueStrings(row.entry));
  }
}

TEST_F(LoginWindow, KeepsTheStringsOfItsInterfaceFileWithoutAUsableCatalogue) {
  store("de", "", "6000");
  AppDelegate *delegate = loadLogin();
  const Strings before = strings(delegate);
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

TEST_F(LoginWindow, ChecksWhatIsTypedAtEachAttemptEvenNothing) {
  std::string attempts;
  doubles::fakeDirectory().authenticate = [&](const std::string &user, const std::string &pwd) {
    attempts += user + "/" + pwd + " ";
    return false;
  };
  AppDelegate *delegate = launch();
  [delegate OkAction:nil];
  type(delegate, "username", "alice");
  type(delegate, "password", "wrong");
  [delegate OkAction:nil];
  type(delegate, "username", "bob");
  [delegate OkAction:nil];
  type(delegate, "password", "right");
  [delegate OkAction:nil];
  EXPECT_EQ(attempts, "/ alice/wrong bob/ /right ");
}

TEST_F(LoginWindow, IsReplacedByTheSettingsWindowOnReturnWithTheRightPassword) {
  acceptOnly("alice", "  p w ");
  AppDelegate *delegate = launch();
  NSWindow *window = outlet<NSWindow>(delegate, "window");
  type(delegate, "username", "alice");
  type(delegate, "password", "  p w ");
  EXPECT_TRUE(press(window, "\r"));
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

TEST_F(LoginWindowDeathTest, StopsTheProgramWhereTheLaunchOrALoginNeedsAMissingOutlet) {
  const SEL launch = @selector(applicationDidFinishLaunching:), logIn = @selector(OkAction:);
  for (const auto &[name, message] : {std::pair("MainMenu", launch),
                                      {"window", launch},
                                      {"OkButton", launch},
                                      {"admin_msg", launch},
                                      {"username_label", launch},
                                      {"password_label", launch},
                                      {"QuitButton", launch},
                                      {"username", logIn},
                                      {"password", logIn},
                                      {"window", logIn}}) {
    EXPECT_EXIT(
        {
          acceptOnly("", "");
          AppDelegate *delegate = loadLogin();
          disconnect(delegate, name);
          [delegate performSelector:message withObject:launchNotification()];
        },
        testing::KilledBySignal(SIGABRT),
        std::string("fatal error: outlet ") + name + " is not connected");
  }
}

TEST_F(LoginWindowDeathTest, LogsTheErrorAndKeepsItsStringsWhenTheCatalogueCannotBeRead) {
  EXPECT_EXIT(
      {
        AppDelegate *delegate = loadLogin();
        const Strings before = strings(delegate);
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
