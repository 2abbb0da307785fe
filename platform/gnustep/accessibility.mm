// gui 0.29 has no accessibility (macOS 10.10) and no screen reader to speak to: the label of a view
// is only stored, for whatever asks for it. Views that have one live as long as the program.

#import <AppKit/AppKit.h>

namespace {

NSMapTable *labels() {
  static NSMapTable *table =
      NSCreateMapTable(NSNonOwnedPointerMapKeyCallBacks, NSObjectMapValueCallBacks, 0);
  return table;
}

}  // namespace

@implementation NSView (MissingAPI)

- (void)setAccessibilityLabel:(NSString *)label {
  NSMapInsert(labels(), self, [[label copy] autorelease]);
}

- (NSString *)accessibilityLabel {
  return static_cast<NSString *>(NSMapGet(labels(), self));
}

@end
