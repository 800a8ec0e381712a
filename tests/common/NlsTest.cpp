// Catalogues: the choice of the language, opening, every form of fetch, and guarded formats.
#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "tests/lib/Xdb.h"

#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>

static std::string Text(const std::string &text) {
    return text + '\0';
}

// A tool directory with nothing decided yet, and nothing left open behind it.
class NlsDir : public ToolDir {
public:
    NlsDir() { Forget(); }
    ~NlsDir() { Forget(); }
    void Forget() {
        for (DbTHandle **handle : {&pDrvCoreDB, &pPrtHelpDB}) {
            DbTClose(*handle);
            *handle = nullptr;
        }
        PutMem(pNLSLang);
        PutMem(pNLSTable);
        pNLSLang = pNLSTable = nullptr;
        unsetenv("LANG");
    }
    DbTHandle *Catalogue(const char *name, const Records &records) {
        MakeDir("db/en_US");
        WriteXdb(Db(std::string("en_US/") + name), true, records);
        return NlsOpenDB(name, 5);
    }
};

// ---- Language

struct FormCase {
    const char *name;
    std::string file;
    std::string form;
};
static const FormCase FormCases[] = {
    {"blank in front of the line feed", "a = b \nc = d\n", "a = b c = d \n"},
    {"CR LF loses the line ends", "a = b\r\nc = d\r\n", "a = b c = d "},
    {"comments to either line end", "#one\na = b # two\rc\n# three", "a = b c \n"},
    {"longer than any buffer", std::string(20000, 't'), std::string(20000, 't') + " "},
};

TEST(Nls, NormalFormOfTheTable) {
    NlsDir tool;
    EXPECT_EQ(ParseTransFile("trans.conf"), nullptr);
    for (const FormCase &c : FormCases) {
        tool.Write("trans.conf", c.file);
        EXPECT_EQ(TakeText(ParseTransFile("trans.conf")), c.form) << c.name;
    }
}

struct LanguageCase {
    const char *name;
    const char *table; // null: no file
    const char *lang;  // null: not set
    const char *language;
};
static const char Table[] = "fr_FR = fr french\nde_DE = de\nit_IT = it_ITx\nDefault en_GB\n";
static const LanguageCase LanguageCases[] = {
    {"second line", Table, "de", "de_DE"},
    {"codeset", Table, "de.ISO8859-1", "de_DE"},
    {"no LANG", Table, nullptr, "en_GB"},
    {"no match, no default", "de_DE = de\n", "fr", "en_US"},
    {"match before any sign, in spite of a default", "Default xx\nde_DE = de\n", "xx", "en_US"},
    {"match in the default's line belongs to the line above", "de_DE = de\nDefault xx\n", "xx", "de_DE"},
    {"CR LF makes one line", "fr_FR = fr\r\nde_DE = de\r\n", "de", "fr_FR"},
    {"no table, record 999_1", nullptr, "it", "it_IT"},
};

TEST(Nls, Language) {
    for (const LanguageCase &c : LanguageCases) {
        NlsDir tool;
        DbTClose(tool.Catalogue("CoreString", {{"999_1", Text("it_IT = it \nDefault xx_XX \n")}}));
        tool.Forget();
        if (c.table) tool.Write("trans.conf", c.table);
        if (c.lang) setenv("LANG", c.lang, 1);
        EXPECT_STREQ(GetDesiredNLSLang(), c.language) << c.name;
        setenv("LANG", "de", 1);
        DbTClose(NlsOpenDB("CoreString", 5));
        EXPECT_STREQ(pNLSLang, c.language) << c.name << ": decided once";
        EXPECT_EQ(pDrvCoreDB, nullptr) << c.name << ": the English catalogue of the table is closed";
    }
}

TEST(Nls, MissingCatalogues) {
    NlsDir tool;
    setenv("LANG", "xx", 1);
    Capture capture;
    EXPECT_EQ(NlsOpenDB("PrtHelp", 7), nullptr);
    std::string said = "ERROR:  Could not open English database:  " + tool.Path() + "/db/en_US/PrtHelp.xdb\n";
    EXPECT_EQ(capture.Err(), said);
    tool.Forget();
    tool.Write("trans.conf", "de_DE = de\n");
    setenv("LANG", "de", 1);
    pDrvCoreDB = NlsOpenDB("CoreString", 5);
    ASSERT_NE(pDrvCoreDB, nullptr);
    EXPECT_EQ(capture.Err(), said) << "silent in another language";
    EXPECT_EQ(NlsText(pDrvCoreDB, 25, 1), "25_1");
}

// ---- Fetch

TEST(Nls, Fetch) {
    NlsDir tool;
    std::string large(3000, 'x');
    DbTHandle *core = pDrvCoreDB = tool.Catalogue(
        "CoreString",
        {{"25_1", Text("one")}, {"topic", Text("free")}, {"25_2", Text(large)}, {"25_3", "no NUL"}});
    EXPECT_EQ(TakeText(NlsFetchString(core, nullptr, 0, NLS_FETCH_NUMBER, 25, 1)), "one");
    EXPECT_EQ(TakeText(NlsFetchString(core, nullptr, 0, NLS_FETCH_KEY, "topic")), "free");
    EXPECT_EQ(NlsText(core, 25, 2), large.substr(0, 2047));
    EXPECT_EQ(TakeText(NlsFetchString(core, nullptr, 0, NLS_FETCH_LONG, 25, 2)), large);
    EXPECT_EQ(NlsText(core, 25, 3), "no NUL");
    char out[4];
    EXPECT_EQ(NlsFetchString(core, out, sizeof(out), NLS_FETCH_NUMBER, 25, 9), out);
    EXPECT_STREQ(out, "25_") << "the key, cut";
    EXPECT_EQ(TakeText(NlsFetchString(core, nullptr, 0, NLS_FETCH_LONG, 25, 9)), "25_9");
    EXPECT_EQ(NlsText(nullptr, 25, 1), "25_1");
    char *error = NlsFetchString(nullptr, nullptr, 0, NLS_FETCH_NUMBER, 0, 1);
    PutMem(error);
    EXPECT_STREQ(error, "Error") << "outlives its release";
    EXPECT_STREQ(NlsFetchString(core, nullptr, 0, NLS_FETCH_KEY, nullptr), "Error");
}

// ---- Formats

struct FormatCase {
    const char *text;
    const char *signature;
    const char *out; // null: comes back as it is
};
// All get the arguments 42 and 7, but for s, f and L, which get "word" and null, 2.5, 3.5.
static const FormatCase FormatCases[] = {
    {"100%% of %i", "ii", "100% of 42"},
    {"%.2s|%6.3s|", "ss", "wo|      |"},
    {"%.1f|%g", "ff", "2.5|2.5"},
    {"%+5.1Lf", "L", " +3.5"},
    {"%f", "L", nullptr},
    {"%s %s", "s", nullptr},
    {"%n", "i", nullptr},
    {"%*i", "ii", nullptr},
    {"%s", "i", nullptr},
    {"%li", "i", nullptr},
    {"%9999i", "i", nullptr},
    {"100%", "", nullptr},
};

static std::string Format(const FormatCase &c) {
    switch (c.signature[0]) {
    case 's': return NlsFmt(c.text, c.signature, "word", nullptr);
    case 'f': return NlsFmt(c.text, c.signature, 2.5, 2.5);
    case 'L': return NlsFmt(c.text, c.signature, 3.5L, 3.5L);
    default: return NlsFmt(c.text, c.signature, 42, 7);
    }
}

TEST(Nls, FormatsThatFitAndOthers) {
    for (const FormatCase &c : FormatCases) EXPECT_EQ(Format(c), c.out ? c.out : c.text) << c.signature;
}
