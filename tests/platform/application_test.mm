#include <sys/prctl.h>
#include <sys/wait.h>

#include <cerrno>
#include <cstdlib>

#include "test_window.h"

namespace {

TEST(Application, TerminatesWithStatusZero) {
  EXPECT_EXIT(
      {
        [NSApplication sharedApplication];
        [NSApp performSelector:@selector(terminate:) withObject:nil afterDelay:0];
        [NSApp run];
      },
      testing::ExitedWithCode(0), "");
}

TEST(Application, ShowsNoIcon) {
  EXPECT_TRUE([[NSUserDefaults standardUserDefaults] boolForKey:@"GSSuppressAppIcon"]);
  [[NSApplication sharedApplication] finishLaunching];
  EXPECT_FALSE([[NSApp iconWindow] isVisible]);
}

TEST(Application, HasTheSystemsFontSize) {
  [NSApplication sharedApplication];
  EXPECT_EQ([NSFont systemFontSize], 13);
  EXPECT_EQ([[NSFont systemFontOfSize:0] pointSize], 13);
}

TEST(Application, ShowsNoWindowOfTheMainMenu) {
  [[NSApplication sharedApplication] finishLaunching];
  NSMenu *menu = [[[NSMenu alloc] initWithTitle:@"Main"] autorelease];
  [menu addItemWithTitle:@"First" action:nil keyEquivalent:@""];
  [menu display];
  ASSERT_TRUE([[menu window] isVisible]) << "a menu of its own";
  [menu close];
  [NSApp setMainMenu:menu];
  [menu display];
  EXPECT_FALSE([[menu window] isVisible]);
}

class KeyWindow : public WithWindow {
 protected:
  /// Deactivates the program while the X server sends its keys to the window, and ends it: with
  /// status 0 when the window has become the key window again.
  void deactivate() {
    [NSApp activateIgnoringOtherApps:YES];
    show();
    [NSApp deactivate];
    if ([window_ isKeyWindow]) std::_Exit(1);
    NSDate *limit = [NSDate dateWithTimeIntervalSinceNow:5];
    while (![window_ isKeyWindow] && [limit timeIntervalSinceNow] > 0)
      nextEvent(NSAnyEventMask, 0.1);
    std::_Exit([window_ isKeyWindow] ? 0 : 2);
  }
};

TEST_F(KeyWindow, IsTheOneThatGetsTheKeysAlsoAfterTheProgramWasDeactivated) {
  EXPECT_EXIT(deactivate(), testing::ExitedWithCode(0), "");
}

TEST(Application, StartsNoDaemons) {
  prctl(PR_SET_CHILD_SUBREAPER, 1);  // a daemon becomes a child of this process
  [[NSApplication sharedApplication] finishLaunching];
  [[NSPasteboard generalPasteboard] declareTypes:[NSArray arrayWithObject:NSStringPboardType]
                                           owner:nil];
  [[[NSWorkspace sharedWorkspace] notificationCenter] postNotificationName:@"x" object:nil];
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
  EXPECT_EQ(errno, ECHILD);
}

}  // namespace
