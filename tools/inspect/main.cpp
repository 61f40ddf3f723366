// zorv-inspect: see any message, fix any message.
#include "command_line.hpp"

int main(int count, char **arguments) { return inspect::run(count, arguments); }
