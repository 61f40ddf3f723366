// Folders with everything in them.
#pragma once

#include <functional>
#include <string>

namespace inspect {

struct folder_visitor {
  std::function<void(const std::string &file)> file;
  std::function<void(const std::string &name)> skipped;                             // a pipe, a device or a socket
  std::function<void(const std::string &name, const std::string &why)> unreadable;  // a folder
};

// Visits every file in a folder and its subfolders, in the order of their names, or the name itself if it is not a
// folder. What cannot be read does not end that. Links to folders are not followed.
void visit_files(const std::string &name, const folder_visitor &visit);

}  // namespace inspect
