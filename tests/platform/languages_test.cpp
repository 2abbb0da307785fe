#include "languages.h"

#include <gtest/gtest.h>

#include <map>

namespace {

using Languages = std::vector<std::string>;

struct Row {
  std::map<std::string, std::string> environment;
  Languages expected;
};

TEST(PreferredLanguages, FollowTheEnvironment) {
  const Row rows[] = {
      {{}, {"en"}},
      {{{"LANG", "C"}}, {"en"}},
      {{{"LANG", "C.UTF-8"}}, {"en"}},
      {{{"LANG", "POSIX"}}, {"en"}},
      {{{"LANG", ""}}, {"en"}},
      {{{"LANG", "fr_FR.UTF-8"}}, {"fr-FR", "en"}},
      {{{"LANG", "de_CH"}}, {"de-CH", "en"}},
      {{{"LANG", "de_DE@euro"}}, {"de-DE", "en"}},
      {{{"LANG", "en_GB.UTF-8"}}, {"en-GB"}},
      {{{"LANG", "eng"}}, {"eng", "en"}},
      {{{"LANG", "fr_FR.UTF-8"}, {"LC_MESSAGES", "es_ES.UTF-8"}}, {"es-ES", "en"}},
      {{{"LC_MESSAGES", "es_ES.UTF-8"}, {"LC_ALL", "it_IT.UTF-8"}}, {"it-IT", "en"}},
      {{{"LANG", "fr_FR.UTF-8"}, {"LANGUAGE", "de"}}, {"de", "en"}},
      {{{"LANGUAGE", "de_AT:fr:en"}}, {"de-AT", "fr", "en"}},
      {{{"LANGUAGE", "::fr:"}}, {"fr", "en"}},
      {{{"LANG", "fr_FR"}, {"LANGUAGE", ""}}, {"fr-FR", "en"}},
  };
  for (const Row &row : rows) {
    std::string shown;
    for (const auto &[name, value] : row.environment) shown += name + "=" + value + " ";
    SCOPED_TRACE(shown);
    const auto environment = [&row](const char *name) {
      const auto found = row.environment.find(name);
      return found == row.environment.end() ? std::string() : found->second;
    };
    EXPECT_EQ(platform::preferredLanguages({}, environment), row.expected);
  }
}

TEST(PreferredLanguages, FollowTheUsersOwnListFirst) {
  const auto french = [](const char *name) {
    return std::string(name) == "LANG" ? "fr_FR.UTF-8" : "";
  };
  EXPECT_EQ(platform::preferredLanguages({"de", "es"}, french), (Languages{"de", "es", "en"}));
  EXPECT_EQ(platform::preferredLanguages({"en", "de"}, french), (Languages{"en", "de"}));
}

}  // namespace
