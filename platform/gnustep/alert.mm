// NSAlert of gui 0.29 has no -window before it runs, puts its style's name into the title bar, the
// message text into a single line, and "No information" where no informative text is given. Keys
// pressed in it are lost unless the application has finished launching.

#import <AppKit/AppKit.h>

@interface GSAlertPanel : NSPanel
- (void)setTitleBar:(NSString *)titleBar
               icon:(NSImage *)icon
              title:(NSString *)title
            message:(NSString *)message;
- (void)setButtons:(NSArray *)buttons;
@end

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
  NSMutableArray *texts = [NSMutableArray array];
  if ([_message_text length] > 0) [texts addObject:_message_text];
  if ([_informative_text length] > 0) [texts addObject:_informative_text];

  if ([_buttons count] == 0) [self addButtonWithTitle:@"OK"];
  GSAlertPanel *panel = [self window];
  // The heading shows one line only, so the message takes the place of the body, which wraps.
  [panel setTitleBar:[panel title]
                icon:_icon
               title:@" "
             message:[texts componentsJoinedByString:@"\n\n"]];
  [panel setButtons:_buttons];
}

@end
