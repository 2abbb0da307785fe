// base 1.28 starts a daemon per user for distributed notifications, gdnc. It outlives the program;
// when it hangs, -[NSApplication terminate:] of every later program waits for it forever.

#import <Foundation/Foundation.h>

@implementation NSDistributedNotificationCenter (NoDaemons)

+ (NSNotificationCenter *)defaultCenter {
  return nil;
}

@end
