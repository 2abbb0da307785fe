#import <AppKit/AppKit.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

@interface NSAlert (PlatformTest)
- (void)_setupPanel;
@end

namespace {

class Alert : public testing::Test {
 protected:
  Alert() {
    [NSApplication sharedApplication];
    alert_ = [[[NSAlert alloc] init] autorelease];
  }

  /// Everything that happens before the alert waits for its answer.
  void prepare() { [alert_ _setupPanel]; }

  template <class View>
  std::vector<View *> views() {
    std::vector<View *> found;
    collect([[alert_ window] contentView], found);
    return found;
  }

  /// All strings that the panel shows, joined.
  std::string strings() {
    std::string joined;
    for (NSTextField *field : views<NSTextField>()) joined += [[field stringValue] UTF8String];
    return joined;
  }

  std::vector<NSButton *> buttons() {
    std::vector<NSButton *> found = views<NSButton>();
    // The icon is a button as well.
    std::erase_if(found, [](NSButton *button) { return [button imagePosition] == NSImageOnly; });
    return found;
  }

  NSAlert *alert_;

 private:
  template <class View>
  static void collect(NSView *view, std::vector<View *> &found) {
    for (NSView *subview in [view subviews]) {
      if ([subview isKindOfClass:[View class]]) found.push_back(static_cast<View *>(subview));
      collect(subview, found);
    }
  }
};

TEST_F(Alert, HasAWindowThatKeepsItsTitle) {
  NSWindow *window = [alert_ window];
  ASSERT_TRUE(window != nil);
  [window setTitle:@"Some Program"];
  [alert_ setMessageText:@"x"];
  prepare();
  EXPECT_EQ([alert_ window], window);
  EXPECT_TRUE([[window title] isEqualToString:@"Some Program"]);
}

TEST_F(Alert, ShowsTheWholeMessageAndNothingElse) {
  NSString *message = [NSString stringWithUTF8String:"User x.\n\nL'utilisateur é.\n\nGehört ß."];
  [alert_ setMessageText:message];
  prepare();
  EXPECT_EQ(strings(), " " + std::string([message UTF8String]));
  NSTextField *field = views<NSTextField>().back();
  const CGFloat line = [[field font] defaultLineHeightForFont];
  EXPECT_GE(NSHeight([field frame]), 5 * line) << "five lines of text have to fit";
}

TEST_F(Alert, ShowsTheInformativeTextBelowTheMessage) {
  [alert_ setMessageText:@"message"];
  [alert_ setInformativeText:@"details"];
  prepare();
  EXPECT_EQ(strings(), " message\n\ndetails");
}

TEST_F(Alert, ShowsItsButtons) {
  for (NSString *title : {@"Quit", @"Other"}) [alert_ addButtonWithTitle:title];
  prepare();
  std::string titles;
  for (NSButton *button : buttons()) titles += std::string([[button title] UTF8String]) + ";";
  EXPECT_EQ(titles, "Quit;Other;");
}

TEST_F(Alert, HasOneButtonWithTheMarginsOfAnAlertOnMacOSWhenItIsGivenNone) {
  [alert_ setMessageText:@"message\n\nof three lines"];
  prepare();
  ASSERT_EQ(buttons().size(), 1U);
  NSButton *button = buttons().front();
  EXPECT_TRUE([[button title] isEqual:@"OK"]);
  EXPECT_EQ(NSWidth([[[alert_ window] contentView] bounds]) - NSMaxX([button frame]), 20 - 6);
  EXPECT_EQ(NSMinY([button frame]), 20 - 7);
  EXPECT_TRUE([button image] == nil) << "no sign of the Return key";
}

}  // namespace
