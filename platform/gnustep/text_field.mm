// gui 0.29 puts the text that is being edited at the top of the room that a field has for text, and
// draws it in the middle otherwise, which is a point higher: the text jumps when the keyboard comes
// and goes, and is not on the baseline of a label next to it.

#import <AppKit/AppKit.h>

@implementation NSTextFieldCell (Baseline)

- (NSRect)titleRectForBounds:(NSRect)bounds {
  NSRect title = [super titleRectForBounds:bounds];
  if ([self isBezeled]) title.size.height += 2;  // moves its middle alone, by one point
  return title;
}

@end
