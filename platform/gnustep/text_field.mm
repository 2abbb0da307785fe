// gui 0.29 draws the text of a field in the middle of the field, but at the top while it is edited,
// which is a point lower: the text jumps when the field gets and loses the keyboard, and is not on
// the baseline of a label next to it. A text that is too long ends anywhere, not with an ellipsis.

#import <AppKit/AppKit.h>

#include "exchange.h"

@interface NSCell (Drawing)
- (NSAttributedString *)_drawAttributedString;
@end

namespace {

/// So many characters of the text, and an ellipsis.
NSAttributedString *shortened(NSAttributedString *text, NSUInteger length) {
  NSMutableAttributedString *result = [[text mutableCopy] autorelease];
  [result replaceCharactersInRange:NSMakeRange(length, [text length] - length)
                        withString:@"\u2026"];
  return result;
}

/// As many characters of the text as fit before an ellipsis.
NSAttributedString *truncated(NSAttributedString *text, CGFloat width) {
  NSUInteger fitting = 0;
  for (NSUInteger tooLong = [text length]; tooLong - fitting > 1;) {
    const NSUInteger middle = (fitting + tooLong) / 2;
    ([shortened(text, middle) size].width <= width ? fitting : tooLong) = middle;
  }
  return shortened(text, fitting);
}

}  // namespace

@implementation NSTextFieldCell (Baseline)

- (NSRect)titleRectForBounds:(NSRect)bounds {
  NSRect title = [super titleRectForBounds:bounds];
  if ([self isBezeled]) title.size.height += 2;  // moves its middle alone, by one point
  return title;
}

@end

@implementation NSTextFieldCell (Ellipsis)

+ (void)load {
  platform::exchange(self, @selector(drawInteriorWithFrame:inView:));
}

- (void)platform_drawInteriorWithFrame:(NSRect)frame inView:(NSView *)view {
  const NSRect area = [self titleRectForBounds:frame];
  NSAttributedString *text = [self _drawAttributedString];
  const bool isEdited = [view isKindOfClass:[NSTextField class]] &&
                        [static_cast<NSTextField *>(view) currentEditor] != nil;
  if (isEdited || [self lineBreakMode] != NSLineBreakByTruncatingTail ||
      [text size].width <= NSWidth(area)) {
    [self platform_drawInteriorWithFrame:frame inView:view];
  } else {
    [truncated(text, NSWidth(area)) drawInRect:area];
  }
}

@end
