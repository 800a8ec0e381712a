// Pictures of windows as files.
#pragma once

#include "xmt/x11.h"

// Saves what is seen of the window, as PNG or, for a name ending in ".ppm", as PPM. What lies beyond the
// screen is left out. False, with a message on standard error, if nothing of it is seen or the file can't be
// written.
bool SavePicture(Widget shell, const char *file);
