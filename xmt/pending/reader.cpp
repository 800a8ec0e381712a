// Stands in for operations that are still being written.
#include "xmt/XmtNew.h"
#include "xmt/XmtNewArgs.h"
#include <cstdlib>
#pragma GCC diagnostic ignored "-Wunused-parameter"

const char *pNewDesc;
char *Macro[XMT_MACROS];
XmtHandler AppCB;
int AppCBValue;
int SpecifiedAppCBValue;
int GetDescLen;
void XmtNewObject(const char *parent, XmtHandler handler, int firstId, const char *text) {}
void XmtNewObjectWP(Widget parent) {}
Widget XmtProcessKey(Widget *parent, const char *key) {
    return {};
}
void PushMacro() {}
void PopMacro() {}
void ExpandMacro(std::string *out, const char *body, const char *arguments) {}
extern const char ObjKeys[];
const char ObjKeys[] = ",";
extern const XmtKeyRow Objs[];
const XmtKeyRow Objs[1] = {};
const XmtKeyRow *pXmtObjs;
const char *GetArgValue(std::string *out, const char *position) {
    return {};
}
void GetValue(std::string *out) {}
const char *GetArgValues(std::string *out, const char *position) {
    return {};
}
void GetValues(std::string *out) {}
const char *GetSavedArgValues(char **text, const char *position) {
    return {};
}
void GetSavedValues(char **text) {}
int GetNumber() {
    return {};
}
const char *GetWord(std::string *out, const char *position) {
    return {};
}
char *GetDesc(char end, int flKeep) {
    return {};
}
char GetEscapedValue(char ch) {
    return {};
}
int GetArgCount(const char *position) {
    return {};
}
bool CopyArg(const char *name, const char *text, std::string *out) {
    return {};
}
bool StripArg(const char *name, std::string *text, std::string *out) {
    return {};
}
char XmtGetTokenBuf[XMT_TOKEN_SIZE];
char *szXmtTokenIn;
char chXmtTokenDel;
void XmtSetTokenBuf(const char *text) {}
char *XmtGetToken(const char *in, const char *delims) {
    return {};
}
int XmtFindToken(const char *token, const char *list) {
    return {};
}
char *XmtStrTok(XmtTokenRecord *record, const char *text, const char *delims) {
    return {};
}
char *XmtSaveStr(const char *format, ...) {
    return {};
}
char *XmtSaveStr_(const char *text) {
    return {};
}
void XmtFreeStr(char *text) {}
int flHideObject;
int flDefaultTabGroup;
int flNoTraversal;
int flNewColorSet;
Pixel NewObjectColor[XMT_COLOURS];
intptr_t XmtPixBg;
XtTranslations XmtDummyKeyXlations;
const char *IconPath;
extern const char pCBKeys[];
const char pCBKeys[] = ",";
extern const int CBR[];
const int CBR[] = {0};
void XmtAddArg(XmtInfo *info, const char *resource, XtArgVal value) {}
void XmtClearInfo(XmtInfo *info) {}
void XmtFillInfo(XmtInfo *info, int mode) {}
void XmtFillInfoDesc(XmtInfo *info) {}
std::string GenDesc(const XmtInfo *info, int flags, const char *prefix) {
    return {};
}
const char *XmtGetArgLabel(const char *unused, XmtInfo *info, const char *position) {
    return {};
}
const char *FillColor(XmtInfo *info, const char *position) {
    return {};
}
const char *AttachObject(XmtInfo *info, const char *position) {
    return {};
}
void SetCallBack(XmtObjectData *object, const char *keys) {}
void XmtGetInfo(XmtInfo *info, const char *description, XtArgVal *values) {}
XtArgVal XmtGetArgs(const char *description, XtArgVal *values) {
    return {};
}
