// Tokens with a state of their own.
#include "xmt/XmtToken.h"

#include "common/Token.h"

#include <cstring>

char XmtGetTokenBuf[XMT_TOKEN_SIZE];
char *szXmtTokenIn;
char chXmtTokenDel;
static const char *XmtIn; // read position; szXmtTokenIn follows it when a call ends normally

void XmtSetTokenBuf(const char *text) {
    XmtIn = text;
    szXmtTokenIn = const_cast<char *>(text);
}

char *XmtGetToken(const char *in, const char *delims) {
    if (in && in != pTokenLine) XmtIn = in;
    TokenScan scan = {XmtIn, XmtGetTokenBuf, XMT_TOKEN_SIZE, '\0', in == pTokenLine};
    int result = ScanToken(&scan, delims);
    XmtIn = scan.position;
    chXmtTokenDel = scan.del;
    if (result != SCAN_LINE) szXmtTokenIn = const_cast<char *>(XmtIn);
    return result == SCAN_TOKEN ? XmtGetTokenBuf : nullptr;
}

int XmtFindToken(const char *token, const char *list) {
    return FindToken(token, list);
}

// Delimiters in front are passed before the scan, so that del tells of the token's own end.
char *XmtStrTok(XmtTokenRecord *record, const char *text, const char *delims) {
    if (text) record->position = text;
    if (record->position && !strchr(delims, '\\')) record->position += strspn(record->position, delims);
    TokenScan scan = {record->position, record->buffer, XMT_STRTOK_SIZE, '\0', false};
    int result = ScanToken(&scan, delims);
    record->position = scan.position;
    record->del = scan.del;
    return result == SCAN_TOKEN ? record->buffer : nullptr;
}
