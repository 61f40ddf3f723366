// The same program as C++.
#include "header.c"
