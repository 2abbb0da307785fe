#include "i18n/window_strings.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "app/edition.h"

namespace i18n {
namespace {

/// What depends on the language and is not in its catalogue entry.
struct LanguageRow {
  Language lang;
  std::string JsonData::Info::Language::*name;
  std::string_view serverHint;
  /// In the server caption: whether the edition's name comes first, and what joins it to the
  /// catalogue's word.
  bool captionNameFirst;
  std::string_view joint;
  /// By `TestResult`.
  std::array<std::string_view, app::countEnumerators<TestResult>()> testResults;
};

// Required: the hints are fixed, capitals and angle brackets included, and not in the catalogue.
using Names = struct JsonData::Info::Language;
constexpr auto kRows = std::to_array<LanguageRow>({
    {Language::En,
     &Names::english,
     "ip or hostname",
     true,
     " ",
     {"Not tested", "Server reachable", "Server unreachable"}},
    {Language::Fr,
     &Names::french,
     "ip ou <nom de machine>",
     false,
     " ",
     {"Non testé", "Serveur joignable", "Serveur injoignable"}},
    {Language::It,
     &Names::italian,
     "ip o <Nome host>",
     false,
     " ",
     {"Non verificato", "Server raggiungibile", "Server non raggiungibile"}},
    {Language::Ge,
     &Names::german,
     "ip oder Hostname",
     true,
     "-",
     {"Nicht getestet", "Server erreichbar", "Server nicht erreichbar"}},
    {Language::Es,
     &Names::spanish,
     "ip o <nombre de host>",
     false,
     " ",
     {"Sin probar", "Servidor accesible", "Servidor inaccesible"}},
});
static_assert(app::hasRowForEach(kRows, &LanguageRow::lang));
static_assert(std::ranges::none_of(kRows, [](const LanguageRow &row) {
  return std::ranges::count(row.testResults, std::string_view()) > 0;
}));

const LanguageRow &rowFor(Language lang) { return kRows[static_cast<std::size_t>(lang)]; }

std::string serverCaption(const LanguageRow &row, std::string_view server, std::string_view oem) {
  const app::Edition *edition = app::editionWithOem(oem);
  const std::string_view word = edition != nullptr ? edition->captionName : oem;
  std::string caption(row.captionNameFirst ? word : server);
  return caption.append(row.joint).append(row.captionNameFirst ? server : word).append(":");
}

}  // namespace

std::string testResultString(TestResult result, Language lang) {
  return std::string(rowFor(lang).testResults[static_cast<std::size_t>(result)]);
}

SettingsStrings settingsStrings(const JsonData::Info &info, Language lang, std::string_view oem) {
  const LanguageRow &row = rowFor(lang);
  return {.serverHint = std::string(row.serverHint),
          .settings = info.Common.settings,
          .language = info.Language.lang + ":",
          .server = serverCaption(row, info.Common.server, oem),
          .quit = info.Common.quit,
          .apply = info.Common.apply,
          .port = info.Common.port + ":",
          .test = info.Common.test,
          .reset_settings = info.Common.reset_settings};
}

std::vector<std::string> languageTitles(const struct JsonData::Info::Language &names,
                                        std::string_view oem) {
  std::vector<std::string> titles;
  if (const app::Edition *edition = app::editionWithOem(oem)) {
    for (const Language lang : edition->languages) titles.push_back(names.*rowFor(lang).name);
  } else {
    for (const LanguageRow &row : kRows) titles.push_back(names.*row.name);
  }
  return titles;
}

}  // namespace i18n
