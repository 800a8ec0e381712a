// Compound strings from and to plain text.
#include "xmt/XmtString.h"

#include "common/MemMgr.h"

#include <cstring>
#include <string>

// What a component adds to the text; its type comes back. A tab arrives as a component of an unknown type,
// whose tag tells that it is one.
static XmStringComponentType AddComponent(XmStringContext context, std::string *out) {
    char *text = nullptr;
    XmStringCharSet charset = nullptr;
    XmStringDirection direction;
    XmStringComponentType tag = XmSTRING_COMPONENT_UNKNOWN;
    unsigned short length = 0;
    unsigned char *value = nullptr;
    XmStringComponentType type =
        XmStringGetNextComponent(context, &text, &charset, &direction, &tag, &length, &value);
    if (text) *out += text;
    if (type == XmSTRING_COMPONENT_SEPARATOR) *out += '\n';
    if (type == XmSTRING_COMPONENT_UNKNOWN && tag == XmSTRING_COMPONENT_TAB) *out += '\t';
    XtFree(text);
    XtFree(charset);
    XtFree(reinterpret_cast<char *>(value));
    return type;
}

char *XmtDecodeString(XmString string) {
    std::string out;
    XmStringContext context;
    if (string && XmStringInitContext(&context, string)) {
        while (AddComponent(context, &out) != XmSTRING_COMPONENT_END) {
        }
        XmStringFreeContext(context);
    }
    char *text = static_cast<char *>(GetMem(out.size() + 1));
    if (text) memcpy(text, out.c_str(), out.size());
    return text;
}

XmString XmtMakeString(const char *text) {
    return XmStringCreateLocalized(const_cast<char *>(text ? text : ""));
}
