// The messages in a capture: the payloads of datagrams, and what TCP streams are cut into.
#pragma once

#include <memory>

#include "capture_source.hpp"
#include "messages.hpp"

namespace inspect {

// The file is the one that the packets come from.
std::unique_ptr<message_source> messages_of_capture(std::unique_ptr<input_file> file,
                                                    std::unique_ptr<packet_source> packets,
                                                    const input_options &options);

}  // namespace inspect
