// gui 0.29 asks ImageMagick which kinds of images it reads as soon as the program needs an image.
// ImageMagick then loads some 120 libraries, and GNUstep looks for every image under each of its
// 200 file name extensions: more than half of the time that a program takes to start. Without it
// programs read PNG, TIFF, JPEG, GIF, BMP and icons, which is all that is needed here.

#import <AppKit/AppKit.h>

@interface GSImageMagickImageRep : NSBitmapImageRep
@end

@implementation GSImageMagickImageRep (NoImageTypes)

+ (NSArray *)imageUnfilteredFileTypes {
  return [NSArray array];
}

@end
