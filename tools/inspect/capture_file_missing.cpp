// In place of capture_file.cpp where libpcap is missing.
#include <fmt/format.h>

#include "capture_source.hpp"
#include "failure.hpp"

namespace inspect {

std::unique_ptr<packet_source> open_capture(input_file &from, const std::string &) {
  throw input_error(fmt::format("{}: this zorv-inspect was built without libpcap, and reads no captures", from.name()));
}

}  // namespace inspect
