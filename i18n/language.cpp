#include "i18n/language.h"

#include <algorithm>
#include <array>

namespace i18n {
namespace {

struct CodeRow {
  Language lang;
  std::string_view code;
};

constexpr auto kCodes = std::to_array<CodeRow>({
    {Language::En, "en"},
    {Language::Fr, "fr"},
    {Language::It, "it"},
    {Language::Ge, "de"},
    {Language::Es, "es"},
});
static_assert(app::hasRowForEach(kCodes, &CodeRow::lang));

}  // namespace

std::string getLanguageType(Language lang) {
  const auto *row = std::ranges::find(kCodes, lang, &CodeRow::lang);
  return row != kCodes.end() ? std::string(row->code) : std::string();
}

std::optional<Language> languageFromCode(std::string_view code) {
  const auto *row = std::ranges::find(kCodes, code, &CodeRow::code);
  return row != kCodes.end() ? std::optional(row->lang) : std::nullopt;
}

}  // namespace i18n
