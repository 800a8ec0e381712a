// Any text as a filter expression.
#include "SnmpPkg/Filter.h"

#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    SnmpPackage package;
    SnmpSetup(&package, PKG_INIT, PKG_EMPTY, "1.3.1", PKG_EMPTY, "1.3.2", PKG_EMPTY, "1.3.3");
    package.Vars[0].Status = SUCCESS;
    package.Vars[0].RecType = VT_STRING;
    std::string text(reinterpret_cast<const char *>(data), size);
    size_t position = 0;
    std::string_view left, right;
    Term1(text, &position, &left);
    Term2(text, position + 2, &right);
    if (position > text.size() || left.size() > text.size() || right.size() > text.size()) abort();
    bool passed = PassFilter(text.c_str(), &package);
    if (passed != PassFilter(text.c_str(), &package)) abort();
    return 0;
}
