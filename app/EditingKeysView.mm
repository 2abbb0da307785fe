#import "app/EditingKeysView.h"

/// Windows and text views respond to it, though no AppKit header declares it.
@protocol UndoAction
- (void)undo:(id)sender;
@end

namespace {

/// The action of a shortcut; null for a key that this view does not handle.
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

/// Shift, Control or Option would make it a different shortcut; Caps Lock does not.
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

/// A secure field must not copy or cut. Not every field editor ensures that by itself.
- (BOOL)wouldRevealPassword:(SEL)action {
  if (action != @selector(cut:) && action != @selector(copy:)) return NO;
  NSResponder *responder = [[self window] firstResponder];
  return [responder isKindOfClass:[NSText class]] &&
         [[(NSText *)responder delegate] isKindOfClass:[NSSecureTextField class]];
}

@end
