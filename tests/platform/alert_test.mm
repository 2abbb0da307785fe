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
  Alert() { [NSApplication sharedApplication]; }
};

template <typename View>
void collect(NSView *view, Class viewClass, std::vector<View *> &found) {
  for (NSView *subview in [view subviews]) {
    if ([subview isKindOfClass:viewClass]) found.push_back(static_cast<View *>(subview));
    collect(subview, viewClass, found);
  }
}

/// All strings that the panel shows, joined.
std::string shownStrings(NSWindow *panel) {
  std::vector<NSTextField *> fields;
  collect([panel contentView], [NSTextField class], fields);
  std::string strings;
  for (NSTextField *field : fields) strings += [[field stringValue] UTF8String];
  return strings;
}

TEST_F(Alert, HasAWindowThatKeepsItsTitle) {
  NSAlert *alert = [[[NSAlert alloc] init] autorelease];
  NSWindow *window = [alert window];
  ASSERT_TRUE(window != nil);
  [window setTitle:@"Some Program"];
  [alert setMessageText:@"x"];
  [alert _setupPanel];
  EXPECT_EQ([alert window], window);
  EXPECT_TRUE([[window title] isEqualToString:@"Some Program"]);
}

TEST_F(Alert, ShowsTheWholeMessageAndNothingElse) {
  NSAlert *alert = [[[NSAlert alloc] init] autorelease];
  NSString *message = [NSString stringWithUTF8String:"User x.\n\nL'utilisateur é.\n\nGehört ß."];
  [alert setMessageText:message];
  [alert addButtonWithTitle:@"Quit"];
  [alert _setupPanel];
  EXPECT_EQ(shownStrings([alert window]), " " + std::string([message UTF8String]));

  std::vector<NSTextField *> fields;
  collect([[alert window] contentView], [NSTextField class], fields);
  const CGFloat line = [[fields.back() font] defaultLineHeightForFont];
  EXPECT_GE(NSHeight([fields.back() frame]), 5 * line) << "five lines of text have to fit";
}

TEST_F(Alert, ShowsTheInformativeTextBelowTheMessage) {
  NSAlert *alert = [[[NSAlert alloc] init] autorelease];
  [alert setMessageText:@"message"];
  [alert setInformativeText:@"details"];
  [alert _setupPanel];
  EXPECT_EQ(shownStrings([alert window]), " message\n\ndetails");
}

TEST_F(Alert, ShowsItsButtonsOrOK) {
  const std::vector<std::string> given = {"Quit", "Other"};
  for (const std::vector<std::string> &titles : {given, std::vector<std::string>()}) {
    NSAlert *alert = [[[NSAlert alloc] init] autorelease];
    for (const std::string &title : titles) {
      [alert addButtonWithTitle:[NSString stringWithUTF8String:title.c_str()]];
    }
    [alert _setupPanel];
    std::vector<NSButton *> buttons;
    collect([[alert window] contentView], [NSButton class], buttons);
    std::vector<std::string> shown;
    for (NSButton *button : buttons) {
      // The icon is a button as well.
      if ([button imagePosition] != NSImageOnly) shown.push_back([[button title] UTF8String]);
    }
    EXPECT_EQ(shown, titles.empty() ? std::vector<std::string>{"OK"} : titles);
  }
}

TEST_F(Alert, HasTheMarginsAndTheButtonOfAnAlertOnMacOS) {
  NSAlert *alert = [[[NSAlert alloc] init] autorelease];
  [alert setMessageText:@"message\n\nof three lines"];
  [alert addButtonWithTitle:@"Quit"];
  [alert _setupPanel];
  NSView *content = [[alert window] contentView];
  std::vector<NSButton *> buttons;
  collect(content, [NSButton class], buttons);
  for (NSButton *button : buttons) {
    if ([button imagePosition] == NSImageOnly) continue;
    EXPECT_EQ(NSWidth([content bounds]) - NSMaxX([button frame]), 20 - 6);
    EXPECT_EQ(NSMinY([button frame]), 20 - 7);
    EXPECT_TRUE([button image] == nil) << "no sign of the Return key";
  }
}

}  // namespace
