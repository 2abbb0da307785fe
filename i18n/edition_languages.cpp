#include "i18n/edition_languages.h"

#include <algorithm>

namespace i18n {
namespace {

constexpr int kLanguages = static_cast<int>(kLanguageCount);

int itemFor(const app::OfferedLanguages &languages, Language lang) {
  return static_cast<int>(std::ranges::find(languages, lang) - languages.begin());
}

}  // namespace

std::vector<int> itemsToRemove(const app::Edition &edition) {
  std::vector<int> items;
  for (int item = kLanguages - 1; item >= 0; --item) {
    if (!edition.languages.contains(static_cast<Language>(item))) items.push_back(item);
  }
  return items;
}

LanguageChoice choiceForCode(const app::Edition &edition, std::string_view code) {
  const Language wanted = languageFromCode(code).value_or(edition.fallback);
  const Language lang = edition.languages.contains(wanted) ? wanted : edition.fallback;
  return {.item = itemFor(edition.languages, lang), .lang = lang};
}

Language languageFromItem(std::string_view oem, int item) {
  if (item < 0 || item >= kLanguages) return Language::En;
  const app::Edition *edition = app::editionWithOem(oem);
  const auto index = static_cast<std::size_t>(item);
  if (edition != nullptr && index < edition->languages.size()) {
    return edition->languages[index];
  }
  return static_cast<Language>(item);
}

}  // namespace i18n
