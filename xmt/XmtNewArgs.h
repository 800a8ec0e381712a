// The arguments of an object: what stands between its keyword and its ';' or '{'.
//
// XmtFillInfo turns arguments at once into Motif resources; every widget is made from such a record.
// XmtFillInfoDesc only sorts the arguments of a compound object into parts (label, list, format, general
// text, groups "<n ...>"), from which GenDesc writes the text of each of its widgets.
#pragma once

#include "xmt/Xmt.h"
#include "xmt/XmtColor.h"

#include <string>

enum { XMT_ARGS = 40, XMT_SLOTS = 10 };

// Modes of XmtFillInfo.
enum { XMT_FILL_RAW_LABEL = 1, XMT_FILL_KEEP = 4, XMT_FILL_NESTED = 8, XMT_FILL_NO_TRAVERSAL = 16 };
// Flags of GenDesc; the low four bits are the slot.
enum { GEN_SLOT = 15, GEN_NAME = 32, GEN_LABEL = 64, GEN_FORMAT = 128, GEN_LIST = 256 };

// One object while it is read; on the creator's stack, released by XmtClearInfo. Descriptions and run-time
// texts of any length pass through it, therefore strings.
struct XmtInfo {
    std::string label; // l(...) kept raw, or the working copy
    std::string title; // T(...)
    std::string text;  // t(...), accelerator text
    std::string keys;  // k(...), accelerator
    std::string name;
    char *list = nullptr;      // L(...), managed
    int8_t type = 0;           // XmtType, set by the creator before reading, kept when the record is cleared
    std::string callbacks;     // CB(...)
    std::string no;            // no(...)
    std::string dialogType;    // Dt(...)
    char *icon = nullptr;      // i(...), managed
    int argCount = 0;          // used entries of args
    int width = 0, height = 0; // s(...)
    int id = 0;                // id(...)
    Arg args[XMT_ARGS] = {};
    char *slots[XMT_SLOTS] = {}; // managed groups; slot 0 is the general text
    XmString labelString = nullptr;
    XmString acceleratorString = nullptr;
    char *format = nullptr;  // f(...), managed; passes to the object record
    Widget parent = nullptr; // P(...)
    Pixel colours[XMT_COLOURS] = {};
};

extern int flHideObject;      // set by H; read and cleared by the statement loop
extern int flDefaultTabGroup; // no object is a tab group of its own; set for the items of lists
extern int flNoTraversal;     // menus: no keyboard traversal
extern XtTranslations XmtDummyKeyXlations;

// What stands behind an argument's letters: ways of reading it.
enum XmtArgKind {
    XMT_ARG_NOTHING,
    XMT_ARG_NUMBER, // one, or two with a second resource
    XMT_ARG_FLAG,   // likewise: T or F
    XMT_ARG_LETTER, // one of the letters, each with the digit that it means
    XMT_ARG_PIXELS, // a number that grows with the screen's density
    XMT_ARG_FONT,
    XMT_ARG_HORIZONTAL,
    XMT_ARG_VERTICAL,
    XMT_ARG_MACRO,
    XMT_ARG_KEYS,
    XMT_ARG_LIST,
    XMT_ARG_LABEL,
    XMT_ARG_FORMAT,
    XMT_ARG_ATTACHMENTS,
    XMT_ARG_HIDE,
    XMT_ARG_COLOURS,
    XMT_ARG_ALIGNMENT,
    XMT_ARG_TEXT,
    XMT_ARG_SIZE,
    XMT_ARG_PARENT,
    XMT_ARG_GROUP,
    XMT_ARG_END, // ';' and braces
    XMT_ARG_TITLE,
    XMT_ARG_ICON,
    XMT_ARG_CALLBACKS,
    XMT_ARG_SOURCE,
    XMT_ARG_ID,
    XMT_ARG_REMOVED,
    XMT_ARG_DIALOG_TYPE
};
struct XmtArgRow {
    const char *key; // the word in a description
    XmtArgKind kind;
    const char *resource;
    const char *second; // the second resource; of XMT_ARG_LETTER the letters, as "s3a1"
};
extern const char SingleCharArgs[]; // the letters that are arguments by themselves
// The row of an argument's letters; null if it is unknown.
const XmtArgRow *XmtFindArg(const char *token);
// The letters at the position up to white space or '(': most one-letter arguments end there, "h.0" is two;
// but "ts" is one.
const char *XmtGetArgToken(std::string *out, const char *position);

// A resource that stands in the list already gets the new value. Beyond XMT_ARGS nothing.
void XmtAddArg(XmtInfo *info, const char *resource, XtArgVal value);
// Releases what the record owns and empties it but for the type. Every creator calls it at its end.
void XmtClearInfo(XmtInfo *info);
// Reads a name (not with XMT_FILL_NESTED) and arguments at pNewDesc, which ends behind the ';', on a brace or
// at the end. What is unknown is skipped, with its parenthesis. The texts behind "value" and "accelerator" in
// the list are those of the record: it must stay where it is until the widget is made. Uses: pNewDesc, the
// one-shot id, flHideObject, NewObjectColor.
void XmtFillInfo(XmtInfo *info, int mode);
// Reads a name and sorts the arguments: label, list, format, slots, and in slot 0 all the rest. A text that
// ends without ';' or '{' leaves slot 0 empty. Uses: pNewDesc, flHideObject.
void XmtFillInfoDesc(XmtInfo *info);
// The text for one widget of a compound; prefix may be null. No ';' at the end.
std::string GenDesc(const XmtInfo *info, int flags, const char *prefix);
// Behind "l(": a text with its mnemonic and accelerator, or "@file" and colours. The position behind the ')'.
const char *XmtGetArgLabel(const char *unused, XmtInfo *info, const char *position);
// Behind "c(" and "A(": the lists' items as resources; the position behind the ')'.
const char *FillColor(XmtInfo *info, const char *position);
const char *AttachObject(XmtInfo *info, const char *position);
// Reading back: a name and the letters of resources, as "wqn s p". XmtGetInfo lists them, the n-th with the
// address of the n-th value; XmtGetArgs reads each into its word, which must be there, and gives the first.
void XmtGetInfo(XmtInfo *info, const char *description, XtArgVal *values);
XtArgVal XmtGetArgs(const char *description, XtArgVal *values);
