// +[NSLocale preferredLanguages] of base 1.28 returns English whenever the locale that LANG names
// has not been generated on the machine. Here the user's own list, the default NSLanguages, takes
// precedence over LANGUAGE, a list, and that over the locale (LC_ALL, LC_MESSAGES, LANG). English
// is last unless listed.

#import <Foundation/Foundation.h>

#include <cstdlib>
#include <initializer_list>

namespace {

/// GNUstep keeps a list of its own making under the same name in its primary domain.
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

NSArray *localeNames() {
  for (const char *name : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char *value = std::getenv(name);
    if (value == nullptr || *value == '\0') continue;
    return [[NSString stringWithUTF8String:value] componentsSeparatedByString:@":"];
  }
  return [NSArray array];
}

/// "de_CH.UTF-8@euro" becomes "de-CH".
NSString *tagFromLocale(NSString *locale) {
  NSCharacterSet *ends = [NSCharacterSet characterSetWithCharactersInString:@".@"];
  NSString *name = [[locale componentsSeparatedByCharactersInSet:ends] objectAtIndex:0];
  if ([name isEqual:@"C"] || [name isEqual:@"POSIX"]) return @"en";
  return [name stringByReplacingOccurrencesOfString:@"_" withString:@"-"];
}

bool hasEnglish(NSArray *tags) {
  for (NSString *tag in tags) {
    if ([tag isEqual:@"en"] || [tag hasPrefix:@"en-"]) return true;
  }
  return false;
}

}  // namespace

@implementation NSLocale (Languages)

+ (NSArray *)preferredLanguages {
  NSMutableArray *tags = [NSMutableArray array];
  for (id language in chosenLanguages()) {
    // The user may have named it in a word, such as "German".
    if (![language isKindOfClass:[NSString class]] || [language length] == 0) continue;
    [tags addObject:[NSLocale canonicalLanguageIdentifierFromString:language]];
  }
  if ([tags count] == 0) {
    for (NSString *name in localeNames()) [tags addObject:tagFromLocale(name)];
    [tags removeObject:@""];
  }
  if (!hasEnglish(tags)) [tags addObject:@"en"];
  return tags;
}

@end
