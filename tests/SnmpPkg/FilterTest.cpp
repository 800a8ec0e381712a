// The filter language over packages with every kind of variable.
#include "SnmpPkg/Filter.h"

#include <gtest/gtest.h>
#include <sstream>
#include <tuple>

// Six variables: 0 text, 1 number, 2 timed out, 3 description, 4 of the given type, 5 filled.
static SnmpPackage Package(const char *description, int type = VT_EMPTY) {
    const std::tuple<int, int, const char *> vars[] = {
        {SUCCESS, VT_STRING, "ab"},        {SUCCESS, VT_NUMBER, "7"}, {SEND_ERR_TIMED_OUT, 0, "____"},
        {SUCCESS, VT_STRING, description}, {SUCCESS, type, ""},       {SUCCESS, VT_OBJECT, "1.3"}};
    SnmpPackage package = {};
    for (auto [status, recType, text] : vars) {
        PkgVar &to = package.Vars[package.NumRecVars++];
        to.Status = status;
        to.RecType = recType;
        to.RecText = const_cast<char *>(text);
    }
    return package;
}

TEST(Filter, Expressions) {
    std::string deep(200000, '('), many, seven = "($0)";
    for (int i = 0; i < 20000; i++) many += "(!";
    for (int i = 0; i < 7; i++) seven = "(!" + seven + ")";
    // Beyond the grammar there is some answer, and no fault.
    std::istringstream pass("($0);(($5) && ($3));(($2) || ($5));(($5) || ($2));(!($2));(!(($5) && ($2)));"
                            "((($2) && ($5)) || ($5));(a IN $0);!;(a=b)");
    std::istringstream fail(
        "($2);($4);($6);($60);($99999999999);(($5) && ($2));(($2) && ($5));(($2) || ($4));"
        "(!($5));(A IN $0);(abc IN $0);(a IN $2);(a IN b);"
        "(($2) && ($5) || ($5));" // the leftmost operator splits
        ";(;);(Tarvo);(GET $0);" +
        seven + ";" + deep + ";" + many);
    SnmpPackage package = Package("x");
    EXPECT_TRUE(PassFilter(nullptr, &package));
    for (std::string text; std::getline(pass, text, ';');)
        EXPECT_TRUE(PassFilter(text.c_str(), &package)) << text;
    for (std::string text; std::getline(fail, text, ';');)
        EXPECT_FALSE(PassFilter(text.c_str(), &package)) << text.substr(0, 80);
    for (int type : {VT_EMPTY, VT_UNKNOWN, VT_NOSUCHOBJ, VT_NOSUCHINS, VT_ENDOFMIB}) {
        package = Package("x", type);
        EXPECT_FALSE(PassFilter("($4)", &package)) << type;
    }
}

TEST(Filter, BrandInTheDescription) {
    const char *description[] = {"Tarvo T650 series", "Tarvo by Vantor", "TARVO T650", "", "Tarv o"};
    for (const char *text : description) {
        SnmpPackage package = Package(text);
        bool pass = PassFilter("(($3) && ((Tarvo IN $3) && (!(Vantor IN $3))))", &package);
        EXPECT_EQ(pass, text == description[0]) << text;
    }
}
