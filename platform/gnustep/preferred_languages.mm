// +[NSLocale preferredLanguages] of base 1.28 returns English whenever the locale that LANG names
// has not been generated on the machine.

#import <Foundation/Foundation.h>

#include <cstdlib>

#include "languages.h"

namespace {

/// The user's own order of languages, the default NSLanguages. GNUstep keeps a list of its own
/// making under the same name in its primary domain.
NSArray *chosenLanguages() {
  NSUserDefaults *defaults = [NSUserDefaults standardUserDefaults];
  for (NSString *domain in [defaults searchList]) {
    if ([domain isEqual:@"GSPrimaryDomain"]) continue;
    NSDictionary *values = [defaults persistentDomainForName:domain];
    if (values == nil) values = [defaults volatileDomainForName:domain];
    NSArray *languages = [values objectForKey:@"NSLanguages"];
    if ([languages isKindOfClass:[NSArray class]]) return languages;
  }
  return [NSArray array];
}

/// Tags of languages that the user may have named in words, such as "German".
std::vector<std::string> chosenTags() {
  std::vector<std::string> tags;
  for (id language in chosenLanguages()) {
    if (![language isKindOfClass:[NSString class]] || [language length] == 0) continue;
    tags.emplace_back([[NSLocale canonicalLanguageIdentifierFromString:language] UTF8String]);
  }
  return tags;
}

std::string environment(const char *name) {
  const char *value = std::getenv(name);
  return value != nullptr ? value : "";
}

}  // namespace

@implementation NSLocale (Languages)

+ (NSArray *)preferredLanguages {
  NSMutableArray *tags = [NSMutableArray array];
  for (const std::string &tag : platform::preferredLanguages(chosenTags(), environment)) {
    NSString *text = [NSString stringWithUTF8String:tag.c_str()];
    if (text != nil) [tags addObject:text];
  }
  return tags;
}

@end
