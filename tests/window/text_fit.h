#pragma once

#import <AppKit/AppKit.h>

#include <string>
#include <vector>

namespace windowtest {

/// The outlet of `owner` that is connected to the control or to its cell; else its class.
std::string nameFor(NSView *control, id owner);

/// The controls of a window, from the first to the last of its interface file.
std::vector<NSView *> controlsIn(NSWindow *window);

/// Whether the user types in that control.
bool isField(NSView *view);

/// A line for each string of the window, its title included, that has too little space: the
/// control, the points that are needed with the spare ones, there, and missing. Pop-ups are
/// measured with each item.
std::vector<std::string> textFindings(NSWindow *window, id owner);

/// A line for each control that leaves the window's margins or comes too near to another.
std::vector<std::string> layoutFindings(NSWindow *window, id owner);

/// The part of a control's frame that the user sees on macOS, which draws buttons and pop-ups
/// smaller than their frames.
NSRect visibleFrame(NSView *control);

/// The height of a text broken into lines of that width.
CGFloat wrappedHeight(NSAttributedString *text, CGFloat width);

}  // namespace windowtest
