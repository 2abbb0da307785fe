#pragma once

#include <string_view>
#include <vector>

#include "app/edition.h"
#include "i18n/language.h"

/// How an edition's language pop-up maps to languages and stored codes. Item indices are those of
/// the trimmed pop-up unless said otherwise.
namespace i18n {

/// Items of the full five-item pop-up that the edition does not offer, highest index first, so that
/// each can be removed at its index in the full list.
std::vector<int> itemsToRemove(const app::Edition &edition);

struct LanguageChoice {
  int item;
  Language lang;
  bool operator==(const LanguageChoice &) const = default;
};

/// What the edition selects for a stored code: that language if the edition offers it, else the
/// edition's fallback, also for codes that are unknown, empty or in capitals.
LanguageChoice choiceForCode(const app::Edition &edition, std::string_view code);

/// The language of the selected item (-1 when there is none). Required: items beyond what the
/// edition offers, and every item of an unknown `oem`, count as items of the full pop-up; an item
/// outside that one is English.
Language languageFromItem(std::string_view oem, int item);

}  // namespace i18n
