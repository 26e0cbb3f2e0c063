// A program that enters itself in the suite's menu.
#pragma once

/// With the one argument "AUTOINST": writes the menu rows of the program with this install number
/// and the rights of the users that the operator names; true, and the caller ends with status 0.
/// False in every other case. No session is started.
bool autoinst(int argc, char** argv, int install_number, const char* title, char type_letter);
