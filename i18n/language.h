#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "app/enumerators.h"

namespace i18n {

/// The interface languages. The number is the item index in the untrimmed language pop-up, so the
/// order differs from that of the catalogue's keys. Required: do not align the two.
enum class Language { En = 0, Fr = 1, It = 2, Ge = 3, Es = 4 };

inline constexpr std::size_t kLanguageCount = app::countEnumerators<Language>();

/// Two-letter code as stored in server.plist ("de" for `Ge`); empty for a value outside the enum.
std::string getLanguageType(Language lang);

/// The language of a stored code, compared whole and case-sensitively; nothing when unknown.
std::optional<Language> languageFromCode(std::string_view code);

}  // namespace i18n
