#pragma once

#import <AppKit/AppKit.h>

/// The content view of both windows, named in their interface files. The main menu is empty, so its
/// Edit and Quit items provide no shortcuts. This view handles them instead: it sends Command-X, C,
/// V, A and Z to whatever has the keyboard focus, and Command-Q to the application.
@interface EditingKeysView : NSView
@end
