// gui 0.29 takes a cell in an interface file for editable unless the file says otherwise, so that a
// click on a label lets the user change it. Without the attribute macOS's cells are not editable.

#import <AppKit/AppKit.h>
#import <GNUstepGUI/GSXibElement.h>
#import <GNUstepGUI/GSXibKeyedUnarchiver.h>

#include "exchange.h"

@interface GSXib5KeyedUnarchiver : GSXibKeyedUnarchiver
- (id)decodeCellFlags1ForElement:(GSXibElement *)element;
@end

@implementation GSXib5KeyedUnarchiver (XibLabels)

+ (void)load {
  platform::exchange(self, @selector(decodeCellFlags1ForElement:));
}

- (id)platform_decodeCellFlags1ForElement:(GSXibElement *)element {
  if ([element attributeForKey:@"editable"] == nil) {
    [element setAttribute:@"NO" forKey:@"editable"];
  }
  return [self platform_decodeCellFlags1ForElement:element];
}

@end
