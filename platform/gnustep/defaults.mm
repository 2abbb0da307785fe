// User defaults that give gui 0.29 what macOS has: no icon window for each program, a system font
// of 13 points, and the look of its controls, which GNUstep calls a theme. They have to be
// registered before the application object exists.

#import <Foundation/Foundation.h>

@interface PlatformDefaults : NSObject
@end

@implementation PlatformDefaults

+ (void)load {
  @autoreleasepool {
    NSMutableDictionary *defaults = [NSMutableDictionary
        dictionaryWithObjectsAndKeys:@"YES", @"GSSuppressAppIcon", @"13", @"NSFontSize",
                                     @"Inter-Bold", @"NSBoldFont", nil];
    NSString *const fonts[] = {@"NSFont",         @"NSUserFont",          @"NSControlContentFont",
                               @"NSLabelFont",    @"NSMenuFont",          @"NSMessageFont",
                               @"NSToolTipsFont", @"NSUserFixedPitchFont"};
    for (NSString *font : fonts) {
      [defaults setObject:@"Inter-Regular" forKey:font];
    }
    NSString *theme =
        [[[NSBundle mainBundle] resourcePath] stringByAppendingPathComponent:@"Mac.theme"];
    if ([[NSFileManager defaultManager] fileExistsAtPath:theme]) {
      [defaults setObject:theme forKey:@"GSTheme"];
    }
    [[NSUserDefaults standardUserDefaults] registerDefaults:defaults];
  }
}

@end
