#pragma once

#import <AppKit/AppKit.h>

@class ServerWindowController;

/// The application's delegate and the owner of the login window. `main` creates the one instance
/// and loads the interface file "MainMenu" with it as File's Owner. Main thread only.
@interface AppDelegate : NSObject <NSApplicationDelegate> {
  IBOutlet NSWindow *window;
  IBOutlet NSTextField *admin_msg;
  IBOutlet NSTextField *username_label;
  IBOutlet NSTextField *username;
  IBOutlet NSTextField *password_label;
  IBOutlet NSSecureTextField *password;
  IBOutlet NSButton *OkButton;
  IBOutlet NSButton *QuitButton;
  IBOutlet NSMenu *MainMenu;
}

/// The settings window's controller; nil before the first successful login.
+ (ServerWindowController *)serverWindow;

/// Retains the login window; the other outlets are not retained.
- (void)setWindow:(NSWindow *)newWindow;

/// Checks the typed name and password. If they are right, the settings window replaces the login
/// window; if not, both fields are emptied, without a message: required.
- (IBAction)OkAction:(id)sender;

/// Ends the program.
- (IBAction)CancelAction:(id)sender;

/// Sets the current language: the one that server.plist names, or English for an unknown code; if
/// it names none, the system's, narrowed to English or French. Translates the login window into
/// that language; without a catalogue the window stays as it is.
- (void)translate;

@end
