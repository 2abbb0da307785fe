#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <initializer_list>
#include <string_view>

#include "app/enumerators.h"
#include "i18n/language.h"

namespace app {

/// Names the rows of the edition table, in its order.
enum class EditionId { Oskel, Zentavo, Fennrow, Tollwick };

/// The languages that an edition offers, in pop-up order. A list that is longer than the
/// enumeration does not compile.
class OfferedLanguages {
 public:
  consteval OfferedLanguages(std::initializer_list<i18n::Language> languages) {
    for (const i18n::Language lang : languages) items_[count_++] = lang;
  }
  constexpr const i18n::Language *begin() const { return items_.data(); }
  constexpr const i18n::Language *end() const { return items_.data() + count_; }
  constexpr std::size_t size() const { return count_; }
  constexpr bool contains(i18n::Language lang) const {
    return std::ranges::find(*this, lang) != end();
  }
  constexpr i18n::Language operator[](std::size_t item) const { return items_[item]; }

 private:
  std::array<i18n::Language, i18n::kLanguageCount> items_{};
  std::size_t count_ = 0;
};

/// One re-branded edition of the agent product. Strings are UTF-8.
struct Edition {
  EditionId id;
  std::string_view oem;                ///< names the edition; fixed per build
  std::string_view appName;            ///< window title
  std::string_view captionName;        ///< part of the caption of the server field
  std::string_view installFolder;      ///< where the agent is installed, without a final slash
  std::string_view profileIdentifier;  ///< bundle identifier of the agent's management profile
  OfferedLanguages languages;
  std::size_t initialLanguageItem;  ///< pop-up item selected before the stored settings are read
  i18n::Language fallback;          ///< used for a stored code that the edition does not offer
  bool showsNotAdminMessageInAllLanguages;  ///< else in English and French
};

/// Every edition. Lookups that need a default use the first row. A new edition is one
/// `EditionId` and one row here, and one `changeLanguage` method in the settings window; the
/// compiler reports whichever is missing.
inline constexpr auto kEditions = std::to_array<Edition>({
    {.id = EditionId::Oskel,
     .oem = "Quorvix",
     .appName = "Oskel Configuration Utility",
     .captionName = "Oskel",
     .installFolder = "/Applications/Quorvix/QuorvixOskel",
     .profileIdentifier = "com.quorvix.oskel.agent",
     .languages = {i18n::Language::En, i18n::Language::Fr, i18n::Language::It, i18n::Language::Ge,
                   i18n::Language::Es},
     .initialLanguageItem = 0,
     .fallback = i18n::Language::En,
     .showsNotAdminMessageInAllLanguages = true},
    {.id = EditionId::Zentavo,
     .oem = "Zentavo",
     .appName = "Zentavo Configuration Utility",
     .captionName = "Zentavo",
     .installFolder = "/Applications/Zentavo/ZentavoVardex",
     .profileIdentifier = "com.zentavo.vardex.agent",
     .languages = {i18n::Language::En, i18n::Language::Fr},
     .initialLanguageItem = 1,
     .fallback = i18n::Language::Fr,
     .showsNotAdminMessageInAllLanguages = false},
    {.id = EditionId::Fennrow,
     .oem = "Fennrow",
     .appName = "Fennrow Configuration Utility",
     .captionName = "Fennrow",
     .installFolder = "/Applications/Fennrow/FennrowLumar",
     .profileIdentifier = "com.fennrow.lumar.agent",
     .languages = {i18n::Language::En},
     .initialLanguageItem = 0,
     .fallback = i18n::Language::En,
     .showsNotAdminMessageInAllLanguages = false},
    {.id = EditionId::Tollwick,
     .oem = "Tollwick",
     .appName = "Tollwick Configuration Utility",
     .captionName = "Tollwick",
     .installFolder = "/Applications/Tollwick/TollwickOmbrel",
     .profileIdentifier = "de.tollwick.ombrel.agent",
     .languages = {i18n::Language::En, i18n::Language::Ge},
     .initialLanguageItem = 1,
     .fallback = i18n::Language::Ge,
     .showsNotAdminMessageInAllLanguages = false},
});

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

constexpr const Edition &editionWithId(EditionId id) {
  return kEditions[static_cast<std::size_t>(id)];
}

/// The edition with that `oem` value, else the first row. Decides paths and the profile identifier.
constexpr const Edition &editionOrDefault(std::string_view oem) {
  const Edition *edition = editionWithOem(oem);
  return edition != nullptr ? *edition : kEditions.front();
}

namespace detail {

/// Whether no column was forgotten, none contradicts another, and the row can be found.
constexpr bool isComplete(const Edition &edition) {
  return !edition.captionName.empty() && edition.installFolder.starts_with('/') &&
         !edition.profileIdentifier.empty() && edition.languages.contains(edition.fallback) &&
         edition.initialLanguageItem < edition.languages.size() &&
         editionWithOem(edition.oem) == &edition && editionWithTitle(edition.appName) == &edition;
}

}  // namespace detail

static_assert(hasRowForEach(kEditions, &Edition::id));
static_assert(std::ranges::all_of(kEditions, detail::isComplete));
static_assert(kEditions.front().languages.size() == i18n::kLanguageCount,
              "the first edition offers every language");

}  // namespace app
