// Where bytes come from and go to: files, folders and the standard streams.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "bytes.hpp"

namespace inspect {

// The content of a file; of the standard input when the name is empty or "-".
byte_string read_file(const std::string &name);

// The same into bytes that are there already, so that many files need the memory of one.
void read_file(const std::string &name, byte_string &content);

void write_file(const std::string &name, byte_view content);
void print(std::string_view text);

// Calls `visit` with every file in a folder and in those inside it, or with the name itself when it is no folder.
void for_each_file(const std::string &name, const std::function<void(const std::string &)> &visit);

}  // namespace inspect
