// gui 0.29 asks ImageMagick which kinds of images it reads as soon as the program needs an image.
// ImageMagick then loads some 120 libraries, and GNUstep looks for every image under each of its
// 200 file name extensions: more than half of the time that a program takes to start. Without it
// programs read PNG, TIFF, JPEG, GIF, BMP and icons, which is all that is needed here.

#import <AppKit/AppKit.h>
#import <GNUstepGUI/GSTheme.h>

#include "exchange.h"

@interface GSImageMagickImageRep : NSBitmapImageRep
@end

@implementation GSImageMagickImageRep (NoImageTypes)

+ (BOOL)canInitWithData:(NSData *)data {
  (void)data;
  return NO;
}

+ (NSArray *)imageUnfilteredFileTypes {
  return [NSArray array];
}

+ (NSArray *)imageUnfilteredPasteboardTypes {
  return [NSArray array];
}

@end

// An image of the theme has a name of its own. GNUstep builds and tries the names with all
// extensions in all folders that may have one, again for each image.
@implementation NSBundle (ThemeImages)

+ (void)load {
  platform::exchange(self, @selector(pathForImageResource:));
}

- (NSString *)platform_pathForImageResource:(NSString *)name {
  NSString *images =
      [[[[GSTheme theme] bundle] resourcePath] stringByAppendingPathComponent:@"ThemeImages"];
  NSString *file = [[images stringByAppendingPathComponent:name] stringByAppendingString:@".png"];
  if ([[NSFileManager defaultManager] fileExistsAtPath:file]) return file;
  return [self platform_pathForImageResource:name];
}

@end
