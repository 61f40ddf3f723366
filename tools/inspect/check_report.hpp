// What `check` reports, in the forms that it has: text, JSON, JUnit's XML, or only the totals.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "colour.hpp"
#include "examine.hpp"
#include "types.hpp"
#include "walk.hpp"

namespace inspect {

// One message.
struct check_result {
  enum {
    canonical,
    not_canonical,
    refused,
    contradictory
  } verdict;  // contradictory: the library and the walk disagree
  std::string name;
  const message_type *type;
  std::size_t size;
  inspect::findings findings;
  std::size_t unknown_fields;
  const walk_failure *failure;  // null unless the walk has one
  std::string explanation;      // of a contradiction
  bool is_bad;                  // it makes the check fail
};

struct check_totals {
  std::size_t messages = 0, bytes = 0;
  std::size_t decoded = 0, canonical = 0;
  std::size_t unknown = 0;
  std::size_t errors = 0;   // files and folders that cannot be read, or can only in part
  std::size_t skipped = 0;  // pipes, devices and sockets in folders
  counting_memory::usage memory, dropped;
  double amplification = 0;    // the highest memory per input byte
  std::string most_amplified;  // the message with that amplification
  double seconds = 0;          // 0 unless asked for
};

class check_report {
 public:
  virtual ~check_report() = default;

  // All messages, or only those that are not canonical.
  virtual bool takes_all() const = 0;
  virtual void message(const check_result &result) = 0;
  // A file or folder that cannot be read, or can only in part, and a sentence that says so.
  virtual void error(const std::string &name, const std::string &why) = 0;
  virtual void end(const check_totals &totals) = 0;
};

enum class report_form { as_text, as_json, as_junit, only_totals };

std::unique_ptr<check_report> make_report(report_form form, bool all, const painter &paint);

}  // namespace inspect
