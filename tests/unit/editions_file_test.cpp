#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "app/edition.h"
#include "i18n/language.h"

namespace {

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
  std::ifstream file(EDITIONS_FILE);
  std::string heading;
  std::getline(file, heading);
  std::ostringstream rows;
  rows << file.rdbuf();
  EXPECT_TRUE(heading.starts_with("# oem\t")) << heading;
  EXPECT_EQ(rows.str(), table.str());
}

}  // namespace
