// The smallest program that shows a window from an interface file.

#import <AppKit/AppKit.h>

int main(int argc, const char *argv[]) {
  NSAutoreleasePool *pool = [[NSAutoreleasePool alloc] init];
  NSObject *owner = [[NSObject alloc] init];
  [NSApplication sharedApplication];
  NSArray *topLevelObjects = nil;
  [[NSBundle mainBundle] loadNibNamed:@"Window" owner:owner topLevelObjects:&topLevelObjects];
  [topLevelObjects retain];
  [pool drain];
  return NSApplicationMain(argc, argv);
}
