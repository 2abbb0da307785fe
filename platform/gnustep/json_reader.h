/// Strict JSON (RFC 8259) in plain C++: what NSJSONSerialization is built on here.

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

/// Receives the parts of a document in order. Every text is valid UTF-8 and may hold NUL. Returning
/// false stops the reading.
class JSONEvents {
 public:
  virtual ~JSONEvents() = default;
  virtual bool null() = 0;
  virtual bool boolean(bool value) = 0;
  virtual bool integer(std::int64_t value) = 0;
  virtual bool unsignedInteger(std::uint64_t value) = 0;
  virtual bool real(double value) = 0;
  virtual bool string(std::string_view value) = 0;
  virtual bool key(std::string_view name) = 0;
  virtual bool beginArray() = 0;
  virtual bool endArray() = 0;
  virtual bool beginObject() = 0;
  virtual bool endObject() = 0;
};

/// Where and why a text is no JSON. Line and column count from 1, columns in characters.
struct JSONError {
  std::size_t line;
  std::size_t column;
  std::string problem;
};

/// As deep as the system's parser goes.
inline constexpr int kMaxJSONDepth = 512;

/// Reads one document, with or without a UTF-8 byte order mark; nothing but white space may follow.
/// Numbers that fit 64 bits arrive as integers, other finite ones as reals.
[[nodiscard]] std::optional<JSONError> readJSON(std::string_view text, JSONEvents &events);

}  // namespace platform
