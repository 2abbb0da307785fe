#include "window/text_fit.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "app/edition.h"
#include "app/not_admin_message.h"
#include "app/ns_string.h"
#include "i18n/language.h"
#import "window/window_test.h"

namespace windowtest {
namespace {

using i18n::Language;

constexpr Language kLanguages[] = {Language::En, Language::Fr, Language::It, Language::Ge,
                                   Language::Es};
// An IPv6 address in full, in wide digits.
constexpr const char *kLongAddress = "2001:0db8:8888:8888:8888:8888:8888:8888";
static_assert(std::string_view(kLongAddress).size() == 39);

/// The ASCII text made longer by 40 % of itself.
std::string longer(const std::string &text) {
  return text + text.substr(0, (2 * text.size() + 4) / 5);
}

class Fit : public WindowTest {
 protected:
  struct Opened {
    NSWindow *window;
    id owner;
  };

  Opened openedLogin(const app::Edition &edition = app::kEditions[0],
                     Language lang = Language::En) {
    becomeEdition(std::string(edition.oem));
    store(i18n::getLanguageType(lang), "", "6000");
    AppDelegate *delegate = launch();
    return {outlet<NSWindow>(delegate, "window"), delegate};
  }

  /// The language is set past the pop-up, so that each edition is seen in all five.
  Opened openedSettings(const app::Edition &edition = app::kEditions[0],
                        Language lang = Language::En) {
    becomeEdition(std::string(edition.oem));
    store("en", kLongAddress, "65535");
    ServerWindowController *controller = openSettings();
    app::appStatics().lang = lang;
    [controller translate];
    return {[controller window], controller};
  }
};

TEST_F(Fit, EveryStringFitsInAllEditionsAndLanguages) {
  for (const app::Edition &edition : app::kEditions) {
    for (const Language lang : kLanguages) {
      for (const Opened &opened : {openedLogin(edition, lang), openedSettings(edition, lang)}) {
        for (const std::string &line : textFindings(opened.window, opened.owner)) {
          ADD_FAILURE() << edition.oem << " in " << i18n::getLanguageType(lang) << ": " << line;
        }
        [opened.window orderOut:nil];
      }
    }
  }
}

/// Sets what the control shows; in a pop-up, the title of its last item.
void show(NSView *control, const std::string &text) {
  NSString *string = app::nsString(text);
  if ([control isKindOfClass:[NSPopUpButton class]]) {
    [[static_cast<NSPopUpButton *>(control) lastItem] setTitle:string];
  } else if ([control isKindOfClass:[NSButton class]]) {
    [static_cast<NSButton *>(control) setTitle:string];
  } else {
    [static_cast<NSTextField *>(control) setStringValue:string];
  }
}

// Whatever the size of a control: the longest string that fits is reported when lengthened.
TEST_F(Fit, FindsAStringLengthenedBy40PercentInEachControl) {
  for (const Opened &opened : {openedLogin(), openedSettings()}) {
    for (NSView *control : controlsIn(opened.window)) {
      if (![control isKindOfClass:[NSControl class]] ||
          [control isKindOfClass:[NSImageView class]] || isField(control)) {
        continue;
      }
      const std::string name = nameFor(control, opened.owner);
      std::string text;
      while (textFindings(opened.window, opened.owner).empty()) {
        text += text.size() % 8 == 7 ? " " : "n";
        show(control, text);
      }
      text.pop_back();
      show(control, text);
      EXPECT_EQ(textFindings(opened.window, opened.owner).size(), 0U) << name;
      show(control, longer(text));
      const std::vector<std::string> findings = textFindings(opened.window, opened.owner);
      ASSERT_EQ(findings.size(), 1U) << name;
      EXPECT_EQ(findings[0].find(name + " \""), 0U) << findings[0];
      EXPECT_NE(findings[0].find(" missing"), std::string::npos) << findings[0];
      show(control, "");
    }
  }
}

TEST_F(Fit, AnIPv6AddressFitsInTheServerFieldAndALongerValueEndsWithAnEllipsis) {
  const id owner = openedSettings().owner;
  NSTextField *server = outlet<NSTextField>(owner, "servername");
  EXPECT_LE([[server cell] cellSize].width, NSWidth([server frame]));
  for (const Opened &opened : {openedLogin(), openedSettings()}) {
    for (NSView *view : controlsIn(opened.window)) {
      const bool isText = [view isKindOfClass:[NSTextField class]];
      if (!isText && ![view isKindOfClass:[NSPopUpButton class]]) continue;
      const NSLineBreakMode mode = [[static_cast<NSControl *>(view) cell] lineBreakMode];
      const std::string name = nameFor(view, opened.owner);
      EXPECT_EQ(mode, name == "admin_msg" ? NSLineBreakByWordWrapping : NSLineBreakByTruncatingTail)
          << name;
    }
  }
}

TEST_F(Fit, FindsAWindowTitleThatIsTooLong) {
  const Opened login = openedLogin();
  [login.window setTitle:app::nsString(std::string(60, 'n'))];
  EXPECT_EQ(textFindings(login.window, login.owner).size(), 1U);
}

TEST_F(Fit, ControlsKeepTheMarginsAndTheirDistance) {
  for (const Opened &opened : {openedLogin(), openedSettings()}) {
    EXPECT_EQ(layoutFindings(opened.window, opened.owner), std::vector<std::string>());
    NSView *last = controlsIn(opened.window).back();
    [last setFrameOrigin:NSMakePoint(NSMinX([last frame]) - 5, NSMinY([last frame]) - 1)];
    EXPECT_EQ(layoutFindings(opened.window, opened.owner).size(), 2U) << "moved";
  }
}

/// The controls of a row, a label first if there is one.
using Row = std::vector<const char *>;

void checkAlignment(id owner, const std::vector<Row> &rows) {
  std::set<CGFloat> labelEnds, fieldStarts;
  for (const Row &row : rows) {
    const NSRect first = visibleFrame(outlet<NSView>(owner, row[0]));
    const bool hasLabel = std::string_view(row[0]).ends_with("_label");
    if (hasLabel) labelEnds.insert(NSMaxX(first));
    fieldStarts.insert(NSMinX(visibleFrame(outlet<NSView>(owner, row[hasLabel ? 1 : 0]))));
    for (const char *name : row) {
      EXPECT_NEAR(NSMidY(visibleFrame(outlet<NSView>(owner, name))), NSMidY(first), 1) << name;
    }
  }
  EXPECT_EQ(labelEnds.size(), 1U);
  EXPECT_EQ(fieldStarts.size(), 1U);
}

TEST_F(Fit, LabelsAndFieldsAreAlignedAndEachRowHasOneMiddle) {
  checkAlignment(openedLogin().owner,
                 {{"username_label", "username"}, {"password_label", "password"}});
  checkAlignment(openedSettings().owner, {{"language_label", "selectLanguage"},
                                          {"server_label", "mode", "servername"},
                                          {"port_label", "port"},
                                          {"testChoice", "TestButton", "testStatus"},
                                          {"reset_settings"},
                                          {"MDM_profile"}});
}

TEST_F(Fit, ButtonsAre12PointsApart) {
  const auto gap = [](const Opened &opened, const char *left, const char *right) {
    return NSMinX(visibleFrame(outlet<NSView>(opened.owner, right))) -
           NSMaxX(visibleFrame(outlet<NSView>(opened.owner, left)));
  };
  EXPECT_EQ(gap(openedLogin(), "QuitButton", "OkButton"), 12);
  EXPECT_EQ(gap(openedSettings(), "Quit_button", "Apply_button"), 12);
}

// Text of 13 points shares a baseline when a label's frame of 17 points begins that far above the
// frame of a field of 22 points or of a pop-up button of 25.
TEST_F(Fit, LabelsAreOnTheBaselinesOfTheirControls) {
  constexpr CGFloat kAboveField = 2, kAbovePopUp = 5;
  const id login = openedLogin().owner, settings = openedSettings().owner;
  const std::tuple<id, const char *, const char *, CGFloat> rows[] = {
      {login, "username_label", "username", kAboveField},
      {login, "password_label", "password", kAboveField},
      {settings, "language_label", "selectLanguage", kAbovePopUp},
      {settings, "server_label", "mode", kAbovePopUp},
      {settings, "server_label", "servername", kAboveField},
      {settings, "port_label", "port", kAboveField}};
  for (const auto &[owner, label, control, above] : rows) {
    EXPECT_EQ(NSMinY([outlet<NSView>(owner, label) frame]),
              NSMinY([outlet<NSView>(owner, control) frame]) + above)
        << control;
  }
}

// A click next to the title must not toggle an option that deletes files.
TEST_F(Fit, TheResetCheckBoxEndsWithItsTitleInEachLanguage) {
  const Opened opened = openedSettings();
  NSButton *checkBox = outlet<NSButton>(opened.owner, "reset_settings");
  const NSRect other = [outlet<NSButton>(opened.owner, "MDM_profile") frame];
  for (const Language lang : kLanguages) {
    SCOPED_TRACE(i18n::getLanguageType(lang));
    app::appStatics().lang = lang;
    [opened.owner translate];
    const NSRect frame = [checkBox frame];
    EXPECT_EQ(NSWidth(frame), std::ceil([[checkBox cell] cellSize].width));
    EXPECT_EQ(NSMinX(frame), NSMinX(other));
    EXPECT_EQ(NSHeight(frame), NSHeight(other));
    const NSPoint next = NSMakePoint(NSMaxX(frame) + 1, NSMidY(frame));
    EXPECT_NE([[opened.window contentView] hitTest:next], checkBox);
  }
}

TEST_F(Fit, TitlesOfPopUpsAreAlignedAlsoWhereOneLanguageIsOffered) {
  for (const app::Edition &edition : app::kEditions) {
    const id owner = openedSettings(edition).owner;
    std::set<CGFloat> starts;
    for (const char *name : {"selectLanguage", "mode", "testChoice"}) {
      NSPopUpButton *popUp = outlet<NSPopUpButton>(owner, name);
      starts.insert(NSMinX([[popUp cell] titleRectForBounds:[popUp bounds]]));
    }
    EXPECT_EQ(starts.size(), 1U) << edition.oem;
    EXPECT_GE(*starts.begin(), 8) << edition.oem;
  }
}

TEST_F(Fit, TheHeadingIsBold) {
  const id owner = openedSettings().owner;
  NSFont *font = [outlet<NSTextFieldCell>(owner, "setting_label") font];
  EXPECT_TRUE([[NSFontManager sharedFontManager] traitsOfFont:font] & NSBoldFontMask);
}

void collectFields(NSView *view, std::vector<NSTextField *> &fields) {
  for (NSView *subview in [view subviews]) {
    if ([subview isKindOfClass:[NSTextField class]]) {
      fields.push_back(static_cast<NSTextField *>(subview));
    }
    collectFields(subview, fields);
  }
}

/// The start-up alert, laid out.
NSAlert *refusal(const std::string &title, const std::string &name) {
  NSAlert *alert = [[[NSAlert alloc] init] autorelease];
  [[alert window] setTitle:app::nsString(title)];
  [alert setMessageText:app::nsString(app::notAdminMessage(title, name))];
  [alert addButtonWithTitle:@"Quit"];
  // GNUstep's alert has no -layout; it lays itself out right before it runs.
  const SEL layout = [alert respondsToSelector:@selector(layout)]
                         ? @selector(layout)
                         : NSSelectorFromString(@"_setupPanel");
  [alert performSelector:layout];
  return alert;
}

/// What is wrong with the refusal of that user, in a line; nothing when all is shown.
std::string refusalFinding(const std::string &title, const std::string &name) {
  NSWindow *window = [refusal(title, name) window];
  const NSSize size = [window frame].size;
  if (size.width > 1280 || size.height > 900) return "larger than the screen";
  std::vector<NSTextField *> fields;
  collectFields([window contentView], fields);
  for (NSTextField *text : fields) {
    if (app::utf8([text stringValue]).find(name) == std::string::npos) continue;
    const NSRect frame = [text frame];
    const CGFloat needed = wrappedHeight([text attributedStringValue], NSWidth(frame) - 4);
    return needed > NSHeight(frame) ? "text is cut" : "";
  }
  return "does not name the user";
}

using FitDeathTest = Fit;

// In processes of their own: GNUstep's alert launches the application once more.
TEST_F(FitDeathTest, TheRefusalOfALongUserNameWrapsAndStaysOnTheScreen) {
  for (const app::Edition &edition : app::kEditions) {
    EXPECT_EXIT(
        {
          const std::string finding =
              refusalFinding(std::string(edition.appName), std::string(60, 'm'));
          std::fprintf(stderr, "finding: '%s'\n", finding.c_str());
          std::exit(finding.empty() ? 0 : 1);
        },
        testing::ExitedWithCode(0), "finding: ''");
  }
}

}  // namespace
}  // namespace windowtest
