// GNUstep back 0.29 (X11): an event that Xlib reads while the program talks to the server, for
// example while a window is drawn from the run loop, stays in Xlib's own queue. The run loop then
// waits for the connection, where nothing comes, so a click is not answered until the next event.
// The backend empties the queue each time it is asked for an event: ask it again and again.

#import <AppKit/AppKit.h>
#include <objc/runtime.h>

@interface GSDisplayServer : NSObject
- (NSEvent *)getEventMatchingMask:(unsigned)mask
                       beforeDate:(NSDate *)limit
                           inMode:(NSString *)mode
                          dequeue:(BOOL)flag;
@end

@interface UnreadEvents : NSObject
@end

namespace {

constexpr NSTimeInterval kLongestWait = 0.1;
using GetEvent = NSEvent *(*)(id, SEL, unsigned, NSDate *, NSString *, BOOL);
GetEvent getEvent = nullptr;

NSEvent *getEventPatiently(id self, SEL selector, unsigned mask, NSDate *limit, NSString *mode,
                           BOOL flag) {
  NSEvent *event = nil;
  while (event == nil && [limit timeIntervalSinceNow] > kLongestWait) {
    // An idle program comes by here for hours: nothing may pile up.
    @autoreleasepool {
      NSDate *soon = [NSDate dateWithTimeIntervalSinceNow:kLongestWait];
      event = [getEvent(self, selector, mask, soon, mode, flag) retain];
    }
  }
  return event != nil ? [event autorelease] : getEvent(self, selector, mask, limit, mode, flag);
}

}  // namespace

@implementation UnreadEvents

+ (void)load {
  [[NSNotificationCenter defaultCenter] addObserver:self
                                           selector:@selector(backendLoaded:)
                                               name:NSApplicationWillFinishLaunchingNotification
                                             object:nil];
}

+ (void)backendLoaded:(NSNotification *)notification {
  // Once: a second time would find this file's own function, and call itself forever.
  [[NSNotificationCenter defaultCenter] removeObserver:self];
  Method method = class_getInstanceMethod(
      NSClassFromString(@"XGServer"), @selector(getEventMatchingMask:beforeDate:inMode:dequeue:));
  if (method == nullptr) return;
  getEvent = reinterpret_cast<GetEvent>(
      method_setImplementation(method, reinterpret_cast<IMP>(getEventPatiently)));
}

@end
