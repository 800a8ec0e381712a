// The main window: the printer list, what a selection allows and shows, the display window, the table of
// printers.
#include "prndeck/gui/PrdGui.h"

#include "SnmpPkg/Pkg.h"
#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "print/PrdCommonUtils.h"
#include "prndeck/core/Prd.h"
#include "prndeck/core/PrdDisc.h"
#include "prndeck/core/PrdDiscNets.h"
#include "prndeck/core/PrdOids.h"
#include "prndeck/gui/PrdDiscWeb.h"
#include "prndeck/gui/PrdGuiDisplay.h"
#include "prndeck/gui/PrdGuiEvent.h"
#include "prndeck/gui/PrdGuiIds.h"
#include "prndeck/gui/PrdGuiList.h"
#include "prndeck/gui/PrdGuiPanel.h"
#include "prndeck/gui/PrdGuiSend.h"
#include "tests/lib/AppTool.h"
#include "tests/lib/SnmpAgent.h"
#include "tests/lib/WindowRig.h"
#include "tests/lib/WindowUser.h"
#include "xmt/XmtEvent.h"
#include "xmt/XmtUtils.h"

#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <net/if.h>

static std::unique_ptr<AppTool> Tool;

static Records Texts() {
    Records records;
    int number = 10;
    for (const char *title : {"Name", "Host Name", "Address", "Hardware Address", "Description"})
        records.push_back({"20_" + std::to_string(number++), std::string(title) + '\0'});
    number = 25;
    for (const char *label : {"Printer: ", "Status: ", "Location: "})
        records.push_back({"1_" + std::to_string(number++), std::string(label) + '\0'});
    return records;
}

static std::string Item(const char *name, const char *value) {
    return std::string(".sppditem ") + name + '\n' + value + "\n.eppditem\n";
}

// ---- Printers

static void SetText(char **field, const std::string &text) {
    PutMem(*field);
    *field = SaveStr_(text.c_str());
}

static int GetPpdRow(const char *file) {
    int row = PpdCnt;
    while (row > 0 && strcmp(pPPDData[row].file, file) != 0) row--;
    return row;
}

static PrnEntry *AddPrinter(const char *address, const char *model = "none", uint32_t flags = 0) {
    PrnEntry *entry = ClaimPrnEntry();
    SetText(&entry->Address, address);
    SetText(&entry->Name, std::string("n") + address);
    SetText(&entry->HostName, std::string("h") + address);
    SetText(&entry->Description, std::string("Tarvo ") + address);
    strcpy(entry->HwAddress, "00:00:5e:00:53:07");
    entry->PpdIndex = GetPpdRow(model);
    entry->Flags = flags;
    return entry;
}

// ---- The table of printers

TEST(PrnData, EntriesStayAndTheSelectedOneOutlivesTheNextDiscovery) {
    DevCount = 0;
    PrnEntry *first = AddPrinter("10.0.0.1", "none", PRN_WEB);
    for (int i = 1; i <= PRN_GROW; i++) AddPrinter("10.0.0.2");
    EXPECT_EQ(DevCount, 101);
    EXPECT_EQ(GetPrnEntry(0), first);
    EXPECT_STREQ(first->Name, "n10.0.0.1");
    EXPECT_EQ(GetPrnEntry(-1), nullptr);
    EXPECT_EQ(GetPrnEntry(101), nullptr);

    SetPrinterSelectionData(0);
    EXPECT_EQ(pCurPrnData, first);
    SetPrinterSelectionData(-1);
    DevCount = 0;
    EXPECT_EQ(ClaimPrnEntry(), first);
    EXPECT_EQ(std::string(first->Address) + first->HwAddress + std::to_string(first->Flags), "0");
    EXPECT_STREQ(pCurPrnData->Address, "10.0.0.1");
    SetPrinterSelectionData(1); // there is none
    EXPECT_EQ(Cur_Product_Index, -1);
}

// ---- Lines of the list

// Titles and rows; the blanks at their ends are counted.
struct LineCase {
    int style;
    const char *title;
    int titlePad;
    const char *row;
    int rowPad;
};
static const LineCase Lines[] = {
    {DISPLAY_DEFAULT, "Name                       Address           Description", 39 + 3 + 9,
     "n10.0.0.1                  10.0.0.1          Tarvo 10.0.0.1", 36 + 3 + 24},
    {DISPLAY_NAME | DISPLAY_HOST, "Name", 20 + 3 + 74, "n10.0.0.1", 15 + 3 + 41}, // the name wins
    {DISPLAY_HOST | DISPLAY_HWADR, "Host Name                  Hardware Address", 1 + 3 + 57,
     "h10.0.0.1                  00:00:5e:00:53:07", 3 + 24},
    {0, "", 98, "", 65},
};

class Gui : public testing::Test {
protected:
    static void TearDownTestSuite() { Tool.reset(); }
    void SetUp() override {
        static std::string reason;
        static bool flRig = StartWindowRig("1280x1024x24", &reason);
        if (!flRig) GTEST_SKIP() << reason;
        if (!Tool) MakeWindows();
        flUserIsRoot = 1;
        DisplayStyle = DISPLAY_DEFAULT;
        LookAt("");
        DoRefresh();
    }
    // Printers are looked for at these addresses, and nowhere else.
    static void LookAt(const char *list) { SetText(&pIpList, list); }
    static void MakeWindows() {
        pDiscIoctl = [](int, unsigned long, void *argument) {
            static_cast<ifconf *>(argument)->ifc_len = 0;
            return 0;
        };
        BrowserPort = 1; // nothing listens there
        Tool = std::make_unique<AppTool>();
        pNLSLang = SaveStr_("en_US");
        Tool->WriteDb("en_US/CoreString", Texts());
        Tool->WriteDb("en_US/PrtHelp", {{"x", "x"}});
        Tool->WriteDb("en_US/PrtString", {{"tv_off", Item("SNMPServicesEnable", "FALSE")},
                                          {"tv_on", Item("SNMPServicesEnable", "TRUE")},
                                          {"tv_fix", Item("NoPrinterReset", "") + Item("PRDUpgrade", "ps")}});
        Tool->WriteModels({"tv_generic.ppd", "tv_off.ppd", "tv_on.ppd", "tv_fix.ppd"});
        Tool->Write("icon/tv_on/static.xbm", "no picture");
        flUserIsRoot = 1;
        GenGui();
        RealizeWindows();
    }
    static void Event(int id, intptr_t value, intptr_t reason = XmtCR_DEFAULT) {
        XmtCallData data = {};
        data.id = id;
        data.reason = reason;
        data.value = value;
        WizEventHandler(&data);
    }
};

static std::string Padded(const char *text, int pad) {
    return text + std::string(static_cast<size_t>(pad), ' ');
}

TEST_F(Gui, LinesOfTheList) {
    AddPrinter("10.0.0.1");
    for (const LineCase &c : Lines) {
        DisplayStyle = c.style;
        EXPECT_EQ(GenListTitle(), Padded(c.title, c.titlePad)) << c.style;
        EXPECT_EQ(GenListEntry(0), Padded(c.row, c.rowPad)) << c.style;
    }
    EXPECT_EQ(GenListEntry(1), "");
}

TEST_F(Gui, ColumnsAreCutAndKeptInOneLine) {
    struct {
        const char *text;
        const char *want;
    } cases[] = {{"", "           "},
                 {"12345678", "12345678   "},
                 {"123456789", "12345...   "},
                 {"a\nb\tc\r", "a b c      "},
                 {"%n%s@~", "%n%s@~     "},
                 {"\xC3\xA9t\xC3\xA9\x1B\x7F", "\xE9t\xE9        "}, // UTF-8
                 {"\xE9t\x85\xE9", "\xE9t \xE9       "}};            // Latin-1
    for (const auto &c : cases) {
        std::string out;
        AppendToListEntry(&out, 8, c.text);
        EXPECT_EQ(out, c.want);
    }
}

// ---- What a selection allows

static std::string Enabled() {
    std::string out;
    for (const char *name :
         {"printer_menu_2_b_1_pd", "printer_menu_2_b_3", "tb1", "printer_menu_3_c_3", "printer_menu_3_c_4",
          "printer_menu_3_c_5", "printer_menu_3_c_6", "printer_menu_3_c_7", "tb3i", "tb3"})
        if (XmtIsEnabled(name))
            out += std::string(out.empty() ? "" : " ") + (strncmp(name, "tb", 2) ? name + 13 : name);
    return out;
}

struct SelectCase {
    const char *what;
    const char *model;
    uint32_t flags;
    const char *want; // of the entries; those of queues and tb1 stand as they are for root
};
static const SelectCase Selections[] = {
    {"without a web port", "tv_on.ppd", PRN_DISCOVERED, "3_c_4 3_c_5 3_c_6 tb3"},
    {"with one", "tv_on.ppd", PRN_DISCOVERED | PRN_WEB, "3_c_3 3_c_4 3_c_5 3_c_6 3_c_7 tb3i tb3"},
    {"no SNMP services", "tv_off.ppd", PRN_WEB, "3_c_3 3_c_4 3_c_5 3_c_7 tb3i"},
    {"no reset", "tv_fix.ppd", 0, "3_c_4 3_c_6 tb3"},
    {"no model", "none", 0, "3_c_4 3_c_5 3_c_6 tb3"},
};

TEST_F(Gui, SelectionsAndWhatTheyAllow) {
    uint16_t saved = SnmpAgentPort;
    SnmpAgent agent([](SnmpAgent &a, const AgentRequest &r) { a.Answer(r, BerElement(0x04, "x")); });
    SnmpAgentPort = agent.Port();
    const std::string root = "2_b_1_pd 2_b_3 tb1 ";
    EXPECT_EQ(Enabled(), root + "3_c_4");
    for (const SelectCase &c : Selections) AddPrinter("127.0.3.1", c.model, c.flags);
    for (size_t i = 0; i < std::size(Selections); i++) {
        Event(130, static_cast<intptr_t>(i) + 1);
        EXPECT_EQ(Enabled(), root + Selections[i].want) << Selections[i].what;
        EXPECT_EQ(Cur_Product_Index, static_cast<int>(i));
        Event(130, 0);
        EXPECT_EQ(Enabled(), root + "3_c_4") << "none behind " << Selections[i].what;
    }
    Event(130, 3);
    DoRefresh();
    EXPECT_EQ(Enabled(), root + "3_c_4") << "a refresh";
    EXPECT_EQ(DevCount, 0) << "finds what is there";
    EXPECT_EQ(Cur_Product_Index, -1);
    Event(130, 99); // beyond the list
    EXPECT_EQ(Cur_Product_Index, -1);
    SnmpAgentPort = saved;
}

// ---- The panel

// Answers the variables of the table; others get the error "no such name".
struct Panel {
    std::map<std::string, std::string> values; // by object identifier: an encoded value
    SnmpAgent agent{[this](SnmpAgent &a, const AgentRequest &r) {
        auto found = values.find(r.name);
        if (found != values.end())
            a.Answer(r, found->second);
        else
            a.Send(r, BerMessage(0, r.community, 0xA2,
                                 BerResponse(r.id, BerBinding(r.name, BerElement(0x05, "")), 2, 1)));
    }};
    uint16_t saved = SnmpAgentPort;
    Panel() { SnmpAgentPort = agent.Port(); }
    ~Panel() { SnmpAgentPort = saved; }
};

static std::string Label(const char *name) {
    return TakeText(XmtGetLabel(name));
}

TEST_F(Gui, PanelOfTheSelectedPrinter) {
    Panel panel;
    panel.values = {{OidConsoleText, BerElement(0x04, "@/etc/passwd ~%n\\,\xB6s")},
                    {OidSysLocation, BerElement(0x04, "Second floor " + std::string(100, 'x'))}};
    AddPrinter("127.0.3.2", "tv_on.ppd");
    Event(130, 1);
    EXPECT_EQ(Label("mname"), "Printer: Tarvo 127.0.3.2");
    EXPECT_EQ(Label("msta"), "Status: @/etc/passwd ~%n\\,is");
    EXPECT_EQ(Label("mloc"), "Location: Second floor\n          " + std::string(65, 'x') + "-\n          " +
                                 std::string(35, 'x'));
    EXPECT_EQ(Label("PrinterPicture"),
              "icon/tv_on/static.xbm"); // a picture that can't be read shows its name

    panel.values.erase(OidConsoleText);
    Event(130, 1);
    EXPECT_EQ(Label("msta"), "Status: \n        \n        \n        ") << "an error";
    Event(130, 0);
    EXPECT_EQ(Label("mname") + "|" + Label("msta") + "|" + Label("mloc"), "Printer: |Status: |Location: ");
    EXPECT_EQ(Label("PrinterPicture"), "icon/prfamily.xbm");
}

TEST_F(Gui, NamesAndHardwareAddressesAreReadWhenTheyAreShown) {
    struct {
        std::string name, hardware; // encoded values, empty for none
        const char *want;
    } cases[] = {
        {BerElement(0x04, "office"), BerElement(0x04, "\x01\x02\xAB\x04\x05\x06"),
         "office 01:02:ab:04:05:06"},
        {BerElement(0x04, ""), BerElement(0x04, "12345"), "127.0.3.3 00:00:00:00:00:00"},
        {"", BerInt(6), "127.0.3.3 00:00:00:00:00:00"},
    };
    Panel panel;
    for (const auto &c : cases) {
        panel.values = {{OidIfPhysAddress, c.hardware}};
        if (!c.name.empty()) panel.values[OidSysName] = c.name;
        DevCount = 0;
        PrnEntry *entry = AddPrinter("127.0.3.3");
        SetText(&entry->Name, "");
        entry->HwAddress[0] = '\0';
        int asked = panel.agent.Count();
        for (int style : {DISPLAY_DESCRIPTION, DISPLAY_ALL, DISPLAY_ALL}) {
            DisplayStyle = style;
            GenListEntry(0);
        }
        EXPECT_EQ(std::string(entry->Name) + " " + entry->HwAddress, c.want);
        EXPECT_EQ(panel.agent.Count(), asked + 2) << "what is shown is asked for once";
    }
}

// ---- The display window

static std::string DisplayChoices() {
    std::string out = std::to_string(XmtGetValue("d_dn"));
    for (const char *name : {"d_ip", "d_ea", "d_dt"}) out += ' ' + std::to_string(XmtGetValue(name));
    return out;
}

TEST_F(Gui, DisplayWindow) {
    Event(200, 0);
    EXPECT_EQ(DisplayChoices(), "0 1 0 1");
    Event(203, 1);
    Event(205, 0);
    EXPECT_EQ(DisplayStyle, DISPLAY_DEFAULT) << "no printers: nothing changes";

    AddPrinter("10.0.0.1");
    SetupPrnListDisplay();
    Event(200, 0);
    Event(201, 1);
    Event(202, 0);
    Event(203, 1);
    EXPECT_EQ(DisplayStyle, DISPLAY_DEFAULT) << "not applied yet";
    Event(207, 0);
    EXPECT_EQ(DisplayStyle, DISPLAY_HOST | DISPLAY_HWADR | DISPLAY_DESCRIPTION);
    EXPECT_EQ(Label("scrolList_L"), GenListTitle());
    EXPECT_EQ(XmtGetListCount("scrolList"), 1);
    Event(200, 0);
    EXPECT_EQ(DisplayChoices(), "1 0 1 1");

    AddPrinter("10.0.0.2");
    SetupPrnListDisplay();
    XmtSetListItem("scrolList", 1, 0);
    SetPrinterSelectionData(0);
    DisplayStyle = DISPLAY_HWADR; // both rows read alike
    UpdatePrListDisplay();
    Widget list = XmtGetWidget("scrolList");
    EXPECT_TRUE(XmListPosSelected(list, 1) && !XmListPosSelected(list, 2)) << "the selection, and it alone";
    DisplayStyle = 0;
    UpdatePrListDisplay();
    EXPECT_EQ(DisplayStyle, DISPLAY_ALL);
    DisplayStyle = 0;
    SetupPrnListDisplay();
    EXPECT_EQ(DisplayStyle, DISPLAY_DEFAULT);
}

// Clicks at a row of the list, late enough to be no double click.
static void ClickRow(int row) {
    RunLoopFor(XtGetMultiClickTime(AppDisplay) + 50);
    Widget list = XmtGetWidget("scrolList");
    Position x, y, left, top;
    Dimension width, height;
    ASSERT_TRUE(XmListPosToBounds(list, row, &left, &top, &width, &height));
    XtTranslateCoords(list, static_cast<Position>(left + 20), static_cast<Position>(top + height / 2), &x,
                      &y);
    ClickPoint(x, y);
}

TEST_F(Gui, RowsAreSelectedByTheMouse) {
    std::string reason;
    if (!FindWindowUser(&reason)) GTEST_SKIP() << reason;
    Panel panel;
    const std::string text = BerElement(0x04, "Bo\xC3\xAEte");
    panel.values = {
        {OidHrDeviceDescr, text}, {OidLocalizationCharacterSet, BerInt(4)}, {OidSysLocation, text}};
    LookAt(",127.0.3.5,127.0.3.6,127.0.3.7,");
    DoRefresh();
    for (int row : {2, 3, 1}) {
        ClickRow(row);
        EXPECT_TRUE(RunLoopUntil([&] { return Cur_Product_Index == row - 1; })) << row;
    }
    EXPECT_EQ(Label("mname") + Label("mloc"), "Printer: Bo\xEEteLocation: Bo\xEEte");
    ClickRow(1); // once more takes the selection back
    EXPECT_TRUE(RunLoopUntil([] { return Cur_Product_Index == -1; }));
    ClickRow(2);
    EXPECT_TRUE(RunLoopUntil([] { return Cur_Product_Index == 1; }));
    LookAt(",127.0.3.5,127.0.3.7,");
    ClickAt("RefreshButton");
    EXPECT_TRUE(RunLoopUntil([] { return Cur_Product_Index == -1; }));
    EXPECT_EQ(XmtGetListCount("scrolList"), 2);
}

TEST_F(Gui, ObjectsBearTheNumbersThatAreHeard) {
    for (const GuiId &id : GuiIds) {
        const XmtObjectData *object = XmtFindObject(id.object);
        ASSERT_TRUE(object) << id.object;
        EXPECT_TRUE(!id.id || object->id == id.id) << id.object << " " << object->id;
    }
}

// ---- What is sent

TEST_F(Gui, FirmwareIsOfferedToQueuesOfItsModelAlone) {
    Tool->WriteDb("que", {{"fix", QueData("fix host lp tv_fix.ppd 0 0 0 0 0 0")},
                          {"any", QueData("any host lp tv_on.ppd 0 0 0 0 0 0")}});
    Tool->Write("good", "%!PS systemdict /download get");
    Tool->Write("bad", "%!PS showpage");
    flSendFileOperation = SEND_UPGRADE;
    struct {
        const char *file;
        const char *queue;
        bool flWant;
    } cases[] = {{"good", "fix", true},
                 {"bad", "fix", false},
                 {"bad", "any", true},
                 {"bad", "none", false},
                 {"gone", "fix", false}};
    for (const auto &c : cases) {
        InitSendFile(Tool->Path(c.file).c_str());
        EXPECT_FALSE(XmtIsEnabled("sfap")) << "nothing is chosen yet";
        ChooseSendQue(1, c.queue);
        EXPECT_EQ(XmtIsEnabled("sfap"), c.flWant) << c.file << " " << c.queue;
    }
    flUserIsRoot = 0;
    ChooseSendQue(1, "none");
    EXPECT_TRUE(XmtIsEnabled("sfap")) << "only root is kept from it";
    ChooseSendQue(0, "");
    EXPECT_FALSE(XmtIsEnabled("sfap")) << "taken back";
    XmtHide("sfw");
    remove(Tool->Db("que").c_str());
}

TEST_F(Gui, DriverFrontEnd) {
    SystemSpy spy;
    Event(115, 0, XmtCR_CREATE);
    Event(115, 0);
    EXPECT_EQ(spy.lines, std::vector<std::string>{"./prnpnxxtty -FP &\n"});
}

TEST_F(Gui, WithoutRootQueuesAreOffAndASelectionBringsThePrinterBack) {
    Panel panel;
    AddPrinter("127.0.3.4", "tv_on.ppd", PRN_WEB);
    flUserIsRoot = 0;
    GenGui(); // the names lead to the second set of windows from here on
    EXPECT_EQ(Enabled(), "3_c_4");
    Event(130, 1);
    EXPECT_EQ(Enabled(), "3_c_3 3_c_4 3_c_5 3_c_6 3_c_7 tb3i tb3");
}
