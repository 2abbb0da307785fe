/// Whether GNUstep's property list parsers can be trusted with some bytes. Plain C++.

#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace platform {

enum class PropertyListForm { Binary, XML, Text };

/// The form of the bytes when the parser of that form will neither overrun the stack nor fill the
/// memory with them, else nothing. The bytes may still turn out not to be a property list. An XML
/// list is one with or without its `<?xml` declaration. No byte order mark is expected.
[[nodiscard]] std::optional<PropertyListForm> harmlessForm(std::string_view bytes) noexcept;

/// The contents of a regular file that is small enough to be a property list of settings.
[[nodiscard]] std::optional<std::string> readPropertyListFile(const char *path) noexcept;

}  // namespace platform
