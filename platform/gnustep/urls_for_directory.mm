// base 1.28 has no -[NSFileManager URLsForDirectory:inDomains:] (macOS 10.6).

#import <Foundation/Foundation.h>

@implementation NSFileManager (URLsForDirectory)

- (NSArray<NSURL *> *)URLsForDirectory:(NSSearchPathDirectory)directory
                             inDomains:(NSSearchPathDomainMask)domainMask {
  NSMutableArray *urls = [NSMutableArray array];
  for (NSString *path in NSSearchPathForDirectoriesInDomains(directory, domainMask, YES)) {
    [urls addObject:[NSURL fileURLWithPath:path isDirectory:YES]];
  }
  return urls;
}

@end
