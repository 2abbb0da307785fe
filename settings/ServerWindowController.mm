#import "settings/ServerWindowController.h"

#include "agent/mdm_profile.h"
#include "app/app_statics.h"
#include "app/diagnostics.h"
#include "app/edition.h"
#include "app/ns_string.h"
#include "app/outlet.h"
#include "i18n/edition_languages.h"
#include "settings/server_data.h"
#include "settings/validation.h"

@implementation ServerWindowController

- (id)init {
  self = [self initWithWindowNibName:@"ServerWindowController"];
  // If it failed later, while loading, the application's loop would swallow the exception.
  if ([self windowNibPath] == nil) {
    app::fatalError("interface file ServerWindowController is missing from the bundle");
  }
  [self setShouldCascadeWindows:NO];
  return self;
}

// Required: both initialisers set the instance variable before they call super.
- (id)initWithWindow:(NSWindow *)window {
  defaultPort = [app::nsString(settings::kDefaultPort) retain];
  return [super initWithWindow:window];
}

- (id)initWithCoder:(NSCoder *)coder {
  defaultPort = [app::nsString(settings::kDefaultPort) retain];
  return [super initWithCoder:coder];
}

- (void)dealloc {
  [defaultPort release];
  [super dealloc];
}

- (void)windowDidLoad {
  [super windowDidLoad];
  app::AppStatics &statics = app::appStatics();
  NSString *title = app::nsString(statics.appName);
  [[self window] setTitle:title];
  [[self window] center];
  if (const app::Edition *edition = app::editionWithTitle(statics.appName)) {
    [self removeLanguagesNotOfferedBy:*edition];
    statics.lang = [self getLanguage];
    [self translate];
  }
  [self updateUI:title];
  // Required: again, now in the stored language.
  [self translate];
  [OUTLET(Apply_button) setKeyEquivalent:@"\r"];
  if (@available(macOS 10.10, *)) [Apply_button setHighlighted:YES];
  [self showServer];
  statics.mdm_profile =
      agent::checkMDMProfile(statics.oem, {.user = statics.user, .pwd = statics.pwd});
  [OUTLET(MDM_profile) setEnabled:NO];
  [MDM_profile setState:statics.mdm_profile ? NSControlStateValueOn : NSControlStateValueOff];
}

- (void)removeLanguagesNotOfferedBy:(const app::Edition &)edition {
  for (const int item : i18n::itemsToRemove(edition)) {
    [OUTLET(selectLanguage) removeItemAtIndex:item];
  }
  [OUTLET(selectLanguage) selectItemAtIndex:static_cast<NSInteger>(edition.initialLanguageItem)];
}

- (void)updateUI:(NSString *)appName {
  const std::optional<settings::ServerData> stored = settings::getServerData();
  if (!stored) {
    [OUTLET(port) setStringValue:defaultPort];
    return;
  }
  [OUTLET(servername) setStringValue:app::nsString(stored->server)];
  [OUTLET(port) setStringValue:app::nsString(stored->port)];
  if (const app::Edition *edition = app::editionWithTitle(app::utf8(appName))) {
    [self selectLanguage:app::nsString(stored->language) ofEdition:edition->id];
  }
}

- (void)selectLanguage:(NSString *)code ofEdition:(app::EditionId)edition {
  switch (edition) {
    case app::EditionId::Oskel:
      return [self changeLanguageOskel:code];
    case app::EditionId::Zentavo:
      return [self changeLanguageZentavo:code];
    case app::EditionId::Fennrow:
      return [self changeLanguageFennrow:code];
    case app::EditionId::Tollwick:
      return [self changeLanguageTollwick:code];
  }
}

- (void)showServer {
  NSView *const hiddenControls[] = {OUTLET(server_label), OUTLET(mode),       OUTLET(servername),
                                    OUTLET(port),         OUTLET(port_label), OUTLET(testChoice),
                                    OUTLET(TestButton),   OUTLET(testStatus)};
  for (NSView *control : hiddenControls) [control setHidden:NO];
}

// Required: goes by `oem`, while the trimming of the pop-up goes by the title.
- (i18n::Language)getLanguage {
  return i18n::languageFromItem(app::appStatics().oem,
                                static_cast<int>([OUTLET(selectLanguage) indexOfSelectedItem]));
}

- (IBAction)languageAction:(id)sender {
  app::appStatics().lang = [self getLanguage];
  [self translate];
}

- (IBAction)QuitAction:(id)sender {
  [NSApp terminate:nil];
}

- (std::string)trimTextInField:(NSTextField *)field {
  NSString *text = [[field stringValue]
      stringByTrimmingCharactersInSet:[NSCharacterSet whitespaceAndNewlineCharacterSet]];
  [field setStringValue:text];
  return app::utf8(text);
}

- (BOOL)serverIsIPAddress {
  return [OUTLET(mode) indexOfSelectedItem] == 0;
}

@end
