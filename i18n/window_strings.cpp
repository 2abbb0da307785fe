#include "i18n/window_strings.h"

#include <array>
#include <cstddef>

#include "app/edition.h"

namespace i18n {
namespace {

/// What depends on the language apart from the catalogue's texts.
struct LanguageRow {
  JsonData::Info JsonData::*info;
  std::string JsonData::Info::Language::*name;
  std::string_view serverHint;
  /// Between edition word and server text, in that order; otherwise the server text comes first.
  bool captionNameFirst;
  std::string_view joint;
};

// Indexed by the number of the language. The hints are no catalogue texts: their spelling is fixed.
constexpr std::array<LanguageRow, kLanguageCount> kRows{{
    {&JsonData::En, &JsonData::Info::Language::english, "ip or hostname", true, " "},
    {&JsonData::Fr, &JsonData::Info::Language::french, "ip ou <nom de machine>", false, " "},
    {&JsonData::It, &JsonData::Info::Language::italian, "ip o <Nome host>", false, " "},
    {&JsonData::Ge, &JsonData::Info::Language::german, "ip oder Hostname", true, "-"},
    {&JsonData::Es, &JsonData::Info::Language::spanish, "ip o <nombre de host>", false, " "},
}};

const LanguageRow &rowFor(Language lang) { return kRows[static_cast<std::size_t>(lang)]; }

std::string serverCaption(const LanguageRow &row, std::string_view server, std::string_view oem) {
  const app::Edition *edition = app::editionWithOem(oem);
  const std::string_view word = edition != nullptr ? edition->captionName : oem;
  std::string caption(row.captionNameFirst ? word : server);
  return caption.append(row.joint).append(row.captionNameFirst ? server : word).append(":");
}

}  // namespace

const JsonData::Info &infoFor(const JsonData &catalogue, Language lang) {
  return catalogue.*rowFor(lang).info;
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
