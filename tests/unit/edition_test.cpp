#include "app/edition.h"

#include <gtest/gtest.h>

#include <sstream>

#include "app/app_statics.h"
#include "app/build_edition.h"
#include "doubles/scratch_folder.h"

namespace {

TEST(Editions, AreFoundByOemTitleAndId) {
  struct {
    const char *oem, *title;
    app::EditionId id;
  } const rows[] = {
      {"Quorvix", "Oskel Configuration Utility", app::EditionId::Oskel},
      {"Zentavo", "Zentavo Configuration Utility", app::EditionId::Zentavo},
      {"Fennrow", "Fennrow Configuration Utility", app::EditionId::Fennrow},
      {"Tollwick", "Tollwick Configuration Utility", app::EditionId::Tollwick},
  };
  EXPECT_EQ(app::kEditions.size(), std::size(rows));
  for (const auto &row : rows) {
    const app::Edition &edition = app::editionWithId(row.id);
    EXPECT_EQ(edition.oem, row.oem);
    EXPECT_EQ(edition.appName, row.title);
    EXPECT_EQ(&edition, app::editionWithOem(row.oem));
    EXPECT_EQ(&edition, app::editionWithTitle(row.title));
  }
}

TEST(Editions, AreComparedExactly) {
  for (const char *text : {"", "zentavo", "Zentavo ", "Oskel", "Zentavo Configuration Utility"}) {
    EXPECT_EQ(app::editionWithOem(text), nullptr) << text;
  }
  for (const char *text : {"", "Zentavo", "zentavo configuration utility"}) {
    EXPECT_EQ(app::editionWithTitle(text), nullptr) << text;
  }
}

TEST(EditionsFile, HoldsTheEditionTable) {
  std::ostringstream table;
  for (const app::Edition &edition : app::kEditions) {
    table << edition.oem << '\t' << edition.captionName << '\t' << edition.appName << '\t'
          << edition.installFolder << '\t' << edition.profileIdentifier << '\t';
    const char *separator = "";
    for (const i18n::Language language : edition.languages) {
      table << separator << i18n::getLanguageType(language);
      separator = ",";
    }
    table << '\n';
  }
  const std::string file = doubles::ScratchFolder::read(EDITIONS_FILE);
  EXPECT_TRUE(file.starts_with("# oem\t")) << file;
  EXPECT_EQ(file.substr(file.find('\n') + 1), table.str());
}

TEST(Statics, StartWithTheBuildsEditionAndOtherwiseEmpty) {
  // The tests are built for the default edition.
  const app::AppStatics &statics = app::appStatics();
  EXPECT_EQ(app::buildEdition().oem, "Zentavo");
  EXPECT_EQ(statics.oem, "Zentavo");
  EXPECT_EQ(statics.appName, "Zentavo Configuration Utility");
  EXPECT_EQ(statics.lang, i18n::Language::En);
  EXPECT_EQ(statics.server, "");
  EXPECT_EQ(statics.port, "");
  EXPECT_EQ(statics.user, "");
  EXPECT_EQ(statics.pwd, "");
  EXPECT_FALSE(statics.mdm_profile);
  EXPECT_EQ(&statics, &app::appStatics());
}

}  // namespace
