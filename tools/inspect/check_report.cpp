// Writes the reports of `check`.
#include "check_report.hpp"

#include <fmt/format.h>

#include <string_view>

#include "input.hpp"
#include "json_text.hpp"
#include "pavo_zorv_memory.h"
#include "text_encodings.hpp"

namespace inspect {
namespace {

const char *plural(std::size_t count) { return count == 1 ? "" : "s"; }

double ratio(std::size_t bytes, std::size_t input) {
  return input == 0 ? 0 : static_cast<double>(bytes) / static_cast<double>(input);
}

std::string usage_text(const counting_memory::usage &usage) {
  return fmt::format("{} in {} block{}", byte_count(usage.bytes), usage.blocks, plural(usage.blocks));
}

std::string costs(const check_result &result) {
  const findings &found = result.findings;
  std::string text =
      fmt::format("{} ({:.1f} per input byte)", usage_text(found.memory), ratio(found.memory.bytes, result.size));
  if (found.dropped.blocks != 0) text += fmt::format(", dropped {}", usage_text(found.dropped));
  return text;
}

// "CODEC_ERR_TRUNCATED at offset 48: ..."
std::string failure_text(const check_result &result) {
  const char *const name = pavo_zorv_result_name(result.findings.result);
  return result.failure == nullptr
             ? name
             : fmt::format("{} at offset {}: {}", name, result.failure->offset, result.failure->reason);
}

std::string other_encoding(const check_result &result) {
  return fmt::format("encodes to {}, {} unknown field{}", byte_count(result.findings.encoded), result.unknown_fields,
                     plural(result.unknown_fields));
}

std::string totals_text(const check_totals &totals) {
  std::string text =
      fmt::format("{} message{}, {}: {} decode, {} canonical, {} refused", totals.messages, plural(totals.messages),
                  byte_count(totals.bytes), totals.decoded, totals.canonical, totals.messages - totals.decoded);
  if (totals.errors != 0) text += fmt::format(", {} not read", totals.errors);
  text += fmt::format("\nmemory: {}", usage_text(totals.memory));
  if (totals.amplification > 0) {
    text += fmt::format("; at most {:.1f} per input byte ({})", totals.amplification, totals.most_amplified);
  }
  text += fmt::format("\ndropped: {}; unknown fields: {}\n", usage_text(totals.dropped), totals.unknown);
  if (totals.skipped != 0) {
    text += fmt::format("skipped: {0} pipe{1}, device{1} or socket{1}\n", totals.skipped, plural(totals.skipped));
  }
  if (totals.seconds > 0) {
    text += fmt::format("time: {:.3f} s; {:.0f} messages per second\n", totals.seconds,
                        static_cast<double>(totals.messages) / totals.seconds);
  }
  return text;
}

// Nothing but the totals, and on the standard error what is not in them.
class summary : public check_report {
 public:
  bool takes_all() const override { return false; }
  void message(const check_result &) override {}
  void error(const std::string &, const std::string &why) override { fmt::print(stderr, "zorv-inspect: {}\n", why); }
  void end(const check_totals &totals) override { print(totals_text(totals)); }
};

// A line for each message, and the totals.
class text_report : public summary {
 public:
  text_report(bool all, const painter &paint) : all_(all), paint_(paint) {}

  bool takes_all() const override { return all_; }

  void message(const check_result &result) override {
    if (result.verdict == check_result::contradictory) {
      return print(fmt::format("{}: {}", result.name, paint_(colour::failure, result.explanation)));
    }
    print(fmt::format("{}: {}, {}, {}\n", paint_(colour::bold, result.name), result.type->name, byte_count(result.size),
                      verdict(result)));
  }

  void error(const std::string &, const std::string &why) override { print(paint_(colour::red, why) + '\n'); }

 private:
  std::string verdict(const check_result &result) const {
    if (result.verdict == check_result::refused) return paint_(colour::red, failure_text(result));
    if (result.verdict == check_result::canonical) return fmt::format("canonical, {}", costs(result));
    return fmt::format("{}: {}, {}", paint_(colour::yellow, "not canonical"), other_encoding(result), costs(result));
  }

  bool all_;
  painter paint_;
};

// One object: the messages, what could not be read, the totals. Each message is printed at once.
class json_report : public check_report {
 public:
  explicit json_report(bool all) : all_(all) {}

  bool takes_all() const override { return all_; }

  void message(const check_result &result) override {
    std::string text;
    json_writer to(text, {json_layout::one_line});
    to.begin_object();
    add(to, "name", result.name);
    add(to, "type", result.type->name);
    add(to, "bytes", result.size);
    add(to, "result", pavo_zorv_result_name(result.findings.result));
    static constexpr const char *verdicts[] = {"canonical", "not canonical", "refused", "contradictory"};
    add(to, "verdict", verdicts[result.verdict]);
    if (result.verdict == check_result::not_canonical) {
      add(to, "encoded_bytes", result.findings.encoded);
      add(to, "unknown_fields", result.unknown_fields);
    }
    if (result.failure != nullptr) {
      add(to, "offset", result.failure->offset);
      add(to, "path", to_string(result.failure->path));
      add(to, "reason", result.failure->reason);
    }
    if (!result.explanation.empty()) add(to, "explanation", result.explanation);
    add(to, "memory", result.findings.memory);
    add(to, "dropped", result.findings.dropped);
    to.end_object();
    next(text);
  }

  void error(const std::string &name, const std::string &why) override {
    std::string text;
    json_writer to(text, {json_layout::one_line});
    to.begin_object();
    add(to, "name", name);
    add(to, "error", why);
    to.end_object();
    next(text);
  }

  void end(const check_totals &totals) override {
    std::string text;
    json_writer to(text, {json_layout::one_line});
    to.begin_object();
    add(to, "messages", totals.messages);
    add(to, "bytes", totals.bytes);
    add(to, "decoded", totals.decoded);
    add(to, "canonical", totals.canonical);
    add(to, "refused", totals.messages - totals.decoded);
    add(to, "unknown_fields", totals.unknown);
    add(to, "errors", totals.errors);
    add(to, "skipped", totals.skipped);
    add(to, "memory", totals.memory);
    add(to, "dropped", totals.dropped);
    to.end_object();
    print(fmt::format("{}{}],\n\"totals\": {}}}\n", is_begun_ ? "" : head, is_begun_ ? "\n" : "", text));
  }

 private:
  static constexpr const char *head = "{\"messages\": [";

  static void add(json_writer &to, std::string_view name, std::string_view value) {
    to.name(name);
    std::string readable(value);
    if (!is_utf8(value)) {  // a file's name can be any bytes
      for (char &each : readable) each = each >= ' ' ? each : '?';
    }
    to.string(readable);
  }
  static void add(json_writer &to, std::string_view name, std::size_t value) {
    to.name(name);
    to.number(value);
  }
  static void add(json_writer &to, std::string_view name, const counting_memory::usage &usage) {
    to.name(name);
    to.begin_object();
    add(to, "bytes", usage.bytes);
    add(to, "blocks", usage.blocks);
    to.end_object();
  }

  void next(std::string_view text) {
    print(fmt::format("{}\n{}", is_begun_ ? "," : head, text));
    is_begun_ = true;
  }

  bool all_;
  bool is_begun_ = false;
};

// A test case for each message. The counts come first, so all of it is printed at the end.
class junit_report : public check_report {
 public:
  bool takes_all() const override { return true; }

  void message(const check_result &result) override {
    ++tests_;
    text_ += fmt::format("  <testcase classname=\"{}\" name=\"{}\"", result.type->name, escaped(result.name));
    if (result.verdict == check_result::canonical) {
      text_ += "/>\n";
    } else if (!result.is_bad) {
      text_ += fmt::format("><system-out>not canonical: {}</system-out></testcase>\n", other_encoding(result));
    } else {
      ++failures_;
      const std::string why = result.verdict == check_result::refused ? failure_text(result)
                              : result.verdict == check_result::not_canonical
                                  ? "not canonical: " + other_encoding(result)
                                  : result.explanation;
      text_ += fmt::format("><failure message=\"{}\"/></testcase>\n", escaped(why));
    }
  }

  void error(const std::string &name, const std::string &why) override {
    ++tests_;
    ++errors_;
    text_ += fmt::format("  <testcase classname=\"check\" name=\"{}\"><error message=\"{}\"/></testcase>\n",
                         escaped(name), escaped(why));
  }

  void end(const check_totals &) override {
    print(fmt::format(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<testsuite name=\"zorv-inspect check\" tests=\"{}\" failures=\"{}\" errors=\"{}\">\n{}</testsuite>\n",
        tests_, failures_, errors_, text_));
  }

 private:
  // For an attribute. XML has no way to write most control characters.
  static std::string escaped(std::string_view text) {
    const bool is_readable = is_utf8(text);
    std::string result;
    for (const char each : text) {
      switch (each) {
        case '&':
          result += "&amp;";
          break;
        case '<':
          result += "&lt;";
          break;
        case '"':
          result += "&quot;";
          break;
        case '\n':
          result += "&#10;";
          break;
        default:
          const auto byte = static_cast<unsigned char>(each);
          result += byte < ' ' || (byte >= 0x80 && !is_readable) ? '?' : each;
      }
    }
    return result;
  }

  std::size_t tests_ = 0, failures_ = 0, errors_ = 0;
  std::string text_;
};

}  // namespace

std::unique_ptr<check_report> make_report(report_form form, bool all, const painter &paint) {
  switch (form) {
    case report_form::as_json:
      return std::make_unique<json_report>(all);
    case report_form::as_junit:
      return std::make_unique<junit_report>();
    case report_form::only_totals:
      return std::make_unique<summary>();
    case report_form::as_text:
      break;
  }
  return std::make_unique<text_report>(all, paint);
}

}  // namespace inspect
