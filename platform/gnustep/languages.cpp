#include "languages.h"

#include <algorithm>
#include <sstream>
#include <utility>

namespace platform {
namespace {

/// The list of locale names that decides, separated by colons.
std::string localeNames(const Environment &environment) {
  for (const char *name : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"}) {
    std::string value = environment(name);
    if (!value.empty()) return value;
  }
  return {};
}

/// "de_CH.UTF-8@euro" becomes "de-CH".
std::string tagFromLocale(std::string locale) {
  locale.resize(std::min(locale.find_first_of(".@"), locale.size()));
  std::replace(locale.begin(), locale.end(), '_', '-');
  return locale == "C" || locale == "POSIX" ? "en" : locale;
}

std::vector<std::string> tagsFromEnvironment(const Environment &environment) {
  std::vector<std::string> tags;
  std::istringstream names(localeNames(environment));
  for (std::string name; std::getline(names, name, ':');) {
    const std::string tag = tagFromLocale(name);
    if (!tag.empty()) tags.push_back(tag);
  }
  return tags;
}

bool isEnglish(const std::string &tag) { return tag == "en" || tag.starts_with("en-"); }

}  // namespace

std::vector<std::string> preferredLanguages(std::vector<std::string> chosen,
                                            const Environment &environment) {
  std::vector<std::string> tags =
      chosen.empty() ? tagsFromEnvironment(environment) : std::move(chosen);
  if (std::none_of(tags.begin(), tags.end(), isEnglish)) tags.emplace_back("en");
  return tags;
}

}  // namespace platform
