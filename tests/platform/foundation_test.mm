#import <Foundation/Foundation.h>

#include <gtest/gtest.h>

#include "doubles/environment_variable.h"

namespace {

using doubles::EnvironmentVariable;

TEST(FileManager, GivesLibraryFoldersAsFileURLs) {
  NSArray *urls = [[NSFileManager defaultManager] URLsForDirectory:NSLibraryDirectory
                                                         inDomains:NSLocalDomainMask];
  NSArray *paths = NSSearchPathForDirectoriesInDomains(NSLibraryDirectory, NSLocalDomainMask, YES);
  ASSERT_EQ([urls count], [paths count]);
  ASSERT_GT([urls count], 0u);
  EXPECT_TRUE([[urls objectAtIndex:0] isFileURL]);
  NSURL *file = [[urls objectAtIndex:0] URLByAppendingPathComponent:@"Preferences/a b/c.plist"];
  NSString *expected =
      [[paths objectAtIndex:0] stringByAppendingPathComponent:@"Preferences/a b/c.plist"];
  EXPECT_TRUE([[file path] isEqualToString:expected]) << [[file path] UTF8String];
}

TEST(FileManager, GivesNoFoldersForNoDomain) {
  NSArray *urls = [[NSFileManager defaultManager] URLsForDirectory:NSLibraryDirectory inDomains:0];
  EXPECT_EQ([urls count], 0u);
}

struct Environment {
  const char *language;
  const char *all;
  const char *messages;
  const char *lang;
  const char *preferred;
};

std::string preferredLanguages() {
  return [[[NSLocale preferredLanguages] componentsJoinedByString:@" "] UTF8String];
}

TEST(Locale, PrefersTheLanguagesOfTheEnvironment) {
  const Environment rows[] = {
      {"", "", "", "", "en"},
      {"", "", "", "C", "en"},
      {"", "", "", "C.UTF-8", "en"},
      {"", "", "", "POSIX", "en"},
      {"", "", "", "fr_FR.UTF-8", "fr-FR en"},
      {"", "", "", "de_DE@euro", "de-DE en"},
      {"", "", "", "en_GB.UTF-8", "en-GB"},
      {"", "", "", "eng", "eng en"},
      {"", "", "es_ES.UTF-8", "fr_FR.UTF-8", "es-ES en"},
      {"", "it_IT.UTF-8", "es_ES.UTF-8", "", "it-IT en"},
      {"de", "", "", "fr_FR.UTF-8", "de en"},
      {"de_AT:fr:en", "", "", "", "de-AT fr en"},
      {"::fr:", "", "", "", "fr en"},
  };
  for (const Environment &row : rows) {
    const EnvironmentVariable language("LANGUAGE", row.language);
    const EnvironmentVariable all("LC_ALL", row.all);
    const EnvironmentVariable messages("LC_MESSAGES", row.messages);
    const EnvironmentVariable lang("LANG", row.lang);
    EXPECT_EQ(preferredLanguages(), row.preferred);
  }
}

TEST(Locale, PrefersTheLanguagesInTheUsersOrder) {
  const EnvironmentVariable language("LANGUAGE", "fr");
  NSUserDefaults *defaults = [NSUserDefaults standardUserDefaults];
  NSDictionary *before = [defaults volatileDomainForName:NSArgumentDomain];
  NSArray *order = [NSArray arrayWithObjects:@"Spanish", @"de-CH", @"", nil];
  [defaults removeVolatileDomainForName:NSArgumentDomain];
  [defaults setVolatileDomain:[NSDictionary dictionaryWithObject:order forKey:@"NSLanguages"]
                      forName:NSArgumentDomain];
  EXPECT_EQ(preferredLanguages(), "es de-CH en");
  [defaults removeVolatileDomainForName:NSArgumentDomain];
  [defaults setVolatileDomain:before forName:NSArgumentDomain];
}

}  // namespace
