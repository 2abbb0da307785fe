#import <Foundation/Foundation.h>

#include "i18n/catalogue.h"

#include <array>

#include "app/diagnostics.h"
#include "app/error_log.h"
#include "app/ns_string.h"

namespace i18n {
namespace {

using Info = JsonData::Info;

/// A required key of a JSON object, and the field for its value.
template <class Record>
struct Key {
  const char *name;
  std::string Record::*field;
};

/// Whether every field of the record has a key.
template <class Record, std::size_t kCount>
constexpr bool hasKeyPerField(const std::array<Key<Record>, kCount> &) {
  return sizeof(Record) == kCount * sizeof(std::string);
}

/// A language, the key of its entry, and the field for that entry.
struct LanguageKey {
  Language lang;
  const char *name;
  Info JsonData::*field;
};

constexpr auto kLanguageKeys = std::to_array<LanguageKey>({
    {Language::En, "En", &JsonData::En},
    {Language::Fr, "Fr", &JsonData::Fr},
    {Language::It, "It", &JsonData::It},
    {Language::Ge, "Ge", &JsonData::Ge},
    {Language::Es, "Es", &JsonData::Es},
});
static_assert(app::hasRowForEach(kLanguageKeys, &LanguageKey::lang));
static_assert(sizeof(JsonData) == kLanguageKeys.size() * sizeof(Info));

using Common = struct Info::Common;
constexpr auto kCommonKeys = std::to_array<Key<Common>>({
    {"quit", &Common::quit},
    {"select", &Common::select},
    {"cancel", &Common::cancel},
    {"apply", &Common::apply},
    {"restart", &Common::restart},
    {"refresh", &Common::refresh},
    {"terminate", &Common::terminate},
    {"ok", &Common::ok},
    {"back", &Common::back},
    {"reset", &Common::reset},
    {"reject", &Common::reject},
    {"accept", &Common::accept},
    {"_import", &Common::_import},
    {"export", &Common::export_},
    {"port", &Common::port},
    {"server", &Common::server},
    {"test", &Common::test},
    {"settings", &Common::settings},
    {"reset_settings", &Common::reset_settings},
    {"username", &Common::username},
    {"password", &Common::password},
    {"adminmsg", &Common::adminmsg},
});
static_assert(hasKeyPerField(kCommonKeys));

using Names = struct Info::Language;
constexpr auto kNameKeys = std::to_array<Key<Names>>({
    {"lang", &Names::lang},
    {"english", &Names::english},
    {"french", &Names::french},
    {"spanish", &Names::spanish},
    {"italian", &Names::italian},
    {"german", &Names::german},
});
static_assert(hasKeyPerField(kNameKeys));
static_assert(kNameKeys.size() == kLanguageCount + 1, "the caption, and a name for each language");

using About = struct Info::About;
constexpr auto kAboutKeys = std::to_array<Key<About>>({
    {"about", &About::about},
    {"agent", &About::agent},
    {"version", &About::version},
});
static_assert(hasKeyPerField(kAboutKeys));

std::string jsonTypeName(id value) {
  if (value == nil) return "nothing";
  if (value == [NSNull null]) return "null";
  if ([value isKindOfClass:[NSString class]]) return "a string";
  if ([value isKindOfClass:[NSDictionary class]]) return "an object";
  if ([value isKindOfClass:[NSArray class]]) return "an array";
  // Platforms differ in the type letter of a boolean; none uses any of these for a number.
  const std::string_view type = [value objCType];
  return type == "c" || type == "C" || type == "B" ? "a boolean" : "a number";
}

/// Copies a decoded JSON tree into the record, up to the first error.
class Decoder {
 public:
  const std::string &error() const { return error_; }

  bool decode(id value, const std::string &place, JsonData &data) {
    return decodeAll(value, place, kLanguageKeys, data);
  }

 private:
  bool decode(id value, const std::string &place, Info &info) {
    return decodeMember(value, place, "Common", kCommonKeys, info.Common) &&
           decodeMember(value, place, "Language", kNameKeys, info.Language) &&
           decodeMember(value, place, "About", kAboutKeys, info.About);
  }

  bool decode(id value, const std::string &place, std::string &text) {
    if (![value isKindOfClass:[NSString class]]) return reject(place, "a string", value);
    text = app::utf8(value);
    return true;
  }

  template <class Record, class Keys>
  bool decodeMember(id object, const std::string &place, const char *name, const Keys &keys,
                    Record &record) {
    const std::string here = join(place, name);
    id value = nil;
    return find(object, place, name, value) && decodeAll(value, here, keys, record);
  }

  template <class Record, class Keys>
  bool decodeAll(id object, const std::string &place, const Keys &keys, Record &record) {
    if (![object isKindOfClass:[NSDictionary class]]) return reject(place, "an object", object);
    for (const auto &key : keys) {
      id value = nil;
      if (!find(object, place, key.name, value) ||
          !decode(value, join(place, key.name), record.*key.field)) {
        return false;
      }
    }
    return true;
  }

  bool find(id object, const std::string &place, const char *name, id &value) {
    if (![object isKindOfClass:[NSDictionary class]]) return reject(place, "an object", object);
    value = [object objectForKey:app::nsString(name)];
    if (value != nil) return true;
    error_ = join(place, name) + ": missing";
    return false;
  }

  bool reject(const std::string &place, const char *expected, id found) {
    error_ = (place.empty() ? "" : place + ": ") + "expected " + expected + ", found " +
             jsonTypeName(found);
    return false;
  }

  static std::string join(const std::string &place, const char *name) {
    return place.empty() ? name : place + "." + name;
  }

  std::string error_;
};

std::string describe(NSError *error) {
  // The debug description, if there is one, says where the parser stopped.
  NSString *text = [[error userInfo] objectForKey:@"NSDebugDescription"];
  return app::utf8(text != nil ? text : [error localizedDescription]);
}

std::optional<JsonData> reportFailure(const std::string &error) {
  app::printErrorLog("error to get language: " + error);
  return std::nullopt;
}

}  // namespace

const Info &infoFor(const JsonData &catalogue, Language lang) {
  return catalogue.*kLanguageKeys[static_cast<std::size_t>(lang)].field;
}

DecodedCatalogue decodeCatalogue(std::string_view json) {
  @autoreleasepool {
    NSError *error = nil;
    NSData *data = [NSData dataWithBytes:json.data() length:json.size()];
    id tree = [NSJSONSerialization JSONObjectWithData:data options:0 error:&error];
    if (tree == nil) return {.catalogue = std::nullopt, .error = describe(error)};

    JsonData catalogue;
    Decoder decoder;
    if (!decoder.decode(tree, "", catalogue)) {
      return {.catalogue = std::nullopt, .error = decoder.error()};
    }
    return {.catalogue = catalogue, .error = {}};
  }
}

std::optional<JsonData> getLanguageLabel() {
  @autoreleasepool {
    // Not pathForResource:ofType:, for which an unreadable file may count as missing.
    NSString *path =
        [[[NSBundle mainBundle] resourcePath] stringByAppendingPathComponent:@"translate.json"];
    if (![[NSFileManager defaultManager] fileExistsAtPath:path]) {
      app::fatalError("resource translate.json is missing from the bundle");
    }

    NSError *error = nil;
    NSStringEncoding encoding{};
    NSString *text = [NSString stringWithContentsOfFile:path usedEncoding:&encoding error:&error];
    if (text == nil) return reportFailure(describe(error));

    NSData *bytes = [text dataUsingEncoding:NSUTF8StringEncoding allowLossyConversion:NO];
    if (bytes == nil) app::fatalError("resource translate.json has no UTF-8 form");

    DecodedCatalogue decoded =
        decodeCatalogue({static_cast<const char *>([bytes bytes]), [bytes length]});
    return decoded.catalogue ? decoded.catalogue : reportFailure(decoded.error);
  }
}

}  // namespace i18n
