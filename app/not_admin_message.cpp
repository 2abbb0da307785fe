#include "app/not_admin_message.h"

#include <array>
#include <span>

#include "app/edition.h"

namespace app {
namespace {

struct Sentence {
  std::string_view before;
  std::string_view after;
};

constexpr Sentence kEnglish{"User ", " is not from local Admin group."};
constexpr Sentence kItalian{"L'utente ", " non appartiene al gruppo Admin locale."};
constexpr Sentence kSpanish{"El usuario ", " no pertenece al grupo de administración local."};
constexpr Sentence kFrench{"L'utilisateur ",
                           " ne fait pas partie du groupe d'administrateurs local."};
constexpr Sentence kGerman{"Der Benutzer ", " gehört nicht zur lokalen Admin-Gruppe."};

// Required: this order, which differs from that of the languages elsewhere.
constexpr std::array kFiveLanguages{kEnglish, kItalian, kSpanish, kFrench, kGerman};
static_assert(kFiveLanguages.size() == i18n::kLanguageCount);
constexpr std::array kTwoLanguages{kEnglish, kFrench};

}  // namespace

std::string notAdminMessage(std::string_view appName, std::string_view username) {
  const Edition *edition = editionWithTitle(appName);
  const std::span<const Sentence> sentences =
      edition != nullptr && edition->showsNotAdminMessageInAllLanguages
          ? std::span<const Sentence>(kFiveLanguages)
          : std::span<const Sentence>(kTwoLanguages);
  std::string text;
  for (const Sentence &sentence : sentences) {
    if (!text.empty()) text += "\n\n";
    text.append(sentence.before).append(username).append(sentence.after);
  }
  return text;
}

}  // namespace app
