#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "i18n/language.h"

namespace i18n {

/// The decoded translation catalogue: one `Info` per language. Field names are the keys of
/// translate.json, character for character; every field is required there, even those that no
/// window shows. Strings are UTF-8 and may be empty. The order of the entries is not that of the
/// enum `Language`. Required: do not align the two.
struct JsonData {
  struct Info {
    struct Common {
      std::string quit, select, cancel, apply, restart, refresh, terminate, ok, back, reset, reject,
          accept, _import, export_, port, server, test, settings, reset_settings, username,
          password, adminmsg;
    };
    /// Names of the languages; not the enum.
    struct Language {
      std::string lang, english, french, spanish, italian, german;
    };
    struct About {
      std::string about, agent, version;
    };

    struct Common Common;
    struct Language Language;
    struct About About;
  };

  Info En, Fr, Es, It, Ge;
};

/// Either a catalogue or the reason why there is none.
struct DecodedCatalogue {
  std::optional<JsonData> catalogue;
  /// The key and what is wrong with it ("It.Common.reset_settings: missing"), or what the JSON
  /// parser says.
  std::string error;
};

/// The catalogue's entry of that language.
const JsonData::Info &infoFor(const JsonData &catalogue, Language lang);

/// Decodes the bytes of a catalogue (UTF-8 JSON). All keys or nothing; unknown keys are ignored.
DecodedCatalogue decodeCatalogue(std::string_view json);

/// Reads and decodes translate.json from the main bundle on each call. A bundle without it stops
/// the program; a file that cannot be read or decoded is reported to the error log.
std::optional<JsonData> getLanguageLabel();

}  // namespace i18n
