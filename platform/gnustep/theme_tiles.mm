// gui 0.29 cuts the pictures of a theme into nine tiles by drawing each tile into a window of its
// own, and keeps one more window for each tile that it has drawn. That takes some hundred round
// trips to the X server for each picture. Here a tile is a part of its picture, for which GNUstep
// keeps one window.

#import <AppKit/AppKit.h>

/// A part of a picture.
@interface PlatformTile : NSImage {
  NSImage *_picture;
  NSRect _part;
}
- (id)initWithPicture:(NSImage *)picture part:(NSRect)part;
@end

@implementation PlatformTile

- (id)initWithPicture:(NSImage *)picture part:(NSRect)part {
  self = [super initWithSize:part.size];
  _picture = [picture retain];
  _part = part;
  return self;
}

- (void)dealloc {
  [_picture release];
  [super dealloc];
}

/// Fills a rectangle of `size` from `point` with the tile. As everywhere in NSImage, what is drawn
/// is upright in flipped views too, and `point` is its lower left corner.
- (void)compositeToPoint:(NSPoint)point
                fromRect:(NSRect)size
               operation:(NSCompositingOperation)operation {
  NSGraphicsContext *context = [NSGraphicsContext currentContext];
  NSAffineTransform *saved = [context GSCurrentCTM];
  const NSPoint corner = [saved transformPoint:point];
  NSAffineTransform *upright = [NSAffineTransform transform];
  [upright translateXBy:corner.x yBy:corner.y];
  [context GSSetCTM:upright];
  [_picture drawInRect:NSMakeRect(0, 0, NSWidth(size), NSHeight(size))
              fromRect:_part
             operation:operation
              fraction:1];
  [context GSSetCTM:saved];
}

@end

@interface GSDrawTiles : NSObject
@end

@implementation GSDrawTiles (PartsOfPictures)

- (NSImage *)extractImageFrom:(NSImage *)picture withRect:(NSRect)part {
  return [[[PlatformTile alloc] initWithPicture:picture part:part] autorelease];
}

@end
