#include <algorithm>
#include <vector>

#include "app/edition.h"
#include "app/ns_string.h"
#include "window/text_fit.h"
#import "window/window_test.h"

namespace windowtest {
namespace {

using Names = std::vector<std::string>;

class Keyboard : public WindowTest {
 protected:
  void SetUp() override {
    WindowTest::SetUp();
    store("en", "192.0.2.10", "6000");
  }

  static bool takesKeys(NSView *view) {
    if (![view isKindOfClass:[NSControl class]] || [view isKindOfClass:[NSImageView class]]) {
      return false;
    }
    NSControl *control = static_cast<NSControl *>(view);
    return [control isEnabled] && ![control isHidden] &&
           ([control isKindOfClass:[NSButton class]] ||
            [static_cast<NSTextField *>(control) isEditable]);
  }

  /// The controls that take keys, from the top left to the bottom right, beginning with the one
  /// that has the keyboard first.
  static Names readingOrder(NSWindow *window, id owner) {
    std::vector<NSView *> controls = controlsIn(window);
    std::erase_if(controls, [](NSView *view) { return !takesKeys(view); });
    std::ranges::sort(controls, [](NSView *a, NSView *b) {
      const NSRect one = visibleFrame(a), other = visibleFrame(b);
      // Controls of a row have the same middle, give or take a point.
      if (std::abs(NSMidY(one) - NSMidY(other)) > 2) return NSMidY(one) > NSMidY(other);
      return NSMinX(one) < NSMinX(other);
    });
    std::rotate(controls.begin(),
                std::find(controls.begin(), controls.end(), [window initialFirstResponder]),
                controls.end());
    Names names;
    for (NSView *control : controls) names.push_back(nameFor(control, owner));
    return names;
  }

  /// The controls that take keys, in the order in which `next` leads from one to the other.
  static Names loop(NSWindow *window, id owner, SEL next) {
    Names names;
    NSView *const first = [window initialFirstResponder];
    NSView *view = first;
    do {
      if (takesKeys(view)) names.push_back(nameFor(view, owner));
      view = [view performSelector:next];
    } while (view != nil && view != first && names.size() < 50);
    EXPECT_EQ(view, first) << "does not come round after " << names.back();
    return names;
  }

  /// The field that is being edited.
  static std::string focus(NSWindow *window, id owner) {
    id responder = [window firstResponder];
    if (![responder isKindOfClass:[NSText class]]) return nameFor(responder, owner);
    return nameFor(static_cast<NSView *>([static_cast<NSText *>(responder) delegate]), owner);
  }

  static void checkLoop(NSWindow *window, id owner, std::size_t stops) {
    const Names expected = readingOrder(window, owner);
    EXPECT_EQ(expected.size(), stops);
    EXPECT_EQ(loop(window, owner, @selector(nextKeyView)), expected);
    Names backward = loop(window, owner, @selector(previousKeyView));
    std::reverse(backward.begin() + 1, backward.end());
    EXPECT_EQ(backward, expected);
  }
};

TEST_F(Keyboard, StartsInTheUserNameAndGoesRoundTheLoginWindowInReadingOrder) {
  AppDelegate *delegate = launch();
  NSWindow *window = outlet<NSWindow>(delegate, "window");
  [window makeKeyAndOrderFront:nil];
  EXPECT_EQ(focus(window, delegate), "username");
  checkLoop(window, delegate, 4);
}

TEST_F(Keyboard, StartsInTheServerAndGoesRoundTheSettingsWindowInReadingOrder) {
  for (const app::Edition &edition : app::kEditions) {
    becomeEdition(std::string(edition.oem));
    ServerWindowController *controller = openSettings();
    EXPECT_EQ(focus([controller window], controller), "servername");
    // All but the profile's check box, which only shows something.
    checkLoop([controller window], controller, 9);
  }
}

// GNUstep's controls have no accessibility, so this looks at the interface files.
class Accessibility : public testing::TestWithParam<const char *> {
 protected:
  static NSArray *find(NSXMLNode *node, const std::string &path) {
    return [node nodesForXPath:app::nsString(path) error:NULL];
  }
  static std::string attribute(NSXMLNode *element, const char *name) {
    return app::utf8([[static_cast<NSXMLElement *>(element)
                         attributeForName:[NSString stringWithUTF8String:name]] stringValue]
                         ?: @"");
  }
  NSXMLDocument *document() {
    const std::string file = std::string(RESOURCES "/") + GetParam() + ".xib";
    return [[[NSXMLDocument alloc] initWithContentsOfURL:[NSURL fileURLWithPath:app::nsString(file)]
                                                 options:0
                                                   error:NULL] autorelease];
  }

 private:
  NSAutoreleasePool *pool_ = [[NSAutoreleasePool alloc] init];
};

// A description in the interface file is English in every language and wins over the label.
TEST_P(Accessibility, OnlyAControlWithoutAVisibleLabelHasADescription) {
  NSXMLDocument *file = document();
  ASSERT_TRUE(file != nil);
  NSArray *controls = find(file, "//textField[textFieldCell/@editable='YES'] | //secureTextField"
                                 " | //popUpButton | //imageView");
  EXPECT_GE([controls count], 2U);
  Names descriptions;
  for (NSXMLNode *control in controls) {
    const bool hasLabel =
        [find(control, "connections/accessibilityConnection[@property='title']") count] > 0;
    NSArray *named = find(control, "accessibility");
    EXPECT_EQ([named count], hasLabel ? 0U : 1U) << attribute(control, "id");
    for (NSXMLNode *name in named) descriptions.push_back(attribute(name, "description"));
  }
  EXPECT_EQ(std::ranges::find(descriptions, ""), descriptions.end());
  std::ranges::sort(descriptions);
  EXPECT_EQ(std::ranges::adjacent_find(descriptions), descriptions.end());
}

TEST_P(Accessibility, EveryLabelBeforeAControlIsItsTitleElement) {
  NSXMLDocument *file = document();
  NSArray *labels = find(file, "//textField[textFieldCell/@alignment='right']");
  EXPECT_GE([labels count], 2U);
  for (NSXMLNode *label in labels) {
    const std::string path = "//accessibilityConnection[@property='title'][@destination='" +
                             attribute(label, "id") + "']";
    EXPECT_EQ([find(file, path) count], 1U) << attribute(label, "id");
  }
}

TEST_P(Accessibility, EveryButtonHasATitleAlsoBeforeTheCatalogueIsRead) {
  NSArray *cells = find(document(), "//button/buttonCell");
  EXPECT_GE([cells count], 2U);
  for (NSXMLNode *cell in cells) EXPECT_NE(attribute(cell, "title"), "") << attribute(cell, "id");
}

INSTANTIATE_TEST_SUITE_P(Of, Accessibility, testing::Values("MainMenu", "ServerWindowController"),
                         [](const auto &info) { return std::string(info.param); });

}  // namespace
}  // namespace windowtest
