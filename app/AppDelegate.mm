#import "app/AppDelegate.h"

#include "app/app_statics.h"
#include "app/local_admin.h"
#include "app/ns_string.h"
#include "app/outlet.h"
#include "i18n/catalogue.h"
#include "i18n/window_strings.h"
#import "settings/ServerWindowController.h"
#include "settings/server_data.h"

static ServerWindowController *theServerWindow = nil;

@implementation AppDelegate

+ (ServerWindowController *)serverWindow {
  return theServerWindow;
}

- (void)dealloc {
  [window release];
  [super dealloc];
}

- (void)setWindow:(NSWindow *)newWindow {
  [newWindow retain];
  [window release];
  window = newWindow;
}

- (void)awakeFromNib {
  // The window appears as soon as its interface file has been loaded.
  [window center];
}

- (void)applicationDidFinishLaunching:(NSNotification *)notification {
  [self emptyMainMenu];
  [OUTLET(window) setTitle:app::nsString(app::appStatics().appName)];
  [self translate];
  [OUTLET(OkButton) setKeyEquivalent:@"\r"];
  if (@available(macOS 10.10, *)) [OkButton setHighlighted:YES];
  // Escape. Not in the settings window, where it would discard what is typed.
  [OUTLET(QuitButton) setKeyEquivalent:@"\x1b"];
  [NSApp activateIgnoringOtherApps:YES];
}

// Required, although empty.
- (void)applicationWillTerminate:(NSNotification *)notification {
}

- (void)emptyMainMenu {
  for (NSInteger count = [OUTLET(MainMenu) numberOfItems]; count > 0; --count) {
    [MainMenu removeItemAtIndex:[MainMenu numberOfItems] - 1];
  }
}

- (IBAction)OkAction:(id)sender {
  app::AppStatics &statics = app::appStatics();
  statics.user = app::utf8([OUTLET(username) stringValue]);
  statics.pwd = app::utf8([OUTLET(password) stringValue]);
  if (app::authenticateLocalAdminUser(statics.user, statics.pwd)) {
    [self showServerWindow];
    return;
  }
  [username setStringValue:@""];
  [password setStringValue:@""];
  [username becomeFirstResponder];
  // Required: the rejected name and password stay in the statics until the next attempt.
}

- (void)showServerWindow {
  // Created first: without its interface file the program stops, before anything is hidden. The
  // file is loaded only when the controller is asked for its window.
  if (theServerWindow == nil) theServerWindow = [[ServerWindowController alloc] init];
  // Required: hidden, not closed or released.
  [OUTLET(window) setIsVisible:NO];
  // Required: the window is made visible, then shown, and translated once more although loading it
  // has translated it twice.
  [[theServerWindow window] setIsVisible:YES];
  [theServerWindow showWindow:nil];
  [theServerWindow translate];
}

- (IBAction)CancelAction:(id)sender {
  [NSApp terminate:self];
}

- (void)translate {
  i18n::Language &lang = app::appStatics().lang;
  const std::optional<settings::ServerData> stored = settings::getServerData();
  lang = i18n::languageFromCode(stored ? stored->language : "").value_or(i18n::Language::En);

  const std::optional<i18n::JsonData> catalogue = i18n::getLanguageLabel();
  if (!catalogue) return;
  const auto &strings = i18n::infoFor(*catalogue, lang).Common;
  [OUTLET(admin_msg) setStringValue:app::nsString(strings.adminmsg)];
  [OUTLET(username_label) setStringValue:app::nsString(strings.username)];
  [OUTLET(password_label) setStringValue:app::nsString(strings.password)];
  [OUTLET(OkButton) setTitle:app::nsString(strings.ok)];
  [OUTLET(QuitButton) setTitle:app::nsString(strings.quit)];
}

@end
