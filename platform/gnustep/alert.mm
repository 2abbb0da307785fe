// NSAlert of gui 0.29 has no -window before it runs, puts its style's name into the title bar, the
// message text into a single line, and "No information" where no informative text is given. Keys
// pressed in it are lost unless the application has finished launching.

#import <AppKit/AppKit.h>

#include <algorithm>

@interface GSAlertPanel : NSPanel
- (void)setTitleBar:(NSString *)titleBar
               icon:(NSImage *)icon
              title:(NSString *)title
            message:(NSString *)message;
- (void)setButtons:(NSArray *)buttons;
@end

namespace {

constexpr CGFloat kMargin = 20, kGap = 16, kIcon = 48;
constexpr CGFloat kButtonHeight = 32, kButtonEdge = 6, kSmallestButton = 92;
constexpr CGFloat kWidestMessage = 800, kFieldInset = 4;

/// Places the buttons from right to left, the first one being the default.
void placeButtons(NSArray *views, CGFloat right) {
  for (NSButton *button in views) {
    if (![button isKindOfClass:[NSButton class]] || [button imagePosition] == NSImageOnly) continue;
    [button setBezelStyle:NSBezelStyleRounded];
    [button setImage:nil];
    [button setImagePosition:NSNoImage];
    const CGFloat width = std::max(kSmallestButton, [[button cell] cellSize].width + 2 * kGap);
    right -= width;
    [button setFrame:NSMakeRect(right, kMargin - 7, width, kButtonHeight)];
  }
}

/// Gives the panel the margins and the order of an alert on macOS: the icon, the message to its
/// right, the buttons below.
void layOut(NSPanel *panel, NSTextField *message) {
  NSArray *views = [[panel contentView] subviews];
  NSSize text = [[message cell] cellSizeForBounds:NSMakeRect(0, 0, kWidestMessage, 10000)];
  text.width += 2 * kFieldInset;
  const CGFloat body = std::max(kIcon, text.height);
  const CGFloat left = kMargin + kIcon + kGap;
  const NSSize size = {left + text.width + kMargin,
                       kMargin + kButtonHeight - 12 + kGap + body + kMargin};
  const NSSize frame = [NSWindow frameRectForContentRect:NSMakeRect(0, 0, size.width, size.height)
                                               styleMask:[panel styleMask]]
                           .size;
  [panel setMinSize:frame];
  [panel setMaxSize:frame];
  [panel setContentSize:size];
  for (NSView *view in views) {
    const bool isIcon = [view isKindOfClass:[NSButton class]] &&
                        [static_cast<NSButton *>(view) imagePosition] == NSImageOnly;
    if (isIcon) {
      [view setFrame:NSMakeRect(kMargin, size.height - kMargin - kIcon, kIcon, kIcon)];
    } else if (view == message) {
      [view
          setFrame:NSMakeRect(left, size.height - kMargin - text.height, text.width, text.height)];
    } else if (![view isKindOfClass:[NSButton class]]) {
      [view setHidden:YES];  // the empty heading and the line below it
    }
  }
  placeButtons(views, size.width - kMargin + kButtonEdge);
}

/// The field that shows that text.
NSTextField *fieldWith(NSView *view, NSString *text) {
  for (NSTextField *field in [view subviews]) {
    if ([field isKindOfClass:[NSTextField class]] && [[field stringValue] isEqual:text])
      return field;
  }
  return nil;
}

}  // namespace

@implementation NSAlert (Alert)

- (id)window {
  if (_window == nil) {
    [NSApplication sharedApplication];
    _window = [[GSAlertPanel alloc] init];
    [_window setTitle:@""];
  }
  return _window;
}

/// Called by -runModal right before the panel is shown.
- (void)_setupPanel {
  [NSApp finishLaunching];
  NSMutableArray *parts = [NSMutableArray array];
  if ([_message_text length] > 0) [parts addObject:_message_text];
  if ([_informative_text length] > 0) [parts addObject:_informative_text];
  NSString *text = [parts componentsJoinedByString:@"\n\n"];

  if ([_buttons count] == 0) [self addButtonWithTitle:@"OK"];
  GSAlertPanel *panel = [self window];
  // The heading shows one line only, so the message is the body, which wraps.
  [panel setTitleBar:[panel title] icon:_icon title:@" " message:text];
  [panel setButtons:_buttons];
  NSTextField *message = fieldWith([panel contentView], text);
  if (message != nil) layOut(panel, message);
}

@end
