// Statements, macros and value readers of descriptions, on a recording table: no display is needed.
#include "xmt/XmtNew.h"

#include "common/MemMgr.h"
#include "common/Token.h"
#include "prndeck/gui/PrdGuiMacros.h"
#include "tests/lib/Capture.h"
#include "tests/lib/DescDump.h"

#include <gtest/gtest.h>

static void LoadMacros() {
    std::string text = MainMacroDesc;
    for (size_t hole; (hole = text.find("%s")) != std::string::npos;) text.replace(hole, 2, "x");
    EXPECT_EQ(DumpDescription(text.c_str(), 0), "") << "definitions make no object";
}

// ---- statements

struct TreeCase {
    const char *name, *text, *tree;
};

static void RunTrees(const TreeCase *cases, size_t count) {
    for (const TreeCase *c = cases; c < cases + count; c++)
        EXPECT_EQ(DumpDescription(c->text, 1), c->tree) << c->name << ": " << c->text;
}

TEST(Statements, MakeTrees) {
    static const TreeCase cases[] = {
        {"blocks", "B a .0 {\n l b l(x);\n F c { l d; }\n}\nl e;",
         "B a 1\n  l b 2\n  F c 3\n    l d 4\nl e 5\n"},
        {"the first window becomes the parent", "DB w { } l a; DB v { l b; }",
         "DB w 1\n  l a 2\n  DB v 3\n    l b 4\n"},
        {"the last word needs white space", "l a; s", "l a 1\n"},
        {"no name", "s ", "s  1\n"},
        {"an unknown word leaves no current object", "B a {zz {l b; } }", "B a 1\nl b 2\n"},
        {"numbers", "id(401) l a; l b id(7); l c; id(0) l d; l e id(0); l f;",
         "l a 401\nl b 7\nl c 402\nl d 0\nl e 1\nl f 1\n"},
        {"one brace too many", "l a; } l b;", "l a 1\n"},
        {"one brace too few", "B a {B b {l c;", "B a 1\n  B b 2\n    l c 3\n"},
        {"comments", "l a; # l b;\nl c; #", "l a 1\nl c 2\n"},
        {"hidden", "l a H; t b H <1 h>;", "l a 1 [h]\nt b 2 [h]\n"},
        {"a parent for the rest of the block", "B a { } B b {P(a) l c; } l d; P() l e; P(zz) l f;",
         "B a 1\nB b 2\n  l c 3\nl d 4\nl e 5\nl f 6\n"},
        {"a parent for one object", "B a { } B b {l c P(a); l d P(zz); }",
         "B a 1\nB b 2\n  l c 3\n  l d 4\n"},
        {"an object taken up again", "B a { } l b; O a {l c; } O zz {l d; }",
         "B a 1\nl b 2\n  l c 3\nl d 4\n"},
        {"a change of an unknown object", "OS zz l a;", "l a 1\n"},
    };
    RunTrees(cases, std::size(cases));
}

TEST(Statements, StopBeforeTheStackDoes) {
    std::string blocks(100000, '{');
    EXPECT_EQ(DumpDescription((blocks + "l a;").c_str(), 1), "l a 1\n");
    EXPECT_EQ(DumpDescription(".5 *5*5*5*5*5 \n*5 l a;", 1), "l a 1\n");
}

TEST(Statements, FollowTheParent) {
    static const struct {
        const char *parent, *tree;
        int first, next;
    } cases[] = {{nullptr, "l a 9\n", 9, 10}, {"nosuch", "", 9, 9}, {"stand", "  l a 9\n", 0, 10}};
    DumpDescription("B stand;", 1);
    for (const auto &c : cases) {
        EXPECT_EQ(DumpDescription("l a;", c.first, c.parent), c.tree) << c.tree;
        EXPECT_EQ(AppCBValue, c.next) << c.tree;
    }
}

// ---- macros

TEST(Macros, AreReadAtTheirPlace) {
    static const TreeCase cases[] = {
        {"a block goes on behind the macro", ".5 B * {\n*5(x) l y; } l z;", "B x 1\n  l y 2\nl z 3\n"},
        {"in place", ".5 l a; \\*6 *6\n.6 l b;\n*5 l c;", "l a 1\nl b 2\nl b 3\nl c 4\n"},
        {"defined anew", ".5 l a;\n*5 .5 l b;\n*5 ", "l a 1\nl b 2\n"},
        {"defined anew by itself", ".5 .5 l b;\\\n l a; \n*5 *5 ", "l b 1\nl a 2\n"},
        {"undefined: its arguments are statements", "*99(l a; ) l b;", "l a 1\nl b 2\n"},
        {"two digits", ".42 l a;\n.4 l b;\n*42 *4 *4", "l a 1\nl b 2\nl b 3\n"},
        {"the twenty-first call within a call", ".8 &'l a; '&0 \\*8(x) \n*8(x) s e;", nullptr},
        {"at the end of the text", "*5", "l b 1\nl a 2\n"},
    };
    for (const TreeCase &c : cases) {
        std::string tree = DumpDescription(c.text, 1), wanted = c.tree ? c.tree : "";
        for (int i = 1; !c.tree && i <= XMT_CALLS; i++) wanted += "l a " + std::to_string(i) + "\n";
        EXPECT_EQ(tree, c.tree ? wanted : wanted + "s e 21\n") << c.name << ": " << c.text;
    }
}

TEST(Macros, ReplaceTheirParameters) {
    const std::string long50(50, 'v');
    const struct {
        const char *name, *body;
        std::string arguments, out;
    } cases[] = {
        {"kept values", "&*&*\\*50(&0,&1)&2", "a,b", "*50(a,b)"},
        {"one digit", "&*&01", "a", "a1"},
        {"a kept text", "&'p\\nq\\''&0&0", "", "p\nq'p\nq'"},
        {"escapes in arguments", "*|*|*|*", "a\\,b\\n,,\\)", "a,b\n||)|"},
        {"too many arguments", "*", " a ,b", " a "},
        {"39 characters", "&*&0*", long50 + "," + long50, long50.substr(0, 39) + long50},
        {"ten values", "&*&*&*&*&*&*&*&*&*&*&*&9*", "0,1,2,3,4,5,6,7,8,9,A,B", "9B"},
    };
    for (const auto &c : cases) {
        std::string out = "old";
        ExpandMacro(&out, c.body, c.arguments.c_str());
        EXPECT_EQ(out, c.out) << c.name << ": " << c.body << " with " << c.arguments;
    }
}

TEST(Macros, OfTheWindowsMakeTheirRows) {
    static const TreeCase cases[] = {
        {"the frame of a dialog",
         "*80(400,w,p,Title,box,x)\n l in;\n}}\n}*72(bar,box,4)\n id(415)\n *71(ap,Apply,C[ap])\n}",
         "DB w 400\n  B box 401\n    l sp1 401\n    B  401\n      l in 401\n"
         "    B bar 402\n      l Logo 402\n      bp ap 415\n"},
        {"four blocks", "*91(700,w,p,Title) l in;",
         "DB w 700\n  B AddQue_B 701\n    B wqmb 701\n      B wa 701\n        l in 701\n"},
        {"a dotted address", "*78(b,Mask,f1,f2,f2,f3,f3,f4,f4) l z;",
         "B b 1\n  t f1 2\n  l dot 3\n  t f2 4\n  l dot 5\n  t f3 6\n  l dot 7\n  t f4 8\nl z 9\n"},
        {"a button with its number", "*69(b,x,Text,7,y,20) l z;", "B b 1\n  bp x 7\n  l y 2\nl z 20\n"},
        {"columns", "*54(c,,8)",
         "t c10 1\nt c11 2\nt c12 3\nt c13 4\nt c14 5\nt c15 6\nt c16 7\nt c17 8\nt c18 9\n"},
    };
    LoadMacros();
    RunTrees(cases, std::size(cases));
}

TEST(Macros, HandArgumentTextThrough) {
    static const TreeCase cases[] = {
        {"empty arguments", "*74(a, ,)*74(b)", "l a 1: a .22 l( ) .0;\nl b 2: b .22 l() .0;\n"},
        {"a label with a comma", "*70(a,One\\\\\\\\\\\\,Two)", "bp a 1: a .22 l(One\\,Two) .10;\n"},
    };
    LoadMacros();
    for (const TreeCase &c : cases) EXPECT_EQ(DumpArguments(c.text), c.tree) << c.name << ": " << c.text;
    std::string rows = DumpArguments("*52(sic1t,Dummy Input,15)");
    EXPECT_EQ(rows.substr(0, rows.find('\n')),
              "t sic1t1 1: sic1t1 .0 .22 s(15,1) bo(0) Se(F) Sc(F) t(Dummy Input);");
    EXPECT_NE(rows.find("t sic1t8 8: sic1t8 .33 .22"), std::string::npos) << rows;
}

// ---- inclusion

TEST(Include, ReadsADescriptionOfItsOwn) {
    Scratch scratch;
    auto file = [&](const char *name, const std::string &text) {
        return "#include " + scratch.Write(name, text);
    };
    std::string block = file("block", "l i; } l lost;"), macro = file("macro", ".5 l m;\n*5");
    std::string self = file("self", "l s; #include " + scratch.Path("self") + "\n");
    std::string open = file("open", ".6 l o; } l lost;\n*6 l lost2;");
    const struct {
        const char *name;
        std::string text, tree;
    } cases[] = {
        {"its brace ends its own loop", "B a {" + block + " rest\nl b; }", "B a 1\n  l i 2\n  l b 3\n"},
        {"within a macro", ".7 " + macro + " \\\n l b;\n*7 l c;", "l m 1\nl b 2\nl c 3\n"},
        {"its open macro ends with it", open + "\nl b;", "l o 1\nl b 2\n"},
        {"no file", "#include /nosuch/file\nl b;", "l b 1\n"},
        {"no name", "#include", ""},
    };
    for (const auto &c : cases) EXPECT_EQ(DumpDescription(c.text.c_str(), 1), c.tree) << c.name;
    EXPECT_EQ(DumpDescription((self + "\n").c_str(), 1).rfind("l s 1\n", 0), 0u) << "ends";
}

// ---- value readers

TEST(Values, AreReadAsTold) {
    using Reader = void (*)(std::string *);
    static const Reader argValue = [](std::string *out) { pNewDesc = GetArgValue(out, pNewDesc); };
    static const Reader argValues = [](std::string *out) { pNewDesc = GetArgValues(out, pNewDesc); };
    static const Reader word = [](std::string *out) { pNewDesc = GetWord(out, pNewDesc); };
    static const Reader number = [](std::string *out) { *out = std::to_string(GetNumber()); };
    static const Reader count = [](std::string *out) { *out = std::to_string(GetArgCount(pNewDesc)); };
    static const Reader line = [](std::string *out) {
        *out = TakeText(GetDesc('\n', 0));
        EXPECT_EQ(GetDescLen, static_cast<int>(out->size()));
    };
    static const Reader saved = [](std::string *out) {
        char *text;
        GetSavedValues(&text);
        *out = TakeText(text);
    };
    static const struct {
        const char *name;
        Reader read;
        const char *text, *value, *rest;
    } cases[] = {
        {"GetArgValue", argValue, "(a\\,b,c)", "a\\,b", ",c)"},
        {"GetArgValue of the end", argValue, "a\\", "a\\", ""},
        {"GetValue", GetValue, "((a\\),b)", "(a\\)", "b)"},
        {"GetArgValues", argValues, "(a,\\),b)c", "a,\\),b", ")c"},
        {"GetValues", GetValues, "(a,\\),\\\\)b)c", "a,),\\)b", "c"},
        {"GetSavedValues", saved, "(a,\\)b)c", "a,\\)b", "c"},
        {"GetNumber", number, "(580,-1)", "580", "-1)"},
        {"GetNumber with a sign", number, "-1)", "-1", "-1)"},
        {"GetWord", word, " \t\na_1.b", "a_1", ".b"},
        {"GetDesc", line, " a\\\nb\nc", " a\\\nb", "c"},
        {"GetArgCount", count, "(a,b\\,c,)d,e", "3", "(a,b\\,c,)d,e"},
        {"GetArgCount of an empty list", count, "()", "0", "()"},
    };
    for (const auto &c : cases) {
        std::string value;
        XmtCursor cursor(c.text);
        c.read(&value);
        EXPECT_EQ(value, c.value) << c.name << ": " << c.text;
        EXPECT_STREQ(pNewDesc, c.rest) << c.name << ": " << c.text;
    }
}

TEST(Values, AreTakenOutOfArguments) {
    static const struct {
        const char *name, *text, *arg, *rest;
    } cases[] = {
        {"s", ".0 s(1\\),2) Se(T) s(3)", "s(1\\),2)", ".0  Se(T) s(3)"},
        {"H", "(H) H <1 H>", "H", "() H <1 H>"},
        {"id", "idx(3) t(id) id(4", "id(4", "idx(3) t(id) "},
        {"P", "p(x) sP", "", "p(x) sP"},
        {"", "s(1)", "", "s(1)"},
    };
    for (const auto &c : cases) {
        std::string arg = "old", stripped = "old", rest = c.text;
        EXPECT_EQ(CopyArg(c.name, c.text, &arg), *c.arg != '\0') << c.text;
        EXPECT_EQ(StripArg(c.name, &rest, &stripped), *c.arg != '\0') << c.text;
        EXPECT_EQ(arg + "|" + stripped + "|" + rest, std::string(c.arg) + "|" + c.arg + "|" + c.rest)
            << c.text;
    }
}

// ---- tokens

TEST(Tokens, KeepTheirOwnPlace) {
    XmtTokenRecord record = {};
    std::string dump;
    XmtSetTokenBuf("x;y");
    SetTokenBuf("p;q");
    const char *text = "S1[a\\]b c]  Ca[d\\n";
    for (char *token; (token = XmtStrTok(&record, text, "[] ")); text = nullptr)
        dump += std::string(token) + (record.del ? record.del : '$');
    EXPECT_EQ(dump, "S1[a]b c]Ca[d\n$");
    EXPECT_STREQ(XmtGetToken(nullptr, ";"), "x");
    EXPECT_STREQ(GetToken(nullptr, ";"), "p");
    EXPECT_STREQ(XmtGetToken(nullptr, ";"), "y");
    EXPECT_EQ(XmtGetToken(nullptr, ";"), nullptr);
}
