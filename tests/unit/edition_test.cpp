#include "app/edition.h"

#include <gtest/gtest.h>

#include <set>

#include "agent/mdm_profile.h"
#include "agent/server_plist.h"
#include "app/app_statics.h"
#include "app/build_edition.h"

namespace {

using i18n::Language;

struct Row {
  const char *oem, *title, *folder, *identifier;
  app::EditionId id;
};

constexpr Row kRows[] = {
    {"Quorvix", "Oskel Configuration Utility", "/Applications/Quorvix/QuorvixOskel",
     "com.quorvix.oskel.agent", app::EditionId::Oskel},
    {"Zentavo", "Zentavo Configuration Utility", "/Applications/Zentavo/ZentavoVardex",
     "com.zentavo.vardex.agent", app::EditionId::Zentavo},
    {"Fennrow", "Fennrow Configuration Utility", "/Applications/Fennrow/FennrowLumar",
     "com.fennrow.lumar.agent", app::EditionId::Fennrow},
    {"Tollwick", "Tollwick Configuration Utility", "/Applications/Tollwick/TollwickOmbrel",
     "de.tollwick.ombrel.agent", app::EditionId::Tollwick},
};

TEST(Editions, AreFoundByOemAndByTitleWithEveryColumn) {
  EXPECT_EQ(app::kEditions.size(), std::size(kRows));
  for (const Row &row : kRows) {
    SCOPED_TRACE(row.oem);
    const app::Edition *edition = app::editionWithOem(row.oem);
    ASSERT_NE(edition, nullptr);
    EXPECT_EQ(edition, app::editionWithTitle(row.title));
    EXPECT_EQ(edition, &app::editionOrDefault(row.oem));
    EXPECT_EQ(edition->oem, row.oem);
    EXPECT_EQ(edition->appName, row.title);
    EXPECT_EQ(edition->installFolder, row.folder);
    EXPECT_EQ(edition->profileIdentifier, row.identifier);
    EXPECT_EQ(edition->id, row.id);
    EXPECT_EQ(edition, &app::editionWithId(row.id));
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

TEST(Editions, DefaultToTheQuorvixRow) {
  EXPECT_EQ(app::editionOrDefault("Unknown").oem, "Quorvix");
  EXPECT_EQ(app::editionOrDefault("").oem, "Quorvix");
}

TEST(Editions, OfferTheirFallbackAndTheirInitialItem) {
  for (const app::Edition &edition : app::kEditions) {
    const std::set<Language> offered(edition.languages.begin(), edition.languages.end());
    EXPECT_EQ(offered.size(), edition.languages.size()) << edition.oem;
    EXPECT_TRUE(offered.contains(edition.fallback)) << edition.oem;
    EXPECT_LT(static_cast<std::size_t>(edition.initialLanguageItem), edition.languages.size())
        << edition.oem;
  }
}

TEST(Statics, StartWithTheBuildsEditionAndOtherwiseEmpty) {
  // The tests are built for the default edition.
  const app::AppStatics &statics = app::appStatics();
  EXPECT_EQ(app::buildEdition().oem, "Zentavo");
  EXPECT_EQ(statics.oem, "Zentavo");
  EXPECT_EQ(statics.appName, "Zentavo Configuration Utility");
  EXPECT_EQ(statics.lang, Language::En);
  EXPECT_EQ(statics.server, "");
  EXPECT_EQ(statics.port, "");
  EXPECT_EQ(statics.user, "");
  EXPECT_EQ(statics.pwd, "");
  EXPECT_FALSE(statics.mdm_profile);
  EXPECT_EQ(&statics, &app::appStatics());
}

}  // namespace
