// gui 0.29 has no -[NSBundle loadNibNamed:owner:topLevelObjects:] (macOS 10.8).

#import <AppKit/AppKit.h>

@implementation NSBundle (NibLoading)

- (BOOL)loadNibNamed:(NSNibName)nibName
               owner:(id)owner
     topLevelObjects:(NSArray **)topLevelObjects {
  // -initWithNibNamed:bundle: raises for a missing file, where macOS answers NO.
  if ([self pathForNibResource:nibName] == nil) return NO;
  NSNib *nib = [[[NSNib alloc] initWithNibNamed:nibName bundle:self] autorelease];
  NSArray *objects = nil;
  if (![nib instantiateNibWithOwner:owner topLevelObjects:&objects]) return NO;
  if (topLevelObjects != nullptr) *topLevelObjects = objects;
  return YES;
}

@end
