// gui 0.29 decodes <font metaFont="systemBold"/> as the plain system font.

#import <AppKit/AppKit.h>
#import <GNUstepGUI/GSXibElement.h>
#import <GNUstepGUI/GSXibKeyedUnarchiver.h>
#import <objc/runtime.h>

@interface GSXib5KeyedUnarchiver : GSXibKeyedUnarchiver
@end

@implementation GSXib5KeyedUnarchiver (XibBoldFont)

- (BOOL)platform_decodesBoldFont {
  return [[currentElement attributeForKey:@"metaFont"] isEqual:@"systemBold"];
}

@end

@implementation NSFont (XibBoldFont)

+ (void)load {
  method_exchangeImplementations(class_getInstanceMethod(self, @selector(initWithCoder:)),
                                 class_getInstanceMethod(self, @selector(platform_initWithCoder:)));
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
