// `decode`: messages as JSON, including what was read before a failure.
#include "../commands.hpp"
#include "../input.hpp"
#include "../target.hpp"

namespace inspect {

exit_status decode(const command_options &options) {
  const auto [type, file] = single_target_of(options);
  exit_status status = ok;
  for_each_message(options, file, [&, type = type](const std::string &name, byte_view message) {
    const decoded read(type_of(type, name, message), message);
    print(read.content.to_text(read.form(options.bytes)));
    status = worse(status, read.report());
  });
  return status;
}

}  // namespace inspect
