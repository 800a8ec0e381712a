// The manual's HTML subset: read into pages of tokens, laid out as plain text, linked, with a history.
//
// One file may hold several documents; each becomes a page. A file is read once and stays loaded, with the
// text image of every page, for the life of the process. Only the tags of HtmlKeys mean anything to the
// layout; unknown tags pass unharmed. Nothing reports a fault in a page: a missing end tag runs to the end of
// the content. Costs: reading and layout are linear in the size of the file. The tokens live only until they
// are laid out, those of a long body while it is read; what stays is the content (targets of links point into
// it), the links and the image.
#pragma once

#include <cstddef>
#include <cstdint>

enum { HTML_FILES = 100, HTML_HISTORY = 100, HTML_WIDTH = 132, HTML_TITLE_WIDTH = 80, HTML_CELL_PIXELS = 7 };
enum { LINK_NONE, LINK_NAME, LINK_HREF }; // Kind

// ORDER HtmlKey: the positions in HtmlKeys.
enum HtmlKey : uint8_t {
    KEY_NONE,
    KEY_P,
    KEY_P_END,
    KEY_B,
    KEY_B_END,
    KEY_FONT,
    KEY_FONT_END,
    KEY_A,
    KEY_A_END,
    KEY_TR,
    KEY_TR_END,
    KEY_BR,
    KEY_TABLE,
    KEY_FITAB,
    KEY_TABLE_END,
    KEY_TD,
    KEY_TD_END,
    KEY_H1,
    KEY_H2,
    KEY_H3,
    KEY_H4,
    KEY_H5,
    KEY_H6,
    KEY_H1_END,
    KEY_H2_END,
    KEY_H3_END,
    KEY_H4_END,
    KEY_H5_END,
    KEY_H6_END,
    KEY_OL,
    KEY_OL_END,
    KEY_LI,
    KEY_LI_END,
    KEY_DIV,
    KEY_DIV_END,
    KEY_IMG,
    KEY_COUNT,
};

struct HtmlLink {
    char *Target; // in the file's content, or null
    int Line;     // layout position in the grid; PrintTextImage turns the pair into Start and End
    int Column;
    int Start; // offset in TextImage
    int End;
    int Size; // length on the screen
    int Kind;
};

// A table as measured. Widths in columns, heights in lines, both with the frame.
struct HtmlTable {
    int X, Y;
    int Width, Height;
    int Padding, Spacing, Rule;
    int Border;
    int Rows, Cols;
    int *RowHeights; // managed
    int *ColWidths;  // managed
};

struct HtmlItem {
    char *Tag; // tag name as written, null for a text run; in the file's content
    union {
        char *Text; // attribute text, or the text of the run; in the file's content
        HtmlLink *Link;
        HtmlTable *Table;
    } Value;
    int Length; // of the text when the token was made
    HtmlKey Key;
};

// Tokens in document order. Invariant: cursor <= count <= capacity.
struct HtmlItems {
    HtmlItem *items; // managed
    int count;
    int capacity;
    int cursor; // next token of the walk
};

struct HtmlPage {
    HtmlPage *next;
    char *Name;      // value of the page attribute, or null; in the file's content
    char *TextImage; // managed, null until built
    HtmlItems Head;
    HtmlItems Body;
    HtmlLink **Anchors; // in document order
    int AnchorCount;
    int LineCount; // lines of TextImage
};

struct HtmlFile {
    char *Name;    // without "file://" and "#..."
    char *Content; // the whole file, cut up in place by the reader
    char *Cursor;
    HtmlPage *Pages; // in file order
};

extern HtmlFile *aFile[HTML_FILES];
extern int FileIndex;                           // files in use
extern int CurrentFile;                         // index of the current one
extern HtmlPage *pCurrentPage;                  // the page on show
extern int flBuildingFile;                      // set while a file is read or a link followed
extern int TargetPos;                           // text position to show after a jump
extern int HistoryI;                            // entries of the history in use
extern const char HTMLKeys[];                   // the 96 entity names with their semicolons, a FindToken list
extern const unsigned char *const HTMLChars;    // the code of each
extern const unsigned char *const HTMLKeySizes; // the length of each, semicolon included
extern const char HtmlKeys[];                   // the tags the layout knows, a FindToken list

// The file, its first page (or the page or anchor behind "#" in the name) current; null if it cannot be read,
// is no plain file or larger than 64 MB, has no page, starts with "http://", or is one file too many. A "#"
// in a directory's name is part of it. buffer: the content, copied; null reads the
// file. Uses: the token state.
HtmlFile *ParseHtmlFile(const char *name, const char *buffer);
// The loaded file of exactly that name, made current, or null.
HtmlFile *FindHtmlFile(const char *name);
// Releases a file that is in no table any more, with its pages. The program keeps its files; tests do not.
void FreeHtmlFile(HtmlFile *file);
// The text of the next tag, cut out of the content, or null. Moves Cursor behind the tag.
char *GetKeyWord(HtmlFile *file);
// Reads tokens from Cursor up to the end tag ("head" for </head>) or the end of the content.
void ParseHtml(HtmlFile *file, HtmlItems *items, const char *endTag);
// Appends one token; tag null for a text run. The attributes of an "a" become an HtmlLink.
void AddAtribute(HtmlItems *items, char *tag, char *value);

// Layout of the current page; the reader calls them for each page of a new file.
void BuildTextImage(HtmlFile *file);
// Lays out the tokens in Body, which may go then; more follow. No table and no link is open behind them.
void BuildTextPart(HtmlFile *file);
void PrintTextImage(HtmlFile *file);
void BuildTextBody(HtmlFile *file, HtmlTable *table, int line, int column);
HtmlTable *GetTextTable(HtmlFile *file, HtmlItem *token, int available);
int GetColumnCnt();
void DrawTableArea(HtmlFile *file, HtmlTable *table);
// Writes length bytes of the text, or its first character length times with flFill, and moves line and column
// on.
void PrintText(HtmlFile *file, int *line, int *column, const char *text, int length, int flFill);

// Resets the history and loads; 1 if the file is there. Failures are told on standard output.
int HtmlHelp(const char *name, const char *buffer);
// Follows the link under a position of the current image.
void HtmlProcessLink(int position);
// 0: contents, -1: back. 0 if there is no history.
int HtmlSetHistory(int where);
void ProcessLink(HtmlLink *link);
// Shows a page or an anchor of the current file; an unknown name changes nothing.
void GoToTarget(const char *name);
void SetHistory();
