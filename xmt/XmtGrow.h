// What follows a window's size, and what does not fit into it. Objects that are missing or of another kind
// are left alone.
#pragma once

// In a form whose rows hang one below the other, each from the one above, the object takes what height the
// form gains: the rows below it hang from the bottom. Another parent is left alone.
void XmtLetGrow(const char *object);
// A list below its label takes what height their box gets.
void XmtLetListGrow(const char *list);
// The main window can't be made smaller than it is now, or than the screen is. It has been realized.
void XmtSetLeastSize();
// A label's picture becomes as wide as the label: its column x, in the picture file's pixels from 0, is
// repeated as often as that takes. The label is attached on both sides.
void XmtStretchPicture(const char *label, int x);
// A list's title, a label above it in columns of the same font, moves along when the list is scrolled
// sideways.
void XmtScrollTitle(const char *list, const char *title);
