// Compound strings: a text comes back as it was.
#include "xmt/XmtString.h"

#include "tests/lib/Capture.h"

#include <gtest/gtest.h>

TEST(XmtStringTest, ComesBack) {
    for (const std::string &text : {std::string(), std::string("\n"), std::string("a\tb\n\n\t\xe9%s@~\\"),
                                    std::string(70000, 'x') + "\nend"}) {
        XmString string = XmtMakeString(text.c_str());
        EXPECT_EQ(TakeText(XmtDecodeString(string)), text);
        XmStringFree(string);
    }
    EXPECT_EQ(TakeText(XmtDecodeString(nullptr)), "");
}
