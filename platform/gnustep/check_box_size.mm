// gui 0.29 fits a check box to the height of its image. On macOS a check box that is fitted to its
// title has the height that interface files give it, 18 points, in which its box is drawn where the
// boxes of other check boxes are.

#import <AppKit/AppKit.h>
#import <objc/runtime.h>

#include <algorithm>

@implementation NSButtonCell (CheckBoxSize)

+ (void)load {
  method_exchangeImplementations(class_getInstanceMethod(self, @selector(cellSize)),
                                 class_getInstanceMethod(self, @selector(platform_cellSize)));
}

- (NSSize)platform_cellSize {
  NSSize size = [self platform_cellSize];
  const bool isCheckBox = ![self isBordered] && [self imagePosition] == NSImageLeft;
  if (isCheckBox) size.height = std::max<CGFloat>(size.height, 18);
  return size;
}

@end
