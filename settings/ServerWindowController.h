#pragma once

#import <AppKit/AppKit.h>

#include <string>

#include "i18n/language.h"
#include "i18n/window_strings.h"

/// The settings window: shows the stored settings and starts the actions on them. Its interface
/// file is "ServerWindowController". Created once, after the first successful login; lives until
/// the end of the process. Main thread only; every action blocks until its commands have ended.
@interface ServerWindowController : NSWindowController {
  IBOutlet NSTextFieldCell *setting_label;
  IBOutlet NSTextField *language_label;
  IBOutlet NSPopUpButton *selectLanguage;
  IBOutlet NSTextField *server_label;
  IBOutlet NSPopUpButton *mode;  ///< item 0: the server is an IP address; else a host name
  IBOutlet NSTextField *servername;
  IBOutlet NSTextField *port_label;
  IBOutlet NSTextField *port;
  IBOutlet NSButton *reset_settings;
  IBOutlet NSButton *MDM_profile;      ///< read-only
  IBOutlet NSPopUpButton *testChoice;  ///< item 1: port test; else ping
  IBOutlet NSButton *TestButton;
  IBOutlet NSImageView *testStatus;
  IBOutlet NSButton *Apply_button;
  IBOutlet NSButton *Quit_button;
  NSString *defaultPort;
  i18n::TestResult testResult;  ///< what `testStatus` shows
}

/// Fills server and port from server.plist and selects its language by the rule of the edition with
/// that title. Without a local Library folder, sets only the default port.
- (void)updateUI:(NSString *)appName;

/// Shows the controls that start hidden.
- (void)showServer;

/// The language of the selected pop-up item.
- (i18n::Language)getLanguage;

/// Takes the language from the pop-up and translates the window; nothing is stored.
- (IBAction)languageAction:(id)sender;

/// Ends the program without asking.
- (IBAction)QuitAction:(id)sender;

/// Trims white space and newlines from both ends of the field's text, in place.
- (std::string)trimTextInField:(NSTextField *)field;

/// Whether the server field must hold an IP address.
- (BOOL)serverIsIPAddress;

@end

@interface ServerWindowController (ConnectionTest)

/// Pings the server or tries its port and shows the result in `testStatus`. Bad input is corrected
/// in its field, and no command runs.
- (IBAction)TestAction:(id)sender;

/// Puts the result into the tool tip and spoken description of `testStatus`, in the current
/// language.
- (void)describeTestResult;

@end

@interface ServerWindowController (Apply)

/// Applies the settings and ends the program. Bad input is corrected in its field and changes
/// nothing.
- (IBAction)ApplyAction:(id)sender;

@end

@interface ServerWindowController (Translation)

/// Shows the strings of the current language. Without a catalogue they stay as they are.
- (void)translate;

/// Selects the item for a stored language code and makes its language the current one, by the rule
/// of that edition. Does not translate.
- (void)changeLanguageOskel:(NSString *)language;
- (void)changeLanguageZentavo:(NSString *)language;
- (void)changeLanguageFennrow:(NSString *)language;
- (void)changeLanguageTollwick:(NSString *)language;

@end
