#import "settings/ServerWindowController.h"

#include "app/app_statics.h"
#include "app/ns_string.h"
#include "app/outlet.h"
#include "settings/apply_workflow.h"
#include "settings/validation.h"

@implementation ServerWindowController (Apply)

- (IBAction)ApplyAction:(id)sender {
  app::AppStatics &statics = app::appStatics();
  // Required: before any check, so the current language changes even when the input stops Apply.
  statics.lang = [self getLanguage];

  const std::string serverText = [self trimTextInField:OUTLET(servername)];
  const std::string portText = [self trimTextInField:OUTLET(port)];
  if (![self validateServer:serverText port:portText]) return;
  statics.server = serverText;
  statics.port = portText;

  settings::applySettings({
      .oem = statics.oem,
      .server = statics.server,
      .port = statics.port,
      .language = i18n::getLanguageType(statics.lang),
      .profile = statics.mdm_profile,
      .reset_settings = [OUTLET(reset_settings) state] == NSControlStateValueOn,
      .administrator = {.user = statics.user, .pwd = statics.pwd},
      .consoleUser = statics.consoleUser,
  });
  [[self window] setIsVisible:NO];
  [NSApp terminate:nil];
}

// Required: the port first, unlike the connection test.
- (BOOL)validateServer:(const std::string &)serverText port:(const std::string &)portText {
  if (settings::validatePort(portText) == settings::ValidationResult::ResetPort) {
    [port setStringValue:defaultPort];
    return NO;
  }
  const settings::ValidationResult result =
      settings::validateServer(serverText, [self serverIsIPAddress]);
  if (result == settings::ValidationResult::ClearServer) [servername setStringValue:@""];
  return result == settings::ValidationResult::Accept;
}

@end
