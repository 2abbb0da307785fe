#include "i18n/language.h"

#include <array>
#include <cstddef>

namespace i18n {
namespace {

// Indexed by the number of the language.
constexpr std::array<std::string_view, kLanguageCount> kCodes{"en", "fr", "it", "de", "es"};

}  // namespace

std::string getLanguageType(Language lang) {
  const auto number = static_cast<std::size_t>(lang);
  return number < kCodes.size() ? std::string(kCodes[number]) : std::string();
}

std::optional<Language> languageFromCode(std::string_view code) {
  for (std::size_t number = 0; number < kCodes.size(); ++number) {
    if (kCodes[number] == code) return static_cast<Language>(number);
  }
  return std::nullopt;
}

}  // namespace i18n
