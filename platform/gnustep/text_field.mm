// gui 0.29 draws the text of a field in the middle of the field, but at the top while it is edited,
// which is a point lower: the text jumps when the field gets and loses the keyboard, and is not on
// the baseline of a label next to it.

#import <AppKit/AppKit.h>

@implementation NSTextFieldCell (Baseline)

- (NSRect)titleRectForBounds:(NSRect)bounds {
  NSRect title = [super titleRectForBounds:bounds];
  if ([self isBezeled]) title.size.height += 2;  // moves its middle alone, by one point
  return title;
}

@end
