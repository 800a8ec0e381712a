// Reads the descriptions of windows and makes what they say while it reads.
//
// A description is a text of statements: objects (keyword, name, arguments up to ';' or '{'), blocks, macro
// definitions ".N text" and calls "*N(arguments)", comments, inclusion, "id(N)", "P(name)", "O name", "OS
// name arguments;". Nothing is reported: an unknown keyword makes no object, an unknown argument is skipped.
// tools/checkwin finds such mistakes. doc/windows.md tells the language.
//
// There is one reader in the process. Its cursor pNewDesc is moved by every layer; a reader that wants to
// read another text saves it and puts it back (XmtCursor). XmtNewObject may be called from an event handler,
// never from within a creator.
#pragma once

#include "xmt/Xmt.h"

#include <string>

enum { XMT_MACROS = 100, XMT_CALLS = 20, XMT_SAVED_VALUES = 10, XMT_SAVED_VALUE_SIZE = 40 };
// What a text that calls itself may take: blocks within blocks, files and macro calls of one description.
enum { XMT_BLOCKS = 200, XMT_CALLS_ALL = 5000 };

extern const char *pNewDesc; // next character to read; every reader moves it
extern char
    *Macro[XMT_MACROS];  // managed bodies, null when undefined; they outlive the text that defined them
extern XmtHandler AppCB; // handler of new objects; writer: XmtNewObject
extern int AppCBValue;   // id of the next object; starts at 1
extern int SpecifiedAppCBValue; // when not 0 the next object's id instead, once
extern int GetDescLen;          // characters that the last GetDesc copied

// Lets a function read another text: the cursor comes back when it goes out of scope.
struct XmtCursor {
    explicit XmtCursor(const char *text) : saved(pNewDesc) { pNewDesc = text; }
    ~XmtCursor() { pNewDesc = saved; }
    XmtCursor(const XmtCursor &) = delete;
    XmtCursor &operator=(const XmtCursor &) = delete;
    const char *saved;
};

// Makes the objects of a description under the named parent; a null or unknown name means the main window. A
// null name before there is one is no parent, an unknown name then does nothing. handler becomes theirs;
// firstId 0 lets the ids run on. Uses: the reader's state, of which the cursor and the calls in progress come
// back; the store is made at the first call.
void XmtNewObject(const char *parent, XmtHandler handler, int firstId, const char *text);
// The statement loop: up to the matching '}' or the end of the text. A keyword takes effect at the white
// space or the '(' behind it, so that the last word of a text needs one. Uses: pNewDesc.
void XmtNewObjectWP(Widget parent);
// Carries a keyword out; the widget it made or found, null for none. May replace the level's parent.
Widget XmtProcessKey(Widget *parent, const char *key);
// Starts the call whose number stands at the cursor, behind the '*'; a missing macro, a call too many and one
// too deep are dropped, and their arguments then read as statements.
void PushMacro();
// Goes back to the callers whose macro has been read to its end. The end of a macro ends no block.
void PopMacro();
// The body with its parameters replaced by the arguments: '*' is the next argument, "&*" keeps it and
// "&'text'" the text, as a value that "&0" to "&9" give; a backslash takes the next character as it is.
void ExpandMacro(std::string *out, const char *body, const char *arguments);

// The kinds of creators, and the row of one keyword. ORDER ObjKeys.
enum XmtKind {
    XMT_KIND_A,
    XMT_KIND_P,
    XMT_KIND_PA,
    XMT_KIND_APT,
    XMT_KIND_PAT,
    XMT_KIND_PARENT = -1,
    XMT_KIND_ID = -2,
    XMT_KIND_SELECT = -3,
    XMT_KIND_CHANGE = -4
};
union XmtCreator {
    Widget (*a)(intptr_t first); // 'M' ... or 0; of images a file name, 0 for none
    Widget (*p)(Widget parent);
    Widget (*pa)(Widget parent, intptr_t first);
    Widget (*apt)(int type, Widget parent, const char *callback);
    Widget (*pat)(Widget parent, int type, const char *letters);
};
struct XmtKeyRow {
    XmtCreator create;
    intptr_t first;
    int kind; // XmtKind
    const char *text;
    bool flParent; // the result takes the place of a missing parent
};
enum { XMT_KEYS = 46 };
extern const char ObjKeys[];      // ",WM,WP,..."
extern const XmtKeyRow Objs[];    // XMT_KEYS of them; row 0 is never used
extern const XmtKeyRow *pXmtObjs; // the table in use; tests put a recording one here

// ---- the value readers. They step over one leading '('. With a position: the result is where they stopped.

// One value. A backslash and the character behind it are copied, both. Stops at ',' or ')' or the end, and
// consumes nothing (GetArgValue) or that character (GetValue).
const char *GetArgValue(std::string *out, const char *position);
void GetValue(std::string *out);
// A list, commas included, up to ')'. GetArgValues keeps backslashes and consumes nothing. GetValues drops
// them, copies what follows, and consumes the ')'.
const char *GetArgValues(std::string *out, const char *position);
void GetValues(std::string *out);
// As GetArgValues, into managed memory; GetSavedValues consumes the ')'. Owns: *text.
const char *GetSavedArgValues(char **text, const char *position);
void GetSavedValues(char **text);
// A decimal integer by atoi; the cursor moves over digits only, then over one ',', '(' or ')'.
int GetNumber();
// White space, then a run of letters, digits and '_'. Consumes nothing behind it.
const char *GetWord(std::string *out, const char *position);
// Raw text up to the end character or the end of the text; a backslash protects the next character and stays.
// The end character is consumed; with flKeep it belongs to the copy. Owns: the result.
[[nodiscard]] char *GetDesc(char end, int flKeep);
char GetEscapedValue(char ch); // n, r, t
// Values of a list: 0 for "()", 1 for an empty text, else one more than its unescaped commas up to ')'.
int GetArgCount(const char *position);
// A text taken as arguments, words with or without a parenthesis. The first one of that name, whole, goes to
// out; false, with out emptied, if there is none. StripArg takes it out of text.
bool CopyArg(const char *name, const char *text, std::string *out);
bool StripArg(const char *name, std::string *text, std::string *out);
// White space of descriptions; the first other character.
inline bool XmtIsSpace(char ch) {
    return ch == ' ' || ch == '\t' || ch == '\n' || ch == '\r';
}
const char *XmtSkipSpace(const char *position);

// ---- tokens: the toolkit's twins of Token.h, with a state of their own.

enum { XMT_TOKEN_SIZE = 512, XMT_STRTOK_SIZE = 4096 };
extern char XmtGetTokenBuf[XMT_TOKEN_SIZE];
extern char *szXmtTokenIn;
extern char chXmtTokenDel;
void XmtSetTokenBuf(const char *text);
char *XmtGetToken(const char *in, const char *delims);
int XmtFindToken(const char *token, const char *list);
// Words of a list with its delimiter at both ends, for the tables that run beside it.
template <size_t N>
consteval size_t XmtCountWords(const char (&list)[N]) {
    size_t count = 0;
    for (char ch : list) count += ch == list[0];
    return count - 1;
}

// A tokeniser whose state is the caller's. A text starts a scan, null goes on; null at the end. Runs of
// delimiters count as one; a backslash takes the next character into the token, n, r and t translated.
struct XmtTokenRecord {
    char buffer[XMT_STRTOK_SIZE];
    const char *position;
    char del; // that ended the last token, 0 for the end
};
char *XmtStrTok(XmtTokenRecord *record, const char *text, const char *delims);

// Copies into managed memory. XmtSaveStr takes a literal format. Ends: by XmtSysError when memory is
// exhausted.
[[nodiscard, gnu::format(printf, 1, 2)]] char *XmtSaveStr(const char *format, ...);
[[nodiscard]] char *XmtSaveStr_(const char *text);
void XmtFreeStr(char *text);
