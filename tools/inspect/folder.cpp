// Visits folders in order.
#include "folder.hpp"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <vector>

namespace inspect {
namespace {

namespace fs = std::filesystem;

void visit_folder(const fs::path &folder, const folder_visitor &visit) {
  std::error_code error;
  std::vector<fs::directory_entry> entries;
  for (fs::directory_iterator at(folder, error); !error && at != fs::directory_iterator(); at.increment(error)) {
    entries.push_back(*at);
  }
  std::ranges::sort(entries, {}, [](const fs::directory_entry &each) { return each.path().native(); });
  for (const fs::directory_entry &each : entries) {
    std::error_code ignored;  // what has no status is a file that cannot be read
    if (each.is_directory(ignored) && !each.is_symlink(ignored)) {
      visit_folder(each.path(), visit);
    } else if (each.is_directory(ignored)) {
      continue;
    } else if (each.is_other(ignored)) {
      visit.skipped(each.path().string());
    } else {
      visit.file(each.path().string());
    }
  }
  if (error) visit.unreadable(folder.string(), error.message());
}

}  // namespace

void visit_files(const std::string &name, const folder_visitor &visit) {
  std::error_code error;
  if (!fs::is_directory(name, error)) return visit.file(name);
  visit_folder(name, visit);
}

}  // namespace inspect
