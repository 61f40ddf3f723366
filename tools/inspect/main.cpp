// The entry point of zorv-inspect.
#include "command_line.hpp"

int main(int count, char **arguments) { return inspect::run(count, arguments); }
