#include "i18n/edition_languages.h"

#include <algorithm>

namespace i18n {
namespace {

int itemIndexFor(const app::OfferedLanguages &languages, Language lang) {
  return static_cast<int>(std::ranges::find(languages, lang) - languages.begin());
}

bool offers(const app::OfferedLanguages &languages, Language lang) {
  return std::ranges::find(languages, lang) != languages.end();
}

}  // namespace

std::vector<int> itemsToRemove(const app::Edition &edition) {
  std::vector<int> items;
  for (int item = kLanguageCount - 1; item >= 0; --item) {
    if (!offers(edition.languages, static_cast<Language>(item))) items.push_back(item);
  }
  return items;
}

LanguageChoice choiceForCode(const app::Edition &edition, std::string_view code) {
  const Language wanted = languageFromCode(code).value_or(edition.fallback);
  const Language lang = offers(edition.languages, wanted) ? wanted : edition.fallback;
  return {.item = itemIndexFor(edition.languages, lang), .lang = lang};
}

Language languageFromItem(std::string_view oem, int item) {
  if (item < 0 || item >= kLanguageCount) return Language::En;
  const app::Edition *edition = app::editionWithOem(oem);
  const auto index = static_cast<std::size_t>(item);
  if (edition != nullptr && index < edition->languages.size()) {
    return edition->languages.items[index];
  }
  return static_cast<Language>(item);
}

}  // namespace i18n
