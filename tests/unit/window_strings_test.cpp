#include "i18n/window_strings.h"

#include <gtest/gtest.h>

namespace {

using enum i18n::Language;
using i18n::JsonData;
using Titles = std::vector<std::string>;

/// Every field is different, so that swapped ones show.
JsonData::Info distinctInfo(const std::string &prefix) {
  JsonData::Info info;
  info.Common.quit = prefix + "quit";
  info.Common.apply = prefix + "apply";
  info.Common.port = prefix + "port";
  info.Common.server = prefix + "server";
  info.Common.test = prefix + "test";
  info.Common.settings = prefix + "settings";
  info.Common.reset_settings = prefix + "reset_settings";
  info.Language = {.lang = prefix + "lang",
                   .english = prefix + "english",
                   .french = prefix + "french",
                   .spanish = prefix + "spanish",
                   .italian = prefix + "italian",
                   .german = prefix + "german"};
  return info;
}

TEST(CatalogueEntry, IsPickedByLanguageAndNotByPosition) {
  JsonData data;
  data.En.Common.quit = "English";
  data.Fr.Common.quit = "French";
  data.Es.Common.quit = "Spanish";
  data.It.Common.quit = "Italian";
  data.Ge.Common.quit = "German";
  EXPECT_EQ(i18n::infoFor(data, En).Common.quit, "English");
  EXPECT_EQ(i18n::infoFor(data, Fr).Common.quit, "French");
  EXPECT_EQ(i18n::infoFor(data, It).Common.quit, "Italian");
  EXPECT_EQ(i18n::infoFor(data, Ge).Common.quit, "German");
  EXPECT_EQ(i18n::infoFor(data, Es).Common.quit, "Spanish");
}

TEST(SettingsStrings, ComeFromTheEntryWithColonsWhereCaptionsNeedThem) {
  const i18n::SettingsStrings strings = i18n::settingsStrings(distinctInfo("x-"), En, "Zentavo");
  EXPECT_EQ(strings.settings, "x-settings");
  EXPECT_EQ(strings.language, "x-lang:");
  EXPECT_EQ(strings.server, "Zentavo x-server:");
  EXPECT_EQ(strings.quit, "x-quit");
  EXPECT_EQ(strings.apply, "x-apply");
  EXPECT_EQ(strings.port, "x-port:");
  EXPECT_EQ(strings.test, "x-test");
  EXPECT_EQ(strings.reset_settings, "x-reset_settings");
}

TEST(ServerHint, IsFixedPerLanguage) {
  const JsonData::Info info = distinctInfo("");
  EXPECT_EQ(i18n::settingsStrings(info, En, "Zentavo").serverHint, "ip or hostname");
  EXPECT_EQ(i18n::settingsStrings(info, Fr, "Zentavo").serverHint, "ip ou <nom de machine>");
  EXPECT_EQ(i18n::settingsStrings(info, It, "Zentavo").serverHint, "ip o <Nome host>");
  EXPECT_EQ(i18n::settingsStrings(info, Ge, "Zentavo").serverHint, "ip oder Hostname");
  EXPECT_EQ(i18n::settingsStrings(info, Es, "Zentavo").serverHint, "ip o <nombre de host>");
}

TEST(TestResult, IsNamedInEveryLanguage) {
  using enum i18n::TestResult;
  const std::tuple<i18n::Language, const char *, const char *, const char *> rows[] = {
      {En, "Not tested", "Server reachable", "Server unreachable"},
      {Fr, "Non testé", "Serveur joignable", "Serveur injoignable"},
      {It, "Non verificato", "Server raggiungibile", "Server non raggiungibile"},
      {Ge, "Nicht getestet", "Server erreichbar", "Server nicht erreichbar"},
      {Es, "Sin probar", "Servidor accesible", "Servidor inaccesible"},
  };
  for (const auto &[lang, notTested, reachable, unreachable] : rows) {
    EXPECT_EQ(i18n::testResultString(NotTested, lang), notTested);
    EXPECT_EQ(i18n::testResultString(Reachable, lang), reachable);
    EXPECT_EQ(i18n::testResultString(Unreachable, lang), unreachable);
  }
}

TEST(ServerCaption, JoinsTheEditionWordAsTheLanguageDoes) {
  struct {
    const char *oem, *word;
  } const editions[] = {{"Quorvix", "Oskel"},     {"Zentavo", "Zentavo"}, {"Fennrow", "Fennrow"},
                        {"Tollwick", "Tollwick"}, {"Unknown", "Unknown"}, {"", ""}};
  JsonData::Info info;
  info.Common.server = "S";
  for (const auto &[oem, word] : editions) {
    SCOPED_TRACE(oem);
    const std::string w = word;
    EXPECT_EQ(i18n::settingsStrings(info, En, oem).server, w + " S:");
    EXPECT_EQ(i18n::settingsStrings(info, Fr, oem).server, "S " + w + ":");
    EXPECT_EQ(i18n::settingsStrings(info, It, oem).server, "S " + w + ":");
    EXPECT_EQ(i18n::settingsStrings(info, Ge, oem).server, w + "-S:");
    EXPECT_EQ(i18n::settingsStrings(info, Es, oem).server, "S " + w + ":");
  }
}

TEST(LanguageTitles, AreThoseThatTheEditionOffersInPopUpOrder) {
  const auto names = distinctInfo("").Language;
  const Titles all{"english", "french", "italian", "german", "spanish"};
  EXPECT_EQ(i18n::languageTitles(names, "Quorvix"), all);
  EXPECT_EQ(i18n::languageTitles(names, "Zentavo"), (Titles{"english", "french"}));
  EXPECT_EQ(i18n::languageTitles(names, "Fennrow"), (Titles{"english"}));
  EXPECT_EQ(i18n::languageTitles(names, "Tollwick"), (Titles{"english", "german"}));
  EXPECT_EQ(i18n::languageTitles(names, "Unknown"), all);
}

}  // namespace
