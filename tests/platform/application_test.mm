#import <AppKit/AppKit.h>

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>

#include <cerrno>

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
