// Flaws of gui 0.29's pop-up buttons. Return goes to the window's default button even while a
// pop-up's menu is open, where macOS takes the highlighted item. A closed pop-up shows the check
// mark of its selected item on its left edge, and where no item has one, the title stands there.

#import <AppKit/AppKit.h>
#import <objc/runtime.h>

@implementation NSPopUpButton (OpenMenu)

+ (void)load {
  method_exchangeImplementations(
      class_getInstanceMethod(self, @selector(performKeyEquivalent:)),
      class_getInstanceMethod(self, @selector(platform_performKeyEquivalent:)));
}

- (BOOL)platform_performKeyEquivalent:(NSEvent *)event {
  const BOOL isOpen = [[[[self menu] menuRepresentation] window] isVisible];
  NSString *characters = [event characters];
  if (isOpen && ([characters isEqualToString:@"\r"] || [characters isEqualToString:@"\x03"])) {
    // The key is the menu's, whose keys this class handles as its own.
    [self keyDown:event];
    return YES;
  }
  return [self platform_performKeyEquivalent:event];
}

@end

@implementation NSPopUpButtonCell (ClosedLook)

- (void)drawStateImageWithFrame:(NSRect)frame inView:(NSView *)view {
  (void)frame;
  (void)view;
}

- (NSRect)titleRectForBounds:(NSRect)bounds {
  NSRect title = [super titleRectForBounds:bounds];
  title.origin.x = NSMinX(bounds) + 13;
  title.origin.y -= 1;
  return title;
}

@end
