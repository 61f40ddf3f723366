// The stack that each operation takes, for every message, is less than the header says. Each is measured in a new
// process with lazy binding, so the figures include the stack that the dynamic linker takes for the first call, which
// is most of the smaller ones.
#include <sys/wait.h>

#include <fstream>
#include <iterator>
#include <regex>

#include "laws.hpp"
#include "other_stack.hpp"
#include "pavo_zorv_memory.h"

namespace {

using namespace test;

// The limit that the header documents for an operation, in bytes.
std::size_t documented(const std::string &section) {
  std::ifstream file(PAVO_ZORV_HEADER);
  const std::string header{std::istreambuf_iterator<char>(file), {}};
  const std::size_t begin = header.find("@section " + section);
  if (begin == std::string::npos) return 0;
  const std::string text = header.substr(begin, header.find("@section", begin + 1) - begin);
  std::smatch found;
  if (!std::regex_search(text, found, std::regex("Less than (\\d+) KB of stack\\."))) return 0;
  return 1024 * std::stoul(found[1]);
}

// Memory shared between processes.
template <class Content>
Content &shared() {
  void *const place = mmap(nullptr, sizeof(Content), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (place == MAP_FAILED) std::abort();
  return *static_cast<Content *>(place);
}

void in_another_process(const std::function<void()> &work) {
  const pid_t child = fork();
  if (child == 0) {
    work();
    _exit(testing::Test::HasFailure());
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_EQ(status, 0);
}

// Neither takes a significant amount of stack.
alignas(16) unsigned char pool[1 << 20];
std::size_t pool_used = 0;
void *take(std::size_t size, void *) {
  pool_used += (size + 15) / 16 * 16;
  return pool_used <= sizeof pool ? pool + pool_used - (size + 15) / 16 * 16 : nullptr;
}
void give(void *, void *) {}

constexpr shape filled{.presence = 100, .longest_list = 2, .longest_text = 6};

// Does what is measured, and tells whether it did it.
using call = std::function<bool()>;
// Makes one from a type, a record with all its members, another that is the same, and options.
using call_maker = std::function<call(const naive::message &, view, view, std::uint32_t)>;

class stack : public testing::Test {
 protected:
  // The most that calls take for any message is less than the header says.
  void is_less_than_documented(const std::string &section, const std::vector<call_maker> &makers) {
    static std::size_t &used = shared<std::size_t>();
    std::size_t most = 0;
    for (const naive::message *const type : subjects()) {
      random_numbers first(7), second(7);
      const random_record record(*type, first, filled), same(*type, second, filled);
      for (const std::uint32_t options : type->modes()) {
        for (const call_maker &maker : makers) {
          const call work = maker(*type, record, same, options);
          used = 0;
          in_another_process([&] {
            bool is_done = false;
            used = place_.used_by([&] { is_done = work(); }) - before_;
            EXPECT_TRUE(is_done) << type->name;
          });
          EXPECT_GT(used, 100u) << type->name;
          most = std::max(most, used);
        }
      }
    }
    EXPECT_LT(most, documented(section));
    RecordProperty("bytes", std::to_string(most));
  }

  other_stack place_;

 private:
  static bool do_nothing() { return true; }
  bool is_done_ = false;
  // What is taken before the call.
  std::size_t before_ = place_.used_by([this, work = call(do_nothing)] { is_done_ = work(); });
};

[[gnu::noinline]] void use_8_kilobytes() {
  volatile unsigned char block[8192];
  for (auto &byte : block) byte = 1;
}

TEST_F(stack, of_8_kilobytes_is_measured_as_that) {
  EXPECT_GE(place_.used_by(use_8_kilobytes), 8192u);
  EXPECT_LT(place_.used_by(use_8_kilobytes), 8192u + 512);
}

TEST_F(stack, has_the_constants_that_the_header_says) {
  EXPECT_EQ(documented("encoding"), std::size_t{PAVO_ZORV_STACK_OF_ENCODING});
  for (const char *const section : {"decoding", "copying", "releasing", "comparing"}) {
    EXPECT_EQ(documented(section), std::size_t{PAVO_ZORV_STACK}) << section;
  }
}

TEST_F(stack, is_less_than_the_header_says_for_decoding) {
  struct encoding {
    std::size_t length;
    unsigned char bytes[1 << 20];
  };
  static encoding &input = shared<encoding>();
  static unsigned char out[2048];
  is_less_than_documented(
      "decoding", {[](const naive::message &type, view record, view, std::uint32_t options) {
        in_another_process([&] {
          input.length = type.functions->encode(record.data(), input.bytes, sizeof input.bytes, nullptr, nullptr, 0);
        });
        return [&type, options] {
          return type.functions->decode(out, input.bytes, input.length, take, nullptr, options) == CODEC_OK;
        };
      }});
}

TEST_F(stack, is_less_than_the_header_says_for_encoding) {
  static unsigned char buffer[9000];
  static pavo_zorv_segment segments[1000];
  static std::uint32_t count = std::size(segments);
  std::vector<call_maker> makers;
  for (const std::size_t length : {0u, 20u, 4000u, 9000u}) {
    for (const bool has_table : {false, true}) {
      makers.push_back([length, has_table](const naive::message &type, view record, view, std::uint32_t options) {
        return [length, has_table, &type, record, options] {
          return type.functions->encode(record.data(), length != 0 ? buffer : nullptr, length,
                                        has_table ? segments : nullptr, has_table ? &count : nullptr, options) > 0;
        };
      });
    }
  }
  is_less_than_documented("encoding", makers);
}

TEST_F(stack, is_less_than_the_header_says_for_copying) {
  static unsigned char copy[2048];
  is_less_than_documented("copying", {[](const naive::message &type, view record, view, std::uint32_t) {
                            return [&type, record] {
                              return type.functions->duplicate(copy, record.data(), take, nullptr) == CODEC_OK;
                            };
                          }});
}

TEST_F(stack, is_less_than_the_header_says_for_releasing) {
  is_less_than_documented("releasing", {[](const naive::message &type, view record, view, std::uint32_t options) {
                            return [&type, record, options] {
                              type.functions->free(record.data(), give, nullptr, options);
                              return true;
                            };
                          }});
}

TEST_F(stack, is_less_than_the_header_says_for_comparing) {
  is_less_than_documented("comparing", {[](const naive::message &type, view record, view same, std::uint32_t) {
                            return [&type, record, same] {
                              return type.functions->compare(record.data(), same.data()) == 0;
                            };
                          }});
}

}  // namespace
