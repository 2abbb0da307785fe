#import <Foundation/Foundation.h>

#include "settings/server_data.h"

#include <sys/stat.h>

#include <string_view>

#include "agent/server_plist_path.h"
#include "app/ns_string.h"
#include "settings/validation.h"

namespace settings {
namespace {

// Anything else, such as a FIFO, could block the program when it is read.
bool isRegularFile(const std::string &path) {
  struct stat status;
  return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

NSDictionary *readPropertyList(const std::string &path) {
  if (!isRegularFile(path)) return nil;
  return [[[NSDictionary alloc] initWithContentsOfFile:app::nsString(path)] autorelease];
}

std::optional<std::string> stringValue(id value) {
  if (![value isKindOfClass:[NSString class]]) return std::nullopt;
  return app::utf8(value);
}

/// Whether the value is a number whose type letter is one of those.
bool isNumber(id value, std::string_view typeLetters) {
  if (![value isKindOfClass:[NSNumber class]]) return false;
  const std::string_view type = [value objCType];
  return type.size() == 1 && typeLetters.find(type) != std::string_view::npos;
}

// Only a property-list integer is a port. The type letter distinguishes it from a boolean (c, C,
// B) and a real (f, d). Numbers beyond 64 bits are shown as the platform gives them.
std::optional<std::string> integerValue(id value) {
  if (!isNumber(value, "silqSILQ")) return std::nullopt;
  return app::utf8([value stringValue]);
}

std::optional<bool> booleanValue(id value) {
  if (!isNumber(value, "cCB")) return std::nullopt;
  return [value boolValue] != NO;
}

// Characters as a reader sees them: a letter and its combining marks are one.
std::string firstTwoCharacters(const std::string &text) {
  NSString *string = app::nsString(text);
  NSUInteger end = 0;
  for (int count = 0; count < 2 && end < [string length]; ++count) {
    end = NSMaxRange([string rangeOfComposedCharacterSequenceAtIndex:end]);
  }
  return app::utf8([string substringToIndex:end]);
}

std::string systemLanguageCode() {
  std::vector<std::string> preferred;
  for (NSString *language in [NSLocale preferredLanguages]) {
    preferred.push_back(app::utf8(language));
  }
  NSString *code = [[NSLocale currentLocale] languageCode];
  return systemLanguage(preferred,
                        code == nil ? std::nullopt : std::optional<std::string>(app::utf8(code)));
}

}  // namespace

std::string systemLanguage(const std::vector<std::string> &preferredLanguages,
                           const std::optional<std::string> &localeLanguage) {
  @autoreleasepool {
    const std::string code = preferredLanguages.empty()
                                 ? localeLanguage.value_or("en")
                                 : firstTwoCharacters(preferredLanguages.front());
    return code == "en" || code == "fr" ? code : "en";
  }
}

StoredValues readStoredValues(const std::string &path) {
  @autoreleasepool {
    NSDictionary *stored = readPropertyList(path);
    return {.language = stringValue([stored objectForKey:@"language"]),
            .server = stringValue([stored objectForKey:@"server"]),
            .port = integerValue([stored objectForKey:@"port"]),
            .profile = booleanValue([stored objectForKey:@"profile"])};
  }
}

StoredValues getStoredValues() {
  const std::optional<std::string> path = agent::serverPlistPath();
  return path ? readStoredValues(*path) : StoredValues{};
}

ServerData readServerData(const std::string &path) {
  @autoreleasepool {
    const StoredValues stored = readStoredValues(path);
    ServerData data{.language = stored.language.value_or(""),
                    .server = stored.server.value_or(""),
                    .port = stored.port.value_or(std::string(kDefaultPort))};
    if (data.language.empty()) data.language = systemLanguageCode();
    return data;
  }
}

std::optional<ServerData> getServerData() {
  const std::optional<std::string> path = agent::serverPlistPath();
  return path ? std::optional(readServerData(*path)) : std::nullopt;
}

}  // namespace settings
