// Catalogues: the choice of the language, opening, every form of fetch, guarded formats, menu and window
// texts.
#include "common/NlsUtils.h"

#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>

#include "common/MemMgr.h"
#include "common/TextMenu.h"
#include "common/utils.h"
#include "tests/lib/Xdb.h"

static std::string Take(char *managed) {
    std::string text = managed ? managed : "(null)";
    PutMem(managed);
    return text;
}

static std::string Text(const std::string &text) {
    return text + '\0';
}

// A tool directory with nothing decided yet, and nothing left open behind it.
class NlsDir : public ToolDir {
public:
    NlsDir() { Forget(); }
    ~NlsDir() { Forget(); }
    void Forget() {
        for (DbTHandle **handle : {&pDrvCoreDB, &pPrtHelpDB, &pPrtCoreDB}) {
            DbTClose(*handle);
            *handle = nullptr;
        }
        for (char **text : {&pNLSLang, &pNLSTable}) {
            PutMem(*text);
            *text = nullptr;
        }
        unsetenv("LANG");
    }
    void Catalogue(const std::string &name, const Records &records) {
        MakeDir("db/" + name.substr(0, name.find('/')));
        WriteXdb(Db(name), true, records);
    }
    // CoreString with these records, open in pDrvCoreDB.
    void Core(const Records &records) {
        Catalogue("en_US/CoreString", records);
        pDrvCoreDB = NlsOpenDB("CoreString", 5);
    }
};

// ---- Language

struct FormCase {
    const char *name;
    const char *file;
    const char *form;
};
static const FormCase FormCases[] = {
    {"two lines", "de_DE = de de_DE\nDefault en_US\n", "de_DE = de de_DE \nDefault en_US \n"},
    {"no line end", "a =\tb   c", "a = b c "},
    {"blank in front of the line feed", "a = b \nc = d\n", "a = b c = d \n"},
    {"CR LF loses the line ends", "a = b\r\nc = d\r\n", "a = b c = d "},
    {"equals sign inside a token", "a=b =c\n", "a=b = c \n"},
    {"comments to either line end", "#one\na = b # two\rc\n# three", "a = b c \n"},
    {"no comment inside a token", "a#b = c\n", "a#b = c \n"},
    {"Default ends the line of its token", "Default x y\n", "Default x \ny \n"},
    {"Default before the line feed", "Default\nx y\n", "Default \nx \ny \n"},
    {"one byte is an empty text", "x", ""},
    {"longer than any buffer", nullptr, nullptr},
};

TEST(Nls, NormalFormOfTheTable) {
    for (const FormCase &c : FormCases) {
        NlsDir tool;
        std::string token(20000, 't');
        tool.Write("trans.conf", c.file ? c.file : token);
        EXPECT_EQ(Take(ParseTransFile("trans.conf")), c.form ? c.form : token + " ") << c.name;
    }
    NlsDir tool;
    EXPECT_EQ(ParseTransFile("trans.conf"), nullptr);
}

struct LanguageCase {
    const char *name;
    const char *table; // null: no file
    const char *lang;  // null: not set
    const char *language;
};
static const LanguageCase LanguageCases[] = {
    {"first line", "fr_FR = fr french\nde_DE = de\nDefault de_DE\n", "fr", "fr_FR"},
    {"second line", "fr_FR = fr french\nde_DE = de\nDefault en_GB\n", "de", "de_DE"},
    {"last of a line", "fr_FR = fr french\nde_DE = de\nDefault en_GB\n", "french", "fr_FR"},
    {"left of the sign does not count", "fr_FR = fr\nde_DE = de\nDefault en_GB\n", "de_DE", "en_GB"},
    {"codeset", "de_DE = de_DE\nDefault en_GB\n", "de_DE.ISO8859-1", "de_DE"},
    {"codeset, and a longer entry", "de_DE = de_DEx\nDefault en_GB\n", "de_DE.UTF-8", "de_DE"},
    {"no codeset, longer entry", "de_DE = de_DEx\nDefault en_GB\n", "de_DE", "en_GB"},
    {"no LANG", "de_DE = de\nDefault en_GB\n", nullptr, "en_GB"},
    {"empty LANG", "de_DE = de\nDefault en_GB\n", "", "en_GB"},
    {"no match, no default", "de_DE = de\n", "fr", "en_US"},
    {"default without a language", "Default\nde_DE = de\n", "fr", "en_US"},
    {"match before any sign, in spite of a default", "Default xx\nde_DE = de\n", "xx", "en_US"},
    {"match in the default's line belongs to the line above", "de_DE = de\nDefault xx\n", "xx", "de_DE"},
    {"no language left of the sign", "= de\nDefault xx\n", "de", "en_US"},
    {"CR LF makes one line", "fr_FR = fr\r\nde_DE = de\r\n", "de", "fr_FR"},
    {"no table, record 999_1", nullptr, "it", "it_IT"},
};

TEST(Nls, Language) {
    for (const LanguageCase &c : LanguageCases) {
        NlsDir tool;
        if (c.table) tool.Write("trans.conf", c.table);
        tool.Catalogue("en_US/CoreString", {{"999_1", Text("it_IT = it \nDefault xx_XX \n")}});
        if (c.lang) setenv("LANG", c.lang, 1);
        EXPECT_STREQ(GetDesiredNLSLang(), c.language) << c.name;
        EXPECT_EQ(pDrvCoreDB == nullptr, c.table != nullptr) << c.name;
        setenv("LANG", "de", 1);
        EXPECT_STREQ(GetDesiredNLSLang(), c.language) << c.name << ": decided once";
        DbTClose(NlsOpenDB("CoreString", 5));
        EXPECT_EQ(pDrvCoreDB, nullptr) << c.name << ": the English catalogue of the table is closed";
    }
}

TEST(Nls, MissingCatalogues) {
    NlsDir tool;
    setenv("LANG", "xx", 1);
    {
        Capture capture;
        EXPECT_EQ(NlsOpenDB("PrtHelp", 7), nullptr);
        EXPECT_EQ(capture.Err(),
                  "ERROR:  Could not open English database:  " + tool.Path() + "/db/en_US/PrtHelp.xdb\n");
    }
    EXPECT_STREQ(pNLSLang, "en_US");
    EXPECT_EQ(NlsText(nullptr, 25, 1), "25_1");
    tool.Forget();
    tool.Write("trans.conf", "de_DE = de\n");
    setenv("LANG", "de", 1);
    Capture capture;
    pDrvCoreDB = NlsOpenDB("CoreString", 5);
    ASSERT_NE(pDrvCoreDB, nullptr);
    EXPECT_EQ(capture.Err(), "");
    EXPECT_EQ(NlsText(pDrvCoreDB, 25, 1), "25_1");
}

// ---- Fetch

TEST(Nls, Fetch) {
    NlsDir tool;
    std::string large(3000, 'x');
    tool.Core({{"25_1", Text("one")},
               {"topic", Text("free")},
               {"25_2", Text(large)},
               {"25_3", "no NUL"},
               {"25_4", Text("")}});
    EXPECT_EQ(Take(NlsFetchString(pDrvCoreDB, nullptr, 0, NLS_FETCH_NUMBER, 25, 1)), "one");
    EXPECT_EQ(Take(NlsFetchString(pDrvCoreDB, nullptr, 0, NLS_FETCH_KEY, "topic")), "free");
    EXPECT_EQ(Take(NlsFetchString(pDrvCoreDB, nullptr, 0, NLS_FETCH_NUMBER, 25, 2)), large.substr(0, 2047));
    EXPECT_EQ(Take(NlsFetchString(pDrvCoreDB, nullptr, 0, NLS_FETCH_LONG, 25, 2)), large);
    EXPECT_EQ(NlsText(pDrvCoreDB, 25, 3) + NlsText(pDrvCoreDB, 25, 4), "no NUL");
    char out[4];
    EXPECT_EQ(NlsFetchString(pDrvCoreDB, out, sizeof(out), NLS_FETCH_NUMBER, 25, 9), out);
    EXPECT_STREQ(out, "25_") << "the key, cut";
    char *missing = NlsFetchString(pDrvCoreDB, nullptr, 0, NLS_FETCH_LONG, 25, 9);
    EXPECT_STREQ(missing, "25_9");
    PutMem(missing);
    PutMem(missing);
}

TEST(Nls, FetchOfNothing) {
    NlsDir tool;
    tool.Core({});
    EXPECT_EQ(Take(NlsFetchString(nullptr, nullptr, 0, NLS_FETCH_NUMBER, 25, 1)), "25_1");
    char *error = NlsFetchString(nullptr, nullptr, 0, NLS_FETCH_NUMBER, 0, 1);
    PutMem(error);
    EXPECT_STREQ(error, "Error");
    EXPECT_STREQ(NlsFetchString(nullptr, nullptr, 0, NLS_FETCH_LONG, 25, 0), "Error");
    EXPECT_STREQ(NlsFetchString(pDrvCoreDB, nullptr, 0, NLS_FETCH_KEY, nullptr), "Error");
    EXPECT_EQ(NlsText(pDrvCoreDB, 0, 7), "0_7");
    char out[8];
    EXPECT_STREQ(NlsFetchString(nullptr, out, sizeof(out), NLS_FETCH_KEY, nullptr), "Error");
}

TEST(Nls, FollowsAReplacedCatalogue) {
    NlsDir tool;
    tool.Core({{"25_1", Text("old")}});
    EXPECT_EQ(NlsText(pDrvCoreDB, 25, 1), "old");
    tool.Catalogue("en_US/CoreString", {{"25_0", Text("")}, {"25_1", Text("new text")}});
    EXPECT_EQ(NlsText(pDrvCoreDB, 25, 1), "new text");
}

// ---- Formats

struct FormatCase {
    const char *text;
    const char *signature;
    const char *out; // null: comes back as it is
};
// All get the arguments 42 and 7, but for s, f and L, which get "word" and null, 2.5, 3.5.
static const FormatCase FormatCases[] = {
    {"plain", "", "plain"},
    {"100%% of %i", "ii", "100% of 42"},
    {"%i to %i", "ii", "42 to 7"},
    {"%x-%#04X", "xx", "2a-0X07"},
    {"[%5d|%-4u]", "ii", "[   42|7   ]"},
    {"%c%c", "cc", "**"},
    {"<%s> <%s>", "ss", "<word> <>"},
    {"%.2s|%6.3s|", "ss", "wo|      |"},
    {"%f %g", "ff", "2.500000 2.5"},
    {"%Lg..%.1Lf", "LL", "3.5..3.5"},
    {"%s %s", "s", nullptr},
    {"%i", "", nullptr},
    {"%n", "i", nullptr},
    {"%*i", "ii", nullptr},
    {"%.*s", "is", nullptr},
    {"%s", "i", nullptr},
    {"%c", "i", nullptr},
    {"%i", "s", nullptr},
    {"%li", "i", nullptr},
    {"%1$i", "i", nullptr},
    {"%Li", "i", nullptr},
    {"%Lg", "f", nullptr},
    {"%f", "L", nullptr},
    {"%9999i", "i", nullptr},
    {"%p", "s", nullptr},
    {"%5%", "", nullptr},
    {"100%", "", nullptr},
    {"%-", "i", nullptr},
};

static std::string Format(const FormatCase &c) {
    switch (c.signature[0]) {
    case 's': return NlsFmt(c.text, c.signature, "word", nullptr);
    case 'f': return NlsFmt(c.text, c.signature, 2.5, 2.5);
    case 'L': return NlsFmt(c.text, c.signature, 3.5L, 3.5L);
    case 'c': return NlsFmt(c.text, c.signature, 42, 42);
    default: return NlsFmt(c.text, c.signature, 42, 7);
    }
}

TEST(Nls, FormatsThatFitAndOthers) {
    for (const FormatCase &c : FormatCases) EXPECT_EQ(Format(c), c.out ? c.out : c.text) << c.signature;
}

TEST(Nls, PrintedFormats) {
    NlsDir tool;
    tool.Core({{"30_1", Text("%s has %i of %c, %.1f")}, {"30_2", Text("%s%n")}, {"30_3", Text("30_3")}});
    char out[20];
    Nlssprintf(out, sizeof(out), pDrvCoreDB, 30, 1, "Tarvo", 3, 'x', 0.5);
    EXPECT_STREQ(out, "Tarvo has 3 of x, 0") << "cut";
    Nlssprintf(out, sizeof(out), pDrvCoreDB, 30, 2, "Tarvo");
    EXPECT_STREQ(out, "%s%n");
    Nlssprintf(out, sizeof(out), pDrvCoreDB, 30, 9);
    EXPECT_STREQ(out, "Error");
    Capture capture;
    Nlsfprintf(stdout, pDrvCoreDB, 30, 1, "T", 1, 'y', 2.0L); // a long double does not fit %f
    Nlsfprintf(stdout, pDrvCoreDB, 30, 3);
    EXPECT_EQ(capture.Out(), "%s has %i of %c, %.1fError");
}

// ---- Menus, windows, values

TEST(Nls, MenuTexts) {
    NlsDir tool;
    std::string fits(127, 'f');
    tool.Core({{"25_1", Text("%s label")}, {"25_2", Text(fits + "x")}, {"25_3", Text("_no,_yes")}});
    TextMenuItem items[2];
    NlsTtyMenuItemCvt(items, 1, 2);
    NlsTtyMenuItemStateCvt(items, 3, 1);
    NlsTtyMenuItemPromptCvt(items, 3, 2);
    EXPECT_STREQ(items[0].text, "%s label");
    EXPECT_EQ(items[1].text, fits);
    EXPECT_STREQ(items[0].choices, "_no,_yes");
    EXPECT_EQ(items[1].choices, nullptr);
    EXPECT_STREQ(items[1].prompt, "25_4");
    char *title = nullptr;
    NlsTtyMenuCvt(&title, 3);
    EXPECT_EQ(Take(title), "_no,_yes");
    for (const void *text :
         {(const void *)items[0].text, (const void *)items[1].text, (const void *)items[0].choices,
          (const void *)items[0].prompt, (const void *)items[1].prompt})
        PutMem(text);
}

TEST(Nls, WindowTexts) {
    NlsDir tool;
    tool.Core({{"7_1", Text("first")},
               {"7_2", Text("%s")},
               {"7_3", Text("third")},
               {"8_1", Text(std::string(1500, 'x'))}});
    char out[2000];
    EXPECT_STREQ(NlsGuiStrCvt("a(%s)b(%s)c(%s)d(%s)%", 7, out, sizeof(out)), "a(first)b(%s)c(third)d(7_4)%");
    EXPECT_STREQ(NlsGuiStrCvt("none % s", 7, out, sizeof(out)), "none % s");
    EXPECT_EQ(strlen(NlsGuiStrCvt("%s", 8, out, sizeof(out))), 1023u);
    EXPECT_STREQ(NlsGuiStrCvt("ab%s", 7, out, 5), "abfi");
}

TEST(Nls, ValueOfAText) {
    EXPECT_STREQ(NlsCalcStrVal("ab"), "000001E9000000C3"); // 97 + 98 * 4, 97 + 98
    EXPECT_STREQ(NlsCalcStrVal("\xff"), "FFFFFFFFFFFFFFFF");
    EXPECT_STREQ(NlsCalcStrVal(""), "0000000000000000");
}

struct RedirectCase {
    const char *text;
    const char *topic;
};
static const RedirectCase RedirectCases[] = {
    {"$$Duplex.redirect", "Duplex"}, {"see $$A b.ReDirect now", "A b"},
    {"$$a.b.redirect", nullptr},     {"$$x", nullptr},
    {"$Duplex.redirect", nullptr},   {"$$.redirect", ""},
};

TEST(Nls, Redirects) {
    for (const RedirectCase &c : RedirectCases) {
        std::string text = c.text;
        const char *topic = FindRedirect(text.data());
        EXPECT_EQ(topic ? topic : "(null)", std::string(c.topic ? c.topic : "(null)")) << c.text;
    }
    NlsDir tool;
    tool.Catalogue("en_US/PrtHelp", {{"Duplex", Text("both sides")}});
    pPrtHelpDB = NlsOpenDB("PrtHelp", 7);
    char text[32] = "$$Duplex.redirect";
    EXPECT_STREQ(CheckForRedirect(text, sizeof(text)), "Duplex");
    EXPECT_STREQ(text, "both sides");
    EXPECT_EQ(CheckForRedirect(text, sizeof(text)), nullptr);
    std::string topic = std::string(70, 't');
    std::string large = "$$" + topic + ".redirect";
    EXPECT_EQ(CheckForRedirect(large.data(), large.length() + 1), topic.substr(0, 63));
}
