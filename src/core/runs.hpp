// Runs of integers by loops that take many elements at a time. Every fast loop has a plain twin that says what it
// computes.
#pragma once

#include "runs/reading.hpp"
#include "runs/writing.hpp"
