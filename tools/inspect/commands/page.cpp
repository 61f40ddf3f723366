// `page`: the page that does for a message in a browser what this tool does on a command line.
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "../commands.hpp"
#include "../input.hpp"

namespace inspect {
namespace {

// Where it is installed, as seen from the folder of this program; or where it is built.
std::filesystem::path page_file() {
  const std::filesystem::path folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
  for (const char *const place : {"../share/zorv-inspect/zorv-inspect.html", "../page/zorv-inspect.html"}) {
    std::error_code error;
    const std::filesystem::path file = std::filesystem::canonical(folder / place, error);
    if (!error) return file;
  }
  throw usage_error("this build has no zorv-inspect.html; CMake says what building it needs");
}

// Whether the program has opened the file.
bool opens(std::string program, std::string file) {
  char *const arguments[] = {program.data(), file.data(), nullptr};
  pid_t process = 0;
  int status = 0;
  return posix_spawnp(&process, program.c_str(), nullptr, nullptr, arguments, environ) == 0 &&
         waitpid(process, &status, 0) == process && status == 0;
}

}  // namespace

exit_status page(const command_options &options) {
  const std::string file = page_file().string();
  if (!options.output.empty()) {
    write_file(options.output, read_file(file));
    return ok;
  }
  const char *const browser = std::getenv("BROWSER");
  if (opens(browser != nullptr && *browser != '\0' ? browser : "xdg-open", file)) return ok;
  throw usage_error("no browser opens " + file + "; open it in one, or write it to a file with -o");
}

}  // namespace inspect
