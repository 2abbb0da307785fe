// Fonts in interface files: gui 0.29 decodes <font metaFont="systemBold"/> as the plain system
// font, and one without a size to a random size, so that about one label in four is invisible: it
// sends -floatValue to nil in code built by GCC, where the result of such a message is undefined.

#import <AppKit/AppKit.h>
#import <GNUstepGUI/GSXibElement.h>
#import <GNUstepGUI/GSXibKeyedUnarchiver.h>

#include "exchange.h"

@interface GSXib5KeyedUnarchiver : GSXibKeyedUnarchiver
@end

@implementation GSXib5KeyedUnarchiver (XibFonts)

- (BOOL)platform_decodesBoldFont {
  return [[currentElement attributeForKey:@"metaFont"] isEqual:@"systemBold"];
}

- (id)decodeFontSizeForElement:(GSXibElement *)element {
  NSString *size = [element attributeForKey:@"size"];
  if (size != nil) return [NSNumber numberWithFloat:[size floatValue]];
  NSString *metaFont = [element attributeForKey:@"metaFont"];
  CGFloat points = [NSFont systemFontSize];
  if ([metaFont hasPrefix:@"mini"]) points = 9;
  if ([metaFont hasPrefix:@"small"]) points = [NSFont smallSystemFontSize];
  return [NSNumber numberWithDouble:points];
}

@end

@implementation NSFont (XibFonts)

+ (void)load {
  platform::exchange(self, @selector(initWithCoder:));
}

- (id)platform_initWithCoder:(NSCoder *)coder {
  self = [self platform_initWithCoder:coder];
  if (![coder isKindOfClass:[GSXib5KeyedUnarchiver class]]) return self;
  if (![(GSXib5KeyedUnarchiver *)coder platform_decodesBoldFont]) return self;
  const CGFloat size = [self pointSize];
  [self release];
  return [[NSFont boldSystemFontOfSize:size] retain];
}

@end
