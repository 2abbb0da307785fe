// gui 0.29 types the letter of a keystroke with Command (Alt on Debian) into the field that has the
// keyboard, where macOS types nothing.

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

@implementation NSTextView (CommandLetters)

+ (void)load {
  platform::exchange(self, @selector(keyDown:));
}

- (void)platform_keyDown:(NSEvent *)event {
  if (!isLetterWithCommand(event)) [self platform_keyDown:event];
}

@end
