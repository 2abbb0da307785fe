// gui 0.29 does not show which text field has the keyboard, and frames a check box so tightly that
// the frame hides parts of the title. On macOS there is a ring around the field and around the box,
// which leaves the control's own frame; so it is drawn on the view that holds the control.

#import <AppKit/AppKit.h>
#import <GNUstepGUI/GSTheme.h>

#include "exchange.h"

namespace {

constexpr CGFloat kRing = 3;

constexpr CGFloat kBox = 14;  // of a check box, whose image begins with a point of space

bool isCheckBox(NSView *view) {
  return [view isKindOfClass:[NSButton class]] && ![static_cast<NSButton *>(view) isBordered];
}

/// In the coordinates of the view's superview.
NSRect ringAround(NSView *view) {
  NSRect ringed = [view frame];
  if (isCheckBox(view)) {
    ringed = NSMakeRect(NSMinX(ringed) + 1, NSMidY(ringed) - kBox / 2, kBox, kBox);
  }
  return NSInsetRect(ringed, -kRing, -kRing);
}

void drawRing(NSView *view) {
  NSView *around = [view superview];
  [around lockFocus];
  [[GSTheme theme] drawFocusFrame:ringAround(view) view:around];
  [around unlockFocus];
}

}  // namespace

@implementation NSTextField (FocusRing)

+ (void)load {
  platform::exchange(self, @selector(becomeFirstResponder));
  platform::exchange(self, @selector(textDidEndEditing:));
}

- (void)drawRect:(NSRect)dirty {
  [super drawRect:dirty];
  if ([self currentEditor] != nil) drawRing(self);
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

@implementation NSButton (FocusRing)

+ (void)load {
  platform::exchange(self, @selector(becomeFirstResponder));
  platform::exchange(self, @selector(resignFirstResponder));
}

- (BOOL)platform_becomeFirstResponder {
  [[self superview] setNeedsDisplayInRect:ringAround(self)];
  return [self platform_becomeFirstResponder];
}

- (BOOL)platform_resignFirstResponder {
  [[self superview] setNeedsDisplayInRect:ringAround(self)];
  return [self platform_resignFirstResponder];
}

@end

@implementation GSTheme (FocusFrame)

+ (void)load {
  platform::exchange(self, @selector(drawFocusFrame:view:));
}

/// The pictures of push buttons and pop-up buttons have their rings already.
- (void)platform_drawFocusFrame:(NSRect)frame view:(NSView *)view {
  if (isCheckBox(view)) {
    drawRing(view);
  } else if (![view isKindOfClass:[NSButton class]]) {
    [self platform_drawFocusFrame:frame view:view];
  }
}

@end
