// +[NSLocale preferredLanguages] of base 1.28 answers English whenever the locale that LANG names
// has not been generated on the machine.

#import <Foundation/Foundation.h>

#include <cstdlib>

#include "languages.h"

@implementation NSLocale (Languages)

+ (NSArray *)preferredLanguages {
  const auto environment = [](const char *name) {
    const char *value = std::getenv(name);
    return std::string(value != nullptr ? value : "");
  };
  NSMutableArray *tags = [NSMutableArray array];
  for (const std::string &tag : platform::preferredLanguages(environment)) {
    NSString *text = [NSString stringWithUTF8String:tag.c_str()];
    if (text != nil) [tags addObject:text];
  }
  return tags;
}

@end
