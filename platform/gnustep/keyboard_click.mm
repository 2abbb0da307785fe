// gui 0.29 draws a control that the keyboard clicks twice more over itself. A check box has no
// background of its own, so its title becomes bold.

#import <AppKit/AppKit.h>
#import <objc/runtime.h>

@implementation NSControl (KeyboardClick)

+ (void)load {
  method_exchangeImplementations(class_getInstanceMethod(self, @selector(performClick:)),
                                 class_getInstanceMethod(self, @selector(platform_performClick:)));
}

- (void)platform_performClick:(id)sender {
  [self platform_performClick:sender];
  [self setNeedsDisplay:YES];
}

@end
