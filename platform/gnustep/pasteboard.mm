// gui 0.29 keeps what is copied in a daemon, gpbs, which outlives the program. Here each pasteboard
// lives in the program, until it ends: copy and paste work within it, not between programs.

#import <AppKit/AppKit.h>

@interface ProgramPasteboard : NSPasteboard {
  NSMutableDictionary *contents;  ///< data by type
  NSArray *declared;
  int changes;
}
@end

@implementation ProgramPasteboard

- (id)init {
  contents = [[NSMutableDictionary alloc] init];
  declared = [[NSArray alloc] init];
  return self;
}

- (int)changeCount {
  return changes;
}

/// The owner has to set the data of all types at once; it is not asked later.
- (int)declareTypes:(NSArray *)types owner:(id)newOwner {
  (void)newOwner;
  [contents removeAllObjects];
  [declared release];
  declared = [types copy];
  return ++changes;
}

- (NSArray *)types {
  return declared;
}

- (NSString *)availableTypeFromArray:(NSArray *)types {
  return [types firstObjectCommonWithArray:declared];
}

- (BOOL)setData:(NSData *)data forType:(NSString *)type {
  if (data == nil) return NO;
  [contents setObject:[[data copy] autorelease] forKey:type];
  return YES;
}

- (NSData *)dataForType:(NSString *)type {
  return [contents objectForKey:type];
}

@end

@implementation NSPasteboard (ProgramPasteboards)

+ (NSPasteboard *)pasteboardWithName:(NSString *)name {
  static NSMutableDictionary *pasteboards = [[NSMutableDictionary alloc] init];
  if ([pasteboards objectForKey:name] == nil) {
    [pasteboards setObject:[[[ProgramPasteboard alloc] init] autorelease] forKey:name];
  }
  return [pasteboards objectForKey:name];
}

+ (NSPasteboard *)generalPasteboard {
  return [self pasteboardWithName:NSGeneralPboard];
}

@end
