#import <AppKit/AppKit.h>

#include <gtest/gtest.h>

#include <set>

namespace {

NSEvent *keyDown(NSWindow *window, NSString *characters, NSUInteger modifiers = 0) {
  return [NSEvent keyEventWithType:NSEventTypeKeyDown
                          location:NSZeroPoint
                     modifierFlags:modifiers
                         timestamp:0
                      windowNumber:[window windowNumber]
                           context:nil
                        characters:characters
       charactersIgnoringModifiers:characters
                         isARepeat:NO
                           keyCode:0];
}

NSWindow *windowWith(NSView *view) {
  NSWindow *window = [[[NSWindow alloc] initWithContentRect:NSMakeRect(100, 100, 300, 100)
                                                  styleMask:NSWindowStyleMaskTitled
                                                    backing:NSBackingStoreBuffered
                                                      defer:NO] autorelease];
  [window setReleasedWhenClosed:NO];
  [[window contentView] addSubview:view];
  [window makeKeyAndOrderFront:nil];
  return window;
}

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

TEST(TextField, ReportsWhatIsBeingTypedAtOnce) {
  [[NSApplication sharedApplication] finishLaunching];
  for (Class fieldClass : {[NSTextField class], [NSSecureTextField class]}) {
    NSTextField *field =
        [[[fieldClass alloc] initWithFrame:NSMakeRect(10, 10, 200, 24)] autorelease];
    [field setStringValue:@"before"];
    NSWindow *window = windowWith(field);  // its only field, so it is being edited
    for (NSString *character : {@"a", @" ", @"Z", @"9"}) {
      [window sendEvent:keyDown(window, character)];
    }
    ASSERT_TRUE([field currentEditor] != nil) << "still being edited";
    EXPECT_STREQ([[field stringValue] UTF8String], "a Z9");
    [window orderOut:nil];
  }
}

TEST(TextField, ShowsAValueThatIsSetWhileItIsBeingEdited) {
  [[NSApplication sharedApplication] finishLaunching];
  NSTextField *field =
      [[[NSTextField alloc] initWithFrame:NSMakeRect(10, 10, 200, 24)] autorelease];
  NSWindow *window = windowWith(field);
  [window sendEvent:keyDown(window, @"x")];
  [field setStringValue:@"6000"];
  EXPECT_STREQ([[field stringValue] UTF8String], "6000");
  [window makeFirstResponder:nil];
  EXPECT_STREQ([[field stringValue] UTF8String], "6000");
  [window orderOut:nil];
}

TEST(TextField, TypesNothingWhileCommandIsDown) {
  [[NSApplication sharedApplication] finishLaunching];
  NSTextField *field =
      [[[NSTextField alloc] initWithFrame:NSMakeRect(10, 10, 200, 24)] autorelease];
  [field setStringValue:@"kept"];
  NSWindow *window = windowWith(field);
  for (NSString *character : {@"c", @"v", @"x", @"ß"}) {
    [window sendEvent:keyDown(window, character, NSEventModifierFlagCommand)];
  }
  EXPECT_STREQ([[field stringValue] UTF8String], "kept");
  [window sendEvent:keyDown(window, @"@", NSEventModifierFlagOption)];
  EXPECT_STREQ([[field stringValue] UTF8String], "@") << "of a third level of the keyboard";
  [window orderOut:nil];
}

TEST(TextField, KeepsItsTextInPlaceWhileItIsBeingEdited) {
  NSTextField *field =
      [[[NSTextField alloc] initWithFrame:NSMakeRect(10, 10, 200, 22)] autorelease];
  [field setStringValue:@"6000"];
  NSWindow *window = windowWith(field);
  std::set<NSInteger> tops;
  for (NSResponder *responder :
       {static_cast<NSResponder *>(field), static_cast<NSResponder *>(nil)}) {
    [window makeFirstResponder:responder];
    // Without the selection's colour.
    [[field currentEditor] setSelectedRange:NSMakeRange(4, 0)];
    [window display];
    [[window contentView] lockFocus];
    NSBitmapImageRep *picture =
        [[[NSBitmapImageRep alloc] initWithFocusedViewRect:NSMakeRect(13, 13, 30, 16)] autorelease];
    [[window contentView] unlockFocus];
    tops.insert(firstDarkRow(picture));
  }
  EXPECT_EQ(tops.size(), 1U);
  [window orderOut:nil];
}

NSData *pictureWith(NSTextField *field, NSString *text) {
  [field setStringValue:text];
  [[field window] display];
  NSView *around = [field superview];
  [around lockFocus];
  NSBitmapImageRep *picture =
      [[[NSBitmapImageRep alloc] initWithFocusedViewRect:[field frame]] autorelease];
  [around unlockFocus];
  return [picture TIFFRepresentation];
}

TEST(TextField, EndsALongValueWithAnEllipsisWhileItIsNotEdited) {
  [[NSApplication sharedApplication] finishLaunching];
  NSTextField *field =
      [[[NSTextField alloc] initWithFrame:NSMakeRect(10, 10, 120, 22)] autorelease];
  [[field cell] setScrollable:YES];
  [[field cell] setLineBreakMode:NSLineBreakByTruncatingTail];
  NSWindow *window = windowWith(field);
  [window makeFirstResponder:nil];
  NSString *wide = [@"" stringByPaddingToLength:40 withString:@"n" startingAtIndex:0];
  NSData *shown = pictureWith(field, wide);
  const CGFloat width = NSWidth([[field cell] titleRectForBounds:[field bounds]]);
  NSString *fitting = @"";
  for (NSUInteger length = 1; length < 20; ++length) {
    NSString *longer = [[wide substringToIndex:length] stringByAppendingString:@"\u2026"];
    [field setStringValue:longer];
    if ([[field attributedStringValue] size].width <= width) fitting = longer;
  }
  EXPECT_GT([fitting length], 5U);
  EXPECT_TRUE([pictureWith(field, fitting) isEqual:shown]);
  [window orderOut:nil];
}

TEST(Button, IsAsHighAsOnMacOSWhenItIsACheckBoxFittedToItsTitle) {
  [NSApplication sharedApplication];
  NSButton *checkBox = [[[NSButton alloc] initWithFrame:NSMakeRect(10, 10, 300, 18)] autorelease];
  [checkBox setButtonType:NSButtonTypeSwitch];
  [checkBox setBordered:NO];
  [checkBox setTitle:@"title"];
  [checkBox sizeToFit];
  EXPECT_EQ(NSHeight([checkBox frame]), 18);
  EXPECT_LT(NSWidth([checkBox frame]), 100);
}

TEST(Button, LooksTheSameAfterAClickByTheKeyboard) {
  [NSApplication sharedApplication];
  NSButton *checkBox = [[[NSButton alloc] initWithFrame:NSMakeRect(10, 10, 200, 18)] autorelease];
  [checkBox setButtonType:NSButtonTypeSwitch];
  [checkBox setTitle:@"title"];
  NSWindow *window = windowWith(checkBox);
  [window display];
  const auto picture = [&] {
    [window displayIfNeeded];
    [[window contentView] lockFocus];
    NSBitmapImageRep *shot =
        [[[NSBitmapImageRep alloc] initWithFocusedViewRect:[checkBox frame]] autorelease];
    [[window contentView] unlockFocus];
    return [shot TIFFRepresentation];
  };
  NSData *before = picture();
  [checkBox performClick:nil];
  EXPECT_FALSE([picture() isEqual:before]) << "on";
  [checkBox performClick:nil];
  EXPECT_TRUE([picture() isEqual:before]) << "off";
  [window orderOut:nil];
}

TEST(Button, StaysHighlightedAfterAPress) {
  [NSApplication sharedApplication];
  NSButton *button = [[[NSButton alloc] initWithFrame:NSMakeRect(0, 0, 80, 32)] autorelease];
  EXPECT_FALSE([button isHighlighted]);
  [button setHighlighted:YES];
  EXPECT_TRUE([button isHighlighted]);
  windowWith(button);
  [button performClick:nil];
  EXPECT_TRUE([button isHighlighted]);
  [button setHighlighted:NO];
  EXPECT_FALSE([button isHighlighted]);
}

TEST(StatusImages, AreThreeDifferentOnes) {
  [NSApplication sharedApplication];
  NSImage *none = [NSImage imageNamed:NSImageNameStatusNone];
  NSImage *available = [NSImage imageNamed:NSImageNameStatusAvailable];
  NSImage *unavailable = [NSImage imageNamed:NSImageNameStatusUnavailable];
  NSData *data[] = {
      [none TIFFRepresentation], [available TIFFRepresentation], [unavailable TIFFRepresentation]};
  for (NSImage *image : {none, available, unavailable}) {
    ASSERT_TRUE(image != nil);
    EXPECT_TRUE(NSEqualSizes([image size], NSMakeSize(16, 16)));
  }
  EXPECT_FALSE([data[0] isEqual:data[1]]);
  EXPECT_FALSE([data[0] isEqual:data[2]]);
  EXPECT_FALSE([data[1] isEqual:data[2]]);
}

}  // namespace
