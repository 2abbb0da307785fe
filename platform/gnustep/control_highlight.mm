// gui 0.29 has no -[NSControl isHighlighted] and -setHighlighted: (macOS 10.10).

#import <AppKit/AppKit.h>

@implementation NSControl (MissingAPI)

- (BOOL)isHighlighted {
  return [[self cell] isHighlighted];
}

- (void)setHighlighted:(BOOL)highlighted {
  [[self cell] setHighlighted:highlighted];
  [self setNeedsDisplay:YES];
}

@end
