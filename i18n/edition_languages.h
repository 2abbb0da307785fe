#pragma once

#include <string_view>
#include <vector>

#include "app/edition.h"
#include "i18n/language.h"

/// How an edition's language pop-up maps to languages and stored codes. Item indices are those of
/// the trimmed pop-up unless said otherwise.
namespace i18n {

/// Items of the full five-item pop-up that the edition does not offer, highest index first, so that
/// each can be removed by its index in the full list.
std::vector<int> itemsToRemove(const app::Edition &edition);

struct LanguageChoice {
  int item;
  Language lang;
  bool operator==(const LanguageChoice &) const = default;
};

/// What the edition selects for a stored code: the language itself where offered, else the
/// edition's own fallback, also for unknown, empty and differently cased codes.
LanguageChoice choiceForCode(const app::Edition &edition, std::string_view code);

/// The language of the selected item (-1 when none is). Items beyond what the edition offers, and
/// every item of an unknown `oem`, count as those of the full pop-up; out of range gives English.
Language languageFromItem(std::string_view oem, int item);

}  // namespace i18n
