#include "app/ns_string.h"
#import "window/window_test.h"

/// Becomes first responder and notes which actions arrive.
@interface ActionRecorder : NSView {
 @public
  std::string actions;
}
@end

@implementation ActionRecorder
- (BOOL)acceptsFirstResponder {
  return YES;
}
- (void)cut:(id)sender {
  actions += "cut ";
}
- (void)copy:(id)sender {
  actions += "copy ";
}
- (void)paste:(id)sender {
  actions += "paste ";
}
- (void)selectAll:(id)sender {
  actions += "selectAll ";
}
- (void)undo:(id)sender {
  actions += "undo ";
}
- (void)terminate:(id)sender {
  actions += "terminate ";
}
@end

namespace windowtest {
namespace {

// NSEventModifierFlagCapsLock, which GNUstep gui 0.29 does not name.
constexpr NSUInteger kCapsLock = 1U << 16;

bool press(NSWindow *window, const std::string &key, NSUInteger modifiers) {
  return [window performKeyEquivalent:[NSEvent keyEventWithType:NSEventTypeKeyDown
                                                             location:NSZeroPoint
                                                        modifierFlags:modifiers
                                                            timestamp:0
                                                         windowNumber:[window windowNumber]
                                                              context:nil
                                                           characters:app::nsString(key)
                                          charactersIgnoringModifiers:app::nsString(key)
                                                            isARepeat:NO
                                                              keyCode:0]];
}

class EditingKeys : public WindowTest {
 protected:
  void SetUp() override {
    WindowTest::SetUp();
    store("en", "192.0.2.10", "6000");
    delegate_ = launch();
  }

  static ActionRecorder *recordActions(NSWindow *window) {
    ActionRecorder *recorder = [[[ActionRecorder alloc] initWithFrame:NSZeroRect] autorelease];
    [[window contentView] addSubview:recorder];
    [window makeKeyAndOrderFront:nil];
    EXPECT_TRUE([window makeFirstResponder:recorder]);
    return recorder;
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
    ActionRecorder *recorder = recordActions(window);
    for (const char *key : {"x", "c", "v", "a", "z", "q", "C"}) {
      EXPECT_TRUE(press(window, key, NSEventModifierFlagCommand)) << key;
    }
    EXPECT_EQ(recorder->actions, "cut copy paste selectAll undo terminate copy ");
  }
}

TEST_F(EditingKeys, AreTheCommandKeyAloneWithTheseLetters) {
  NSWindow *window = [openSettings() window];
  ActionRecorder *recorder = recordActions(window);
  EXPECT_FALSE(press(window, "c", 0));
  EXPECT_FALSE(press(window, "c", NSEventModifierFlagControl));
  EXPECT_FALSE(press(window, "c", NSEventModifierFlagCommand | NSEventModifierFlagShift));
  EXPECT_FALSE(press(window, "c", NSEventModifierFlagCommand | NSEventModifierFlagOption));
  EXPECT_FALSE(press(window, "k", NSEventModifierFlagCommand));
  EXPECT_FALSE(press(window, "", NSEventModifierFlagCommand));
  EXPECT_EQ(recorder->actions, "");
  EXPECT_TRUE(press(window, "c", NSEventModifierFlagCommand | kCapsLock));
  EXPECT_EQ(recorder->actions, "copy ");
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
