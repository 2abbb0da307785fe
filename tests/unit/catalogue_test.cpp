#include "i18n/catalogue.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "doubles/scratch_folder.h"

namespace {

using i18n::DecodedCatalogue;
using i18n::JsonData;
using Json = nlohmann::ordered_json;

const std::vector<std::string> kLanguages{"En", "Fr", "Es", "It", "Ge"};
const std::map<std::string, std::vector<std::string>> kGroups{
    {"Common", {"quit",           "select",   "cancel",   "apply",   "restart", "refresh",
                "terminate",      "ok",       "back",     "reset",   "reject",  "accept",
                "_import",        "export",   "port",     "server",  "test",    "settings",
                "reset_settings", "username", "password", "adminmsg"}},
    {"Language", {"lang", "english", "french", "spanish", "italian", "german"}},
    {"About", {"about", "agent", "version"}},
};

/// Every value is its own path, so that swapped fields show.
Json completeCatalogue() {
  Json catalogue;
  for (const std::string &language : kLanguages) {
    for (const auto &[group, keys] : kGroups) {
      for (const std::string &key : keys) {
        catalogue[language][group][key] = language + "." + group + "." + key;
      }
    }
  }
  return catalogue;
}

std::string errorFor(const Json &catalogue) {
  const DecodedCatalogue decoded = i18n::decodeCatalogue(catalogue.dump());
  EXPECT_FALSE(decoded.catalogue);
  return decoded.error;
}

TEST(Catalogue, PutsEveryStringIntoItsOwnField) {
  const DecodedCatalogue decoded = i18n::decodeCatalogue(completeCatalogue().dump());
  ASSERT_TRUE(decoded.catalogue) << decoded.error;
  const std::pair<std::string, const JsonData::Info &> entries[] = {{"En", decoded.catalogue->En},
                                                                    {"Fr", decoded.catalogue->Fr},
                                                                    {"Es", decoded.catalogue->Es},
                                                                    {"It", decoded.catalogue->It},
                                                                    {"Ge", decoded.catalogue->Ge}};
  for (const auto &[name, info] : entries) {
    const std::string common = name + ".Common.";
    EXPECT_EQ(info.Common.quit, common + "quit");
    EXPECT_EQ(info.Common.select, common + "select");
    EXPECT_EQ(info.Common.cancel, common + "cancel");
    EXPECT_EQ(info.Common.apply, common + "apply");
    EXPECT_EQ(info.Common.restart, common + "restart");
    EXPECT_EQ(info.Common.refresh, common + "refresh");
    EXPECT_EQ(info.Common.terminate, common + "terminate");
    EXPECT_EQ(info.Common.ok, common + "ok");
    EXPECT_EQ(info.Common.back, common + "back");
    EXPECT_EQ(info.Common.reset, common + "reset");
    EXPECT_EQ(info.Common.reject, common + "reject");
    EXPECT_EQ(info.Common.accept, common + "accept");
    EXPECT_EQ(info.Common._import, common + "_import");
    EXPECT_EQ(info.Common.export_, common + "export");
    EXPECT_EQ(info.Common.port, common + "port");
    EXPECT_EQ(info.Common.server, common + "server");
    EXPECT_EQ(info.Common.test, common + "test");
    EXPECT_EQ(info.Common.settings, common + "settings");
    EXPECT_EQ(info.Common.reset_settings, common + "reset_settings");
    EXPECT_EQ(info.Common.username, common + "username");
    EXPECT_EQ(info.Common.password, common + "password");
    EXPECT_EQ(info.Common.adminmsg, common + "adminmsg");
    EXPECT_EQ(info.Language.lang, name + ".Language.lang");
    EXPECT_EQ(info.Language.english, name + ".Language.english");
    EXPECT_EQ(info.Language.french, name + ".Language.french");
    EXPECT_EQ(info.Language.spanish, name + ".Language.spanish");
    EXPECT_EQ(info.Language.italian, name + ".Language.italian");
    EXPECT_EQ(info.Language.german, name + ".Language.german");
    EXPECT_EQ(info.About.about, name + ".About.about");
    EXPECT_EQ(info.About.agent, name + ".About.agent");
    EXPECT_EQ(info.About.version, name + ".About.version");
  }
}

TEST(Catalogue, IsRejectedAsAWholeForAnyMissingString) {
  for (const std::string &language : kLanguages) {
    for (const auto &[group, keys] : kGroups) {
      for (const std::string &key : keys) {
        Json catalogue = completeCatalogue();
        catalogue[language][group].erase(key);
        EXPECT_EQ(errorFor(catalogue), language + "." + group + "." + key + ": missing");
      }
    }
  }
}

TEST(Catalogue, IsRejectedForAMissingGroupOrLanguage) {
  for (const std::string &language : kLanguages) {
    Json catalogue = completeCatalogue();
    catalogue.erase(language);
    EXPECT_EQ(errorFor(catalogue), language + ": missing");
    for (const auto &[group, keys] : kGroups) {
      catalogue = completeCatalogue();
      catalogue[language].erase(group);
      EXPECT_EQ(errorFor(catalogue), language + "." + group + ": missing");
    }
  }
}

TEST(Catalogue, IsRejectedForAValueThatIsNotAString) {
  const std::pair<Json, const char *> values[] = {{nullptr, "null"},
                                                  {1, "a number"},
                                                  {1.5, "a number"},
                                                  {true, "a boolean"},
                                                  {false, "a boolean"},
                                                  {Json::array(), "an array"},
                                                  {Json::object(), "an object"}};
  for (const auto &[value, kind] : values) {
    Json catalogue = completeCatalogue();
    catalogue["En"]["About"]["version"] = value;
    EXPECT_EQ(errorFor(catalogue),
              std::string("En.About.version: expected a string, found ") + kind);
  }
}

TEST(Catalogue, IsRejectedForAGroupThatIsNotAnObject) {
  Json catalogue = completeCatalogue();
  catalogue["It"]["Common"] = "text";
  EXPECT_EQ(errorFor(catalogue), "It.Common: expected an object, found a string");
  catalogue = completeCatalogue();
  catalogue["Ge"] = nullptr;
  EXPECT_EQ(errorFor(catalogue), "Ge: expected an object, found null");
  EXPECT_EQ(errorFor(Json::array()), "expected an object, found an array");
}

TEST(Catalogue, RequiresTheUnderscoreOfImport) {
  Json catalogue = completeCatalogue();
  for (const std::string &language : kLanguages) {
    Json &common = catalogue[language]["Common"];
    common["import"] = common["_import"];
    common.erase("_import");
  }
  EXPECT_EQ(errorFor(catalogue), "En.Common._import: missing");
}

TEST(Catalogue, IgnoresUnknownKeysAndTheirOrder) {
  Json catalogue = completeCatalogue();
  catalogue["Pt"] = 5;
  catalogue["En"]["Common"]["extra"] = nullptr;
  catalogue["En"]["Extra"] = Json::array();
  EXPECT_TRUE(i18n::decodeCatalogue(catalogue.dump()).catalogue);
  EXPECT_TRUE(i18n::decodeCatalogue(nlohmann::json(completeCatalogue()).dump()).catalogue);
}

TEST(Catalogue, AcceptsEmptyAndNonLatinStrings) {
  Json catalogue = completeCatalogue();
  catalogue["En"]["Common"]["quit"] = "";
  catalogue["Ge"]["Common"]["quit"] = "\xC3\xA4\xE6\x97\xA5\xF0\x9F\x98\x80\"\\\n";
  const DecodedCatalogue decoded = i18n::decodeCatalogue(catalogue.dump());
  ASSERT_TRUE(decoded.catalogue) << decoded.error;
  EXPECT_EQ(decoded.catalogue->En.Common.quit, "");
  EXPECT_EQ(decoded.catalogue->Ge.Common.quit, "\xC3\xA4\xE6\x97\xA5\xF0\x9F\x98\x80\"\\\n");
}

TEST(Catalogue, ThatIsNotValidJSONIsRejectedWithThePosition) {
  const DecodedCatalogue decoded = i18n::decodeCatalogue("{\n  \"En\": {,}\n}");
  EXPECT_FALSE(decoded.catalogue);
  EXPECT_NE(decoded.error.find("line 2"), std::string::npos) << decoded.error;
  for (const char *text : {"", "{", "null", "\"text\"", "5", "\xFF", "{\"En\":\"\\ud800\"}"}) {
    const DecodedCatalogue bad = i18n::decodeCatalogue(text);
    EXPECT_FALSE(bad.catalogue) << text;
    EXPECT_NE(bad.error, "") << text;
  }
}

TEST(Catalogue, CutOffAnywhereIsRejected) {
  const std::string text = completeCatalogue().dump();
  for (std::size_t length = 0; length < text.size(); length += 37) {
    EXPECT_FALSE(i18n::decodeCatalogue(text.substr(0, length)).catalogue) << length;
  }
}

TEST(ShippedCatalogue, AsksForALogin) {
  const Json catalogue = Json::parse(doubles::ScratchFolder::read(RESOURCES "/translate.json"));
  const auto common = [&](const char *entry, const char *key) {
    return catalogue.at(entry).at("Common").at(key).get<std::string>();
  };
  EXPECT_EQ(common("En", "adminmsg"),
            "Enter an administrator's name and password to change the agent's settings.");
  EXPECT_EQ(common("En", "username"), "User Name:");
  EXPECT_EQ(common("En", "password"), "Password:");
  EXPECT_EQ(common("Fr", "username"), "Nom d’utilisateur\u00A0:");
  EXPECT_EQ(common("Fr", "password"), "Mot de passe\u00A0:");
  EXPECT_EQ(common("Ge", "adminmsg"),
            "Name und Passwort eines Administrators eingeben, um die Einstellungen des Agenten zu "
            "ändern.");
}

TEST(ShippedCatalogue, TitlesTheButtonsOfTheWindows) {
  const Json catalogue = Json::parse(doubles::ScratchFolder::read(RESOURCES "/translate.json"));
  const std::map<std::string, std::array<std::string, 4>> expected{
      {"En", {"OK", "Quit", "Test", "Apply"}},
      {"Fr", {"OK", "Quitter", "Tester", "Appliquer"}},
      {"Es", {"Aceptar", "Salir", "Probar", "Aplicar"}},
      {"It", {"OK", "Esci", "Verifica", "Applica"}},
      {"Ge", {"OK", "Beenden", "Testen", "Anwenden"}},
  };
  for (const auto &[entry, titles] : expected) {
    const Json &common = catalogue.at(entry).at("Common");
    EXPECT_EQ((std::array<std::string, 4>{common.at("ok"), common.at("quit"), common.at("test"),
                                          common.at("apply")}),
              titles)
        << entry;
  }
}

TEST(ShippedCatalogue, NamesEveryLanguageInEveryLanguage) {
  const std::string text = doubles::ScratchFolder::read(RESOURCES "/translate.json");
  const Json catalogue = Json::parse(text);
  const std::map<std::string, std::array<std::string, 5>> expected{
      {"En", {"English", "French", "Spanish", "Italian", "German"}},
      {"Fr", {"Anglais", "Français", "Espagnol", "Italien", "Allemand"}},
      {"Es", {"Inglés", "Francés", "Español", "Italiano", "Alemán"}},
      {"It", {"Inglese", "Francese", "Spagnolo", "Italiano", "Tedesco"}},
      {"Ge", {"Englisch", "Französisch", "Spanisch", "Italienisch", "Deutsch"}},
  };
  for (const auto &[entry, names] : expected) {
    const Json &shown = catalogue.at(entry).at("Language");
    EXPECT_EQ(
        (std::array<std::string, 5>{shown.at("english"), shown.at("french"), shown.at("spanish"),
                                    shown.at("italian"), shown.at("german")}),
        names)
        << entry;
  }
}

TEST(ShippedCatalogue, IsCompleteWithColonsOnlyInTheLabelsOfTheLogin) {
  const std::string text = doubles::ScratchFolder::read(RESOURCES "/translate.json");
  const DecodedCatalogue decoded = i18n::decodeCatalogue(text);
  ASSERT_TRUE(decoded.catalogue) << decoded.error;
  const Json catalogue = Json::parse(text);
  for (const auto &[language, groups] : catalogue.items()) {
    for (const auto &[group, keys] : groups.items()) {
      for (const auto &[key, value] : keys.items()) {
        const auto shown = value.get<std::string>();
        const std::string place = language + "." + group + "." + key + ": " + shown;
        ASSERT_FALSE(shown.empty()) << place;
        const bool isLoginLabel = key == "username" || key == "password";
        EXPECT_EQ(shown.find(':'), isLoginLabel ? shown.size() - 1 : std::string::npos) << place;
        EXPECT_EQ(shown.find("  "), std::string::npos) << place;
        EXPECT_NE(shown.front(), ' ') << place;
        EXPECT_NE(shown.back(), ' ') << place;
      }
    }
  }
}

}  // namespace
