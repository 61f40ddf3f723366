// The command line: its commands, options and help, and what shells and manuals are told about them.
#pragma once

namespace inspect {

// Returns the exit status.
int run(int count, char **arguments);

}  // namespace inspect
