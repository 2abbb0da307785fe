// gui 0.29 has none of the system's status images. The names are the system's own; the images are
// files of the bundle, where +[NSImage imageNamed:] finds them.

#import <AppKit/AppKit.h>

NSImageName const NSImageNameStatusAvailable = @"NSStatusAvailable";
NSImageName const NSImageNameStatusNone = @"NSStatusNone";
NSImageName const NSImageNameStatusUnavailable = @"NSStatusUnavailable";
