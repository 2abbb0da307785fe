#import "app/EditingKeysView.h"

/// What windows and text views answer, though no header of AppKit declares it.
@protocol UndoAction
- (void)undo:(id)sender;
@end

namespace {

/// The action of a shortcut; nil when this view does not answer the key.
SEL actionForKey(NSString *key) {
  const struct {
    NSString *key;
    SEL action;
  } shortcuts[] = {{@"x", @selector(cut:)},   {@"c", @selector(copy:)},
                   {@"v", @selector(paste:)}, {@"a", @selector(selectAll:)},
                   {@"z", @selector(undo:)},  {@"q", @selector(terminate:)}};
  for (const auto &shortcut : shortcuts) {
    if ([key isEqualToString:shortcut.key]) return shortcut.action;
  }
  return nullptr;
}

/// Caps Lock does not make another shortcut of it; Shift, Control and Option do.
bool isCommandAlone(NSEvent *event) {
  constexpr NSUInteger kShortcutModifiers = NSEventModifierFlagCommand | NSEventModifierFlagShift |
                                            NSEventModifierFlagControl | NSEventModifierFlagOption;
  return ([event modifierFlags] & kShortcutModifiers) == NSEventModifierFlagCommand;
}

}  // namespace

@implementation EditingKeysView

- (BOOL)performKeyEquivalent:(NSEvent *)event {
  if (isCommandAlone(event)) {
    if (const SEL action = actionForKey([[event characters] lowercaseString])) {
      if (![self wouldRevealPassword:action]) [NSApp sendAction:action to:nil from:self];
      return YES;
    }
  }
  return [super performKeyEquivalent:event];
}

/// A secure field neither copies nor cuts. Not every field editor sees to that by itself.
- (BOOL)wouldRevealPassword:(SEL)action {
  if (action != @selector(cut:) && action != @selector(copy:)) return NO;
  NSResponder *responder = [[self window] firstResponder];
  return [responder isKindOfClass:[NSText class]] &&
         [[(NSText *)responder delegate] isKindOfClass:[NSSecureTextField class]];
}

@end
