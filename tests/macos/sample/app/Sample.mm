#import "app/Sample.h"

@implementation Sample

- (void)applicationDidFinishLaunching:(NSNotification *)notification {
  if (@available(macOS 10.10, *)) [field setHighlighted:YES];
}

- (IBAction)press:(id)sender {
  [field setStringValue:@"pressed"];
}

@end

int main(int argc, const char *argv[]) {
  [[NSApplication sharedApplication] setDelegate:[[Sample alloc] init]];
  return NSApplicationMain(argc, argv);
}
