// The filter language over packages with every kind of variable.
#include "SnmpPkg/Filter.h"

#include <gtest/gtest.h>

// Six variables: 0 text, 1 number, 2 timed out, 3 description, 4 NULL, 5 filled.
static SnmpPackage Package(const char *description) {
    struct Var {
        int status, type;
        const char *text;
    } vars[] = {{SUCCESS, VT_STRING, "ab"},
                {SUCCESS, VT_NUMBER, "7"},
                {SEND_ERR_TIMED_OUT, 0, "______________"},
                {SUCCESS, VT_STRING, description},
                {SUCCESS, VT_EMPTY, ""},
                {SUCCESS, VT_OBJECT, "1.3"}};
    SnmpPackage package = {};
    for (const Var &var : vars) {
        PkgVar &to = package.Vars[package.NumRecVars++];
        to.Status = var.status;
        to.RecType = var.type;
        to.RecText = const_cast<char *>(var.text);
    }
    return package;
}

static const char Brand[] = "(($3) && ((Tarvo IN $3) && (!(Vantor IN $3))))";

TEST(Filter, Expressions) {
    struct Case {
        const char *expression;
        bool want;
    } cases[] = {
        {nullptr, true},
        {"($0)", true},
        {"($2)", false}, // no answer
        {"($4)", false}, // NULL
        {"($6)", false}, // no such variable
        {"($60)", false},
        {"($99999999999)", false},
        {"(($5) && ($3))", true},
        {"(($5) && ($2))", false},
        {"(($2) && ($5))", false},
        {"(($4) && ($3))", false},
        {"(($2) || ($5))", true},
        {"(($5) || ($2))", true},
        {"(($2) || ($4))", false},
        {"(!($2))", true},
        {"(!($5))", false},
        {"(!(($5) && ($2)))", true},
        {"(a IN $0)", true},
        {"(A IN $0)", false},
        {"(abc IN $0)", false},
        {"(a IN $2)", false},
        {"(a IN b)", false},
        {"(($2) && ($5) || ($5))", false}, // the leftmost operator splits
        {"((($2) && ($5)) || ($5))", true},
        // Beyond the grammar: some answer, no fault.
        {"", false},
        {"(", false},
        {")", false},
        {"(Tarvo)", false},
        {"!", true},
        {"(GET $0)", false},
        {"(a=b)", true},
    };
    SnmpPackage package = Package("Tarvo T650 series");
    for (const Case &c : cases)
        EXPECT_EQ(PassFilter(c.expression, &package), c.want) << (c.expression ? c.expression : "null");
}

TEST(Filter, BrandInTheDescription) {
    struct Case {
        const char *description;
        bool want;
    } cases[] = {{"Tarvo T650 series", true}, {"Vantor V1", false},      {"Tarvo by Vantor", false},
                 {"TARVO T650", false},       {"______________", false}, {"", false},
                 {"the Tarvo", true},         {"Tarv o", false}};
    for (const Case &c : cases) {
        SnmpPackage package = Package(c.description);
        EXPECT_EQ(PassFilter(Brand, &package), c.want) << c.description;
    }
    SnmpPackage package = Package("Tarvo T650 series");
    for (int type : {VT_EMPTY + 0, VT_UNKNOWN + 0, VT_NOSUCHOBJ + 0, VT_NOSUCHINS + 0, VT_ENDOFMIB + 0}) {
        package.Vars[3].RecType = type;
        EXPECT_FALSE(PassFilter(Brand, &package)) << type;
    }
    package.Vars[3].RecType = 68; // an opaque value is one
    EXPECT_TRUE(PassFilter(Brand, &package));
}

TEST(Filter, DeepNestingEnds) {
    SnmpPackage package = Package("x");
    std::string deep(200000, '('), many;
    for (int i = 0; i < 20000; i++) many += "(!";
    PassFilter(deep.c_str(), &package);
    PassFilter(many.c_str(), &package);
    std::string seven = "($0)";
    for (int i = 0; i < 7; i++) seven = "(!" + seven + ")";
    EXPECT_FALSE(PassFilter(seven.c_str(), &package));
}
