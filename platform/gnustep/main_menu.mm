// gui 0.29 shows the main menu in a window of its own in the top left corner of the screen, and
// goes on showing it when its last item is gone. On macOS the main menu is in the screen's menu
// bar. A desktop without one shows none.

#import <AppKit/AppKit.h>

#include "exchange.h"

@implementation NSMenu (NoMenuWindow)

+ (void)load {
  platform::exchange(self, @selector(display));
}

- (void)platform_display {
  if (self != [NSApp mainMenu]) [self platform_display];
}

@end
