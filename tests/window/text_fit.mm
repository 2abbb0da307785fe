#include "window/text_fit.h"

#import <objc/runtime.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "app/ns_string.h"

namespace windowtest {
namespace {

// How much of each string's width has to stay free, as a part of that width: the platform's own
// font may be wider than the one that is measured here.
constexpr double kSpare = 0.15;
constexpr CGFloat kMargin = 20;
constexpr CGFloat kGap = 6;
// Labels keep their text that far from their left and right edge.
constexpr CGFloat kLabelInset = 2;
// The three round buttons of a title bar, on both sides because the title is centred.
constexpr CGFloat kTitleBarButtons = 2 * 76;

struct Need {
  std::string text;
  CGFloat needed, there;
};

std::string finding(const std::string &control, const char *dimension, const Need &need) {
  char numbers[100];
  std::snprintf(numbers, sizeof numbers, "%s: needs %.1f points of %.1f, %.1f missing", dimension,
                need.needed, need.there, need.needed - need.there);
  return control + " \"" + need.text + "\", " + numbers;
}

/// Adds a line when the string with its spare width is wider than its space.
void checkWidth(const std::string &control, Need need, std::vector<std::string> &findings) {
  need.needed *= 1 + kSpare;
  if (need.needed > need.there) findings.push_back(finding(control, "width", need));
}

void checkHeight(const std::string &control, const Need &need, std::vector<std::string> &findings) {
  if (need.needed > need.there) findings.push_back(finding(control, "height", need));
}

CGFloat textWidth(NSString *text, NSFont *font) {
  return [text sizeWithAttributes:[NSDictionary dictionaryWithObject:font
                                                              forKey:NSFontAttributeName]]
      .width;
}

bool isLabel(NSView *view) {
  return [view isKindOfClass:[NSTextField class]] && ![static_cast<NSTextField *>(view) isBezeled];
}

bool isCheckBox(NSView *view) {
  return [view isKindOfClass:[NSButton class]] &&
         [[static_cast<NSButton *>(view) cell] imagePosition] == NSImageLeft &&
         ![static_cast<NSButton *>(view) isBordered];
}

// A pop-up's cell is as wide as its widest item needs, whichever is selected.
void checkItems(NSPopUpButton *popUp, const std::string &name, std::vector<std::string> &findings) {
  CGFloat widest = 0;
  for (NSString *title in [popUp itemTitles]) {
    widest = std::max(widest, textWidth(title, [popUp font]));
  }
  const CGFloat around = [[popUp cell] cellSize].width - widest;
  for (NSString *title in [popUp itemTitles]) {
    checkWidth(name,
               {.text = app::utf8(title),
                .needed = textWidth(title, [popUp font]) + around,
                .there = NSWidth([popUp frame])},
               findings);
  }
}

void checkWrapped(NSTextField *label, const std::string &name, std::vector<std::string> &findings) {
  const CGFloat width = (NSWidth([label frame]) - 2 * kLabelInset) / (1 + kSpare);
  checkHeight(name,
              {.text = app::utf8([label stringValue]),
               .needed = wrappedHeight([label attributedStringValue], width),
               .there = NSHeight([label frame])},
              findings);
}

// The width that a control's string may take. The program fits one control to its title, which may
// grow up to the window's margin.
CGFloat availableWidth(NSControl *control, const std::string &name) {
  if (name != "reset_settings") return NSWidth([control frame]);
  return NSMaxX([[control superview] bounds]) - kMargin - NSMinX([control frame]);
}

void checkControl(NSControl *control, const std::string &name, std::vector<std::string> &findings) {
  if ([control isKindOfClass:[NSPopUpButton class]]) {
    checkItems(static_cast<NSPopUpButton *>(control), name, findings);
    return;
  }
  if (isLabel(control) && [[control cell] lineBreakMode] == NSLineBreakByWordWrapping) {
    checkWrapped(static_cast<NSTextField *>(control), name, findings);
    return;
  }
  const bool isButton = [control isKindOfClass:[NSButton class]];
  const NSSize needed = [[control cell] cellSize];
  const std::string text =
      app::utf8(isButton ? [static_cast<NSButton *>(control) title] : [control stringValue]);
  if (!isField(control)) {
    checkWidth(name, {text, needed.width, availableWidth(control, name)}, findings);
  }
  // A field's border may be cut by a point; its text is not.
  const CGFloat border = isButton || isLabel(control) ? 0 : 2;
  checkHeight(name, {text, needed.height - border, NSHeight([control frame])}, findings);
}

struct Insets {
  CGFloat left, right, top, bottom;
};

// What macOS leaves free within the frames of its controls of regular size.
Insets insetsFor(NSView *view) {
  if ([view isKindOfClass:[NSPopUpButton class]]) return {3, 3, 1, 3};
  if (isCheckBox(view)) return {2, 2, 1, 1};
  if ([view isKindOfClass:[NSButton class]]) return {6, 6, 4, 7};
  if (isLabel(view)) return {kLabelInset, kLabelInset, 0, 0};
  return {0, 0, 0, 0};
}

// The horizontal or vertical distance between two rectangles; negative when they overlap.
CGFloat distance(NSRect a, NSRect b) {
  const CGFloat horizontal = std::max(NSMinX(a) - NSMaxX(b), NSMinX(b) - NSMaxX(a));
  const CGFloat vertical = std::max(NSMinY(a) - NSMaxY(b), NSMinY(b) - NSMaxY(a));
  return std::max(horizontal, vertical);
}

}  // namespace

bool isField(NSView *view) { return [view isKindOfClass:[NSTextField class]] && !isLabel(view); }

std::string nameFor(NSView *control, id owner) {
  id cell = [control respondsToSelector:@selector(cell)] ? [(NSControl *)control cell] : nil;
  unsigned count = 0;
  Ivar *outlets = class_copyIvarList([owner class], &count);
  std::string name = app::utf8(NSStringFromClass([control class]));
  for (unsigned i = 0; i < count; ++i) {
    if (ivar_getTypeEncoding(outlets[i])[0] != '@') continue;
    id connected = object_getIvar(owner, outlets[i]);
    if (connected == control || (cell != nil && connected == cell)) name = ivar_getName(outlets[i]);
  }
  std::free(outlets);
  return name;
}

std::vector<NSView *> controlsIn(NSWindow *window) {
  std::vector<NSView *> controls;
  for (NSView *view in [[window contentView] subviews]) controls.push_back(view);
  return controls;
}

CGFloat wrappedHeight(NSAttributedString *text, CGFloat width) {
  NSTextStorage *storage = [[[NSTextStorage alloc] initWithAttributedString:text] autorelease];
  NSLayoutManager *layout = [[[NSLayoutManager alloc] init] autorelease];
  NSTextContainer *container =
      [[[NSTextContainer alloc] initWithContainerSize:NSMakeSize(width, 10000)] autorelease];
  [container setLineFragmentPadding:0];
  [layout addTextContainer:container];
  [storage addLayoutManager:layout];
  [layout glyphRangeForTextContainer:container];
  return NSHeight([layout usedRectForTextContainer:container]);
}

std::vector<std::string> textFindings(NSWindow *window, id owner) {
  std::vector<std::string> findings;
  checkWidth("title",
             {.text = app::utf8([window title]),
              .needed = textWidth([window title], [NSFont titleBarFontOfSize:0]),
              .there = NSWidth([window frame]) - kTitleBarButtons},
             findings);
  for (NSView *view : controlsIn(window)) {
    if (![view isKindOfClass:[NSControl class]] || [view isKindOfClass:[NSImageView class]]) {
      continue;
    }
    checkControl(static_cast<NSControl *>(view), nameFor(view, owner), findings);
  }
  return findings;
}

NSRect visibleFrame(NSView *control) {
  const NSRect frame = [control frame];
  const Insets insets = insetsFor(control);
  return NSMakeRect(NSMinX(frame) + insets.left, NSMinY(frame) + insets.bottom,
                    NSWidth(frame) - insets.left - insets.right,
                    NSHeight(frame) - insets.top - insets.bottom);
}

std::vector<std::string> layoutFindings(NSWindow *window, id owner) {
  std::vector<std::string> findings;
  const NSRect inside = NSInsetRect([[window contentView] bounds], kMargin, kMargin);
  const std::vector<NSView *> controls = controlsIn(window);
  for (std::size_t i = 0; i < controls.size(); ++i) {
    const NSRect visible = visibleFrame(controls[i]);
    if (!NSContainsRect(inside, visible)) {
      findings.push_back(nameFor(controls[i], owner) +
                         " is outside the margins: " + app::utf8(NSStringFromRect(visible)));
    }
    for (std::size_t j = 0; j < i; ++j) {
      if (distance(visible, visibleFrame(controls[j])) < kGap ||
          distance([controls[i] frame], [controls[j] frame]) < 0) {
        findings.push_back(nameFor(controls[i], owner) + " is too near to " +
                           nameFor(controls[j], owner));
      }
    }
  }
  return findings;
}

}  // namespace windowtest
