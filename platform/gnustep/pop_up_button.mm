// Flaws of gui 0.29's pop-up buttons. A click opens the menu and closes it at once; on macOS the
// menu stays open. Keys that are pressed while a menu is open also reach the window: Return its
// default button, Escape its cancel button. A menu that is opened for the first time has no check
// mark and may be wider than later on. A closed pop-up shows the check mark on its left edge; where
// no item has one, the title is there.
//
// While a menu is open, the loop below takes all events, as menus do on macOS.

#import <AppKit/AppKit.h>

#include <cmath>

#include "exchange.h"

namespace {

constexpr NSTimeInterval kLongestClick = 0.4;
constexpr CGFloat kLargestClick = 4;  // points between press and release
constexpr NSTimeInterval kPollInterval = 0.05;

bool isMouseEvent(NSEvent *event) {
  return (NSEventMaskFromType([event type]) &
          (NSLeftMouseDownMask | NSLeftMouseUpMask | NSLeftMouseDraggedMask)) != 0;
}

/// Where the pointer is on the screen.
NSPoint pointer(NSEvent *event) {
  if (!isMouseEvent(event) || [event window] == nil) return [NSEvent mouseLocation];
  return [[event window] convertBaseToScreen:[event locationInWindow]];
}

/// Whether the release ends a click, after which the menu stays open: soon and near the press.
bool isClick(NSEvent *press, NSEvent *release) {
  const NSPoint from = pointer(press);
  const NSPoint to = pointer(release);
  return [release timestamp] - [press timestamp] < kLongestClick &&
         std::hypot(to.x - from.x, to.y - from.y) <= kLargestClick;
}

unichar firstCharacter(NSEvent *event) {
  return [[event characters] length] > 0 ? [[event characters] characterAtIndex:0] : 0;
}

}  // namespace

@interface NSPopUpButton (OpenMenu)
- (void)platform_keyDown:(NSEvent *)event;
@end

@implementation NSPopUpButton (OpenMenu)

+ (void)load {
  platform::exchange(self, @selector(keyDown:));
}

- (NSMenuView *)platform_menuView {
  return [[self menu] menuRepresentation];
}

- (NSInteger)platform_itemUnderPointer:(NSEvent *)event {
  NSMenuView *view = [self platform_menuView];
  const NSPoint base = [[view window] convertScreenToBase:pointer(event)];
  return [view indexOfItemAtPoint:[view convertPoint:base fromView:nil]];
}

/// Takes the item under the pointer, if there is one, and closes the menu.
- (void)platform_choose:(NSEvent *)event {
  const NSInteger item = [self platform_itemUnderPointer:event];
  [[self platform_menuView] setHighlightedItemIndex:item];
  if (item >= 0) [[self menu] performActionForItemAtIndex:item];
  [[self cell] dismissPopUp];
}

/// `press` is the mouse event that opened the menu; nil when a key did, or once it is released.
- (void)platform_handle:(NSEvent *)event press:(NSEvent **)press {
  switch ([event type]) {
    case NSKeyDown:
      [self platform_keyDown:event];
      break;
    case NSKeyUp:
    case NSFlagsChanged:
      break;
    case NSLeftMouseDown:
      if ([self platform_itemUnderPointer:event] < 0) [[self cell] dismissPopUp];
      break;
    case NSLeftMouseUp:
      if (*press == nil || !isClick(*press, event)) [self platform_choose:event];
      *press = nil;
      break;
    case NSLeftMouseDragged:
    case NSMouseMoved:
    case NSPeriodic:
      break;
    default:
      [NSApp sendEvent:event];
  }
}

/// Highlights the item under the pointer when that has moved.
- (void)platform_followPointer:(NSEvent *)event from:(NSPoint *)last {
  if ([event type] != NSPeriodic && [event type] != NSLeftMouseDragged) return;
  const NSPoint now = [NSEvent mouseLocation];
  if ([event type] == NSPeriodic && NSEqualPoints(now, *last)) return;
  *last = now;
  [[self platform_menuView] setHighlightedItemIndex:[self platform_itemUnderPointer:event]];
}

- (void)platform_openMenu:(NSEvent *)press {
  // Without these two an item from an interface file, though on, has no mark; without the third the
  // menu has the size of when it was loaded.
  NSMenuItem *selected = static_cast<NSMenuItem *>([self selectedItem]);
  [selected setChangesState:YES];
  [[[self platform_menuView] menuItemCellForItemAtIndex:[self indexOfSelectedItem]]
      setNeedsSizing:YES];
  [[self platform_menuView] setNeedsSizing:YES];
  [[self cell] attachPopUpWithFrame:[self bounds] inView:self];
  NSWindow *menu = [[self platform_menuView] window];
  NSPoint last = [NSEvent mouseLocation];
  [NSEvent startPeriodicEventsAfterDelay:kPollInterval withPeriod:kPollInterval];
  while ([menu isVisible]) {
    @autoreleasepool {
      NSEvent *event = [NSApp nextEventMatchingMask:NSAnyEventMask
                                          untilDate:[NSDate distantFuture]
                                             inMode:NSEventTrackingRunLoopMode
                                            dequeue:YES];
      [self platform_followPointer:event from:&last];
      [self platform_handle:event press:&press];
    }
  }
  [NSEvent stopPeriodicEvents];
}

- (void)mouseDown:(NSEvent *)event {
  if ([self isEnabled] && [self numberOfItems] > 0) [self platform_openMenu:event];
}

- (void)platform_keyDown:(NSEvent *)event {
  const unichar key = firstCharacter(event);
  const bool opens = key == ' ' || key == NSUpArrowFunctionKey || key == NSDownArrowFunctionKey;
  const bool isOpen = [[[self platform_menuView] window] isVisible];
  if (opens && !isOpen && [self isEnabled] && [self numberOfItems] > 0) {
    [self platform_openMenu:nil];
  } else {
    // The class's own method, exchanged for this one.
    [self platform_keyDown:event];
  }
}

@end

@implementation NSMenuItemCell (HighlightedMark)

+ (void)load {
  platform::exchange(self, @selector(drawStateImageWithFrame:inView:));
}

/// The mark of a highlighted item is as white as its title.
- (void)platform_drawStateImageWithFrame:(NSRect)frame inView:(NSView *)view {
  if (![self isHighlighted] || [[self menuItem] state] != NSOnState) {
    [self platform_drawStateImageWithFrame:frame inView:view];
    return;
  }
  NSImage *mark = [NSImage imageNamed:@"common_2DCheckMarkH"];
  const NSRect area = [self stateImageRectForBounds:frame];
  const NSSize size = [mark size];
  [mark drawInRect:NSMakeRect(NSMidX(area) - size.width / 2, NSMidY(area) - size.height / 2,
                              size.width, size.height)
            fromRect:NSZeroRect
           operation:NSCompositeSourceOver
            fraction:1
      respectFlipped:YES
               hints:nil];
}

@end

@implementation NSPopUpButtonCell (ClosedLook)

- (void)drawStateImageWithFrame:(NSRect)frame inView:(NSView *)view {
  (void)frame;
  (void)view;
}

/// On the baseline of a push button's title, which is a point higher than GNUstep's middle.
- (NSRect)titleRectForBounds:(NSRect)bounds {
  NSRect title = [super titleRectForBounds:bounds];
  title.origin.x = NSMinX(bounds) + 13;
  title.origin.y -= 1;
  return title;
}

@end
