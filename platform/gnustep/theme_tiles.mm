// gui 0.29 cuts the pictures of a theme into nine tiles by drawing each tile into a window of its
// own, which takes some hundred round trips to the X server for each picture. This copies the
// pixels.

#import <AppKit/AppKit.h>
#import <objc/runtime.h>

#include <cstring>

@interface GSDrawTiles : NSObject
- (NSImage *)extractImageFrom:(NSImage *)image withRect:(NSRect)rect;
@end

namespace {

/// The bitmap that the image is made of; nil when its pixels cannot be copied byte by byte.
NSBitmapImageRep *bitmap(NSImage *image) {
  id first = [[image representations] objectAtIndex:0];
  const bool isBitmap = [first isKindOfClass:[NSBitmapImageRep class]] && ![first isPlanar] &&
                        [first bitsPerSample] == 8;
  return isBitmap ? first : nil;
}

/// A bitmap of the same kind with room for that many pixels.
NSBitmapImageRep *emptyCopy(NSBitmapImageRep *like, NSInteger width, NSInteger height) {
  return [[[NSBitmapImageRep alloc] initWithBitmapDataPlanes:nullptr
                                                  pixelsWide:width
                                                  pixelsHigh:height
                                               bitsPerSample:8
                                             samplesPerPixel:[like samplesPerPixel]
                                                    hasAlpha:[like hasAlpha]
                                                    isPlanar:NO
                                              colorSpaceName:[like colorSpaceName]
                                                bitmapFormat:[like bitmapFormat]
                                                 bytesPerRow:0
                                                bitsPerPixel:[like bitsPerPixel]] autorelease];
}

}  // namespace

@implementation GSDrawTiles (CopiedTiles)

+ (void)load {
  method_exchangeImplementations(
      class_getInstanceMethod(self, @selector(extractImageFrom:withRect:)),
      class_getInstanceMethod(self, @selector(platform_extractImageFrom:withRect:)));
}

- (NSImage *)platform_extractImageFrom:(NSImage *)image withRect:(NSRect)rect {
  NSBitmapImageRep *whole = bitmap(image);
  if (whole == nil) return [self platform_extractImageFrom:image withRect:rect];
  const auto left = static_cast<NSInteger>(NSMinX(rect));
  const auto top = [whole pixelsHigh] - static_cast<NSInteger>(NSMaxY(rect));
  const auto width = static_cast<NSInteger>(NSWidth(rect));
  const auto height = static_cast<NSInteger>(NSHeight(rect));

  NSBitmapImageRep *tile = emptyCopy(whole, width, height);
  const NSInteger pixel = [whole bitsPerPixel] / 8;
  for (NSInteger row = 0; row < height; ++row) {
    std::memcpy([tile bitmapData] + row * [tile bytesPerRow],
                [whole bitmapData] + (top + row) * [whole bytesPerRow] + left * pixel,
                static_cast<std::size_t>(width * pixel));
  }
  NSImage *cut = [[[NSImage alloc] initWithSize:rect.size] autorelease];
  [cut addRepresentation:tile];
  return cut;
}

@end
