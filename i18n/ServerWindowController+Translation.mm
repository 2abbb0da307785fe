#import "settings/ServerWindowController.h"

#include <optional>

#include "app/app_statics.h"
#include "app/edition.h"
#include "app/ns_string.h"
#include "app/outlet.h"
#include "i18n/catalogue.h"
#include "i18n/edition_languages.h"
#include "i18n/window_strings.h"

@implementation ServerWindowController (Translation)

- (void)translate {
  const std::optional<i18n::JsonData> catalogue = i18n::getLanguageLabel();
  if (!catalogue) return;
  const app::AppStatics &statics = app::appStatics();
  const i18n::JsonData::Info &info = i18n::infoFor(*catalogue, statics.lang);
  const i18n::SettingsStrings strings = i18n::settingsStrings(info, statics.lang, statics.oem);
  [OUTLET(servername) setToolTip:app::nsString(strings.serverHint)];
  [OUTLET(setting_label) setStringValue:app::nsString(strings.settings)];
  [OUTLET(language_label) setStringValue:app::nsString(strings.language)];
  [OUTLET(server_label) setStringValue:app::nsString(strings.server)];
  [OUTLET(Quit_button) setTitle:app::nsString(strings.quit)];
  [OUTLET(Apply_button) setTitle:app::nsString(strings.apply)];
  [OUTLET(port_label) setStringValue:app::nsString(strings.port)];
  [OUTLET(TestButton) setTitle:app::nsString(strings.test)];
  [OUTLET(reset_settings) setTitle:app::nsString(strings.reset_settings)];
  // No wider than its title: a click next to it must not choose an option that deletes files.
  [reset_settings sizeToFit];
  [self translateLanguage:info];
  [self describeTestResult];
}

- (void)translateLanguage:(const i18n::JsonData::Info &)info {
  NSInteger item = 0;
  for (const std::string &title : i18n::languageTitles(info.Language, app::appStatics().oem)) {
    if (item >= [OUTLET(selectLanguage) numberOfItems]) return;
    [[selectLanguage itemAtIndex:item] setTitle:app::nsString(title)];
    ++item;
  }
}

- (void)changeLanguage:(NSString *)language ofEdition:(app::EditionId)edition {
  const i18n::LanguageChoice choice =
      i18n::choiceForCode(app::editionWithId(edition), app::utf8(language));
  [OUTLET(selectLanguage) selectItemAtIndex:choice.item];
  app::appStatics().lang = choice.lang;
}

- (void)changeLanguageOskel:(NSString *)language {
  [self changeLanguage:language ofEdition:app::EditionId::Oskel];
}

- (void)changeLanguageZentavo:(NSString *)language {
  [self changeLanguage:language ofEdition:app::EditionId::Zentavo];
}

- (void)changeLanguageFennrow:(NSString *)language {
  [self changeLanguage:language ofEdition:app::EditionId::Fennrow];
}

- (void)changeLanguageTollwick:(NSString *)language {
  [self changeLanguage:language ofEdition:app::EditionId::Tollwick];
}

@end
