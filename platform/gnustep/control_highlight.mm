// gui 0.29 has no -[NSControl isHighlighted] and -setHighlighted: (macOS 10.10). On macOS a program
// that highlights a button gives it the look of a default button. The cell's own highlight is what
// GNUstep shows while the mouse presses the button and takes away afterwards, so the look is kept
// in the control tint, which GNUstep stores and does not use.

#import <AppKit/AppKit.h>

@implementation NSControl (MissingAPI)

- (BOOL)isHighlighted {
  return [[self cell] controlTint] == NSBlueControlTint;
}

- (void)setHighlighted:(BOOL)highlighted {
  [[self cell] setControlTint:highlighted ? NSBlueControlTint : NSDefaultControlTint];
  [self setNeedsDisplay:YES];
}

@end
