#pragma once

#include <cstddef>
#include <string_view>

/// What C++20 cannot say about an enumeration. Its values must count up from 0 without a gap.
namespace app {
namespace detail {

/// Compilers print a value with a name as "i18n::Language::En", any other as "(i18n::Language)5".
template <auto kValue>
constexpr bool hasName() {
  return std::string_view(__PRETTY_FUNCTION__).find("kValue = (") == std::string_view::npos;
}

}  // namespace detail

/// How many values the enumeration names.
template <class Enum, std::size_t kFirst = 0>
constexpr std::size_t countEnumerators() {
  if constexpr (detail::hasName<static_cast<Enum>(kFirst)>()) {
    return countEnumerators<Enum, kFirst + 1>();
  } else {
    return kFirst;
  }
}

/// Whether a table has exactly one row for each value, in the same order. Every table by language
/// or edition asserts it, so that a new value does not compile until each table has a row for it:
///
///   static_assert(hasRowForEach(kCodes, &CodeRow::lang));
template <class Rows, class Row, class Enum>
constexpr bool hasRowForEach(const Rows &rows, Enum Row::*key) {
  std::size_t number = 0;
  for (const Row &row : rows) {
    if (row.*key != static_cast<Enum>(number++)) return false;
  }
  return number == countEnumerators<Enum>();
}

}  // namespace app
