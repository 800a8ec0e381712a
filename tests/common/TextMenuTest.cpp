// The terminal menus: screens byte for byte, selections and entries, leaving, settings files and prompts.
#include "common/TextMenu.h"

#include "common/MemMgr.h"
#include "common/MenuState.h"
#include "common/NlsUtils.h"
#include "common/SysCmd.h"
#include "common/utils.h"
#include "tests/lib/Capture.h"
#include "tests/lib/MenuDump.h"

#include <cstring>
#include <gtest/gtest.h>
#include <unistd.h>

// Each run is a process of its own, so the static tables below are fresh in each.
static ChildEnd RunTerminal(const std::function<void()> &function, const std::string &input = "") {
    return RunForked(
        [&function] {
            OpenMenuTexts();
            CatchClear();
            function();
        },
        input);
}

static std::string ShowScreen(TextMenu *menu, int titleLength) {
    return RunTerminal([menu, titleLength] { PrintMenu(menu, InitMenu(menu), titleLength); }).out;
}

static int NoteItem(TextMenu *, TextMenuItem *item) {
    printf("{%s}", item->text);
    return 0;
}

static int RefuseItem(TextMenu *, TextMenuItem *) {
    fputs("{refused}", stdout);
    return 1;
}

static int NoteInit(TextMenu *) {
    fputs("{init}", stdout);
    return 0;
}

static int NoteExit(TextMenu *) {
    fputs("{exit}", stdout);
    return 0;
}

// ---- screens

static TextMenuItem EmptyItems[] = {{}};
static TextMenu Submenu = {.title = "Sub Title", .items = EmptyItems};

static char Colours[] = "_red, green,_blue";
static char Gone[] = " one, two";
static char Digits[] = "10,20";
static char Percent[] = "100%s";

static TextMenuItem AllItems[] = {
    {.text = "~ line of text"},
    {.text = "Hidden line", .state = STATE_HIDDEN},
    {.text = "Colour", .type = ITEM_PICK, .choices = Colours, .initial = {.i = 2}},
    {.text = "No choice left", .type = ITEM_PICK, .choices = Gone},
    {.text = "Beyond", .type = ITEM_PICK, .choices = Digits, .initial = {.i = 2}},
    {.text = "Plain", .type = ITEM_PICK, .choices = Digits, .initial = {.i = 1}},
    {.text = "~q Letter first", .type = ITEM_ACTION},
    {.text = "Default bits", .type = ITEM_BITS, .choices = Digits},
    {.text = "Some bits", .type = ITEM_BITS, .choices = Digits, .value = {.i = 0x40000006}},
    {.text = "Required", .type = ITEM_REQUIRED},
    {.text = "Optional", .type = ITEM_OPTIONAL, .initial = {.s = Percent}},
    {.text = "Integer", .type = ITEM_INTEGER, .initial = {.i = -7}},
    {.text = "Float", .type = ITEM_FLOAT, .initial = {.f = 2.5F}},
    {.text = "Title is shown", .type = ITEM_SUBMENU, .value = {.m = &Submenu}},
    {.text = "Not there", .type = ITEM_SUBMENU},
    {.text = "Hidden", .type = ITEM_INTEGER, .state = STATE_HIDDEN},
    {.text = "Disabled", .type = ITEM_INTEGER, .state = STATE_DISABLED},
    {.text = "", .type = ITEM_BAR, .value = {.i = 2}},
    {.text = "Apply", .type = ITEM_APPLY},
    {.text = "Hidden", .type = ITEM_CANCEL, .state = STATE_HIDDEN},
    {.text = "Cancel", .type = ITEM_CANCEL},
    {.text = "~x Leave", .type = ITEM_EXIT},
    {},
};
static TextMenu AllMenu = {.title = "All types", .items = AllItems, .flags = MENU_DENSE};

TEST(TextMenu, ShowsEveryTypeAndState) {
    EXPECT_EQ(ShowScreen(&AllMenu, 9),
              "<clear>\f\n"
              "All types:\n"
              "\n"
              "~ line of text \n"
              " 1) Colour ......... [3. blue]\n"
              " 2) No choice left . [ ]\n"
              " 3) Beyond ......... [ ]\n"
              " 4) Plain .......... [2. 20]\n"
              " q) Letter first \n"
              " 5) Default bits ... [default]\n"
              " 6) Some bits ...... [2,3,31]\n"
              " 7) Required ....... []\n"
              " 8) Optional ....... [100%s]\n"
              " 9) Integer ........ [-7]\n"
              "10) Float .......... [2.500]\n"
              "11) Sub Title \n"
              "    Disabled ....... [0]\n"
              "15) Apply                              17) Cancel                             \n"
              " x) Leave                              \n"
              "Enter a selection or <Return> to exit: ");
}

struct TitleCase {
    const char *name;
    int mode;
    size_t length;
    size_t blanks;
};

static const TitleCase TitleCases[] = {
    {"centred", TITLE_CENTRE, 79, 0},
    {"centred short", TITLE_CENTRE, 37, 21},
    {"centred full", TITLE_CENTRE, 80, 0},
    {"centred too long", TITLE_CENTRE, 81, 0},
    {"centred far too long", TITLE_CENTRE, 300, 0},
    {"right", TITLE_RIGHT, 79, 1},
    {"right full", TITLE_RIGHT, 80, 0},
    {"right too long", TITLE_RIGHT, 82, 0},
};

TEST(TextMenu, PlacesTheTitleByItsFirstLine) {
    for (const TitleCase &row : TitleCases) {
        std::string title = std::string(row.length, 't') + "\nsecond line";
        TextMenu menu = {.title = title.c_str(), .titleMode = row.mode, .items = EmptyItems};
        std::string screen = RunTerminal([&menu] { RunMenu(&menu, nullptr, 1); }, "\ny\n").out;
        std::string wanted = "<clear>\f\n" + std::string(row.blanks, ' ') + title + "\n\nEnter";
        EXPECT_EQ(screen.substr(0, wanted.size()), wanted) << row.name;
    }
}

struct FooterCase {
    uint16_t flags;
    const char *footer;
};

static const FooterCase FooterCases[] = {
    {0, "Enter a selection or <Return> to exit: "},
    {MENU_NO_LEAVE, "Enter a selection: "},
    {MENU_HELP | MENU_STORE,
     "Enter a selection or s for store settings in a file or h for help or <Return> to exit: "},
    {MENU_SETTINGS | MENU_NO_LEAVE, "Enter a selection or s for store settings in a file: "},
};

TEST(TextMenu, OffersInTheFooterWhatTheFlagsAllow) {
    static TextMenuItem items[] = {
        {.text = "One", .type = ITEM_ACTION}, {.text = "Two", .type = ITEM_ACTION}, {}};
    for (const FooterCase &row : FooterCases) {
        TextMenu menu = {.title = "T", .items = items, .flags = row.flags};
        EXPECT_EQ(ShowScreen(&menu, 1),
                  std::string("<clear>\f\nT:\n\n 1) One \n\n 2) Two \n\n") + row.footer);
    }
    TextMenu menu = {.title = "T", .items = items};
    EXPECT_EQ(RunForked([&menu] {
                  CatchClear();
                  PrintMenu(&menu, InitMenu(&menu), 1);
              }).out,
              "<clear>\f\nT:\n\n 1) One \n\n 2) Two \n\n25_510");
}

static std::string Label(char letter, size_t length) {
    return std::string(length, letter);
}

TEST(TextMenu, LaysOutBarsInColumns) {
    std::string texts[] = {Label('a', 35),  Label('b', 36), Label('c', 5), Label('d', 38), Label('e', 39),
                           Label('f', 300), Label('g', 3),  Label('h', 2), Label('i', 2),  Label('j', 2)};
    TextMenuItem items[] = {
        {.text = "", .type = ITEM_BAR, .value = {.i = 2}},
        {.text = texts[2].c_str(), .type = ITEM_ACTION},
        {.text = texts[0].c_str(), .type = ITEM_ACTION},
        {.text = texts[1].c_str(), .type = ITEM_ACTION},
        {.text = texts[1].c_str(), .type = ITEM_ACTION, .state = STATE_HIDDEN},
        {.text = texts[2].c_str(), .type = ITEM_ACTION},
        {.text = texts[3].c_str(), .type = ITEM_ACTION},
        {.text = texts[4].c_str(), .type = ITEM_ACTION},
        {.text = texts[5].c_str(), .type = ITEM_ACTION},
        {.text = texts[2].c_str(), .type = ITEM_ACTION, .state = STATE_DISABLED},
        {.text = "", .type = ITEM_BAR},
        {.text = texts[6].c_str(), .type = ITEM_ACTION},
        {.text = "~e Exit Help", .type = ITEM_EXIT},
        {.text = texts[7].c_str(), .type = ITEM_ACTION},
        {},
    };
    TextMenu menu = {.title = "T", .items = items, .flags = MENU_DENSE | MENU_NO_LEAVE};
    EXPECT_EQ(ShowScreen(&menu, 1),
              "<clear>\f\n"
              "T:\n"
              "\n"
              " 1) ccccc                               2) aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa \n"
              " 3) bbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbb  5) ccccc                              \n"
              " 6) dddddddddddddddddddddddddddddddddd \n"
              " 7) eeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeee \n"
              "\n"
              " 8) ffffffffffffffffffffffffffffffffff \n"
              "    ccccc                              \n"
              "10) ggg                   e) Exit Help            11) hh                   \n"
              "Enter a selection: ");
}

// ---- selections

static char Names[] = "_one,_two, three,_four";
static TextMenuItem WorkItems[] = {
    {.text = "Line"},
    {.text = "Name",
     .type = ITEM_REQUIRED,
     .prompt = "Enter the name",
     .callback = NoteItem,
     .format = "A(1,14)+-+_"},
    {.text = "Pick", .type = ITEM_PICK, .choices = Names, .callback = NoteItem},
    {.text = "Hidden", .type = ITEM_INTEGER, .state = STATE_HIDDEN},
    {.text = "Number", .type = ITEM_INTEGER, .initial = {.i = 5}, .format = "d(1,60)"},
    {.text = "Ratio", .type = ITEM_FLOAT, .prompt = "Ratio", .format = "f(0,9.5)"},
    {.text = "Note", .type = ITEM_OPTIONAL, .prompt = "Note", .format = "t(1,80)"},
    {.text = "Host", .type = ITEM_OPTIONAL, .prompt = "Host", .format = "!(0.0.0.0)|t(1,255)"},
    {.text = "~Q Action", .type = ITEM_ACTION, .callback = NoteItem},
    {.text = "Apply", .type = ITEM_APPLY, .callback = NoteItem},
    {.text = "Cancel", .type = ITEM_CANCEL, .callback = RefuseItem},
    {.text = "Exit", .type = ITEM_EXIT},
    {},
};
static TextMenu WorkMenu = {
    .title = "Work", .items = WorkItems, .flags = MENU_NO_LEAVE | MENU_KEEP | MENU_DENSE};

struct WorkCase {
    const char *name;
    std::string input; // behind it the exit item is chosen
    const char *transcript;
    int item; // whose line of the dump is compared
    std::string dump;
};

static const char NamesMissing[] =
    "#\nAll names must be set before applying setup.\nPress <Return> to continue#";

static const WorkCase WorkCases[] = {
    {"number of a hidden item", "3\n", "##", 3, "3: 3 integer hidden 0"},
    {"no such number, a text line's 0, a leading blank", "99\n0\n 1\n99999999999999999999\n", "#####", 1,
     "1: 1 required ''"},
    {"empty line under the flag", "\n", "##", 1, "1: 1 required ''"},
    {"letter in either case", "q\nQuit\nx\n", "#{~Q Action}#{~Q Action}##", 8, "8: Q action"},
    {"prompt", "1\nq1\n", "#Enter the name: {Name}#", 1, "1: 1 required 'q1'"},
    {"value on the line", "1 q1\n", "#{Name}#", 1, "1: 1 required 'q1'"},
    {"empty answer keeps the value", "1 q1\n1\n\n", "#{Name}#Enter the name: #", 1, "1: 1 required 'q1'"},
    {"refused value keeps the old one", "1 q1\n1 a.b\n\n",
     "#{Name}#Invalid character '.'\nThis text may contain \"abc..zABC..Z012..9-_\"Press <Return> to "
     "continue#",
     1, "1: 1 required 'q1'"},
    {"a value with blanks", "6 two words \n", "##", 6, "6: 6 optional 'two words '"},
    {"a value beyond the buffer", "7 " + std::string(4000, 'h') + "\n", "##", 7,
     "7: 7 optional '" + std::string(255, 'h') + "'"},
    {"integer without a prompt", "4\n61\n\n4 60\n",
     "#Number: This number must be between 1 to 60.Press <Return> to continue##", 4, "4: 4 integer 60"},
    {"float", "5 9.25\n", "##", 5, "5: 5 float 9.25"},
    {"next choice passes the hidden one", "2\n2\n", "#{Pick}#{Pick}#", 2, "2: 2 pick 3 of 4 '_four'"},
    {"choice by number, then around", "2 4\n2\n", "#{Pick}#{Pick}#", 2, "2: 2 pick 0 of 4 '_one'"},
    {"hidden choice by number moves on from it", "2 3\n", "#{Pick}#", 2, "2: 2 pick 3 of 4 '_four'"},
    {"number beyond the choices moves on from the value", "2 9\n", "#{Pick}#", 2, "2: 2 pick 1 of 4 '_two'"},
    {"apply with an empty name", "8\n\n", NamesMissing, 1, "1: 1 required ''"},
    {"refusing cancel", "9\n", "#{refused}#", 10, "10: 9 cancel"},
    {"a line beyond the buffer", std::string(5000, '9') + "\n", "###", 1, "1: 1 required ''"},
    {"byte 255 ends a line",
     "1 q\xff"
     "4 7\n",
     "#{Name}##", 4, "4: 4 integer 7"},
};

static std::string GetDumpLine(const std::string &dump, int index) {
    std::string head = std::to_string(index) + ": ";
    size_t start = dump.compare(0, head.size(), head) == 0 ? 0 : dump.find("\n" + head) + 1;
    return dump.substr(start, dump.find('\n', start) - start);
}

TEST(TextMenu, ActsOnLines) {
    for (const WorkCase &row : WorkCases) {
        ChildEnd end = RunTerminal(
            [] {
                RunMenu(&WorkMenu, nullptr, 1);
                printf("|%s", DumpMenu(&WorkMenu).c_str());
            },
            row.input + "10\n");
        size_t bar = end.out.rfind("|0: ");
        ASSERT_NE(bar, std::string::npos) << row.name << " ended with " << end.status << "\n" << end.err;
        EXPECT_EQ(FoldScreens(end.out.substr(0, bar)), row.transcript) << row.name;
        EXPECT_EQ(GetDumpLine(end.out.substr(bar + 1), row.item), row.dump) << row.name;
    }
}

TEST(TextMenu, AppliesOnlyWithAllShownNames) {
    ChildEnd end = RunTerminal([] { RunMenu(&WorkMenu, nullptr, 1); }, "1 q1\n8\n");
    EXPECT_EQ(FoldScreens(end.out), "#{Name}#{Apply}");
    end = RunTerminal(
        [] {
            WorkItems[1].state = STATE_HIDDEN;
            WorkItems[6].type = ITEM_REQUIRED; // stands behind the hidden one
            RunMenu(&WorkMenu, nullptr, 1);
        },
        "8\n\n6 x\n8\n");
    EXPECT_EQ(FoldScreens(end.out), std::string(NamesMissing) + "#{Apply}");
}

TEST(TextMenu, SurvivesAPickWithoutChoices) {
    static char none[] = "";
    static TextMenuItem items[] = {{.text = "None", .type = ITEM_PICK, .choices = none},
                                   {.text = "Null", .type = ITEM_PICK},
                                   {.text = "Gone", .type = ITEM_PICK, .choices = Gone},
                                   {}};
    static TextMenu menu = {.title = "T", .items = items, .flags = MENU_NO_LEAVE};
    ChildEnd end = RunTerminal([] {
        InitMenu(&menu);
        for (int i = 0; i < 3; i++) printf("%i", ProcessSelection(&menu, i, "1"));
        printf("\n%s", DumpMenu(&menu).c_str());
    });
    EXPECT_EQ(end.out, "000\n0: 1 pick 0 of 0 ''\n1: 2 pick 0 of 0 ''\n2: 3 pick 0 of 2 ' one'\n");
}

// A callback that puts a larger table in the place of the menu's, as the help menu does.
static TextMenuItem OldTable[2];
static TextMenuItem NewTable[3];
static TextMenu MovingMenu = {
    .title = "Moving", .items = OldTable, .flags = MENU_NO_LEAVE | MENU_REINIT | MENU_OLD_TYPE};

static int MoveTable(TextMenu *menu, TextMenuItem *item) {
    NewTable[0] = *item;
    NewTable[1] = {.text = "End", .type = ITEM_EXIT};
    memset(static_cast<void *>(OldTable), 0xA5, sizeof OldTable);
    menu->items = NewTable;
    return 0;
}

TEST(TextMenu, LetsACallbackMoveItsTable) {
    ChildEnd end = RunTerminal(
        [] {
            OldTable[0] = {.text = "Move", .type = ITEM_ACTION, .callback = MoveTable};
            RunMenu(&MovingMenu, nullptr, 1);
        },
        "1\n2\n");
    EXPECT_EQ(end.status, 0) << end.err;
    EXPECT_EQ(FoldScreens(end.out), "##");
}

static int RunChildShell(TextMenu *, TextMenuItem *) {
    pSystem = system;
    SysCmd(0, 1, "%s", "read x; echo \"child got $x\"");
    CatchClear();
    return 0;
}

TEST(TextMenu, LeavesTheInputOfChildrenAlone) {
    ChildEnd end = RunTerminal(
        [] {
            WorkItems[8].callback = RunChildShell;
            RunMenu(&WorkMenu, nullptr, 1);
        },
        "q\nsecond line\n10\n");
    EXPECT_EQ(FoldScreens(end.out), "#child got second line\n#");
}

static void NoteHelp(const char *name, const char *data, const char *title) {
    printf("{help %s %s %s}", name, data ? data : "null", title);
}

TEST(TextMenu, ShowsHelpOnlyUnderItsFlag) {
    auto run = [](unsigned flags) {
        return FoldScreens(RunTerminal(
                               [flags] {
                                   pTtyHelp = NoteHelp;
                                   pTtyHtmlName = "page";
                                   pTtyHtmlTitle = "Title";
                                   WorkMenu.flags |= static_cast<uint16_t>(flags);
                                   RunMenu(&WorkMenu, nullptr, 1);
                               },
                               "Help\n10\n")
                               .out);
    };
    EXPECT_EQ(run(MENU_HELP), "#{help page null Title}#");
    EXPECT_EQ(run(0), "##");
}

// ---- leaving

static TextMenuItem LeaveItems[] = {{.text = "Name", .type = ITEM_REQUIRED},
                                    {.text = "Action", .type = ITEM_ACTION},
                                    {.text = "Sub", .type = ITEM_SUBMENU},
                                    {}};
static TextMenu LeaveParent = {.title = "Parent"};

struct LeaveCase {
    const char *name;
    const char *exitPrompt;
    int flParent;
    const char *input;
    const char *transcript;
};

static const LeaveCase LeaveCases[] = {
    {"without a parent", nullptr, 0, "\ny\n", "{init}#{exit}\nDo you want to exit tester? [y/n] \n"},
    {"with a parent", nullptr, 1, "\ny\n", "{init}#{exit}\nDo you want to return to Parent menu? [y/n] "},
    {"only small letters count", nullptr, 1, "\nY\nN\n\nyes\n",
     "{init}#{exit}\nDo you want to return to Parent menu? [y/n] \nDo you want to return to Parent menu? "
     "[y/n] "
     "\nDo you want to return to Parent menu? [y/n] \nDo you want to return to Parent menu? [y/n] "},
    {"no runs the init callback", nullptr, 1, "\nn\n\ny\n",
     "{init}#{exit}\nDo you want to return to Parent menu? [y/n] {init}#{exit}"
     "\nDo you want to return to Parent menu? [y/n] "},
    {"exit prompt without a change", "Apply %s", 1, "\ny\n",
     "{init}#\nDo you want to return to Parent menu? [y/n] "},
    {"exit prompt, names missing, then applied", "Apply %s", 1, "2\n\ny\n\n1 q\n\ny\n",
     "{init}##Apply %s? [y/n] \nAll names must be set before applying setup.\nPress <Return> to continue"
     "##Apply %s? [y/n] {exit}"},
    {"exit prompt refused", "Apply %s", 1, "2\n\nn\ny\n",
     "{init}##Apply %s? [y/n] \nDo you want to return to Parent menu? [y/n] "},
    {"a submenu, even a missing one, is followed by the init callback", nullptr, 1, "3\n\ny\n",
     "{init}#{init}#{exit}\nDo you want to return to Parent menu? [y/n] "},
};

TEST(TextMenu, AsksBeforeItEnds) {
    for (const LeaveCase &row : LeaveCases) {
        ChildEnd end = RunTerminal(
            [&row] {
                my_name = "tester";
                TextMenu menu = {.title = "Leave",
                                 .exitPrompt = row.exitPrompt,
                                 .exitCallback = NoteExit,
                                 .parent = row.flParent ? &LeaveParent : nullptr,
                                 .initCallback = NoteInit,
                                 .items = LeaveItems};
                // An item of its own type shows no missing submenu, so its number still selects it.
                RunMenu(&menu, nullptr, 1);
                if (LeaveItems[0].value.s != nullptr) fputs("{not freed}", stdout);
            },
            row.input);
        EXPECT_EQ(end.status, 0) << row.name << end.err;
        EXPECT_EQ(FoldScreens(end.out), row.transcript) << row.name;
    }
}

TEST(TextMenu, EndsWithTheInputWhereverItReads) {
    const char *const inputs[] = {"", "1\n", "8\n", "1 a.b\n", "4 99", "\xff", "2 1\n\xff"};
    for (const char *input : inputs) {
        ChildEnd end = RunTerminal(
            [] {
                my_name = "tester";
                RunMenu(&WorkMenu, nullptr, 1);
            },
            input);
        EXPECT_EQ(end.status, 1) << input;
        EXPECT_EQ(end.err, "\ntester: reading from standard input : Success\n") << input;
    }
    ChildEnd end = RunTerminal([] { printf("%i", PromptYN("Sure")); });
    EXPECT_EQ(end.out, "Sure? [y/n] 0");
}

// ---- prompts

TEST(TextPrompt, FormatsOnceThoughTheArgumentLiesInLineBuf) {
    ChildEnd end = RunTerminal(
        [] {
            snprintf(LineBuf, LINEBUF_SIZE, "%s", "q1 %n");
            printf("%i", PromptYN("Delete %s", LineBuf));
        },
        "what\ny\n");
    EXPECT_EQ(end.out, "Delete q1 %n? [y/n] Delete q1 %n? [y/n] 1");
}

TEST(TextPrompt, CutsAnswersButTakesTheWholeLine) {
    ChildEnd end = RunTerminal(
        [] {
            char name[8];
            printf("<%s>", PromptUser("100%s ", name, sizeof name));
            printf("<%s>", PromptUser("", name, sizeof name));
            char *copy = PromptUser("", nullptr, 0);
            printf("<%s>", copy);
            PutMem(copy);
            PostMsg("%s %i\n", "posted", 7);
            printf("<%s>", Gets(name, sizeof name));
            printf("<%s>", Gets(name, sizeof name));
            printf("<%s>", Gets(name, sizeof name) ? "more" : "end");
            PostMsg("at the end\n");
            printf("<%s>", PromptUser("", name, sizeof name));
        },
        "12345678901234567890\nab\ncopy %d\n\n1234567890");
    EXPECT_EQ(end.out, "100%s <1234567><ab><copy %d>posted 7\nPress <Return> to continue<1234567><890><end>"
                       "at the end\nPress <Return> to continue<>");
    EXPECT_EQ(end.status, 0) << end.err;
}

// ---- settings files

static int NoteApply(TextMenu *, TextMenuItem *item) {
    printf("{apply %s}", item->text);
    return 0;
}

static char SubNames[] = "_a,_b";
static TextMenuItem SubItems[] = {{.text = "Deep", .type = ITEM_OPTIONAL},
                                  {.text = "Sub apply", .type = ITEM_APPLY, .callback = NoteApply},
                                  {}};
static TextMenu SubMenu = {.title = "Sub", .items = SubItems};
static TextMenuItem FileItems[] = {
    {.text = "Name", .type = ITEM_REQUIRED},
    {.text = "Title", .type = ITEM_OPTIONAL, .state = STATE_DISABLED},
    {.text = "Sub", .type = ITEM_SUBMENU, .value = {.m = &SubMenu}},
    {.text = "Pick", .type = ITEM_PICK, .choices = SubNames},
    {.text = "Count", .type = ITEM_INTEGER},
    {.text = "Ratio", .type = ITEM_FLOAT},
    {.text = "Cancel", .type = ITEM_CANCEL, .callback = NoteItem},
    {.text = "Bar", .type = ITEM_BAR, .value = {.i = 2}},
    {},
};
static TextMenu FileMenu = {.title = "File", .exitCallback = NoteExit, .items = FileItems};

TEST(TextMenuFile, StoresAndLoadsAMenuWithItsSubmenu) {
    Scratch scratch;
    std::string path = scratch.Path("kept");
    ChildEnd end = RunTerminal([&path] {
        InitMenu(&FileMenu);
        InitMenu(&SubMenu);
        SetItemText(&FileItems[0], "q]1");
        SetItemText(&FileItems[1], "two words");
        SetItemText(&SubItems[0], "x");
        FileItems[3].value.i = 1;
        FileItems[4].value.i = -12;
        FileItems[5].value.f = 0.125F;
        pOut = fopen(path.c_str(), "w");
        StoreMenu(&FileMenu);
        fclose(pOut);
    });
    EXPECT_EQ(ReadWhole(path), "0[q]1] 11 0\n1[two words] 12 1\n3[1] 9 0\n4[-12] 13 0\n5[0.125] 14 0\n"
                               "2{\n0[x] 12 0\n}\n");
    end = RunTerminal([&path] {
        RunMenu(&FileMenu, path.c_str(), 0);
        printf("\n%s%s", DumpMenu(&FileMenu).c_str(), DumpMenu(&SubMenu).c_str());
    });
    EXPECT_EQ(end.out,
              "{apply Sub apply}{exit}\n"
              "0: 1 required 'q]1'\n1: 2 optional disabled 'two'\n2: 3 submenu\n3: 4 pick 1 of 2 '_b'\n"
              "4: 5 integer -12\n5: 6 float 0.125\n6: 7 cancel\n7: 0 bar 2\n"
              "0: 0 optional 'x'\n1: 0 apply\n");
}

struct LoadCase {
    const char *name;
    std::string file;
    std::string dump; // of the lines that differ from the table's defaults
};

static const LoadCase LoadCases[] = {
    {"index outside the table", "8[1] 9 0\n999[1] 13 0\n-1[1] 13 0\n99999999999999999999[1] 13 0\n", ""},
    {"no settings at all", "\n[]\nx\n4\n4 7\n5{\n}\n", ""},
    {"types that would take a number for an address", "3[1] 11 0\n0[x] 13 0\n4[2] 14 0\n",
     "0: 1 required 'x'\n3: 4 pick 1 of 2 '_b'\n4: 5 integer 2\n"},
    {"required becomes optional", "0[x] 12 0\n", "0: 1 optional 'x'\n"},
    {"states", "0[] 11 2\n4[1] 13 1\n5[1] 14 9\n",
     "0: 1 required hidden ''\n4: 5 integer disabled 1\n5: 6 float 1\n"},
    {"choice that is not there", "3[2] 9 0\n3[-1] 9 0\n", ""},
    {"value beyond the buffer", "0[" + std::string(300, 'n') + "] 11 0\n",
     "0: 1 required '" + std::string(255, 'n') + "'\n"},
    {"items without a value take the state", "6[1] 5 2\n7[9] 3 2\n2[1] 8 2\n",
     "2: 3 submenu hidden\n6: 7 cancel hidden\n7: 0 bar hidden 2\n"},
    {"lines of a submenu that is not there", "4{\n0[x] 11 0\n1{\n0[y] 11 0\n}\n0[z] 11 0\n}\n4[3] 13 0\n",
     "4: 5 integer 3\n"},
    {"without the last line's end and state", "4[3]", "4: 5 integer 3\n"},
};

TEST(TextMenuFile, ChangesNothingThatALineDoesNotNameRightly) {
    Scratch scratch;
    std::string defaults;
    for (const LoadCase &row : LoadCases) {
        std::string path = scratch.Write("load", row.file);
        ChildEnd end = RunTerminal([&path] {
            InitMenu(&FileMenu);
            OpenInputFile(path.c_str(), ERR_WARN);
            std::string before = DumpMenu(&FileMenu);
            LoadMenu(&FileMenu);
            std::string after = DumpMenu(&FileMenu);
            while (!after.empty()) {
                std::string line = after.substr(0, after.find('\n') + 1);
                if (before.find(line) == std::string::npos) fputs(line.c_str(), stdout);
                after.erase(0, line.size());
            }
        });
        EXPECT_EQ(end.out, row.dump) << row.name << end.err;
        EXPECT_EQ(end.status, 0) << row.name << end.err;
    }
}

TEST(TextMenuFile, TellsAMissingFileAndCancels) {
    Scratch scratch;
    std::string path = scratch.Path("missing");
    ChildEnd end = RunTerminal([&path] { RunMenu(&FileMenu, path.c_str(), 1); });
    EXPECT_EQ(end.out, "{Cancel}");
    EXPECT_EQ(end.err, "WARNING: can't open file, " + path + "\n");
}

TEST(TextMenuFile, StoresByLetter) {
    char directory[] = "/tmp/prnmenuXXXXXX"; // a name may hold no dot here
    ASSERT_NE(mkdtemp(directory), nullptr);
    std::string path = std::string(directory) + "/kept";
    Scratch scratch;
    FileMenu.flags = MENU_STORE | MENU_NO_LEAVE;
    ChildEnd end = RunTerminal([] { RunMenu(&FileMenu, nullptr, 1); },
                               "s\nrelative\ns\n/no/such/dir\ns\n" + path + "\n7\n");
    EXPECT_EQ(FoldScreens(end.out), "#Enter the settings file name: #Enter the settings file name: "
                                    "#Enter the settings file name: #{Cancel}");
    EXPECT_EQ(ReadWhole(path), "0[] 11 0\n1[] 12 1\n3[0] 9 0\n4[0] 13 0\n5[0.000] 14 0\n2{\n0[] 12 0\n}\n");
    EXPECT_EQ(end.err, "ERROR: can't open file, /no/such/dir\n");

    FileMenu.flags = MENU_SETTINGS | MENU_NO_LEAVE;
    end = RunTerminal(
        [&scratch] {
            if (chdir(scratch.Path().c_str()) == 0) RunMenu(&FileMenu, nullptr, 1);
        },
        "s\n");
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(ReadWhole(scratch.Path(".settings")), ReadWhole(path));

    // A full disk is told, and the menu goes on.
    FileMenu.flags = MENU_STORE | MENU_NO_LEAVE;
    end = RunTerminal([] { RunMenu(&FileMenu, nullptr, 1); }, "s\n/dev/full\n\n7\n");
    EXPECT_EQ(FoldScreens(end.out),
              "#Enter the settings file name: Could not write /dev/full: No space left on device\n"
              "Press <Return> to continue#{Cancel}");
    FileMenu.flags = 0;
    unlink(path.c_str());
    rmdir(directory);
}
