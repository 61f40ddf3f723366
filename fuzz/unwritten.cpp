// Decoding and copying do not read what their records held before: the records come uninitialised from malloc; the
// results are encoded, compared and released. Memcheck and the memory sanitizer detect violations. Every input is tried
// with its message type, and empty input with all others.
#include "harness.hpp"

namespace fuzz {

namespace {

// Uninitialised memory for a record. On the heap, because a compiler may treat an uninitialised variable as it likes.
class unwritten {
 public:
  explicit unwritten(const message &type) : block_(std::malloc(type.size)) {
    if (block_ == nullptr) test::broken("no memory");
  }
  unwritten(const unwritten &) = delete;
  unwritten &operator=(const unwritten &) = delete;
  ~unwritten() { std::free(block_); }
  unsigned char *data() const { return static_cast<unsigned char *>(block_); }

 private:
  void *block_;
};

std::vector<unsigned char> encoding_of(const message &type, const unsigned char *record, std::uint32_t options) {
  const auto encode = type.functions->encode;
  std::vector<unsigned char> bytes(encode(record, nullptr, 0, nullptr, nullptr, options));
  encode(record, bytes.data(), bytes.size(), nullptr, nullptr, options);
  return bytes;
}

void check(const trial &trial, const message &type, const unsigned char *bytes, std::size_t length) {
  const test::calls &call = *type.functions;
  const std::uint32_t options = call.takes_options ? trial.extra & PAVO_ZORV_REFERENCE : 0;
  const std::size_t granted = (trial.choice & 3) == 0 ? trial.number % 24 : SIZE_MAX;
  const unwritten original(type), copy(type);

  test::accountant memory(0, test::accountant::unwritten), memory_of_copy(0, test::accountant::unwritten);
  memory.fail_from = memory_of_copy.fail_from = granted;
  const int result = call.decode(original.data(), bytes, length, test::accountant::allocate, &memory, options);
  FUZZ_CHECK(trial, length != 0 || result == CODEC_OK);
  const std::vector<unsigned char> written = encoding_of(type, original.data(), options);
  FUZZ_CHECK(trial, length != 0 || written.empty());

  const int copied = call.duplicate(copy.data(), original.data(), test::accountant::allocate, &memory_of_copy);
  FUZZ_CHECK(trial, copied == CODEC_OK || (copied == CODEC_ERR_NO_MEMORY && granted != SIZE_MAX));
  const std::vector<unsigned char> again = encoding_of(type, copy.data(), options);
  if (copied == CODEC_OK) {
    FUZZ_CHECK(trial, call.compare(original.data(), copy.data()) == 0);
    FUZZ_CHECK(trial, again == written);
  }
  call.free(copy.data(), test::accountant::release, &memory_of_copy, 0);
  call.free(original.data(), test::accountant::release, &memory, options);
  FUZZ_CHECK(trial, naive::blocks_owned({type, copy.data()}) == 0);
  FUZZ_CHECK(trial, naive::blocks_owned({type, original.data()}, options != 0) == 0);
}

}  // namespace

void run(const trial &trial) {
  const unsigned char *const input = placed(input_room(), trial, trial.bytes, trial.length);
  for (const message &type : naive::messages()) check(trial, type, input, &type == trial.type ? trial.length : 0);
}

}  // namespace fuzz
