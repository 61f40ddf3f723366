// The name of a member of a record: a schema has none for the members that count elements, but the compiler does.
#pragma once

#include <cstddef>
#include <string_view>

namespace pavo_zorv {

template <auto Member>
constexpr std::string_view member_name() {
  constexpr std::string_view function = __PRETTY_FUNCTION__;
  constexpr std::size_t first = function.find('&');
  constexpr std::size_t begin = function.find("::", first) + 2;
  return function.substr(begin, function.find_first_of(";]", begin) - begin);
}

}  // namespace pavo_zorv
