#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "i18n/catalogue.h"
#include "i18n/language.h"

/// The strings of the settings window, derived from the catalogue. The controller only assigns them
/// to its controls.
namespace i18n {

/// What the last connection test found.
enum class TestResult { NotTested, Reachable, Unreachable };

/// The result in words, for the tool tip of the status image and for VoiceOver.
std::string testResultString(TestResult result, Language lang);

/// What the settings window shows, captions with their colons.
struct SettingsStrings {
  std::string serverHint;  ///< tool tip of the server field
  std::string settings;
  std::string language;
  std::string server;
  std::string quit;
  std::string apply;
  std::string port;
  std::string test;
  std::string reset_settings;
};

SettingsStrings settingsStrings(const JsonData::Info &info, Language lang, std::string_view oem);

/// Titles of the pop-up items that the edition offers, from item 0 on; all five for an unknown
/// `oem`.
std::vector<std::string> languageTitles(const struct JsonData::Info::Language &names,
                                        std::string_view oem);

}  // namespace i18n
