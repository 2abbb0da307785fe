// How gui 0.29 decodes interface files.
//
// It takes a cell for editable unless the file says otherwise, so that a click on a label lets the
// user change it. Without the attribute macOS's cells are not editable.
//
// It takes the bold system font for the plain one, and gives a system font without a size a random
// one, so that about one label in four is invisible: it sends -floatValue to nil in code built by
// GCC, where the result of such a message is undefined.

#import <AppKit/AppKit.h>
#import <GNUstepGUI/GSXibElement.h>
#import <GNUstepGUI/GSXibKeyedUnarchiver.h>

#include "exchange.h"

@interface GSXib5KeyedUnarchiver : GSXibKeyedUnarchiver
- (id)decodeCellFlags1ForElement:(GSXibElement *)element;
@end

@implementation GSXib5KeyedUnarchiver (InterfaceFiles)

+ (void)load {
  platform::exchange(self, @selector(decodeCellFlags1ForElement:));
}

- (id)platform_decodeCellFlags1ForElement:(GSXibElement *)element {
  if ([element attributeForKey:@"editable"] == nil) {
    [element setAttribute:@"NO" forKey:@"editable"];
  }
  return [self platform_decodeCellFlags1ForElement:element];
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

- (BOOL)platform_decodesBoldFont {
  return [[currentElement attributeForKey:@"metaFont"] isEqual:@"systemBold"];
}

@end

@implementation NSFont (InterfaceFiles)

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
