// base 1.28 and gui 0.29 start two daemons per user, for distributed notifications (gdnc) and the
// pasteboard (gpbs). Both outlive the program; when one hangs, -[NSApplication terminate:] of every
// later program waits for it forever. Without them there is no copy and paste between programs.

#import <AppKit/AppKit.h>

@implementation NSDistributedNotificationCenter (NoDaemons)

+ (NSNotificationCenter *)defaultCenter {
  return nil;
}

@end

@implementation NSPasteboard (NoDaemons)

+ (id)_pbs {
  return nil;
}

@end
