// Copying blocks of every small size: all of it, and nothing beside it.
#include "core/blocks.hpp"

#include "support.hpp"

namespace {

using namespace test;

template <std::size_t Short>
void copies_every_size() {
  for (std::size_t size = 0; size <= 130; ++size) {
    byte_string content(size);
    for (std::size_t i = 0; i < size; ++i) content[i] = static_cast<unsigned char>(i + 1);
    const fenced_block from(content), to(16 + size);
    pavo_zorv::copy_bytes<Short>(to.data() + 16, from.data(), size);
    ASSERT_EQ(to.content(), 16 * byte_string{0xc7} + content) << size << " bytes, of which " << Short << " are few";
  }
}

TEST(copying_bytes, copies_every_size_between_the_ends_of_two_pages) {
  copies_every_size<16>();
  copies_every_size<32>();
  copies_every_size<64>();
}

}  // namespace
