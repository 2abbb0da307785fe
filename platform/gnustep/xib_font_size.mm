// gui 0.29 decodes <font metaFont="system"/> without a size to a random size, so that about one
// label in four is invisible: it sends -floatValue to nil in code built by GCC, where the result of
// such a message is undefined.

#import <AppKit/AppKit.h>
#import <GNUstepGUI/GSXibElement.h>
#import <GNUstepGUI/GSXibKeyedUnarchiver.h>

@interface GSXib5KeyedUnarchiver : GSXibKeyedUnarchiver
@end

@implementation GSXib5KeyedUnarchiver (XibFontSize)

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
