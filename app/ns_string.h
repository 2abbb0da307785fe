#pragma once

#import <Foundation/Foundation.h>

#include <string>
#include <string_view>

namespace app {

/// The UTF-8 bytes of a string, NUL characters included; empty for nil and for a string that has no
/// UTF-8 form (a lone surrogate).
inline std::string utf8(NSString *text) {
  NSData *data = [text dataUsingEncoding:NSUTF8StringEncoding];
  return data == nil ? std::string()
                     : std::string(static_cast<const char *>([data bytes]), [data length]);
}

/// An autoreleased string from UTF-8 bytes; nil when they are not valid UTF-8.
inline NSString *nsString(std::string_view text) {
  return [[[NSString alloc] initWithBytes:text.data()
                                   length:text.size()
                                 encoding:NSUTF8StringEncoding] autorelease];
}

}  // namespace app
