#pragma once

#include <optional>
#include <string>
#include <vector>

namespace settings {

/// The system's language as a code: the first two characters of the first preferred language, else
/// the locale's language; "en" unless that is exactly "en" or "fr".
std::string systemLanguage(const std::vector<std::string> &preferredLanguages,
                           const std::optional<std::string> &localeLanguage);

}  // namespace settings
