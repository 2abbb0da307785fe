#include <gtest/gtest.h>

#include "i18n/edition_languages.h"
#include "i18n/language.h"

namespace {

using enum i18n::Language;
using i18n::Language;
using i18n::LanguageChoice;

const app::Edition &edition(const char *oem) { return *app::editionWithOem(oem); }

TEST(Language, IsNumberedInPopUpOrderAndStoredByItsCode) {
  struct {
    int number;
    Language lang;
    const char *code;
  } const rows[] = {{0, En, "en"}, {1, Fr, "fr"}, {2, It, "it"}, {3, Ge, "de"}, {4, Es, "es"}};
  for (const auto &row : rows) {
    EXPECT_EQ(static_cast<int>(row.lang), row.number);
    EXPECT_EQ(i18n::getLanguageType(row.lang), row.code);
    EXPECT_EQ(i18n::languageFromCode(row.code), row.lang);
  }
}

TEST(Language, IsFoundOnlyByItsExactCodeAndHasNoneOutsideTheEnum) {
  for (const char *code : {"", "EN", "ge", "xx", "en ", " en", "e", "eng", "en-US"}) {
    EXPECT_EQ(i18n::languageFromCode(code), std::nullopt) << "'" << code << "'";
  }
  EXPECT_EQ(i18n::getLanguageType(static_cast<Language>(5)), "");
  EXPECT_EQ(i18n::getLanguageType(static_cast<Language>(-1)), "");
}

TEST(Trimming, RemovesWhatTheEditionDoesNotOfferFromTheEndAndSelectsItsInitialItem) {
  struct {
    const char *oem;
    std::vector<int> removed;
    std::size_t initialItem;
  } const rows[] = {{"Quorvix", {}, 0},
                    {"Zentavo", {4, 3, 2}, 1},
                    {"Fennrow", {4, 3, 2, 1}, 0},
                    {"Tollwick", {4, 2, 1}, 1}};
  for (const auto &row : rows) {
    EXPECT_EQ(i18n::itemsToRemove(edition(row.oem)), row.removed) << row.oem;
    EXPECT_EQ(edition(row.oem).initialLanguageItem, row.initialItem) << row.oem;
  }
}

TEST(StoredCode, SelectsByTheRuleOfItsEdition) {
  struct {
    const char *code;
    LanguageChoice oskel, zentavo, fennrow, tollwick;
  } const rows[] = {
      {"en", {0, En}, {0, En}, {0, En}, {0, En}}, {"fr", {1, Fr}, {1, Fr}, {0, En}, {1, Ge}},
      {"it", {2, It}, {1, Fr}, {0, En}, {1, Ge}}, {"de", {3, Ge}, {1, Fr}, {0, En}, {1, Ge}},
      {"es", {4, Es}, {1, Fr}, {0, En}, {1, Ge}}, {"xx", {0, En}, {1, Fr}, {0, En}, {1, Ge}},
      {"", {0, En}, {1, Fr}, {0, En}, {1, Ge}},   {"EN", {0, En}, {1, Fr}, {0, En}, {1, Ge}},
      {"De", {0, En}, {1, Fr}, {0, En}, {1, Ge}},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(row.code);
    EXPECT_EQ(i18n::choiceForCode(edition("Quorvix"), row.code), row.oskel);
    EXPECT_EQ(i18n::choiceForCode(edition("Zentavo"), row.code), row.zentavo);
    EXPECT_EQ(i18n::choiceForCode(edition("Fennrow"), row.code), row.fennrow);
    EXPECT_EQ(i18n::choiceForCode(edition("Tollwick"), row.code), row.tollwick);
  }
}

TEST(SelectedItem, IsTheLanguageOfThatNumberExceptGermanInTollwick) {
  for (const char *oem : {"Quorvix", "Zentavo", "Fennrow", "Tollwick", "Unknown", ""}) {
    SCOPED_TRACE(oem);
    EXPECT_EQ(i18n::languageFromItem(oem, 0), En);
    EXPECT_EQ(i18n::languageFromItem(oem, 1), std::string(oem) == "Tollwick" ? Ge : Fr);
    EXPECT_EQ(i18n::languageFromItem(oem, 2), It);
    EXPECT_EQ(i18n::languageFromItem(oem, 3), Ge);
    EXPECT_EQ(i18n::languageFromItem(oem, 4), Es);
    for (const int outside : {-1, 5, 6, 1000, -2147483647 - 1}) {
      EXPECT_EQ(i18n::languageFromItem(oem, outside), En) << outside;
    }
  }
}

}  // namespace
