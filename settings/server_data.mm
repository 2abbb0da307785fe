#import <Foundation/Foundation.h>

#include "settings/server_data.h"

#include <string_view>
#include <vector>

#include "agent/local_library.h"
#include "app/text.h"
#include "settings/address.h"
#include "settings/system_language.h"

namespace settings {
namespace {

std::string textOf(id value) {
  return [value isKindOfClass:[NSString class]] ? app::utf8(value) : std::string();
}

// Only a property-list integer is a port. The type letter tells it from a boolean (c, C, B) and a
// real (f, d); numbers beyond 64 bits show as the platform gives them.
std::string portOf(id value) {
  if ([value isKindOfClass:[NSNumber class]]) {
    const std::string_view type = [value objCType];
    if (type.size() == 1 && std::string_view("silqSILQ").find(type) != std::string_view::npos) {
      return app::utf8([value stringValue]);
    }
  }
  return std::string(kDefaultPort);
}

std::string languageOfSystem() {
  std::vector<std::string> preferred;
  for (NSString *language in [NSLocale preferredLanguages]) {
    preferred.push_back(app::utf8(language));
  }
  NSString *code = [[NSLocale currentLocale] languageCode];
  return systemLanguage(preferred,
                        code == nil ? std::nullopt : std::optional<std::string>(app::utf8(code)));
}

}  // namespace

ServerData readServerData(const std::string &path) {
  @autoreleasepool {
    NSDictionary *stored =
        [[[NSDictionary alloc] initWithContentsOfFile:app::nsString(path)] autorelease];
    ServerData data{.language = textOf([stored objectForKey:@"language"]),
                    .server = textOf([stored objectForKey:@"server"]),
                    .port = portOf([stored objectForKey:@"port"])};
    if (data.language.empty()) data.language = languageOfSystem();
    return data;
  }
}

std::optional<ServerData> getServerData() {
  const std::optional<std::string> path = agent::serverPlistPath();
  return path ? std::optional(readServerData(*path)) : std::nullopt;
}

}  // namespace settings
