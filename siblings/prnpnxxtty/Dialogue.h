// The dialogue on the terminal: a menu with a pick item for each option of a model.
#pragma once

#include "siblings/lib/Ppd.h"

#include <string>

// Shows the options at their present choices and writes the settings to the path when the user applies them.
// Options of banner and separator pages are shown on request only; they keep their choice otherwise. text:
// the settings that the choices were taken from. Without an option to show the user is told so. Ends: the
// process with status 1, nothing written, at the end of standard input.
void RunDialogue(Ppd &ppd, const std::string &text, const std::string &path, bool flBanner);
