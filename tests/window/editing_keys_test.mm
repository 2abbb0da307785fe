#include "app/ns_string.h"
#include "doubles/intercepted_method.h"
#import "window/window_test.h"

namespace windowtest {
namespace {

// NSEventModifierFlagCapsLock, which GNUstep gui 0.29 does not name.
constexpr NSUInteger kCapsLock = 1U << 16;

/// The actions that were sent to the first responder and what follows it.
std::string sent;

BOOL recordAction(id, SEL, SEL action, id target, id) {
  EXPECT_TRUE(target == nil);
  sent += sel_getName(action);
  return YES;
}

doubles::InterceptedMethod recordActions() {
  sent.clear();
  return doubles::InterceptedMethod::ofInstances(
      [NSApplication class], @selector(sendAction:to:from:), reinterpret_cast<IMP>(recordAction));
}

class EditingKeys : public WindowTest {
 protected:
  void SetUp() override {
    WindowTest::SetUp();
    store("en", "192.0.2.10", "6000");
    delegate_ = launch();
  }

  /// The server stays selected.
  ServerWindowController *openSettingsAndCopyServer() {
    ServerWindowController *controller = openSettings();
    NSWindow *window = [controller window];
    [window makeFirstResponder:outlet<NSTextField>(controller, "servername")];
    press(window, "a", NSEventModifierFlagCommand);
    press(window, "c", NSEventModifierFlagCommand);
    return controller;
  }

  AppDelegate *delegate_ = nil;
};

TEST_F(EditingKeys, AreSentToWhateverHasTheKeyboardInBothWindows) {
  for (NSWindow *window : {outlet<NSWindow>(delegate_, "window"), [openSettings() window]}) {
    const auto intercepted = recordActions();
    for (const char *key : {"x", "c", "v", "a", "z", "q", "C"}) {
      EXPECT_TRUE(press(window, key, NSEventModifierFlagCommand)) << key;
    }
    EXPECT_EQ(sent, "cut:copy:paste:selectAll:undo:terminate:copy:");
  }
}

TEST_F(EditingKeys, AreTheCommandKeyAloneWithTheseLetters) {
  NSWindow *window = [openSettings() window];
  const auto intercepted = recordActions();
  EXPECT_FALSE(press(window, "c", 0));
  EXPECT_FALSE(press(window, "c", NSEventModifierFlagControl));
  EXPECT_FALSE(press(window, "c", NSEventModifierFlagCommand | NSEventModifierFlagShift));
  EXPECT_FALSE(press(window, "c", NSEventModifierFlagCommand | NSEventModifierFlagOption));
  EXPECT_FALSE(press(window, "k", NSEventModifierFlagCommand));
  EXPECT_FALSE(press(window, "", NSEventModifierFlagCommand));
  EXPECT_EQ(sent, "");
  EXPECT_TRUE(press(window, "c", NSEventModifierFlagCommand | kCapsLock));
  EXPECT_EQ(sent, "copy:");
}

std::string edited(id owner, const char *field) {
  return app::utf8([[outlet<NSTextField>(owner, field) currentEditor] string]);
}

TEST_F(EditingKeys, CopyCutAndPasteWithinTheProgram) {
  ServerWindowController *controller = openSettingsAndCopyServer();
  NSWindow *window = [controller window];
  EXPECT_EQ(edited(controller, "servername"), "192.0.2.10");
  press(window, "x", NSEventModifierFlagCommand);
  EXPECT_EQ(edited(controller, "servername"), "");
  press(window, "v", NSEventModifierFlagCommand);
  press(window, "v", NSEventModifierFlagCommand);
  EXPECT_EQ(edited(controller, "servername"), "192.0.2.10192.0.2.10");

  NSWindow *login = outlet<NSWindow>(delegate_, "window");
  [login makeKeyAndOrderFront:nil];
  [login makeFirstResponder:outlet<NSTextField>(delegate_, "password")];
  press(login, "v", NSEventModifierFlagCommand);
  [login makeFirstResponder:nil];
  EXPECT_EQ(fieldText(delegate_, "password"), "192.0.2.10");
}

TEST_F(EditingKeys, KeepWhatWasCopiedWhenNothingIsSelected) {
  ServerWindowController *controller = openSettingsAndCopyServer();
  NSWindow *window = [controller window];
  [[outlet<NSTextField>(controller, "servername") currentEditor]
      setSelectedRange:NSMakeRange(2, 0)];
  press(window, "c", NSEventModifierFlagCommand);
  press(window, "x", NSEventModifierFlagCommand);
  press(window, "v", NSEventModifierFlagCommand);
  EXPECT_EQ(edited(controller, "servername"), "19192.0.2.102.0.2.10");
}

TEST_F(EditingKeys, NeverCopyOrCutAPassword) {
  NSPasteboard *pasteboard = [NSPasteboard generalPasteboard];
  [pasteboard declareTypes:@[ NSPasteboardTypeString ] owner:nil];
  [pasteboard setString:@"before" forType:NSPasteboardTypeString];
  type(delegate_, "password", "secret");
  NSWindow *login = outlet<NSWindow>(delegate_, "window");
  [login makeKeyAndOrderFront:nil];
  [login makeFirstResponder:outlet<NSTextField>(delegate_, "password")];
  for (const char *key : {"a", "c", "x"}) {
    EXPECT_TRUE(press(login, key, NSEventModifierFlagCommand));
    EXPECT_EQ(app::utf8([pasteboard stringForType:NSPasteboardTypeString]), "before") << key;
  }
  [login makeFirstResponder:nil];
  EXPECT_EQ(fieldText(delegate_, "password"), "secret");
}

}  // namespace
}  // namespace windowtest
