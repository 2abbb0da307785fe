#include <set>

#include "test_window.h"

namespace {

class TextField : public WithWindow {
 protected:
  NSTextField *addField(CGFloat width) { return add<NSTextField>(NSMakeRect(10, 10, width, 22)); }
};

/// The first row of a picture in which there is text; its height when there is none.
NSInteger firstDarkRow(NSBitmapImageRep *picture) {
  for (NSInteger y = 0; y < [picture pixelsHigh]; ++y) {
    for (NSInteger x = 0; x < [picture pixelsWide]; ++x) {
      NSUInteger pixel[4] = {};
      [picture getPixel:pixel atX:x y:y];
      if (pixel[0] < 128) return y;
    }
  }
  return [picture pixelsHigh];
}

TEST_F(TextField, TypesNothingWhileCommandIsDown) {
  NSTextField *field = addField(200);
  [field setStringValue:@"kept"];
  show();
  for (NSString *character : {@"c", @"v", @"x", @"ß"}) {
    [window_ sendEvent:keyDown(character, NSEventModifierFlagCommand)];
  }
  EXPECT_STREQ([[field stringValue] UTF8String], "kept");
  [window_ sendEvent:keyDown(@"@", NSEventModifierFlagOption)];
  EXPECT_STREQ([[field stringValue] UTF8String], "@") << "of a third level of the keyboard";
}

TEST_F(TextField, KeepsItsTextInPlaceWhileItIsBeingEdited) {
  NSTextField *field = addField(200);
  [field setStringValue:@"6000"];
  show();
  std::set<NSInteger> tops;
  for (NSResponder *responder :
       {static_cast<NSResponder *>(field), static_cast<NSResponder *>(nil)}) {
    [window_ makeFirstResponder:responder];
    // Without the selection's colour.
    [[field currentEditor] setSelectedRange:NSMakeRange(4, 0)];
    [window_ display];
    tops.insert(firstDarkRow(picture(NSMakeRect(13, 13, 30, 16))));
  }
  EXPECT_EQ(tops.size(), 1U);
}

TEST_F(TextField, EndsALongValueWithAnEllipsisWhileItIsNotEdited) {
  NSTextField *field = addField(120);
  [[field cell] setScrollable:YES];
  [[field cell] setLineBreakMode:NSLineBreakByTruncatingTail];
  show();
  [window_ makeFirstResponder:nil];
  const auto pictureWith = [&](NSString *text) {
    [field setStringValue:text];
    return [picture([field frame]) TIFFRepresentation];
  };
  NSString *wide = [@"" stringByPaddingToLength:40 withString:@"n" startingAtIndex:0];
  NSData *shown = pictureWith(wide);
  const CGFloat width = NSWidth([[field cell] titleRectForBounds:[field bounds]]);
  NSString *fitting = @"";
  for (NSUInteger length = 1; length < 20; ++length) {
    NSString *longer = [[wide substringToIndex:length] stringByAppendingString:@"\u2026"];
    [field setStringValue:longer];
    if ([[field attributedStringValue] size].width <= width) fitting = longer;
  }
  EXPECT_GT([fitting length], 5U);
  EXPECT_TRUE([pictureWith(fitting) isEqual:shown]);
}

using Button = WithWindow;

TEST_F(Button, IsAsHighAsOnMacOSWhenItIsACheckBoxFittedToItsTitle) {
  NSButton *checkBox = addCheckBox(NSMakeRect(10, 10, 300, 18));
  [checkBox setBordered:NO];
  [checkBox sizeToFit];
  EXPECT_EQ(NSHeight([checkBox frame]), 18);
  EXPECT_LT(NSWidth([checkBox frame]), 100);
}

TEST_F(Button, LooksTheSameAfterAClickByTheKeyboard) {
  NSButton *checkBox = addCheckBox(NSMakeRect(10, 10, 200, 18));
  show();
  const auto look = [&] { return [picture([checkBox frame]) TIFFRepresentation]; };
  NSData *before = look();
  [checkBox performClick:nil];
  EXPECT_FALSE([look() isEqual:before]) << "on";
  [checkBox performClick:nil];
  EXPECT_TRUE([look() isEqual:before]) << "off";
}

TEST_F(Button, StaysHighlightedAfterAPress) {
  NSButton *button = add<NSButton>(NSMakeRect(0, 0, 80, 32));
  EXPECT_FALSE([button isHighlighted]);
  [button setHighlighted:YES];
  EXPECT_TRUE([button isHighlighted]);
  show();
  [button performClick:nil];
  EXPECT_TRUE([button isHighlighted]);
  [button setHighlighted:NO];
  EXPECT_FALSE([button isHighlighted]);
}

TEST(StatusImages, AreThreeDifferentOnes) {
  [NSApplication sharedApplication];
  std::set<std::string> pictures;
  for (NSString *name :
       {NSImageNameStatusNone, NSImageNameStatusAvailable, NSImageNameStatusUnavailable}) {
    NSImage *image = [NSImage imageNamed:name];
    EXPECT_TRUE(NSEqualSizes([image size], NSMakeSize(16, 16))) << [name UTF8String];
    NSData *data = [image TIFFRepresentation];
    pictures.emplace(static_cast<const char *>([data bytes]), [data length]);
  }
  EXPECT_EQ(pictures.size(), 3U);
}

}  // namespace
