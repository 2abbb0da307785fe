// back 0.29 (X11) deactivates the program while the window manager takes the keyboard from a window
// that is gone to one that has just opened, and then ignores the request to take the keyboard,
// because the window has just opened: there is no key window, and keys are dead until a click. Here
// a window to which the X server sends the keys becomes the key window.

#import <AppKit/AppKit.h>
#import <GNUstepGUI/GSDisplayServer.h>

#include <dlfcn.h>

@interface KeyWindow : NSObject
@end

namespace {

constexpr NSTimeInterval kInterval = 0.1;

/// The window of this program to which the X server sends the keys; nil when it is another
/// program's.
NSWindow *windowWithKeyboard() {
  using GetInputFocus = int (*)(void *display, unsigned long *window, int *revertTo);
  // The backend has loaded the library.
  static const auto get = reinterpret_cast<GetInputFocus>(dlsym(RTLD_DEFAULT, "XGetInputFocus"));
  if (get == nullptr) return nil;
  unsigned long focused = 0;
  int revertTo = 0;
  get([GSCurrentServer() serverDevice], &focused, &revertTo);
  for (NSWindow *window in [NSApp windows]) {
    if (![window isVisible] || ![window canBecomeKeyWindow]) continue;
    void *device = [GSServerForWindow(window) windowDevice:static_cast<int>([window windowNumber])];
    if (reinterpret_cast<unsigned long>(device) == focused) return window;
  }
  return nil;
}

}  // namespace

@implementation KeyWindow

+ (void)load {
  [[NSNotificationCenter defaultCenter] addObserver:self
                                           selector:@selector(resignedActive:)
                                               name:NSApplicationDidResignActiveNotification
                                             object:nil];
}

+ (void)resignedActive:(NSNotification *)notification {
  [NSTimer scheduledTimerWithTimeInterval:kInterval
                                   target:self
                                 selector:@selector(follow:)
                                 userInfo:nil
                                  repeats:YES];
}

+ (void)follow:(NSTimer *)timer {
  NSWindow *window = windowWithKeyboard();
  if (![NSApp isActive] && window == nil) return;
  [timer invalidate];
  if ([NSApp isActive]) return;
  [NSApp activateIgnoringOtherApps:YES];
  [window makeKeyWindow];
}

@end
