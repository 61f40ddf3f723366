// Runs every case under Google Benchmark, as operation/workload/contestant.
#include <benchmark/benchmark.h>

#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "contest.hpp"
#include "workloads.hpp"

namespace {

// The processor features that the compiler may use; nothing is selected at run time.
std::string features() {
  std::string result;
#if defined(__SSE2__)
  result += " SSE2";
#endif
#if defined(__SSSE3__)
  result += " SSSE3";
#endif
#if defined(__SSE4_2__)
  result += " SSE4.2";
#endif
#if defined(__POPCNT__)
  result += " POPCNT";
#endif
#if defined(__AVX2__)
  result += " AVX2";
#endif
#if defined(__BMI__)
  result += " BMI1";
#endif
#if defined(__BMI2__)
  result += " BMI2";
#endif
#if defined(__LZCNT__)
  result += " LZCNT";
#endif
#if defined(__AVX512F__)
  result += " AVX-512F";
#endif
#if defined(__ARM_NEON)
  result += " NEON";
#endif
  return result.empty() ? "portable" : result.substr(1);
}

// Blocks of many sizes, allocated first and kept, so that later blocks have other addresses.
std::vector<std::vector<char>> displacing_blocks(unsigned layout) {
  std::vector<std::vector<char>> blocks;
  std::size_t state = layout;
  for (unsigned i = 0; i < 40 * layout; ++i) {
    state = state * 6364136223846793005u + 1442695040888963407u;
    blocks.emplace_back((state >> 33) % (i % 8 == 0 ? 60000 : 700) + 1);
  }
  return blocks;
}

// Removes each `--name=value` from the arguments and returns the values.
std::vector<std::string> options(int &count, char **arguments, const char *name) {
  const std::string prefix = std::string("--") + name + "=";
  std::vector<std::string> values;
  int kept = 1;
  for (int i = 1; i < count; ++i) {
    if (std::strncmp(arguments[i], prefix.c_str(), prefix.size()) == 0) {
      values.emplace_back(arguments[i] + prefix.size());
    } else {
      arguments[kept++] = arguments[i];
    }
  }
  count = kept;
  return values;
}

unsigned long number_option(int &count, char **arguments, const char *name, unsigned long otherwise) {
  const std::vector<std::string> values = options(count, arguments, name);
  return values.empty() ? otherwise : std::stoul(values.back());
}

// What the report needs besides times: lines of a keyword and its values, separated by tabs.
void describe(const contest::roll &all) {
  std::cout << "features\t" << features() << '\n';
  for (const contest::contestant &one : all.contestants)
    std::cout << "contestant\t" << one.name << '\t' << one.memory << '\t' << one.strings << '\t' << one.checks << '\n';
  all.works->each([](const auto &work) {
    std::cout << "workload\t" << work.name << '\t' << work.wire.size() << '\t' << work.size() << '\n';
  });
}

template <class Record>
constexpr const char *name_of = nullptr;
#define PAVO_ZORV_BENCHMARK_NAME(message) \
  template <>                             \
  constexpr const char *name_of<message> = #message;
PAVO_ZORV_BENCHMARK_MESSAGES(PAVO_ZORV_BENCHMARK_NAME)
#undef PAVO_ZORV_BENCHMARK_NAME

// The messages of each workload, in a file <workload>.<message>: each after its length of 32 bits, big-endian.
void write_messages(const contest::roll &all, const std::string &folder) {
  all.works->each([&folder]<class Record>(const contest::workload<Record> &work) {
    std::ofstream file(folder + "/" + work.name + "." + name_of<Record>, std::ios::binary);
    for (const contest::byte_string &message : work.wire) {
      for (int shift = 24; shift >= 0; shift -= 8) file.put(static_cast<char>(message.size() >> shift & 0xff));
      file.write(reinterpret_cast<const char *>(message.data()), static_cast<std::streamsize>(message.size()));
    }
    contest::require(file.good(), "the messages are written", work.name);
  });
}

constexpr const char *usage =
    "pavo_zorv_bench [OPTION...]: times cases OPERATION/WORKLOAD/CONTESTANT\n"
    "  --seed=NUMBER        of the workloads; 1 if it is not given\n"
    "  --layout=NUMBER      of the heap: other numbers, other addresses\n"
    "  --other=NAME=PATH    a shared library to time in the same run, as contestant NAME\n"
    "  --wire=FOLDER        writes the messages of each workload only\n"
    "  --describe           prints the contestants and the workloads only\n"
    "and those of Google Benchmark, such as --benchmark_filter='^decode/10_labels/'\n";

}  // namespace

int main(int count, char **arguments) {
  const auto blocks = displacing_blocks(static_cast<unsigned>(number_option(count, arguments, "layout", 0)));
  contest::roll all(number_option(count, arguments, "seed", contest::tuning_seed));
  contest::enter_all(all);
  for (const std::string &other : options(count, arguments, "other")) {
    const std::size_t middle = other.find('=');
    contest::require(middle != std::string::npos, "--other has NAME=PATH", other);
    contest::enter_other_library(all, other.substr(0, middle), other.substr(middle + 1));
  }
  if (const std::vector<std::string> folder = options(count, arguments, "wire"); !folder.empty()) {
    write_messages(all, folder.back());
    return 0;
  }
  if (count == 2 && std::strcmp(arguments[1], "--describe") == 0) {
    describe(all);
    return 0;
  }
  if (count == 2 && std::strcmp(arguments[1], "--help") == 0) {
    std::cout << usage;
    return 0;
  }
  benchmark::Initialize(&count, arguments);
  if (benchmark::ReportUnrecognizedArguments(count, arguments)) return 1;
  for (const contest::contest_case &one : all.cases) {
    benchmark::RegisterBenchmark(one.name().c_str(), [&one, run = contest::repeat()](benchmark::State &state) mutable {
      if (!run) run = one.prepare();
      const auto times = state.max_iterations;
      while (state.KeepRunningBatch(times)) run(static_cast<std::size_t>(times));
    });
  }
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
