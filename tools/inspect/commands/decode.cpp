// `decode`: messages as JSON. What was read before a failure is shown.
#include <nlohmann/json.hpp>

#include "../commands.hpp"
#include "../input.hpp"
#include "../json_text.hpp"
#include "../subject.hpp"

namespace inspect {

exit_status decode(const request &asked) {
  const auto [type, file] = single_subject_of(asked);
  exit_status status = all_well;
  for_each_message(asked, file, [&, type = type](const std::string &name, byte_view message) {
    const decoded read(type_of(type, name, message), message);
    print(to_text(read.to_json(asked.bytes)));
    status = worse(status, read.report());
  });
  return status;
}

}  // namespace inspect
