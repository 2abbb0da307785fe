#pragma once

#import <AppKit/AppKit.h>

/// The content view of both windows, named in their interface files. The main menu is empty, and
/// with it go the shortcuts of its Edit and Quit items: this view answers them instead and sends
/// Command-X, C, V, A and Z to whatever has the keyboard and Command-Q to the application.
@interface EditingKeysView : NSView
@end
