// Bytes in the forms that other tools print, and streams of messages.
#include "byte_forms.hpp"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "bytes_of_text.hpp"
#include "failure.hpp"
#include "stream.hpp"
#include "support.hpp"

namespace inspect {
namespace {

byte_string detected(std::string_view text) { return parse_bytes(of(text), byte_form::automatic); }

const byte_string eighteen = test::hex("08 10 08 c1 bb 01 08 11 08 12 08 13 08 14 08 41 08 42");

TEST(a_dump, is_read_as_hexdump_prints_it) {
  EXPECT_EQ(detected("00000000  08 10 08 c1 bb 01 08 11  08 12 08 13 08 14 08 41  |...............A|\n"
                     "00000010  08 42                                             |.B|\n"
                     "00000012\n"),
            eighteen);
}

TEST(a_dump, is_read_as_xxd_prints_it) {
  EXPECT_EQ(detected("00000000: 0810 08c1 bb01 0811 0812 0813 0814 0841  ...............A\n"
                     "00000010: 0842                                     .B\n"),
            eighteen);
  EXPECT_EQ(detected("00000000: 08 10 08 c1  ab\n"), test::hex("08 10 08 c1")) << "the text column begins after a gap";
}

TEST(a_dump, is_read_as_od_prints_it_with_octal_or_hexadecimal_offsets) {
  EXPECT_EQ(detected("0000000 08 10 08 c1 bb 01 08 11 08 12 08 13 08 14 08 41\n0000020 08 42\n0000022\n"), eighteen);
  EXPECT_EQ(detected("000000 08 10 08 c1 bb 01 08 11 08 12 08 13 08 14 08 41  >...............A<\n"
                     "000010 08 42                                            >.B<\n000012\n"),
            eighteen);
}

TEST(a_dump, is_read_as_network_tools_print_it) {
  EXPECT_EQ(detected("\t0x0000:  0810 08c1 bb01 0811 0812 0813 0814 0841  ...............A\n\t0x0010:  0842  .B\n"),
            eighteen);
  EXPECT_EQ(detected("0000   08 10 08 c1 bb 01 08 11 08 12 08 13 08 14 08 41   ab.............A\n0010   08 42   ab\n"),
            eighteen);
}

TEST(a_dump, is_read_as_this_tool_annotates_it) {
  EXPECT_EQ(detected("000000  08 10    labels[0] (1 varint, unsigned 32-bit) = 16\n"
                     "000002? 50 01    unknown field 10 (10 varint), skipped: 1\n"
                     "000004! 08       <-- CODEC_ERR_TRUNCATED: field 1\n"),
            test::hex("08 10 50 01 08"));
}

TEST(a_dump, is_refused_unless_every_line_has_the_right_offset) {
  EXPECT_THROW(parse_bytes(of("00000000  08 10\n00000003  08\n"), byte_form::dump), input_error);
  EXPECT_THROW(parse_bytes(of("00000001  08 10\n"), byte_form::dump), input_error);
  EXPECT_THROW(parse_bytes(of("00000000\n"), byte_form::dump), input_error);
  EXPECT_THROW(parse_bytes(of("0000000 1008 c108\n0000004\n"), byte_form::dump), input_error) << "words of 16 bits";
}

TEST(digits, are_read_with_whitespace_and_comments) {
  EXPECT_EQ(detected("08 10 # labels[0] = 16\r\n08c1\tBB01"), test::hex("08 10 08 c1 bb 01"));
  EXPECT_EQ(detected("0 8 1 0"), test::hex("08 10"));
  EXPECT_THROW(detected("081"), input_error);
  EXPECT_THROW(parse_bytes(of("xy"), byte_form::hex), input_error);
}

TEST(base64, is_read_over_many_lines) {
  EXPECT_EQ(detected("CBAI\nwbsB\n"), test::hex("08 10 08 c1 bb 01"));
  EXPECT_EQ(parse_bytes(of("CBA="), byte_form::base64), test::hex("08 10"));
  EXPECT_THROW(parse_bytes(of("CB?="), byte_form::base64), input_error);
}

TEST(other_input, is_taken_as_raw_bytes) {
  EXPECT_EQ(detected(""), byte_string{});
  EXPECT_EQ(parse_bytes(test::hex("08 31"), byte_form::automatic), test::hex("08 31"));
  EXPECT_EQ(detected("# nothing"), of("# nothing"));
  EXPECT_EQ(parse_bytes(of("0831"), byte_form::raw), of("0831"));
}

TEST(every_form, is_read_as_it_is_written) {
  for (std::size_t size = 0; size < 70; ++size) {
    byte_string content;
    for (std::size_t index = 0; index < size; ++index) content.push_back(static_cast<unsigned char>(7 * size + index));
    for (const byte_form form : {byte_form::raw, byte_form::hex, byte_form::base64}) {
      EXPECT_EQ(parse_bytes(of(format_bytes(content, form)), form), content);
    }
    if (size != 0) {
      EXPECT_EQ(parse_bytes(of(format_bytes(content, byte_form::dump)), byte_form::dump), content);
      EXPECT_EQ(detected(format_bytes(content, byte_form::dump)), content);
    }
  }
  EXPECT_EQ(format_bytes(eighteen, byte_form::hex), "08 10 08 c1 bb 01 08 11 08 12 08 13 08 14 08 41\n08 42\n");
  EXPECT_EQ(format_bytes(eighteen, byte_form::dump),
            "00000000  08 10 08 c1 bb 01 08 11 08 12 08 13 08 14 08 41\n00000010  08 42\n");
}

std::vector<std::size_t> lengths(const frames &found) {
  std::vector<std::size_t> result;
  for (const frame &each : found.complete) result.push_back(each.length);
  return result;
}

TEST(a_stream, is_split_at_its_prefixes) {
  using sizes = std::vector<std::size_t>;
  EXPECT_EQ(lengths(split(test::hex("02 08 31 00 01 08"), prefix_form::varint)), (sizes{2, 0, 1}));
  EXPECT_EQ(lengths(split(test::hex("00000002 0831 00000000"), prefix_form::be32)), (sizes{2, 0}));
  EXPECT_EQ(lengths(split(test::hex("02000000 0831 00000000"), prefix_form::le32)), (sizes{2, 0}));
  EXPECT_EQ(lengths(split(byte_string{}, prefix_form::varint)), sizes{});
  EXPECT_EQ(lengths(split(test::hex("02 08 31"), prefix_form::none)), sizes{3});
  byte_string longer = test::hex("81 01");
  longer.resize(2 + 129);
  EXPECT_EQ(lengths(split(longer, prefix_form::varint)), sizes{129});
}

TEST(a_stream, that_is_cut_off_gives_the_messages_before) {
  const frames varint = split(test::hex("01 08 05 08 31"), prefix_form::varint);
  EXPECT_EQ(lengths(varint), std::vector<std::size_t>{1});
  EXPECT_EQ(varint.failure, "message 1 of the stream, at offset 2: length 5 exceeds the 2 bytes left");
  EXPECT_EQ(split(test::hex("80 80"), prefix_form::varint).failure,
            "message 0 of the stream, at offset 0: the length prefix is cut off or invalid");
  EXPECT_EQ(split(test::hex("00 00 00"), prefix_form::be32).failure,
            "message 0 of the stream, at offset 0: the length prefix is cut off or invalid");
  EXPECT_EQ(split(test::hex("ffffffff"), prefix_form::le32).failure,
            "message 0 of the stream, at offset 0: length 4294967295 exceeds the 0 bytes left");
  EXPECT_TRUE(split(test::hex("ff ff ff ff ff ff ff ff ff 01 00"), prefix_form::varint).failure.has_value());
}

TEST(a_prefix, is_written_as_it_is_read) {
  for (const prefix_form form : {prefix_form::varint, prefix_form::be32, prefix_form::le32}) {
    for (const std::size_t length : {0u, 1u, 127u, 128u, 300u, 70000u}) {
      byte_string stream;
      append_prefix(stream, length, form);
      const std::size_t size = stream.size();
      stream.resize(size + length);
      EXPECT_EQ(lengths(split(stream, form)), std::vector<std::size_t>{length});
    }
  }
  byte_string stream;
  append_prefix(stream, 300, prefix_form::varint);
  append_prefix(stream, 300, prefix_form::be32);
  append_prefix(stream, 300, prefix_form::le32);
  EXPECT_EQ(stream, test::hex("ac 02 00 00 01 2c 2c 01 00 00"));
}

}  // namespace
}  // namespace inspect
