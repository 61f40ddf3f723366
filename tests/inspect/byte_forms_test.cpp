// Bytes in the forms that other tools print, and streams of messages.
#include "byte_forms.hpp"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "bytes_of_text.hpp"
#include "failure.hpp"
#include "messages.hpp"
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

TEST(digits, are_read_as_logs_and_programs_write_them) {
  const byte_string expected = test::hex("08 07 12 02 65 74");
  for (const std::string_view text : {
           "08:07:12:02:65:74",
           "08:07:12:\n02:65:74\n",
           "08-07-12-02-65-74",
           "08,07,12,02,65,74",
           "0x080712026574",
           "0X08 0X07 0x12 0x02 0x65 0x74",
           "0x8, 0x7, 0x12, 0x2, 0x65, 0x74,\n",
           "\\x08\\x07\\x12\\x02\\x65\\x74",
           "b'\\x08\\x07\\x12\\x02\\x65\\x74'",
           "\"\\x08\\x07\\x12\"\n\"\\x02\\x65\\x74\"",
           "unsigned char raw[] = {\n  0x08, 0x07, 0x12,\n  0x02, 0x65, 0x74\n};\nunsigned int raw_len = 6;\n",
           "/* Frame (6 bytes) */\nstatic const unsigned char pkt1[6] = {\n0x08, 0x07, 0x12, /* ... */\n0x02, 0x65, "
           "0x74  // et\n};\n",
           "[]byte{0x08, 0x07, 0x12, 0x02, 0x65, 0x74}",
       }) {
    EXPECT_EQ(detected(text), expected) << text;
  }
}

TEST(digits, are_refused_in_a_mixture_of_forms) {
  for (const std::string_view text :
       {"08:07-12", "08::07", ":08:07", "08,,07", "0807-1202", "0x08 07", "0x0807 0x1202", "0x8 0x123", "0x",
        "\\x08\\x", "\\x08 07", "x08", "char a[] = {8, 7};", "char a[] = {0x08, 0x07}; int a_len = 3;",
        "char a[] = {0x08,, 0x07};", "a() = {0x08}", "{}", "{0x08"}) {
    EXPECT_THROW(parse_bytes(of(text), byte_form::hex), input_error) << text;
  }
}

TEST(a_dump, has_an_asterisk_for_lines_like_the_one_before) {
  byte_string expected(64);
  expected.push_back(0x08);
  EXPECT_EQ(detected("00000000  00 00 00 00 00 00 00 00  00 00 00 00 00 00 00 00  |................|\n*\n"
                     "00000040  08                                                |.|\n00000041\n"),
            expected);
  EXPECT_THROW(parse_bytes(of("00000000  00 00\n*\n"), byte_form::dump), input_error);
  EXPECT_THROW(parse_bytes(of("*\n00000000  00 00\n"), byte_form::dump), input_error);
  EXPECT_THROW(parse_bytes(of("00000000  00 00\n*\nffffffff\n"), byte_form::dump), input_error) << "gigabytes";
}

TEST(other_input, is_taken_as_raw_bytes_unless_it_is_text) {
  EXPECT_EQ(detected(""), byte_string{});
  EXPECT_EQ(parse_bytes(test::hex("08 31"), byte_form::automatic), test::hex("08 31"));
  EXPECT_EQ(parse_bytes(of("0831"), byte_form::raw), of("0831"));
  const auto refusal = [](std::string_view text) -> std::string {
    try {
      parse_bytes(of(text), byte_form::automatic, {"a file", "--from=raw"});
    } catch (const input_error &error) {
      return error.what();
    }
    return "read";
  };
  const std::string text = "a file is text, but neither digits, a dump nor base64; --from=raw reads it as bytes";
  EXPECT_EQ(refusal("# nothing"), text);
  EXPECT_EQ(refusal("0000000 0708\n0000002\n"), text);
  EXPECT_EQ(refusal(" {\"address\": 49}\n"), "a file is JSON, which `encode` reads; --from=raw reads it as bytes");
  const std::string text_form =
      "a file is text, perhaps what `convert --from=text` reads; --from=raw reads it as bytes";
  EXPECT_EQ(refusal("address: 49\n"), text_form);
  EXPECT_EQ(refusal("\n# 10.0.0.1\n\t# the first\r\n\n hops {\n}\n"), text_form);
  EXPECT_EQ(refusal("083"), "a file: an odd number of hexadecimal digits; --from=raw reads it as bytes");
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

// The lengths of the messages of a stream, and why the rest cannot be read.
struct stream_content {
  std::vector<std::size_t> lengths;
  std::string failure;

  bool operator==(const stream_content &) const = default;
};

stream_content content_of(byte_string stream, prefix_form form, input_options options = {}) {
  options.input = byte_form::raw;
  options.stream = form;
  const auto source = open_messages(std::make_unique<input_file>("input", std::move(stream)), options);
  stream_content found;
  try {
    for (input_message message; source->next(message);) found.lengths.push_back(message.bytes.size());
  } catch (const input_error &error) {
    found.failure = error.what();
  }
  return found;
}

TEST(a_stream, is_split_at_its_prefixes) {
  EXPECT_EQ(content_of(test::hex("02 08 31 00 01 08"), prefix_form::varint), (stream_content{{2, 0, 1}, ""}));
  EXPECT_EQ(content_of(test::hex("0002 0831 0000"), prefix_form::be16), (stream_content{{2, 0}, ""}));
  EXPECT_EQ(content_of(test::hex("00000002 0831 00000000"), prefix_form::be32), (stream_content{{2, 0}, ""}));
  EXPECT_EQ(content_of(test::hex("02000000 0831 00000000"), prefix_form::le32), (stream_content{{2, 0}, ""}));
  EXPECT_EQ(content_of({}, prefix_form::varint), (stream_content{{}, ""}));
  EXPECT_EQ(content_of(test::hex("02 08 31"), prefix_form::none), (stream_content{{3}, ""}));
  byte_string longer = test::hex("81 01");
  longer.resize(2 + 129);
  EXPECT_EQ(content_of(longer, prefix_form::varint), (stream_content{{129}, ""}));
}

TEST(a_stream, that_is_cut_off_gives_the_messages_before) {
  EXPECT_EQ(content_of(test::hex("01 08 05 08 31"), prefix_form::varint),
            (stream_content{{1}, "input: message 1 of the stream, at offset 2: length 5 exceeds the 2 bytes left"}));
  EXPECT_EQ(content_of(test::hex("80 80"), prefix_form::varint).failure,
            "input: message 0 of the stream, at offset 0: the length prefix is cut off or invalid");
  EXPECT_EQ(content_of(test::hex("00 00 00"), prefix_form::be32).failure,
            "input: message 0 of the stream, at offset 0: the length prefix is cut off or invalid");
  EXPECT_EQ(content_of(test::hex("ffffffff"), prefix_form::le32).failure,
            "input: message 0 of the stream, at offset 0: length 4294967295 exceeds the 0 bytes left");
  EXPECT_EQ(content_of(test::hex("ff ff ff ff ff ff ff ff ff ff 01 00"), prefix_form::varint).failure,
            "input: message 0 of the stream, at offset 0: the length prefix is cut off or invalid");
  EXPECT_EQ(content_of(test::hex("80 80 80 80 80 80 80 80 80 02"), prefix_form::varint).failure,
            "input: message 0 of the stream, at offset 0: the length prefix is cut off or invalid")
      << "more than 64 bits";
}

TEST(a_stream, may_begin_and_end_within_the_input) {
  input_options options;
  options.skip = 3;
  EXPECT_EQ(content_of(test::hex("ff ff ff 02 08 31 00"), prefix_form::varint, options), (stream_content{{2, 0}, ""}));
  options.length = 3;
  EXPECT_EQ(content_of(test::hex("ff ff ff 02 08 31 00"), prefix_form::varint, options), (stream_content{{2}, ""}));
  options.length = 2;
  EXPECT_EQ(content_of(test::hex("ff ff ff 02 08 31 00"), prefix_form::varint, options).failure,
            "input: message 0 of the stream, at offset 3: length 2 exceeds the 1 byte left");
  options.skip = 9;
  for (const prefix_form form : {prefix_form::varint, prefix_form::none}) {
    EXPECT_EQ(content_of(test::hex("ff ff ff"), form, options).failure, "input: --skip=9 exceeds its 3 bytes");
    EXPECT_EQ(content_of(byte_string(9), form, options).failure, "");
  }
}

TEST(lines, are_messages_unless_they_are_empty_or_comments) {
  input_options options;
  options.stream = prefix_form::lines;
  const auto source = open_messages(
      std::make_unique<input_file>("input", of("0831\n\n# three\n08:32:08:33  # two\r\n  CDE=\nno form")), options);
  input_message message;
  std::vector<byte_string> found;
  for (int line = 0; line < 3; ++line) {
    ASSERT_TRUE(source->next(message));
    EXPECT_EQ(message.name, fmt::format("input[{}]", line));
    found.emplace_back(message.bytes.begin(), message.bytes.end());
  }
  EXPECT_EQ(found, (std::vector<byte_string>{test::hex("08 31"), test::hex("08 32 08 33"), test::hex("08 31")}));
  EXPECT_THROW(
      {
        try {
          source->next(message);
        } catch (const input_error &error) {
          EXPECT_STREQ(error.what(), "input: line 6: neither hexadecimal text nor base64");
          throw;
        }
      },
      input_error);
}

TEST(a_prefix, is_written_as_it_is_read) {
  for (const prefix_form form : {prefix_form::varint, prefix_form::be16, prefix_form::be32, prefix_form::le32}) {
    for (const std::size_t length : {0u, 1u, 127u, 128u, 300u, 70000u}) {
      byte_string stream;
      if (form == prefix_form::be16 && length == 70000) {
        EXPECT_THROW(append_prefix(stream, length, form), input_error);
        continue;
      }
      append_prefix(stream, length, form);
      const std::size_t size = stream.size();
      stream.resize(size + length);
      EXPECT_EQ(content_of(stream, form), (stream_content{{length}, ""}));
    }
  }
  byte_string stream;
  append_prefix(stream, 300, prefix_form::varint);
  append_prefix(stream, 300, prefix_form::be16);
  append_prefix(stream, 300, prefix_form::be32);
  append_prefix(stream, 300, prefix_form::le32);
  EXPECT_EQ(stream, test::hex("ac 02 01 2c 00 00 01 2c 2c 01 00 00"));
}

}  // namespace
}  // namespace inspect
