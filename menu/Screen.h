// The terminal beyond lines: a passphrase without echo, and full screens with a pick list of many choices.
//
// A screen is a buffer of characters that Refresh sends at once; only the box of Overlay goes to the terminal
// directly. There is no terminal library: the cursor is moved and the screen cleared by the ANSI sequences,
// where standard output is a terminal and TERM names one that has them, and not at all elsewhere. Whatever is
// written is cut at the edges of the screen. A screen without a buffer takes nothing.
//
// The menu loop works without all this. ProcessStateValue is the way in for a callback that wants its item's
// value picked from a full screen.
#pragma once

#include <cstddef>
#include <cstdint>

struct TextMenu;
struct TextMenuItem;

// ---- Passphrase

enum { PASS_MAX_LENGTH = 256, PASS_SECONDS = 60 };

extern int PassSeconds; // PASS_SECONDS of silence end the entry; tests shorten it

// Asks on the controlling terminal with echo off, or without one on descriptors 0 and 2: the line, cut at 256
// characters, or what there was at the end of input and after a minute of silence. The terminal and the
// signal actions are restored on every way out. A signal is sent to the process again after that; when it has
// been stopped, it asks anew. Keeps errno. Owns: the result, which the caller should clear.
[[nodiscard]] char *GetPassPhrase(const char *prompt);
void handler(int signal); // notes the signal for GetPassPhrase

// ---- Screen

enum { SCREEN_WIDTH = 80, SCREEN_HEIGHT = 24, SCREEN_MAX = 1000, SCREEN_TEXT = 532 };

// buffer holds width * height characters, row after row; a line feed in it ends its row.
struct ScreenRec {
    int width;
    int height;
    int x; // write position: x counts from 0, y from 1
    int y;
    int overlayX; // box of Overlay: its corner, counted likewise, and the size of the text in it
    int overlayY;
    int overlayWidth;
    int overlayHeight; // 0: as many rows as the text has
    char *buffer;      // managed where GetTermInfo made it
};

// The record, or for null the process-wide one, with the terminal's size, from TIOCGWINSZ, LINES and COLUMNS,
// or 24 by 80, and a buffer of blanks of that size (an old buffer is released). Owns: the buffer.
ScreenRec *GetTermInfo(ScreenRec *screen);
int GetTermHeight();                              // its rows alone
void MoveCursor(ScreenRec *screen, int x, int y); // x from 0, y from 1
void ClearScreen(ScreenRec *screen);              // the terminal, and the buffer to blanks

void SetPosition(ScreenRec *screen, int x, int y);
void SetOvlInfo(ScreenRec *screen, int x, int y, int width, int height);
// Writes at the write position, which stays where it is; a y outside 1 to height counts as 1, an x outside 1
// to width as 0. The text is cut at 531 characters and at the end of the row.
[[gnu::format(printf, 2, 3)]] void WriteString(ScreenRec *screen, const char *format, ...);
void FillArea(ScreenRec *screen, int x, int y, int width, int height, char ch); // x and y from 0
// Sends the rows from the terminal's first one on, but not the last cell, which would scroll; always 0.
int Refresh(ScreenRec *screen);
// Draws a frame with the text in it at the overlay position. With the flag it asks for a return and reads one
// character. The cursor ends at the write position.
void Overlay(ScreenRec *screen, const char *text, int flWait);
void NumberScreen(ScreenRec *screen); // digits in 24 rows of 80 columns, as a test pattern

// ---- Pick list

enum { PICK_FRAME_ROWS = 6, PICK_MAX = 4096 };

extern char *PRDTTYMENU_SAVE; // labels, null until the first pick list; writer: PrintPickOneManyScreen
extern char *PRDTTYMENU_CANCEL;
extern char *PRDTTYMENU_CURSEL;
extern char *PRDTTYMENU_CURSELTRUNC;
extern char *PRDTTYMENU_OPTION;

// One bit a choice, by its index from 0. What lies beyond PICK_MAX counts as hidden.
struct PickMask {
    uint32_t bits[PICK_MAX / 32];
};

// The width of each column of choices, in columns of height - PICK_FRAME_ROWS rows or fewer: the longest
// choice with its marker. As many as there is capacity for are stored; the widest of all comes back.
int GetColumnWidths(ScreenRec *screen, const TextMenuItem *item, int *widths, size_t capacity);
// Title, the two button labels, the selection, and the prompt on the last line.
void WriteScreenFrame(ScreenRec *screen, const TextMenuItem *item, const char *selection);
// Shows a page of the choices from one on, on the process-wide screen; the number of choices on it. -1 if the
// list has no such choice, and, after a message and a character read, on a screen that is too small. The
// first page takes the terminal's size.
int PrintPickOneManyScreen(TextMenuItem *item, PickMask *hidden, int first);
// Runs a pick list for an item of type 9 or 10. A line holds numbers of choices, or starts with the first
// character of the save or cancel label; an empty one turns the page. The option, unless null or empty, is
// the first line. The end of input saves. Uses: LineBuf.
void ProcessStateValue(TextMenu *menu, int index, const char *option);
