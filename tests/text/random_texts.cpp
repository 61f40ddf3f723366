// Random records of every message, in files of a folder: MESSAGE.stream with their encodings, each after
// its length as a varint, MESSAGE.json, MESSAGE.compact and MESSAGE.lines with what pavo_zorv_text.hpp makes of them.
//   text_test FOLDER
// In the program of the tests, which is compiled for every message anyway.
#include <fstream>

#include "laws.hpp"
#include "messages/all.hpp"
#include "pavo_zorv.hpp"
#include "pavo_zorv_framing.h"
#include "pavo_zorv_text.hpp"

bool write_random_texts(const std::string &folder) {
  bool is_written = true;
  pavo_zorv::for_each_message([&](auto message) {
    using record_type = typename decltype(message)::type;
    const std::string name = folder + '/' + pavo_zorv::message_name<record_type>;
    std::ofstream stream(name + ".stream", std::ios::binary), json(name + ".json"), lines(name + ".lines"),
        compact(name + ".compact");
    test::random_numbers random(1);
    for (int round = 0; round < 30; ++round) {
      const test::random_record made(naive::message_of<record_type>(), random,
                                     round == 0 ? test::shapes::full : test::shapes::canonical);
      const auto &record = made.as<record_type>();
      const auto bytes = zorv::encode(record);
      unsigned char prefix[PAVO_ZORV_PREFIX_SIZE];
      const std::size_t size = pavo_zorv_prefix_write(prefix, PAVO_ZORV_PREFIX_VARINT, bytes.size());
      stream.write(reinterpret_cast<const char *>(prefix), static_cast<std::streamsize>(size));
      stream.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
      json << zorv::to_json(record) << '\n';
      compact << zorv::to_json(record, {zorv::json_layout::one_line}) << '\n';
      std::string line(1000000, '\0');
      lines << zorv::write_line(record, line.data(), line.size()).text << '\n';
    }
    stream.flush();
    json.flush();
    lines.flush();
    compact.flush();
    is_written = is_written && stream && json && lines && compact;
  });
  return is_written;
}

int main(int count, char **arguments) {
  testing::InitGoogleTest(&count, arguments);
  if (count == 2) return write_random_texts(arguments[1]) ? 0 : 1;
  return RUN_ALL_TESTS();
}
