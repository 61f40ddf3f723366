// Input and output: files, folders and the standard streams.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "bytes.hpp"

namespace inspect {

// The content of a file, or of the standard input when the name is empty or "-".
byte_string read_file(const std::string &name);

// The same into an existing buffer, so that reading many files takes the memory of one.
void read_file(const std::string &name, byte_string &content);

void write_file(const std::string &name, byte_view content);
void print(std::string_view text);

// Calls `visit` with every file in a folder and its subfolders, or with the name itself when it is not a folder.
void for_each_file(const std::string &name, const std::function<void(const std::string &)> &visit);

}  // namespace inspect
