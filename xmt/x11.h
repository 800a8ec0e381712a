// The one header that includes X and Motif. Their short macros, which collide with names of the system and of
// the test library, are taken back: 0, 1 and XtArgVal stand in their place.
#pragma once

#include <X11/Intrinsic.h>
#include <X11/Shell.h>
#include <X11/StringDefs.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/cursorfont.h>
#include <Xm/XmAll.h>

#undef Status
#undef Bool
#undef None
#undef True
#undef False
#undef Success
