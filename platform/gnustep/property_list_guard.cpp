#include "property_list_guard.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>

namespace platform {
namespace {

constexpr std::streamoff kMaxFileSize = 1 << 20;

/// Follows the containers of a binary list. Objects can be shared, so a few bytes may describe an
/// endless tree; that is why the number of steps is limited, not the number of objects.
class BinaryWalk {
 public:
  explicit BinaryWalk(std::string_view bytes) : bytes_(bytes) {}

  bool isHarmless() {
    constexpr std::size_t kTrailer = 32;
    if (bytes_.size() < kTrailer) return false;
    const std::size_t trailer = bytes_.size() - kTrailer;
    offsetSize_ = number(trailer + 6, 1);
    referenceSize_ = number(trailer + 7, 1);
    objectCount_ = number(trailer + 8, 8);
    offsetTable_ = number(trailer + 24, 8);
    return isIntegerSize(offsetSize_) && isIntegerSize(referenceSize_) &&
           fits(offsetTable_, objectCount_, offsetSize_) && visit(number(trailer + 16, 8), 0);
  }

 private:
  static bool isIntegerSize(std::uint64_t size) { return size >= 1 && size <= 8; }

  bool fits(std::uint64_t start, std::uint64_t count, std::uint64_t size) const {
    return start <= bytes_.size() && count <= (bytes_.size() - start) / size;
  }

  std::uint64_t number(std::uint64_t at, std::uint64_t size) const {
    std::uint64_t value = 0;
    for (std::uint64_t i = 0; i < size; ++i) {
      value = value << 8 | static_cast<std::uint8_t>(bytes_[at + i]);
    }
    return value;
  }

  bool visit(std::uint64_t object, int depth) {
    constexpr int kMaxSteps = 100000;
    constexpr int kMaxDepth = 512;
    if (object >= objectCount_ || depth > kMaxDepth || ++steps_ > kMaxSteps) return false;
    std::uint64_t at = number(offsetTable_ + object * offsetSize_, offsetSize_);
    if (!fits(at, 1, 1)) return false;
    const std::uint64_t marker = number(at++, 1);
    const std::uint64_t type = marker >> 4;
    if (type < 4) return true;  // numbers and dates have no length of their own

    std::uint64_t count = marker & 0xF;
    if (count == 0xF && !readCount(at, count)) return false;
    const bool isContainer = type >= 0xA;
    const std::uint64_t itemSize = isContainer ? referenceSize_ * (type == 0xD ? 2 : 1)
                                   : type == 6 ? 2
                                               : 1;
    if (!fits(at, count, itemSize)) return false;
    if (!isContainer) return true;
    for (const std::uint64_t end = at + count * itemSize; at < end; at += referenceSize_) {
      if (!visit(number(at, referenceSize_), depth + 1)) return false;
    }
    return true;
  }

  /// Reads the integer object that holds a count beyond 14.
  bool readCount(std::uint64_t &at, std::uint64_t &count) const {
    if (!fits(at, 1, 1)) return false;
    const std::uint64_t marker = number(at++, 1);
    const std::uint64_t size = std::uint64_t{1} << (marker & 0xF);
    if (marker >> 4 != 1 || !isIntegerSize(size) || !fits(at, 1, size)) return false;
    count = number(at, size);
    at += size;
    return true;
  }

  std::string_view bytes_;
  std::uint64_t offsetSize_ = 0;
  std::uint64_t referenceSize_ = 0;
  std::uint64_t objectCount_ = 0;
  std::uint64_t offsetTable_ = 0;
  int steps_ = 0;
};

std::string_view withoutLeading(std::string_view characters, std::string_view bytes) {
  bytes.remove_prefix(std::min(bytes.find_first_not_of(characters), bytes.size()));
  return bytes;
}

/// Whether there are at most so many opening marks, and so no more levels than the parser survives.
/// Counting marks needs no parser, which comments and strings could mislead.
bool hasAtMost(std::ptrdiff_t limit, std::string_view marks, std::string_view bytes) {
  const auto isMark = [marks](char byte) { return marks.find(byte) != std::string_view::npos; };
  return std::count_if(bytes.begin(), bytes.end(), isMark) <= limit;
}

/// Whether each "&#" starts a complete character reference. For one without digits the parser uses
/// whatever is in its memory.
bool hasCompleteCharacterReferences(std::string_view bytes) {
  for (auto at = bytes.find("&#"); at != std::string_view::npos; at = bytes.find("&#", at + 2)) {
    std::string_view rest = bytes.substr(at + 2);
    const bool isHexadecimal = rest.starts_with('x');
    if (isHexadecimal) rest.remove_prefix(1);
    const auto digits =
        rest.find_first_not_of(isHexadecimal ? "0123456789abcdefABCDEF" : "0123456789");
    if (digits == 0 || digits > 7 || rest[digits] != ';') return false;
  }
  return true;
}

bool isHarmlessXML(std::string_view bytes) {
  // The parser writes to standard error when the document ends inside a value.
  return bytes[bytes.find_last_not_of(" \t\r\n")] == '>' && hasAtMost(50000, "<", bytes) &&
         hasCompleteCharacterReferences(bytes);
}

bool isHarmlessText(std::string_view bytes) { return hasAtMost(5000, "{(", bytes); }

}  // namespace

std::optional<PropertyListForm> harmlessForm(std::string_view bytes) noexcept {
  if (bytes.starts_with("bplist00")) {
    if (!BinaryWalk(bytes).isHarmless()) return std::nullopt;
    return PropertyListForm::Binary;
  }
  // NUL and 1 start GNUstep's own serialised forms, which can claim any amount of memory.
  if (bytes.find('\0') != std::string_view::npos || bytes.starts_with('\1')) return std::nullopt;
  bytes = withoutLeading(" \t\r\n", bytes);
  if (bytes.empty()) return std::nullopt;
  for (const std::string_view tag : {"<?xml", "<!DOCTYPE", "<!--", "<plist"}) {
    if (!bytes.starts_with(tag)) continue;
    if (!isHarmlessXML(bytes)) return std::nullopt;
    return PropertyListForm::XML;
  }
  // No dictionary in text form starts with '<', and some text that does is read beyond its end. The
  // parser takes more characters for spaces than XML does, and XML after them for XML.
  const bool startsLikeXML = withoutLeading("\b\t\n\v\f\r ", bytes).starts_with('<');
  if (startsLikeXML || !isHarmlessText(bytes)) return std::nullopt;
  return PropertyListForm::Text;
}

std::optional<std::string> readPropertyListFile(const char *path) noexcept {
  // Opening a named pipe would block.
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) return std::nullopt;
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  const std::streamoff size = file.tellg();
  if (size < 0 || size > kMaxFileSize) return std::nullopt;
  std::string contents(static_cast<std::size_t>(size), '\0');
  if (!file.seekg(0).read(contents.data(), size)) return std::nullopt;
  return contents;
}

}  // namespace platform
