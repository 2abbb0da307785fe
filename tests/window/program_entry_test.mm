#include <fcntl.h>
#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <functional>
#include <vector>

#include "app/edition.h"
#include "app/not_admin_message.h"
#include "app/ns_string.h"
#include "doubles/environment_variable.h"
#include "doubles/fake_directory.h"
#include "doubles/intercepted_method.h"
#import "window/window_test.h"

/// The program's own `main`, compiled under this name.
int programMain(int argc, const char *argv[]);

namespace windowtest {
namespace {

using doubles::InterceptedMethod;
using Lines = std::vector<std::string>;

/// What happened, in order.
Lines theEvents;

/// The arguments that the platform's own entry point got.
Lines theForwardedArguments;

NSAlert *theAlert = nil;

NSInteger recordRunModal(id alert, SEL) {
  theEvents.emplace_back("run the alert");
  [theAlert release];
  theAlert = [alert retain];
  return NSAlertFirstButtonReturn;
}

void recordActivation(id, SEL, BOOL ignoringOthers) {
  theEvents.emplace_back(ignoringOthers ? "activate above others" : "activate");
}

/// Only the first time: the platform asks again and again.
id recordSharedApplication(id, SEL) {
  if (std::ranges::count(theEvents, "application") == 0) theEvents.emplace_back("application");
  return NSApp;
}

bool brokenPipesAreIgnored() {
  struct sigaction action {};
  ::sigaction(SIGPIPE, nullptr, &action);
  return action.sa_handler == SIG_IGN;
}

class ProgramEntry : public WindowTest {
 protected:
  void SetUp() override {
    WindowTest::SetUp();
    theEvents.clear();
    theForwardedArguments.clear();
    doubles::fakeDirectory().mayStart = [this](const std::string &name) {
      theEvents.push_back("check " + name);
      if (duringCheck_) duringCheck_();
      return isAdmin_;
    };
  }
  void TearDown() override {
    [theAlert release];
    theAlert = nil;
    WindowTest::TearDown();
  }

  static int run(std::vector<const char *> arguments) {
    return programMain(static_cast<int>(arguments.size()), arguments.data());
  }

  bool isAdmin_ = true;
  std::function<void()> duringCheck_;

 private:
  InterceptedMethod runModal_ = InterceptedMethod::ofInstances(
      [NSAlert class], @selector(runModal), reinterpret_cast<IMP>(recordRunModal));
  InterceptedMethod activate_ =
      InterceptedMethod::ofInstances([NSApplication class], @selector(activateIgnoringOtherApps:),
                                     reinterpret_cast<IMP>(recordActivation));
  InterceptedMethod sharedApplication_ =
      InterceptedMethod::ofClass([NSApplication class], @selector(sharedApplication),
                                 reinterpret_cast<IMP>(recordSharedApplication));
};

std::string currentUserName() { return ::getpwuid(::geteuid())->pw_name; }

TEST_F(ProgramEntry, ChecksWhomTheSystemNamesAsTheUserBeforeThereIsAnApplication) {
  const doubles::EnvironmentVariable user("USER", "somebody-else");
  const doubles::EnvironmentVariable login("LOGNAME", "somebody-else");
  run({"program"});
  EXPECT_EQ(theEvents,
            (Lines{"check " + currentUserName(), "application", "main of the platform"}));
}

TEST_F(ProgramEntry, IgnoresBrokenPipesBeforeAnythingElseRuns) {
  // The platform may have ignored the signal already, which would hide a missing call.
  const auto before = std::signal(SIGPIPE, SIG_DFL);
  bool ignored = false;
  duringCheck_ = [&] { ignored = brokenPipesAreIgnored(); };
  run({"program"});
  std::signal(SIGPIPE, before);
  EXPECT_TRUE(ignored);
}

TEST_F(ProgramEntry, OpensClosedStandardStreamsBeforeAnythingElseRuns) {
  const int input = ::dup(STDIN_FILENO);
  ::close(STDIN_FILENO);
  bool isOpen = false;
  duringCheck_ = [&] { isOpen = ::fcntl(STDIN_FILENO, F_GETFD) != -1; };
  run({"program"});
  ::dup2(input, STDIN_FILENO);
  ::close(input);
  EXPECT_TRUE(isOpen);
}

TEST_F(ProgramEntry, RegistersItsDefaultsBeforeThereIsAnApplication) {
  NSUserDefaults *defaults = [NSUserDefaults standardUserDefaults];
  NSString *const names[] = {
      @"NSTreatUnknownArgumentsAsOpen",      @"NSAutomaticQuoteSubstitutionEnabled",
      @"NSAutomaticDashSubstitutionEnabled", @"NSAutomaticPeriodSubstitutionEnabled",
      @"NSAutomaticTextReplacementEnabled",  @"NSAutomaticSpellingCorrectionEnabled",
      @"NSAutomaticCapitalizationEnabled"};
  // What an earlier test has registered would hide a missing or late call.
  for (NSString *name : names) {
    [defaults registerDefaults:[NSDictionary dictionaryWithObject:@"not yet" forKey:name]];
  }
  duringCheck_ = [&] {
    for (NSString *name : names) EXPECT_EQ(app::utf8([defaults stringForKey:name]), "NO");
  };
  run({"program"});
}

TEST_F(ProgramEntry, HasTheDelegateAndItsWindowBeforeThePlatformsMain) {
  [NSApp setDelegate:nil];
  run({"program"});
  AppDelegate *delegate = static_cast<AppDelegate *>([NSApp delegate]);
  ASSERT_TRUE([delegate isKindOfClass:[AppDelegate class]]);
  EXPECT_TRUE(outlet<NSWindow>(delegate, "window") != nil);
}

TEST_F(ProgramEntry, PassesEveryArgumentOn) {
  run({"program", "one", "--two", "three"});
  EXPECT_EQ(theForwardedArguments, (Lines{"program", "one", "--two", "three"}));
}

// Among them arguments that the platform keeps to itself.
TEST_F(ProgramEntry, TakesTheConsoleUserFromTwoArguments) {
  run({"program"});
  EXPECT_FALSE(app::appStatics().consoleUser);
  run({"program", "--GNU-Debug=x", "-NSDocumentRevisionsDebugMode"});
  ASSERT_TRUE(app::appStatics().consoleUser);
  EXPECT_EQ(app::appStatics().consoleUser->user, "--GNU-Debug=x");
  EXPECT_EQ(app::appStatics().consoleUser->uid, "-NSDocumentRevisionsDebugMode");
}

TEST_F(ProgramEntry, RefusesOthersByAnAlertInFrontOfOtherWindowsAndEndsWithStatus0) {
  isAdmin_ = false;
  EXPECT_EQ(run({"program"}), 0);
  EXPECT_EQ(theEvents, (Lines{"check " + currentUserName(), "application", "activate above others",
                              "run the alert"}));
}

TEST_F(ProgramEntry, RefusesWithTheTitleAndTheMessageOfTheEditionAndOneQuitButton) {
  isAdmin_ = false;
  for (const app::Edition &edition : app::kEditions) {
    becomeEdition(std::string(edition.oem));
    run({"program"});
    EXPECT_EQ(app::utf8([[theAlert window] title]), edition.appName);
    EXPECT_EQ(app::utf8([theAlert messageText]),
              app::notAdminMessage(edition.appName, currentUserName()));
    ASSERT_EQ([[theAlert buttons] count], 1U);
    EXPECT_EQ(app::utf8([[[theAlert buttons] objectAtIndex:0] title]), "Quit");
  }
}

}  // namespace
}  // namespace windowtest

/// Replaces the platform's entry point, which would never return.
int NSApplicationMain(int argc, const char *argv[]) {
  windowtest::theEvents.emplace_back("main of the platform");
  windowtest::theForwardedArguments.assign(argv, argv + argc);
  return 0;
}
