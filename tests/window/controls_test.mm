#import <objc/runtime.h>

#include <map>
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

  static bool showsItsState(id owner, const char *name) {
    return [[outlet<NSButton>(owner, name) cell] showsStateBy] != NSNoCellMask;
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
  EXPECT_TRUE(showsItsState(controller, "reset_settings"));
  EXPECT_TRUE(showsItsState(controller, "MDM_profile"));
  for (const char *name : {"TestButton", "Apply_button", "Quit_button"}) {
    EXPECT_FALSE(showsItsState(controller, name)) << name;
  }
}

TEST_F(Controls, EditOnlyWhatTheAdministratorTypes) {
  const std::map<std::string, bool> login{{"admin_msg", false},
                                          {"username_label", false},
                                          {"username", true},
                                          {"password_label", false},
                                          {"password", true}};
  const std::map<std::string, bool> settings{{"language_label", false},
                                             {"server_label", false},
                                             {"servername", true},
                                             {"port_label", false},
                                             {"port", true}};
  for (const auto &[owner, fields] :
       {std::pair<id, std::map<std::string, bool>>(launch(), login), {openSettings(), settings}}) {
    for (const auto &[name, editable] : fields) {
      NSTextField *field = outlet<NSTextField>(owner, name.c_str());
      EXPECT_EQ([field isEditable], editable) << name;
      EXPECT_EQ([field isSelectable], editable) << name;
      EXPECT_TRUE([field isEnabled]) << name;
    }
  }
}

TEST_F(Controls, TranslateTheWindowWhenALanguageIsChosenInThePopUp) {
  becomeEdition("Quorvix");
  ServerWindowController *controller = openSettings();
  NSPopUpButton *languages = outlet<NSPopUpButton>(controller, "selectLanguage");
  for (const auto &[item, entry] : {std::pair(3, "Ge"), {4, "Es"}, {0, "En"}}) {
    [[languages menu] performActionForItemAtIndex:item];
    EXPECT_EQ(buttonTitle(controller, "Quit_button"), catalogueString(entry, "Common", "quit"));
  }
}

TEST_F(Controls, OpenInTheMiddleOfTheScreenEachTime) {
  for (int times = 0; times < 2; ++times) {
    ServerWindowController *controller = openSettings();
    EXPECT_FALSE([controller shouldCascadeWindows]);
    NSWindow *window = [controller window];
    const NSPoint opened = [window frame].origin;
    [window center];
    EXPECT_TRUE(NSEqualPoints(opened, [window frame].origin));
  }
}

}  // namespace
}  // namespace windowtest
