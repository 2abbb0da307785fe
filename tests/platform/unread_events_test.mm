#import <GNUstepGUI/GSDisplayServer.h>

#include "test_window.h"

namespace {
constexpr NSPoint kOutside = {10, 10}, kInside = {200, 150};
}  // namespace

@interface PointerMover : NSObject
@end

@implementation PointerMover

/// Moves the pointer over the window, then asks the X server something: with the answer Xlib reads
/// the event of the pointer, and keeps it in its queue.
+ (void)move:(id)unused {
  (void)unused;
  [GSCurrentServer() setMouseLocation:kInside onScreen:0];
  [GSCurrentServer() mouselocation];
}

@end

namespace {

using UnreadEvents = WithWindow;

TEST_F(UnreadEvents, AreDeliveredWhenTheRunLoopHasReadThemWhileItDrawsWindows) {
  [window_ setAcceptsMouseMovedEvents:YES];
  [GSCurrentServer() setMouseLocation:kOutside onScreen:0];
  [window_ orderFront:nil];
  while (nextEvent(NSAnyEventMask, 0.2) != nil) {
  }
  // Run as windows are drawn: right before the run loop waits.
  [[NSRunLoop currentRunLoop] performSelector:@selector(move:)
                                       target:[PointerMover class]
                                     argument:nil
                                        order:0
                                        modes:[NSArray arrayWithObject:NSDefaultRunLoopMode]];
  EXPECT_TRUE(nextEvent(NSMouseMovedMask, 3) != nil);
}

}  // namespace
