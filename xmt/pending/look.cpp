// Stands in for operations that are still being written.
#include "xmt/XmtColor.h"
#include "xmt/XmtPixmap.h"
#include "xmt/gif.h"
#include "xmt/XmtString.h"
#include "xmt/XmtValidate.h"
#include <cstdlib>
#pragma GCC diagnostic ignored "-Wunused-parameter"

extern const XmtColorRow pColor[];
const XmtColorRow pColor[1] = {{"", ""}};
int flUseDefaultColor;
Pixel GenColor(const char *text, int flBackground, char *flSuccess) {
    return {};
}
XColor *GetClosestColor(const char *text) {
    return {};
}
float RGBDiff(int red, int green, int blue, const XColor *colour) {
    return {};
}
double Sqrt(double x, double tolerance) {
    return {};
}
void XmtSetColor(const char *name, const char *key, const char *text) {}
XmFontList XmtGetFontList(const char *name) {
    return {};
}
int flSetColorNone;
const char *XmtCreatePixmap(const char *text, size_t size, ImageRecord *record) {
    return {};
}
const char *XmtLoadXPM(const char *text, size_t size, ImageRecord *record, int flXpm2) {
    return {};
}
const char *XmtLoadBitmap(const char *text, size_t size, ImageRecord *record) {
    return {};
}
void XmtClearImage(XImage *image, Pixel pixel) {}
void XmtCopyImage(XImage *source, XImage *destination, int x, int y, Pixel background) {}
XImage *XmtMakeImage(int width, int height) {
    return {};
}
const char *XmtLoadGIF(const char *bytes, size_t size, ImageRecord *record) {
    return {};
}
char *XmtDecodeString(XmString string) {
    return {};
}
XmString XmtMakeString(const char *text) {
    return {};
}
int XmtValidateEntry(const char *typed, const char *candidate, const char *format) {
    return {};
}
void PostValidateErrMsg(int number, char ch) {}
std::string XmtInsertEscape(const char *text) {
    return {};
}
void XmtProcessTextFormat(XmtObjectData *object, XmtCallData *data) {}
void XmtProcessMaskedFormat(XmtObjectData *object, XmtCallData *data) {}
