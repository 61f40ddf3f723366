// `schema`: the messages in the schema languages of other programs.
#include "../schema.hpp"

#include "../commands.hpp"
#include "../input.hpp"
#include "../target.hpp"

namespace inspect {
namespace {

byte_string bytes_of(const std::string &text) { return byte_string(text.begin(), text.end()); }

byte_string schema_of(const command_options &options) {
  const bool has_type = !options.operands.empty();
  std::vector<const message_info *> messages;
  if (has_type) {
    messages = with_contained(type_named(options.operands.front()));
  } else {
    const auto all = pavo_zorv::message_table();
    messages.assign(all.begin(), all.end());
  }
  switch (options.schema) {
    case schema_form::descriptor:
      return descriptor_set(messages);
    case schema_form::as_json_schema:
      if (!has_type) throw usage_error("TYPE is required: a JSON Schema is that of one message");
      return bytes_of(json_schema(messages));
    case schema_form::proto:
      break;
  }
  return bytes_of(proto_schema(messages));
}

}  // namespace

exit_status schema(const command_options &options) {
  write_file(options.output, schema_of(options));
  return ok;
}

}  // namespace inspect
