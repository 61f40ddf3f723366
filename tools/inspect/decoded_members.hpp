// Which members of a record decoding has filled: those that are present and, where it stopped, those on the way there.
#pragma once

#include <algorithm>
#include <cstddef>

#include "message_table.hpp"
#include "path.hpp"
#include "pavo_zorv_text.hpp"

namespace inspect {

// As zorv::json_writer takes it.
class decoded_members {
 public:
  // With the path to where decoding stopped; empty if it did not.
  explicit decoded_members(path_view stopped) : stopped_(stopped) {}

  // A member that decoding stopped in may hold something without being present.
  template <class Field, class Record>
  bool has(Field field, const Record &record) const {
    if (field.is_in(record)) return true;
    if (!stops_in(field)) return false;
    if constexpr (Field::kind == zorv::kind::message_list) {
      return record.*Field::member != nullptr;
    } else if constexpr (Field::kind == zorv::kind::nested) {
      const decoded_members nested = inside(field, 0);
      bool has_any = false;
      zorv::for_each_field<std::decay_t<decltype(field.get(record))>>(
          [&](auto each) { has_any = has_any || nested.has(each, field.get(record)); });
      return has_any;
    } else {
      return false;
    }
  }

  // Elements after the one that decoding stopped in were not reached.
  template <class Field>
  std::size_t count(Field field, std::size_t size) const {
    return stops_in(field) && stopped_.front().index ? std::min(size, *stopped_.front().index + 1) : size;
  }

  template <class Field>
  decoded_members inside(Field field, std::size_t index) const {
    const bool stops_there = stops_in(field) && stopped_.front().index.value_or(0) == index;
    return decoded_members(stops_there ? stopped_.subspan(1) : path_view{});
  }

 private:
  template <class Field>
  bool stops_in(Field) const {
    return !stopped_.empty() && stopped_.front().field->number == Field::number;
  }

  path_view stopped_;
};

}  // namespace inspect
