// gui 0.29 does not show which text field has the keyboard. On macOS a ring around it does, outside
// the field's own frame, so that it is drawn on the view that holds the field.

#import <AppKit/AppKit.h>
#import <GNUstepGUI/GSTheme.h>
#import <objc/runtime.h>

namespace {

constexpr CGFloat kRing = 3;

NSRect ringAround(NSView *view) { return NSInsetRect([view frame], -kRing, -kRing); }

void exchange(Class owner, SEL one, SEL other) {
  method_exchangeImplementations(class_getInstanceMethod(owner, one),
                                 class_getInstanceMethod(owner, other));
}

}  // namespace

@implementation NSTextField (FocusRing)

+ (void)load {
  exchange(self, @selector(becomeFirstResponder), @selector(platform_becomeFirstResponder));
  exchange(self, @selector(textDidEndEditing:), @selector(platform_textDidEndEditing:));
}

- (void)drawRect:(NSRect)dirty {
  [super drawRect:dirty];
  if ([self currentEditor] == nil) return;
  NSView *around = [self superview];
  [around lockFocus];
  [[GSTheme theme] drawFocusFrame:ringAround(self) view:around];
  [around unlockFocus];
}

- (BOOL)platform_becomeFirstResponder {
  const BOOL became = [self platform_becomeFirstResponder];
  [[self superview] setNeedsDisplayInRect:ringAround(self)];
  return became;
}

- (void)platform_textDidEndEditing:(NSNotification *)notification {
  NSRect ring = ringAround(self);
  NSView *around = [self superview];
  [self platform_textDidEndEditing:notification];
  [around setNeedsDisplayInRect:ring];
}

@end
