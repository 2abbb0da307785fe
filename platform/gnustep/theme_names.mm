// A theme of gui 0.29 finds the picture of a button by the name of its bezel style. That name is
// the same for push buttons, default buttons and pop-up buttons, which look different on macOS.

#import <AppKit/AppKit.h>
#import <GNUstepGUI/GSTheme.h>

#include "exchange.h"

namespace {

/// A push button that Return presses, or that the program has highlighted.
bool isDefaultButton(id cell) {
  return [cell isKindOfClass:[NSButtonCell class]] && [cell isBordered] &&
         ([[cell keyEquivalent] isEqual:@"\r"] || [cell controlTint] == NSBlueControlTint);
}

}  // namespace

@implementation GSTheme (ThemeNames)

+ (void)load {
  platform::exchange(self, @selector(nameForElement:));
}

- (NSString *)platform_nameForElement:(id)element {
  if ([element isKindOfClass:[NSPopUpButtonCell class]]) return @"PopUpButton";
  if (isDefaultButton(element)) return @"DefaultButton";
  return [self platform_nameForElement:element];
}

@end

@implementation GSTheme (NoReturnSign)

/// GNUstep's own puts an arrow into the default button.
- (void)setKeyEquivalent:(NSString *)key forButtonCell:(NSButtonCell *)cell {
  (void)key;
  (void)cell;
}

@end

@implementation NSButtonCell (DefaultTextColor)

+ (void)load {
  platform::exchange(self, @selector(textColor));
}

- (NSColor *)platform_textColor {
  if (isDefaultButton(self) && [self isEnabled]) return [NSColor alternateSelectedControlTextColor];
  return [self platform_textColor];
}

@end
