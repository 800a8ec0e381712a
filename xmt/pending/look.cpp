// Stands in for operations that are still being written.
#include "xmt/XmtValidate.h"
#pragma GCC diagnostic ignored "-Wunused-parameter"

int XmtValidateEntry(const char *typed, const char *candidate, const char *format) {
    return {};
}
void PostValidateErrMsg(int number, char ch) {}
std::string XmtInsertEscape(const char *text) {
    return {};
}
void XmtProcessTextFormat(XmtObjectData *object, XmtCallData *data) {}
void XmtProcessMaskedFormat(XmtObjectData *object, XmtCallData *data) {}
