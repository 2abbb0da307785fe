#import <objc/runtime.h>

#include <tuple>
#include <vector>

#include "app/ns_string.h"
#import "window/window_test.h"

namespace windowtest {
namespace {

struct Control {
  const char *outlet;
  Class kind;
  SEL action;  ///< of the controller; null when the control sends none
};

/// What the interface files connect, whatever they look like.
class Controls : public WindowTest {
 protected:
  void SetUp() override {
    WindowTest::SetUp();
    store("en", "192.0.2.10", "6000");
  }

  static void check(id owner, const std::vector<Control> &controls) {
    for (const Control &control : controls) {
      SCOPED_TRACE(control.outlet);
      NSControl *found = outlet<NSControl>(owner, control.outlet);
      EXPECT_EQ([found class], control.kind);
      EXPECT_FALSE([found isHiddenOrHasHiddenAncestor]);
      EXPECT_TRUE(sel_isEqual([found action], control.action));
      EXPECT_EQ([found target], control.action == nullptr ? nil : owner);
    }
  }
};

TEST_F(Controls, OfTheLoginWindowAreOfTheirKindVisibleAndConnected) {
  check(launch(), {{"admin_msg", [NSTextField class], nullptr},
                   {"username_label", [NSTextField class], nullptr},
                   {"username", [NSTextField class], nullptr},
                   {"password_label", [NSTextField class], nullptr},
                   {"password", [NSSecureTextField class], nullptr},
                   {"OkButton", [NSButton class], @selector(OkAction:)},
                   {"QuitButton", [NSButton class], @selector(CancelAction:)}});
}

TEST_F(Controls, OfTheSettingsWindowAreOfTheirKindVisibleAndConnected) {
  ServerWindowController *controller = openSettings();
  check(controller, {{"language_label", [NSTextField class], nullptr},
                     {"selectLanguage", [NSPopUpButton class], @selector(languageAction:)},
                     {"server_label", [NSTextField class], nullptr},
                     {"mode", [NSPopUpButton class], nullptr},
                     {"servername", [NSTextField class], nullptr},
                     {"port_label", [NSTextField class], nullptr},
                     {"port", [NSTextField class], nullptr},
                     {"reset_settings", [NSButton class], nullptr},
                     {"MDM_profile", [NSButton class], nullptr},
                     {"testChoice", [NSPopUpButton class], nullptr},
                     {"TestButton", [NSButton class], @selector(TestAction:)},
                     {"testStatus", [NSImageView class], nullptr},
                     {"Apply_button", [NSButton class], @selector(ApplyAction:)},
                     {"Quit_button", [NSButton class], @selector(QuitAction:)}});
  EXPECT_EQ([[controller valueForKey:@"setting_label"] class], [NSTextFieldCell class]);
}

TEST_F(Controls, AreCheckBoxesOnlyWhereSomethingIsOnOrOff) {
  ServerWindowController *controller = openSettings();
  for (const auto &[name, expected] : {std::pair("reset_settings", true),
                                       {"MDM_profile", true},
                                       {"TestButton", false},
                                       {"Apply_button", false},
                                       {"Quit_button", false}}) {
    NSButton *button = outlet<NSButton>(controller, name);
    EXPECT_EQ([[button cell] showsStateBy] != NSNoCellMask, expected) << name;
    EXPECT_EQ([button image] != nil, expected) << name << ": the box";
  }
}

TEST_F(Controls, EditOnlyWhatTheAdministratorTypes) {
  AppDelegate *login = launch();
  ServerWindowController *settings = openSettings();
  const std::tuple<id, const char *, bool> fields[] = {
      {login, "admin_msg", false},       {login, "username_label", false},
      {login, "username", true},         {login, "password_label", false},
      {login, "password", true},         {settings, "language_label", false},
      {settings, "server_label", false}, {settings, "servername", true},
      {settings, "port_label", false},   {settings, "port", true}};
  for (const auto &[owner, name, editable] : fields) {
    NSTextField *field = outlet<NSTextField>(owner, name);
    EXPECT_EQ([field isEditable], editable) << name;
    EXPECT_EQ([field isSelectable], editable) << name;
    EXPECT_TRUE([field isEnabled]) << name;
  }
}

TEST_F(Controls, HaveReturnForTheDefaultButtonAndEscapeForQuitInTheLoginWindowOnly) {
  AppDelegate *login = launch();
  ServerWindowController *settings = openSettings();
  const std::tuple<id, const char *, const char *> buttons[] = {{login, "OkButton", "\r"},
                                                                {login, "QuitButton", "\x1b"},
                                                                {settings, "Apply_button", "\r"},
                                                                {settings, "Quit_button", ""}};
  for (const auto &[owner, name, key] : buttons) {
    NSButton *button = outlet<NSButton>(owner, name);
    EXPECT_EQ(app::utf8([button keyEquivalent]), key) << name;
    EXPECT_EQ([button isHighlighted], std::string_view(key) == "\r") << name;
  }
}

// A program without a window would keep the password in memory.
TEST_F(Controls, AreInWindowsOfAFixedSizeInTheMiddleOfTheScreenThatCannotBeClosed) {
  AppDelegate *login = launch();
  ServerWindowController *settings = openSettings();
  EXPECT_FALSE([settings shouldCascadeWindows]);
  EXPECT_FALSE(
      [login respondsToSelector:@selector(applicationShouldTerminateAfterLastWindowClosed:)]);
  for (NSWindow *window : {outlet<NSWindow>(login, "window"), [settings window]}) {
    EXPECT_EQ([window styleMask], NSWindowStyleMaskTitled);
    [window performClose:nil];
    EXPECT_TRUE([window isVisible]);
    const NSPoint opened = [window frame].origin;
    [window center];
    EXPECT_TRUE(NSEqualPoints(opened, [window frame].origin));
  }
}

}  // namespace
}  // namespace windowtest
