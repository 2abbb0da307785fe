#include "i18n/catalogue.h"

#include <gtest/gtest.h>

#include <map>
#include <nlohmann/json.hpp>

#include "doubles/scratch_folder.h"

namespace {

using i18n::DecodedCatalogue;
using i18n::JsonData;
using Json = nlohmann::ordered_json;

using Info = JsonData::Info;

/// A key, and the field that its value belongs in. Written out again here, so that a field
/// exchanged in the program's own table shows.
template <class Record>
using Fields = std::map<std::string, std::string Record::*>;

using Common = struct Info::Common;
const Fields<Common> kCommon{{"quit", &Common::quit},
                             {"select", &Common::select},
                             {"cancel", &Common::cancel},
                             {"apply", &Common::apply},
                             {"restart", &Common::restart},
                             {"refresh", &Common::refresh},
                             {"terminate", &Common::terminate},
                             {"ok", &Common::ok},
                             {"back", &Common::back},
                             {"reset", &Common::reset},
                             {"reject", &Common::reject},
                             {"accept", &Common::accept},
                             {"_import", &Common::_import},
                             {"export", &Common::export_},
                             {"port", &Common::port},
                             {"server", &Common::server},
                             {"test", &Common::test},
                             {"settings", &Common::settings},
                             {"reset_settings", &Common::reset_settings},
                             {"username", &Common::username},
                             {"password", &Common::password},
                             {"adminmsg", &Common::adminmsg}};

using Names = struct Info::Language;
const Fields<Names> kNames{{"lang", &Names::lang},       {"english", &Names::english},
                           {"french", &Names::french},   {"spanish", &Names::spanish},
                           {"italian", &Names::italian}, {"german", &Names::german}};

using About = struct Info::About;
const Fields<About> kAbout{
    {"about", &About::about}, {"agent", &About::agent}, {"version", &About::version}};

struct Entry {
  const char *name;
  Info JsonData::*field;
  i18n::Language language;
};

constexpr Entry kEntries[] = {{"En", &JsonData::En, i18n::Language::En},
                              {"Fr", &JsonData::Fr, i18n::Language::Fr},
                              {"Es", &JsonData::Es, i18n::Language::Es},
                              {"It", &JsonData::It, i18n::Language::It},
                              {"Ge", &JsonData::Ge, i18n::Language::Ge}};

/// Calls back with the name of each entry, group and key.
template <class Callback>
void forEachString(Callback callback) {
  for (const Entry &entry : kEntries) {
    for (const auto &[key, field] : kCommon) callback(entry.name, "Common", key);
    for (const auto &[key, field] : kNames) callback(entry.name, "Language", key);
    for (const auto &[key, field] : kAbout) callback(entry.name, "About", key);
  }
}

/// Every value is its own path, so that swapped fields show.
Json completeCatalogue() {
  Json catalogue;
  forEachString([&](const std::string &entry, const std::string &group, const std::string &key) {
    catalogue[entry][group][key] = entry + "." + group + "." + key;
  });
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
  for (const auto &[name, field, language] : kEntries) {
    const Info &info = (*decoded.catalogue).*field;
    EXPECT_EQ(&i18n::infoFor(*decoded.catalogue, language), &info);
    const std::string entry = name;
    for (const auto &[key, text] : kCommon) EXPECT_EQ(info.Common.*text, entry + ".Common." + key);
    for (const auto &[key, text] : kNames)
      EXPECT_EQ(info.Language.*text, entry + ".Language." + key);
    for (const auto &[key, text] : kAbout) EXPECT_EQ(info.About.*text, entry + ".About." + key);
  }
}

TEST(Catalogue, IsRejectedAsAWholeForAnyMissingStringGroupOrLanguage) {
  forEachString([](const std::string &entry, const std::string &group, const std::string &key) {
    Json catalogue = completeCatalogue();
    catalogue[entry][group].erase(key);
    EXPECT_EQ(errorFor(catalogue), entry + "." + group + "." + key + ": missing");
    catalogue[entry].erase(group);
    EXPECT_EQ(errorFor(catalogue), entry + "." + group + ": missing");
    catalogue.erase(entry);
    EXPECT_EQ(errorFor(catalogue), entry + ": missing");
  });
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

Json shippedCatalogue() {
  return Json::parse(doubles::ScratchFolder::read(RESOURCES "/translate.json"));
}

TEST(ShippedCatalogue, AsksForALogin) {
  const Json catalogue = shippedCatalogue();
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

TEST(ShippedCatalogue, TitlesTheButtonsAndNamesTheLanguagesInEveryLanguage) {
  const Json catalogue = shippedCatalogue();
  const std::map<std::string, std::vector<std::string>> expected{
      {"En", {"OK", "Quit", "Test", "Apply", "English", "French", "Spanish", "Italian", "German"}},
      {"Fr",
       {"OK", "Quitter", "Tester", "Appliquer", "Anglais", "Français", "Espagnol", "Italien",
        "Allemand"}},
      {"Es",
       {"Aceptar", "Salir", "Probar", "Aplicar", "Inglés", "Francés", "Español", "Italiano",
        "Alemán"}},
      {"It",
       {"OK", "Esci", "Verifica", "Applica", "Inglese", "Francese", "Spagnolo", "Italiano",
        "Tedesco"}},
      {"Ge",
       {"OK", "Beenden", "Testen", "Anwenden", "Englisch", "Französisch", "Spanisch", "Italienisch",
        "Deutsch"}},
  };
  for (const auto &[entry, strings] : expected) {
    std::vector<std::string> shown;
    for (const char *key : {"ok", "quit", "test", "apply"}) {
      shown.push_back(catalogue.at(entry).at("Common").at(key));
    }
    for (const char *key : {"english", "french", "spanish", "italian", "german"}) {
      shown.push_back(catalogue.at(entry).at("Language").at(key));
    }
    EXPECT_EQ(shown, strings) << entry;
  }
}

TEST(ShippedCatalogue, IsCompleteWithColonsOnlyInTheLabelsOfTheLogin) {
  const Json catalogue = shippedCatalogue();
  const DecodedCatalogue decoded = i18n::decodeCatalogue(catalogue.dump());
  ASSERT_TRUE(decoded.catalogue) << decoded.error;
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
