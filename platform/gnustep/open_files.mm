// gui 0.29 takes plain command-line arguments as files to open and reports those that it cannot
// open in an alert; no window of the program appears. macOS leaves them to the program.

#import <AppKit/AppKit.h>

@implementation NSApplication (OpenFiles)

- (id)_openFiles {
  return nil;
}

@end
