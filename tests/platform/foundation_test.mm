#import <Foundation/Foundation.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <string>

namespace {

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

/// The same time as the C library formats it.
std::string localTime(std::time_t seconds) {
  char text[64];
  std::tm parts;
  localtime_r(&seconds, &parts);
  std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &parts);
  return text;
}

std::string formatted(NSTimeInterval seconds) {
  NSDateFormatter *formatter = [[[NSDateFormatter alloc] init] autorelease];
  [formatter setDateFormat:@"yyyy-MM-dd HH:mm:ss.SSS"];
  return [[formatter stringFromDate:[NSDate dateWithTimeIntervalSince1970:seconds]] UTF8String];
}

TEST(DateFormatter, GivesLocalTimeWithMilliseconds) {
  for (const std::time_t second : {0l, 951782400l, 1700000000l, 1720000000l, 1735689599l}) {
    EXPECT_EQ(formatted(static_cast<double>(second) + 0.25), localTime(second) + ".250");
    EXPECT_EQ(formatted(static_cast<double>(second) + 0.0078125), localTime(second) + ".007");
  }
}

TEST(DateFormatter, GivesTheCurrentTime) {
  const std::time_t before = std::time(nullptr);
  const std::string now = formatted([[NSDate date] timeIntervalSince1970]).substr(0, 19);
  const std::time_t after = std::time(nullptr);
  EXPECT_TRUE(now == localTime(before) || now == localTime(after)) << now;
}

TEST(CharacterSet, TrimsEveryKindOfSpaceAndNewline) {
  const unichar text[] = {' ',    '\t',   '\n', '\r', 0x0B, 0x0C, 0x85,   0xA0,   0x2003, 0x2028,
                          0x2029, 0x3000, 'a',  ' ',  0xA0, 'b',  0x3000, 0x2003, 0xA0,   '\n'};
  NSString *trimmed = [[NSString stringWithCharacters:text length:sizeof text / sizeof *text]
      stringByTrimmingCharactersInSet:[NSCharacterSet whitespaceAndNewlineCharacterSet]];
  const unichar expected[] = {'a', ' ', 0xA0, 'b'};
  EXPECT_TRUE([trimmed isEqualToString:[NSString stringWithCharacters:expected length:4]])
      << [trimmed length];
}

TEST(Locale, PrefersTheLanguageOfTheEnvironment) {
  for (const char *name : {"LANGUAGE", "LC_ALL", "LC_MESSAGES"}) unsetenv(name);
  setenv("LANG", "fr_FR.UTF-8", 1);
  NSArray *expected = [NSArray arrayWithObjects:@"fr-FR", @"en", nil];
  EXPECT_TRUE([[NSLocale preferredLanguages] isEqual:expected]);
}

TEST(Locale, PrefersTheLanguagesInTheUsersOrder) {
  NSUserDefaults *defaults = [NSUserDefaults standardUserDefaults];
  NSDictionary *before = [defaults volatileDomainForName:NSArgumentDomain];
  NSArray *order = [NSArray arrayWithObjects:@"Spanish", @"de-CH", @"", nil];
  [defaults removeVolatileDomainForName:NSArgumentDomain];
  [defaults setVolatileDomain:[NSDictionary dictionaryWithObject:order forKey:@"NSLanguages"]
                      forName:NSArgumentDomain];
  NSArray *expected = [NSArray arrayWithObjects:@"es", @"de-CH", @"en", nil];
  EXPECT_TRUE([[NSLocale preferredLanguages] isEqual:expected]);
  [defaults removeVolatileDomainForName:NSArgumentDomain];
  [defaults setVolatileDomain:before forName:NSArgumentDomain];
}

}  // namespace
