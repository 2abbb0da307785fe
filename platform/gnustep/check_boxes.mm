// Flaws of gui 0.29's check boxes. One that is fitted to its title is as high as its image; on
// macOS it has the height that interface files give it, 18 points, in which its box is drawn where
// the boxes of other check boxes are. A control that the keyboard clicks is drawn twice more over
// itself: a check box has no background of its own, so its title becomes bold.

#import <AppKit/AppKit.h>

#include <algorithm>

#include "exchange.h"

@implementation NSButtonCell (CheckBoxes)

+ (void)load {
  platform::exchange(self, @selector(cellSize));
}

- (NSSize)platform_cellSize {
  NSSize size = [self platform_cellSize];
  const bool isCheckBox = ![self isBordered] && [self imagePosition] == NSImageLeft;
  if (isCheckBox) size.height = std::max<CGFloat>(size.height, 18);
  return size;
}

@end

@implementation NSControl (CheckBoxes)

+ (void)load {
  platform::exchange(self, @selector(performClick:));
}

- (void)platform_performClick:(id)sender {
  [self platform_performClick:sender];
  [self setNeedsDisplay:YES];
}

@end
