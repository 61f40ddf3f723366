// The command line: commands, options, help, and the completion scripts derived from them.
#pragma once

namespace inspect {

// Returns the exit status.
int run(int count, char **arguments);

}  // namespace inspect
