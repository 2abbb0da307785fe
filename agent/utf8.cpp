#include "agent/utf8.h"

#include <array>
#include <cstddef>

namespace agent {
namespace {

/// A range of lead bytes, how many bytes follow, and the range of the first of these: it excludes
/// overlong forms, surrogates and values above U+10FFFF.
struct Form {
  unsigned char leadFrom, leadTo;
  std::size_t following;
  unsigned char firstFrom, firstTo;
};

constexpr std::array<Form, 9> kForms{{
    {0x00, 0x7F, 0, 0x80, 0xBF},
    {0xC2, 0xDF, 1, 0x80, 0xBF},
    {0xE0, 0xE0, 2, 0xA0, 0xBF},
    {0xE1, 0xEC, 2, 0x80, 0xBF},
    {0xED, 0xED, 2, 0x80, 0x9F},
    {0xEE, 0xEF, 2, 0x80, 0xBF},
    {0xF0, 0xF0, 3, 0x90, 0xBF},
    {0xF1, 0xF3, 3, 0x80, 0xBF},
    {0xF4, 0xF4, 3, 0x80, 0x8F},
}};

const Form *formFor(unsigned char lead) {
  for (const Form &form : kForms) {
    if (lead >= form.leadFrom && lead <= form.leadTo) return &form;
  }
  return nullptr;
}

/// Length of the character at the start of the bytes; 0 when it is malformed or cut off.
std::size_t characterLength(std::string_view bytes) {
  const auto at = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  const Form *form = formFor(at(0));
  if (form == nullptr || bytes.size() <= form->following) return 0;
  for (std::size_t i = 1; i <= form->following; ++i) {
    const unsigned char from = i == 1 ? form->firstFrom : 0x80;
    const unsigned char to = i == 1 ? form->firstTo : 0xBF;
    if (at(i) < from || at(i) > to) return 0;
  }
  return form->following + 1;
}

}  // namespace

bool isUtf8(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t length = characterLength(bytes);
    if (length == 0) return false;
    bytes.remove_prefix(length);
  }
  return true;
}

}  // namespace agent
