#include "i18n/window_strings.h"

#include <gtest/gtest.h>

namespace {

using enum i18n::Language;
using i18n::JsonData;
using Titles = std::vector<std::string>;

/// Every string is the name of its field, so that swapped fields show.
JsonData::Info distinctInfo() {
  JsonData::Info info;
  info.Common.quit = "quit";
  info.Common.apply = "apply";
  info.Common.port = "port";
  info.Common.server = "server";
  info.Common.test = "test";
  info.Common.settings = "settings";
  info.Common.reset_settings = "reset_settings";
  info.Language = {.lang = "lang",
                   .english = "english",
                   .french = "french",
                   .spanish = "spanish",
                   .italian = "italian",
                   .german = "german"};
  return info;
}

TEST(SettingsStrings, ComeFromTheEntryWithColonsWhereCaptionsNeedThem) {
  const i18n::SettingsStrings strings = i18n::settingsStrings(distinctInfo(), En, "Zentavo");
  EXPECT_EQ(strings.settings, "settings");
  EXPECT_EQ(strings.language, "lang:");
  EXPECT_EQ(strings.server, "Zentavo server:");
  EXPECT_EQ(strings.quit, "quit");
  EXPECT_EQ(strings.apply, "apply");
  EXPECT_EQ(strings.port, "port:");
  EXPECT_EQ(strings.test, "test");
  EXPECT_EQ(strings.reset_settings, "reset_settings");
}

TEST(SettingsStrings, HaveAFixedHintAndServerCaptionAndTestResultsInEachLanguage) {
  using enum i18n::TestResult;
  struct {
    i18n::Language lang;
    const char *hint;
    std::string beforeWord, afterWord;
    const char *notTested, *reachable, *unreachable;
  } const rows[] = {
      {En, "ip or hostname", "", " server:", "Not tested", "Server reachable",
       "Server unreachable"},
      {Fr, "ip ou <nom de machine>", "server ", ":", "Non testé", "Serveur joignable",
       "Serveur injoignable"},
      {It, "ip o <Nome host>", "server ", ":", "Non verificato", "Server raggiungibile",
       "Server non raggiungibile"},
      {Ge, "ip oder Hostname", "", "-server:", "Nicht getestet", "Server erreichbar",
       "Server nicht erreichbar"},
      {Es, "ip o <nombre de host>", "server ", ":", "Sin probar", "Servidor accesible",
       "Servidor inaccesible"},
  };
  const std::pair<const char *, const char *> editions[] = {
      {"Quorvix", "Oskel"},     {"Zentavo", "Zentavo"}, {"Fennrow", "Fennrow"},
      {"Tollwick", "Tollwick"}, {"Unknown", "Unknown"}, {"", ""}};
  for (const auto &row : rows) {
    for (const auto &[oem, word] : editions) {
      const auto strings = i18n::settingsStrings(distinctInfo(), row.lang, oem);
      EXPECT_EQ(strings.serverHint, row.hint);
      EXPECT_EQ(strings.server, row.beforeWord + word + row.afterWord);
    }
    EXPECT_EQ(i18n::testResultString(NotTested, row.lang), row.notTested);
    EXPECT_EQ(i18n::testResultString(Reachable, row.lang), row.reachable);
    EXPECT_EQ(i18n::testResultString(Unreachable, row.lang), row.unreachable);
  }
}

TEST(LanguageTitles, AreThoseThatTheEditionOffersInPopUpOrder) {
  const auto names = distinctInfo().Language;
  const Titles all{"english", "french", "italian", "german", "spanish"};
  EXPECT_EQ(i18n::languageTitles(names, "Quorvix"), all);
  EXPECT_EQ(i18n::languageTitles(names, "Zentavo"), (Titles{"english", "french"}));
  EXPECT_EQ(i18n::languageTitles(names, "Fennrow"), (Titles{"english"}));
  EXPECT_EQ(i18n::languageTitles(names, "Tollwick"), (Titles{"english", "german"}));
  EXPECT_EQ(i18n::languageTitles(names, "Unknown"), all);
}

}  // namespace
