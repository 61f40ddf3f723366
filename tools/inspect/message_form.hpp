// The forms in which a message is given: bytes in some form, or text that says what they mean.
#pragma once

#include "bytes.hpp"

namespace inspect {

enum class message_form { automatic, raw, hex, dump, base64, as_json, as_text };

// JSON begins with a brace; the text form with a name, and then a colon or a brace. `raw` if the input is empty,
// `automatic` if it is bytes in a form that is yet to be found.
message_form detect(byte_view input);

}  // namespace inspect
