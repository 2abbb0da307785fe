#import <Foundation/Foundation.h>

#include "settings/server_data.h"

#include <string_view>

#include "agent/server_plist_path.h"
#include "app/ns_string.h"
#include "settings/validation.h"

namespace settings {
namespace {

std::string stringOrEmpty(id value) {
  return [value isKindOfClass:[NSString class]] ? app::utf8(value) : std::string();
}

// Only a property-list integer is a port. The type letter tells it from a boolean (c, C, B) and a
// real (f, d); numbers beyond 64 bits show as the platform gives them.
std::string portValue(id value) {
  if ([value isKindOfClass:[NSNumber class]]) {
    const std::string_view type = [value objCType];
    if (type.size() == 1 && std::string_view("silqSILQ").find(type) != std::string_view::npos) {
      return app::utf8([value stringValue]);
    }
  }
  return std::string(kDefaultPort);
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
  const std::string code = preferredLanguages.empty() ? localeLanguage.value_or("en")
                                                      : preferredLanguages.front().substr(0, 2);
  return code == "en" || code == "fr" ? code : "en";
}

ServerData readServerData(const std::string &path) {
  @autoreleasepool {
    NSDictionary *stored =
        [[[NSDictionary alloc] initWithContentsOfFile:app::nsString(path)] autorelease];
    ServerData data{.language = stringOrEmpty([stored objectForKey:@"language"]),
                    .server = stringOrEmpty([stored objectForKey:@"server"]),
                    .port = portValue([stored objectForKey:@"port"])};
    if (data.language.empty()) data.language = systemLanguageCode();
    return data;
  }
}

std::optional<ServerData> getServerData() {
  const std::optional<std::string> path = agent::serverPlistPath();
  return path ? std::optional(readServerData(*path)) : std::nullopt;
}

}  // namespace settings
