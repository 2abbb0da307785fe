#import <GNUstepGUI/GSTheme.h>

#include <fstream>

#include "test_window.h"

namespace {

class Theme : public WithWindow {
 protected:
  NSButton *addButton(NSString *keyEquivalent) {
    NSButton *button = add<NSButton>(NSMakeRect(20, 20, 100, 32));
    [button setTitle:@""];
    [button setBezelStyle:NSBezelStyleRounded];
    [button setKeyEquivalent:keyEquivalent];
    return button;
  }

  /// The window's colour there, as "red green blue" in 0 to 255.
  std::string colour(CGFloat x, CGFloat y) {
    const CGFloat height = NSHeight([[window_ contentView] bounds]);
    NSUInteger pixel[4] = {};
    [picture([[window_ contentView] bounds]) getPixel:pixel
                                                  atX:static_cast<NSInteger>(x)
                                                    y:static_cast<NSInteger>(height - y)];
    return std::to_string(pixel[0]) + " " + std::to_string(pixel[1]) + " " +
           std::to_string(pixel[2]);
  }
};

constexpr const char *kWindowColour = "236 236 236";
constexpr const char *kWhite = "255 255 255";
constexpr const char *kRing = "123 179 246";

TEST_F(Theme, IsTheBundlesOwnAndSoIsItsFont) {
  EXPECT_STREQ([[[[[GSTheme theme] bundle] bundlePath] lastPathComponent] UTF8String], "Mac.theme");
  EXPECT_STREQ([[[NSFont systemFontOfSize:13] fontName] UTF8String], "Inter-Regular");
  EXPECT_STREQ([[[NSFont boldSystemFontOfSize:13] fontName] UTF8String], "Inter-Bold");
}

// GNUstep adds a colour that the list lacks. It raises an exception when it cannot write the file,
// so programs that are installed for every user would lack the rest.
TEST_F(Theme, NamesEveryColourThatGNUstepHas) {
  NSString *file = [[[GSTheme theme] bundle] pathForResource:@"ThemeColors" ofType:@"clr"];
  NSString *list = [NSString stringWithContentsOfFile:file
                                             encoding:NSUTF8StringEncoding
                                                error:nullptr];
  [NSColor controlColor];
  EXPECT_EQ([[[[GSTheme theme] colors] allKeys] count], static_cast<NSUInteger>([list intValue]));
}

TEST_F(Theme, HasAPictureForEachStateOfEachKindOfButton) {
  NSCell *cells[] = {
      [addButton(@"") cell], [addButton(@"\r") cell], [add<NSPopUpButton>(NSZeroRect) cell]};
  for (NSCell *cell : cells) {
    NSString *name = [[GSTheme theme] nameForElement:cell] ?: @"NSRoundedBezelStyle";
    for (int state = GSThemeNormalState; state <= GSThemeSelectedState; ++state) {
      EXPECT_TRUE([[GSTheme theme] tilesNamed:name
                                        state:static_cast<GSThemeControlState>(state)] != nil)
          << [name UTF8String] << " " << state;
    }
  }
}

TEST_F(Theme, DrawsButtonsOf20PointsInFramesOf32WithARingWhereTheKeyboardIs) {
  NSButton *button = addButton(@"");
  EXPECT_EQ(colour(70, 38), kWhite);
  EXPECT_EQ(colour(70, 49.5), kWindowColour) << "above";
  EXPECT_EQ(colour(70, 25.5), kWindowColour) << "below";
  [window_ makeFirstResponder:button];
  EXPECT_EQ(colour(70, 49.5), kRing) << "above";
  EXPECT_EQ(colour(70, 25.5), kRing) << "below";
}

TEST_F(Theme, DrawsTheArrowsOfAPopUpButtonAtItsRightEndWithAndWithoutTheKeyboard) {
  NSPopUpButton *popUp = add<NSPopUpButton>(NSMakeRect(20, 20, 140, 25));
  for (NSResponder *responder : {static_cast<NSResponder *>(nil), (NSResponder *)popUp}) {
    [window_ makeFirstResponder:responder];
    EXPECT_EQ(colour(120, 34), kWhite);
    EXPECT_NE(colour(146, 41), kWhite);
  }
  EXPECT_EQ(colour(90, 43.5), kRing) << "above";
  EXPECT_EQ(colour(90, 21.5), kRing) << "below";
}

TEST_F(Theme, DrawsTheRingOfACheckBoxAroundTheBoxAndNotOverTheTitle) {
  NSButton *checkBox = addCheckBox(NSMakeRect(20, 20, 140, 18));
  const auto ring = [this] { return colour(27, 38) + "/" + colour(27, 20) + "/" + colour(19, 29); };
  const std::string none = std::string(kWindowColour) + "/" + kWindowColour + "/" + kWindowColour;
  EXPECT_EQ(ring(), none);
  [window_ makeFirstResponder:checkBox];
  EXPECT_EQ(ring(), std::string(kRing) + "/" + kRing + "/" + kRing);
  EXPECT_EQ(colour(100, 37), kWindowColour);
  EXPECT_EQ(colour(100, 21), kWindowColour);
  [window_ makeFirstResponder:nil];
  EXPECT_EQ(ring(), none);
}

TEST_F(Theme, DrawsTheButtonThatReturnPressesInTheAccentColourAlsoAfterAPress) {
  addButton(@"");
  const std::string plain = colour(70, 38);
  NSButton *button = addButton(@"\r");
  const std::string accent = colour(70, 38);
  EXPECT_NE(accent, plain);
  [button setHighlighted:YES];
  EXPECT_EQ(colour(70, 38), accent) << "highlighted by the program";
  [button performClick:nil];
  EXPECT_EQ(colour(70, 38), accent) << "pressed";
  [button setEnabled:NO];
  EXPECT_NE(colour(70, 38), accent) << "disabled";
}

TEST_F(Theme, DrawsARingAroundTheFieldThatHasTheKeyboard) {
  NSTextField *lower = add<NSTextField>(NSMakeRect(20, 20, 100, 22));
  NSTextField *upper = add<NSTextField>(NSMakeRect(20, 60, 100, 22));
  [window_ makeFirstResponder:lower];
  EXPECT_EQ(colour(70, 19), kRing);
  EXPECT_EQ(colour(70, 59), kWindowColour);
  [window_ makeFirstResponder:upper];
  EXPECT_EQ(colour(70, 19), kWindowColour);
  EXPECT_EQ(colour(70, 59), kRing);
}

// It would load some 120 libraries, and look for each image under 200 extensions.
TEST_F(Theme, NeedsNoImageMagickForItsImages) {
  EXPECT_TRUE([NSImage imageNamed:@"common_SwitchOn"] != nil);
  EXPECT_TRUE([[NSImage imageFileTypes] containsObject:@"png"]);
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    EXPECT_EQ(line.find("/coders/"), std::string::npos) << line;
  }
}

}  // namespace
