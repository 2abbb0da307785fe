// gui 0.29 goes on showing the window of a main menu that has lost its last item: a small bar with
// the program's name in the top left corner of the screen.

#import <AppKit/AppKit.h>

@interface EmptyMenuCloser : NSObject
@end

@implementation EmptyMenuCloser

+ (void)load {
  NSNotificationCenter *center = [NSNotificationCenter defaultCenter];
  // Activation shows the menu again.
  NSString *const names[] = {NSMenuDidRemoveItemNotification,
                             NSApplicationDidBecomeActiveNotification};
  for (NSString *name : names) {
    [center addObserver:self selector:@selector(closeEmptyMenu:) name:name object:nil];
  }
}

+ (void)closeEmptyMenu:(NSNotification *)notification {
  (void)notification;
  NSMenu *menu = [NSApp mainMenu];
  if ([menu numberOfItems] == 0) [menu close];
}

@end
