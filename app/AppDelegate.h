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

/// The login window is held, unlike the other outlets.
- (void)setWindow:(NSWindow *)newWindow;

/// Checks the typed name and password. Right: the login window gives way to the settings window.
/// Wrong: both fields are emptied, without a message.
- (IBAction)OkAction:(id)sender;

/// Ends the program.
- (IBAction)CancelAction:(id)sender;

/// Sets the current language to the one that server.plist names, else English, and the texts of the
/// login window in it. Without a catalogue the texts stay.
- (void)translate;

@end
