// gui 0.29 shows an icon window for each program and has a system font of 12 points, where macOS
// has none and 13. Both are user defaults, to be registered before the application object exists.

#import <Foundation/Foundation.h>

@interface PlatformDefaults : NSObject
@end

@implementation PlatformDefaults

+ (void)load {
  @autoreleasepool {
    NSDictionary *defaults = [NSDictionary
        dictionaryWithObjectsAndKeys:@"YES", @"GSSuppressAppIcon", @"13", @"NSFontSize", nil];
    [[NSUserDefaults standardUserDefaults] registerDefaults:defaults];
  }
}

@end
