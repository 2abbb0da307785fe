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
  const i18n::SettingsStrings texts = i18n::settingsStrings(info, statics.lang, statics.oem);
  [OUTLET(servername) setToolTip:app::nsString(texts.serverHint)];
  [OUTLET(setting_label) setStringValue:app::nsString(texts.settings)];
  [OUTLET(language_label) setStringValue:app::nsString(texts.language)];
  [OUTLET(server_label) setStringValue:app::nsString(texts.server)];
  [OUTLET(Quit_button) setTitle:app::nsString(texts.quit)];
  [OUTLET(Apply_button) setTitle:app::nsString(texts.apply)];
  [OUTLET(port_label) setStringValue:app::nsString(texts.port)];
  [OUTLET(TestButton) setTitle:app::nsString(texts.test)];
  [OUTLET(reset_settings) setTitle:app::nsString(texts.reset_settings)];
  [self translateLanguage:info];
}

- (void)translateLanguage:(const i18n::JsonData::Info &)info {
  NSInteger item = 0;
  for (const std::string &title : i18n::languageTitles(info.Language, app::appStatics().oem)) {
    if (item >= [OUTLET(selectLanguage) numberOfItems]) return;
    [[selectLanguage itemAtIndex:item] setTitle:app::nsString(title)];
    ++item;
  }
}

- (void)changeLanguage:(NSString *)language ofEdition:(const app::Edition *)edition {
  const i18n::LanguageChoice choice = i18n::choiceForCode(*edition, app::utf8(language));
  [OUTLET(selectLanguage) selectItemAtIndex:choice.item];
  app::appStatics().lang = choice.lang;
}

- (void)changeLanguageOskel:(NSString *)language {
  [self changeLanguage:language ofEdition:app::editionWithOem("Quorvix")];
}

- (void)changeLanguageZentavo:(NSString *)language {
  [self changeLanguage:language ofEdition:app::editionWithOem("Zentavo")];
}

- (void)changeLanguageFennrow:(NSString *)language {
  [self changeLanguage:language ofEdition:app::editionWithOem("Fennrow")];
}

- (void)changeLanguageTollwick:(NSString *)language {
  [self changeLanguage:language ofEdition:app::editionWithOem("Tollwick")];
}

@end
