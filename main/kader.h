// A frame for a window that is too small for the screens: the same command inside tmux, at 25 x 80.
#pragma once

#include <string>
#include <vector>

/// Asks whether `woorden` (a program's path and its arguments) are to run in a frame when the
/// window is smaller than the screens; returns when they may run right here. Plain lines: before
/// the screen opens.
void kader(const std::vector<std::string>& woorden);
