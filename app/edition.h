#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "i18n/language.h"

namespace app {

/// The languages that an edition offers, in pop-up order. Holds at most all five.
struct OfferedLanguages {
  std::array<i18n::Language, i18n::kLanguageCount> items;
  std::size_t count;

  constexpr const i18n::Language *begin() const { return items.data(); }
  constexpr const i18n::Language *end() const { return items.data() + count; }
  constexpr std::size_t size() const { return count; }
};

/// One re-branded edition of the agent product. Strings are UTF-8.
struct Edition {
  std::string_view oem;                ///< names the edition; fixed per build
  std::string_view appName;            ///< window title
  std::string_view captionName;        ///< part of the caption of the server field
  std::string_view installFolder;      ///< where the agent is installed, without a final slash
  std::string_view profileIdentifier;  ///< bundle identifier of the agent's management profile
  std::string_view changeLanguage;     ///< the settings window's method that takes a stored code
  OfferedLanguages languages;
  int initialLanguageItem;  ///< pop-up item selected before the stored settings are read
  i18n::Language fallback;  ///< taken for a stored code that the edition does not offer
  bool showsNotAdminMessageInAllLanguages;  ///< the start-up refusal; else in English and French
};

/// Every edition; the first row is the default of lookups that need one. A new edition is one row
/// here and one `changeLanguage` method in the settings window.
inline constexpr std::array<Edition, 4> kEditions{{
    {.oem = "Quorvix",
     .appName = "Oskel Configuration Utility",
     .captionName = "Oskel",
     .installFolder = "/Applications/Quorvix/QuorvixOskel",
     .profileIdentifier = "com.quorvix.oskel.agent",
     .changeLanguage = "changeLanguageOskel:",
     .languages = {{i18n::Language::En, i18n::Language::Fr, i18n::Language::It, i18n::Language::Ge,
                    i18n::Language::Es},
                   5},
     .initialLanguageItem = 0,
     .fallback = i18n::Language::En,
     .showsNotAdminMessageInAllLanguages = true},
    {.oem = "Zentavo",
     .appName = "Zentavo Configuration Utility",
     .captionName = "Zentavo",
     .installFolder = "/Applications/Zentavo/ZentavoVardex",
     .profileIdentifier = "com.zentavo.vardex.agent",
     .changeLanguage = "changeLanguageZentavo:",
     .languages = {{i18n::Language::En, i18n::Language::Fr}, 2},
     .initialLanguageItem = 1,
     .fallback = i18n::Language::Fr,
     .showsNotAdminMessageInAllLanguages = false},
    {.oem = "Fennrow",
     .appName = "Fennrow Configuration Utility",
     .captionName = "Fennrow",
     .installFolder = "/Applications/Fennrow/FennrowLumar",
     .profileIdentifier = "com.fennrow.lumar.agent",
     .changeLanguage = "changeLanguageFennrow:",
     .languages = {{i18n::Language::En}, 1},
     .initialLanguageItem = 0,
     .fallback = i18n::Language::En,
     .showsNotAdminMessageInAllLanguages = false},
    {.oem = "Tollwick",
     .appName = "Tollwick Configuration Utility",
     .captionName = "Tollwick",
     .installFolder = "/Applications/Tollwick/TollwickOmbrel",
     .profileIdentifier = "de.tollwick.ombrel.agent",
     .changeLanguage = "changeLanguageTollwick:",
     .languages = {{i18n::Language::En, i18n::Language::Ge}, 2},
     .initialLanguageItem = 1,
     .fallback = i18n::Language::Ge,
     .showsNotAdminMessageInAllLanguages = false},
}};

/// The edition with that `oem` value, compared exactly; null when there is none.
constexpr const Edition *editionWithOem(std::string_view oem) {
  for (const Edition &edition : kEditions) {
    if (edition.oem == oem) return &edition;
  }
  return nullptr;
}

/// The edition with that window title, compared exactly; null when there is none.
constexpr const Edition *editionWithTitle(std::string_view appName) {
  for (const Edition &edition : kEditions) {
    if (edition.appName == appName) return &edition;
  }
  return nullptr;
}

/// The edition with that `oem` value, else the first row: what everything on disk goes by.
constexpr const Edition &editionOrDefault(std::string_view oem) {
  const Edition *edition = editionWithOem(oem);
  return edition != nullptr ? *edition : kEditions.front();
}

}  // namespace app
