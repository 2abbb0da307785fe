#include "settings/system_language.h"

namespace settings {

std::string systemLanguage(const std::vector<std::string> &preferredLanguages,
                           const std::optional<std::string> &localeLanguage) {
  const std::string code = preferredLanguages.empty() ? localeLanguage.value_or("en")
                                                      : preferredLanguages.front().substr(0, 2);
  // What comes from the file is never narrowed; only the system's language is.
  return code == "en" || code == "fr" ? code : "en";
}

}  // namespace settings
