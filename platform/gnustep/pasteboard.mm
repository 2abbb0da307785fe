// gui 0.29 keeps what is copied in a daemon, which no_daemons.mm switches off. Here each pasteboard
// lives in the program: copy and paste work within it, not between programs.

#import <AppKit/AppKit.h>

#include "exchange.h"

@interface ProgramPasteboard : NSPasteboard {
  NSString *pasteboardName;
  NSMutableDictionary *contents;  ///< data by type
  NSArray *declared;
  id provider;  ///< asked for what was declared only
  int changes;
}
@end

@implementation ProgramPasteboard

- (id)initWithName:(NSString *)newName {
  pasteboardName = [newName copy];
  contents = [[NSMutableDictionary alloc] init];
  declared = [[NSArray alloc] init];
  return self;
}

- (void)dealloc {
  [pasteboardName release];
  [contents release];
  [declared release];
  [super dealloc];
}

- (NSString *)name {
  return pasteboardName;
}

- (int)changeCount {
  return changes;
}

- (int)declareTypes:(NSArray *)types owner:(id)newOwner {
  [contents removeAllObjects];
  [declared release];
  declared = [types copy];
  provider = newOwner;
  return ++changes;
}

- (int)addTypes:(NSArray *)types owner:(id)newOwner {
  NSArray *all = [declared arrayByAddingObjectsFromArray:types];
  [declared release];
  declared = [all retain];
  provider = newOwner;
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
  if ([contents objectForKey:type] == nil && [declared containsObject:type]) {
    [provider pasteboard:self provideDataForType:type];
  }
  return [contents objectForKey:type];
}

- (BOOL)setString:(NSString *)string forType:(NSString *)type {
  return [self setData:[string dataUsingEncoding:NSUTF8StringEncoding] forType:type];
}

- (NSString *)stringForType:(NSString *)type {
  NSData *data = [self dataForType:type];
  if (data == nil) return nil;
  return [[[NSString alloc] initWithData:data encoding:NSUTF8StringEncoding] autorelease];
}

@end

@implementation NSPasteboard (ProgramPasteboards)

+ (NSPasteboard *)pasteboardWithName:(NSString *)name {
  static NSMutableDictionary *pasteboards = [[NSMutableDictionary alloc] init];
  NSPasteboard *known = [pasteboards objectForKey:name];
  if (known != nil) return known;
  NSPasteboard *made = [[[ProgramPasteboard alloc] initWithName:name] autorelease];
  [pasteboards setObject:made forKey:name];
  return made;
}

+ (NSPasteboard *)generalPasteboard {
  return [self pasteboardWithName:NSGeneralPboard];
}

@end

// With nothing selected, copying and cutting do nothing on macOS. GNUstep empties the pasteboard,
// and cuts the next character.
@implementation NSTextView (NothingSelected)

+ (void)load {
  platform::exchange(self, @selector(copy:));
  platform::exchange(self, @selector(cut:));
}

- (void)platform_copy:(id)sender {
  if ([self selectedRange].length > 0) [self platform_copy:sender];
}

- (void)platform_cut:(id)sender {
  if ([self selectedRange].length > 0) [self platform_cut:sender];
}

@end
