// Flaws of text editing in gui 0.29. The letter of a keystroke with Command (Alt on Debian) is
// typed, where macOS types nothing. With nothing selected, copying empties the pasteboard and
// cutting takes the next character; on macOS neither does anything.

#import <AppKit/AppKit.h>

#include "exchange.h"

namespace {

bool isLetterWithCommand(NSEvent *event) {
  if (([event modifierFlags] & NSEventModifierFlagCommand) == 0) return false;
  NSString *characters = [event characters];
  // Arrows and the like are beyond this.
  return [characters length] > 0 && [characters characterAtIndex:0] < NSUpArrowFunctionKey;
}

}  // namespace

@implementation NSTextView (TextEditing)

+ (void)load {
  platform::exchange(self, @selector(keyDown:));
  platform::exchange(self, @selector(copy:));
  platform::exchange(self, @selector(cut:));
}

- (void)platform_keyDown:(NSEvent *)event {
  if (!isLetterWithCommand(event)) [self platform_keyDown:event];
}

- (void)platform_copy:(id)sender {
  if ([self selectedRange].length > 0) [self platform_copy:sender];
}

- (void)platform_cut:(id)sender {
  if ([self selectedRange].length > 0) [self platform_cut:sender];
}

@end
