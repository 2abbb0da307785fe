#pragma once

#include <optional>
#include <string>
#include <vector>

namespace settings {

/// The agent's stored settings, in UTF-8.
struct ServerData {
  std::string language;  ///< two-letter code, never empty; any code when it comes from the file
  std::string server;    ///< as an administrator typed it; may be empty
  std::string port;      ///< decimal number as stored, not range-checked; never empty
  bool operator==(const ServerData &) const = default;
};

/// What server.plist holds, each value only if it is of the right type. Strings are UTF-8.
struct StoredValues {
  std::optional<std::string> language;
  std::optional<std::string> server;
  std::optional<std::string> port;  ///< an integer in decimal digits, not range-checked
  std::optional<bool> profile;
  bool operator==(const StoredValues &) const = default;
};

/// Reads server.plist without filling in defaults. Returns no values for a file that is missing,
/// malformed or not regular, or if the platform reports no local Library folder.
StoredValues getStoredValues();

/// The same for the file at `path`.
StoredValues readStoredValues(const std::string &path);

/// Reads server.plist. A value that is missing or of the wrong type has its default: the system's
/// language narrowed to English or French, an empty server, port 6000. Returns nothing only when
/// the platform reports no local Library folder. Prints and writes nothing.
std::optional<ServerData> getServerData();

/// The same for the file at `path`.
ServerData readServerData(const std::string &path);

/// The default of `language`: the first two characters of the first preferred language, else the
/// locale's language; "en" unless that is exactly "en" or "fr". Required: a language that comes
/// from the file is not narrowed like this.
std::string systemLanguage(const std::vector<std::string> &preferredLanguages,
                           const std::optional<std::string> &localeLanguage);

}  // namespace settings
