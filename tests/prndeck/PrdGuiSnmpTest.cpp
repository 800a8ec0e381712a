// The property sheet on simulated printers: every cell of every page beside what net-snmp's tools read, the
// odd ones and recorded walks among them; what is set; the reset.
#include "prndeck/core/Prd.h"

#include "SnmpPkg/Pkg.h"
#include "common/Dbm.h"
#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "print/PrdCommonUtils.h"
#include "prndeck/core/PrdDisc.h"
#include "prndeck/core/PrdGuiSnmpText.h"
#include "prndeck/gui/PrdDiscWin.h"
#include "prndeck/gui/PrdGui.h"
#include "prndeck/gui/PrdGuiIds.h"
#include "prndeck/gui/PrdGuiPanel.h"
#include "prndeck/gui/PrdGuiSnmpManagement.h"
#include "prndeck/gui/PrdGuiSnmpPages.h"
#include "prndeck/gui/PrdGuiSnmpReset.h"
#include "tests/lib/AppTool.h"
#include "tests/lib/SimFleet.h"
#include "tests/lib/WindowRig.h"
#include "tests/lib/WindowUser.h"
#include "xmt/XmtColor.h"
#include "xmt/XmtMsg.h"
#include "xmt/XmtNewTab.h"
#include "xmt/XmtUtils.h"

#include <cstring>
#include <gtest/gtest.h>
#include <iconv.h>
#include <map>
#include <memory>

// ---- What a walk says that the cells must show

// A text ends at its first NUL. Letters that Latin-1 lacks show as "?"; a text to edit stays as it is then.
static std::string ToLatin1(const std::string &text, bool flEdit = false) {
    std::string in = text.c_str(), out;
    std::vector<uint32_t> letters(in.size() + 1);
    auto *to = reinterpret_cast<char *>(letters.data());
    char *from = in.data();
    size_t left = in.size(), room = letters.size() * sizeof(uint32_t);
    iconv_t converter = iconv_open("UTF-32LE", "UTF-8");
    bool flDone = iconv(converter, &from, &left, &to, &room) != static_cast<size_t>(-1);
    iconv_close(converter);
    letters.resize(letters.size() - room / sizeof(uint32_t));
    for (uint32_t letter : letters) {
        flDone = flDone && (letter <= 0xFF || !flEdit);
        out += letter <= 0xFF ? static_cast<char>(letter) : '?';
    }
    return flDone ? out : text.c_str();
}

static std::string Printable(const std::string &text) {
    std::string out;
    for (char ch : text)
        if (ch >= ' ' && ch <= '~') out += ch;
    return out;
}

static std::string Broken(std::string text) {
    for (size_t at = 0, used = 0; at < text.size(); at++, used++) {
        if (text[at] == '\n') used = static_cast<size_t>(-1);
        if (used == 119) text.insert(at, "\n"), used = static_cast<size_t>(-1);
    }
    return text;
}

static std::string Paper(int x, int y, int unit) {
    static const struct {
        const char *name;
        int inch[2], metric[2];
    } sizes[] = {
        {"A4", {82700, 116929}, {210000, 297000}},     {"A3", {165400, 116900}, {420000, 297000}},
        {"A5", {58300, 82700}, {148000, 210000}},      {"Letter", {85000, 110000}, {215900, 279400}},
        {"Legal ", {85000, 140000}, {215900, 355600}}, {"Com10", {95000, 41250}, {241300, 104775}},
        {"B5-JIS", {71700, 101200}, {182000, 257000}}, {"Monarch", {75000, 38700}, {190500, 98298}},
        {"Monarch", {75000, 38750}, {190500, 98425}},
    };
    for (const auto &size : sizes) {
        const int *side = unit == 3 ? size.inch : size.metric;
        bool flAlong = abs(x - side[0]) < 50 && abs(y - side[1]) < 50;
        if (flAlong || (abs(y - side[0]) < 50 && abs(x - side[1]) < 50)) return size.name;
    }
    return "Unknown";
}

// One cell by the letter of its column.
static std::string Cell(char format, const std::string &text) {
    static const std::map<int, const char *> units = {
        {3, "0.0001 inch"}, {4, "micrometers"}, {8, "sheets"}, {12, "0.001 oz"}, {13, "0.1 g"},
        {14, "0.01 fl oz"}, {15, "0.1 ml"},     {16, "feet"},  {17, "meters"}};
    int number = atoi(text.c_str());
    if (format == 's') return Printable(ToLatin1(text));
    if (format == 'u') return units.count(number) ? units.at(number) : "N/A";
    if (number >= 0) return text;
    if (format == 'm') return "N/A";
    return number == -3 ? "Some" : number == -1 ? "Other" : "Unknown";
}

using Cells = std::map<std::string, std::string>; // object: text, "-" for a hidden one

static void WantTable(const Walk &walk, const std::string &prefix, const std::vector<std::string> &oids,
                      const std::string &formats, int rows, Cells *want) {
    bool flRow = true;
    for (int row = 1; row <= rows; row++) {
        auto value = [&](size_t column) { return walk.find(oids[column] + "." + std::to_string(row)); };
        flRow = flRow && value(0) != walk.end();
        for (size_t i = 0; i < formats.size(); i++) {
            std::string &cell = (*want)[prefix + std::to_string(i + 1) + "t" + std::to_string(row)];
            auto number = [&](size_t n) {
                return value(n) == walk.end() ? 0 : atoi(value(n)->second.c_str());
            };
            if (!flRow)
                cell = "-";
            else if (formats[i] == 'p')
                cell = Paper(number(6), number(5), number(7));
            else
                cell = value(i) == walk.end() ? "" : Cell(formats[i], value(i)->second);
        }
    }
}

static void WantColumn(const Walk &walk, const std::string &prefix, const std::vector<std::string> &oids,
                       const std::string &missing, Cells *want) {
    for (size_t i = 0; i < oids.size(); i++) {
        auto found = walk.find(oids[i]);
        bool flEdit = prefix == "spcrt";
        std::string text = found == walk.end() ? missing : Broken(ToLatin1(found->second, flEdit));
        if (flEdit) text = text.substr(0, 255);
        (*want)[prefix + std::to_string(i + 1)] = walk.count(oids[0]) ? text : "";
    }
}

static const std::string PRT = "1.3.6.1.2.1.43", MIB = "1.3.6.1.2.1";

static std::vector<std::string> Column(const std::string &head, std::vector<int> numbers, const char *tail) {
    std::vector<std::string> out;
    for (int n : numbers) out.push_back(head + "." + std::to_string(n) + tail);
    return out;
}

static void WantChannels(const Walk &walk, Cells *want) {
    bool flRow = true;
    for (int row = 1; row <= 18; row++) {
        std::string n = std::to_string(row), entry = PRT + ".14.1.1.";
        flRow = flRow && walk.count(entry + "3.1." + n);
        std::string &shown = (*want)["spn1b" + n + "_B1"];
        shown = flRow ? "" : "-";
        if (!flRow) continue;
        std::string name = ToLatin1(walk.at(entry + "3.1." + n));
        auto type = walk.find(entry + "2.1." + n), state = walk.find(entry + "6.1." + n);
        int number = type == walk.end() ? 0 : atoi(type->second.c_str());
        if (name.empty()) name = "Other";
        if (name == " " || strcasecmp(name.c_str(), "unknown") == 0)
            name = number >= 1 && number <= 34 ? ProtocolType[number] : "Other";
        if (name.size() >= 36) name = name.substr(0, 33) + "...";
        (*want)["spn1b" + n + "_L"] = std::string(36 - name.size(), ' ') + name;
        (*want)["spn1b" + n] = std::to_string(state == walk.end() ? -1 : atoi(state->second.c_str()) - 1);
    }
}

static void WantLights(const Walk &walk, Cells *want) {
    bool flRow = true;
    for (int row = 1; row <= 6; row++) {
        std::string n = std::to_string(row);
        auto name = walk.find(PRT + ".17.6.1.5.1." + n);
        flRow = flRow && name != walk.end();
        (*want)["sl" + n] = flRow ? "" : "-";
        if (!flRow) continue;
        (*want)["slt" + n] = Broken(ToLatin1(name->second));
        auto colour = walk.find(PRT + ".17.6.1.4.1." + n), on = walk.find(PRT + ".17.6.1.2.1." + n);
        if (colour == walk.end() || on == walk.end()) continue;
        static const char *const colours[] = {"",      "grey", "grey", "grey",    "red",
                                              "green", "blue", "cyan", "magenta", "yellow"};
        (*want)["sl" + n + "_B"] =
            (atoi(on->second.c_str()) < 1 ? "dark" : "") + std::string(colours[atoi(colour->second.c_str())]);
    }
}

static std::string Or(const Walk &walk, const std::string &name, const char *missing) {
    auto found = walk.find(name);
    return found == walk.end() ? missing : Printable(ToLatin1(found->second));
}

static void WantConsole(const Walk &walk, Cells *want) {
    std::string text = ToLatin1(walk.at(PRT + ".16.5.1.2.1.1"));
    size_t sign = text.find('\xB6');
    if (sign != text.npos) text[sign] = 'i';
    (*want)["smsgb"] = Printable(text);
    WantLights(walk, want);
}

static void WantGeneral(const Walk &walk, Cells *want) {
    WantTable(walk, "sgc", Column(PRT + ".15.1.1", {5, 3, 4}, ".1"), "sss", 8, want);
    (*want)["sgc7t1"] = Or(walk, PRT + ".10.2.1.4.1.1", "Unavailable");
    for (int i = 1; i <= 3; i++)
        (*want)["sgc6t" + std::to_string(i)] =
            Or(walk, MIB + ".25.2.3.1." + std::to_string(i + 2) + ".1", "Unavailable");
}

// The pages in the order of a user who turns them all, and the cells that each shows.
struct Page {
    const char *form;
    int tab;
    void (*want)(const Walk &walk, Cells *want);
};
static const Page Pages[] = {
    {"sdbt2", 1, WantConsole},
    {"sdbt2", 2,
     [](const Walk &w, Cells *c) {
         WantTable(w, "sic", Column(PRT + ".8.2.1", {13, 8, 9, 10, 21, 4, 5, 3}, ".1"), "sumcsssup", 8, c);
     }},
    {"sdbt2", 3,
     [](const Walk &w, Cells *c) {
         WantTable(w, "scc", Column(PRT + ".11.1.1", {6, 7, 8, 9}, ".1"), "sumc", 18, c);
     }},
    {"sdbt2", 4,
     [](const Walk &w, Cells *c) {
         WantTable(w, "soc", Column(PRT + ".9.2.1", {7, 3, 4, 5}, ".1"), "sumc", 18, c);
     }},
    {"sdbt2", 5, WantGeneral},
    {"ssntab", 1,
     [](const Walk &w, Cells *c) {
         WantColumn(w, "ssnc1t",
                    Column(MIB + ".2.2.1", {2, 5, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20}, ".1"), "N/A",
                    c);
     }},
    {"ssntab", 2,
     [](const Walk &w, Cells *c) {
         WantColumn(w, "ssnc2t", Column(MIB + ".4", {3, 4, 5, 7, 8, 9, 10, 11}, ".0"), "N/A", c);
     }},
    {"ssntab", 3,
     [](const Walk &w, Cells *c) {
         WantColumn(w, "ssnc3t", Column(MIB + ".7", {1, 4}, ".0"), "N/A", c);
     }},
    {"ssntab", 4,
     [](const Walk &w, Cells *c) {
         WantColumn(w, "ssnc4t",
                    Column(MIB + ".11", {1, 3, 4, 5, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19}, ".0"),
                    "N/A", c);
     }},
    {"ssntab", 5,
     [](const Walk &w, Cells *c) {
         WantColumn(w, "ssnc5t", Column(MIB + ".11", {2, 20, 21, 22, 24}, ".0"), "N/A", c);
     }},
    {"sdbt3", 1,
     [](const Walk &w, Cells *c) {
         WantColumn(w, "spcrt",
                    {MIB + ".1.5.0", MIB + ".1.6.0", MIB + ".1.4.0", PRT + ".5.1.1.4.1", PRT + ".5.1.1.5.1"},
                    "", c);
     }},
    {"sdbt3", 2, WantChannels},
};

// ---- The sheet

// The colour of a light by its name.
static std::string LightColour(const std::string &name) {
    char flSuccess;
    auto shown = static_cast<Pixel>(XmtGetXmValue(name.c_str(), XmNbackground));
    for (const char *colour : {"grey", "red", "green", "blue", "cyan", "magenta", "yellow"})
        for (const char *dark : {"", "dark"})
            if (GenColor((dark + std::string(colour)).c_str(), 1, &flSuccess) == shown)
                return dark + std::string(colour);
    return "another";
}

static std::string Shown(const std::string &name) {
    if (name.compare(0, 2, "sl") == 0 && name.back() == 'B') return LightColour(name);
    if (!XtIsManaged(XmtGetWidget(name.c_str()))) return "-";
    if (char *text = XmtGetText(name.c_str())) {
        std::string out = text;
        XtFree(text);
        return out;
    }
    if (XmtGetWidget((name + "_pd").c_str())) return std::to_string(XmtGetValue(name.c_str()));
    std::string label = TakeText(XmtGetLabel(name.c_str()));
    size_t head = name[1] == 's' ? label.find(": ") : label.npos;
    return head == label.npos ? label == "(null)" ? "" : label : label.substr(head + 2);
}

static std::unique_ptr<AppTool> Tool;

class Sheet : public testing::Test {
protected:
    static void TearDownTestSuite() { Tool.reset(); }
    void SetUp() override {
        static std::string reason = FindFleetTools();
        static bool flRig =
            reason.empty() && StartWindowRig("1024x768x24", &reason) && FindWindowUser(&reason);
        if (!flRig) GTEST_SKIP() << reason;
        if (!Tool) MakeWindows();
        TakeMessages();
    }
    void TearDown() override {
        if (!Tool) return;
        Event(SHEET_CANCEL);
        Event(RESET_WAIT_CLOSE);
        SetPrinterSelectionData(-1);
    }
    static void MakeWindows() {
        Tool = std::make_unique<AppTool>();
        pNLSLang = SaveStr_("en_US");
        for (const char *name : {"CoreString", "PrtHelp"})
            Tool->Write(std::string("db/en_US/") + name + ".xdb",
                        ReadWhole(GetBuildDir() + "/stage/db/en_US/" + name + ".xdb"));
        Records models;
        for (const char *mode :
             {"Normal", "Private", "Public", "CustomComm", "SendPrivateOnce", "SendPublicOnce"})
            models.push_back({std::string("tv_") + mode,
                              std::string(".sppditem SNMPResetMode\nSNMPReset") + mode + "\n.eppditem\n"});
        models.push_back({"tv_fixed", ".sppditem SNMPReadOnly\ntrue\n.eppditem\n"});
        Tool->WriteDb("en_US/PrtString", models);
        std::vector<std::string> files = {"tv_generic.ppd"};
        for (const auto &model : models) files.push_back(model.first + ".ppd");
        Tool->WriteModels(files);
        flUserIsRoot = 1;
        GenGui();
        RealizeWindows();
    }
    static void Event(int id, intptr_t value = 0, const char *name = "", intptr_t reason = XmtCR_DEFAULT) {
        XmtCallData data = {};
        data.id = id;
        data.reason = reason;
        data.value = value;
        data.name = const_cast<char *>(name);
        IPDiscoveryEventHandler(&data);
        DispatchWaiting();
    }
    static void Select(const std::string &address, const char *model = "tv_generic.ppd") {
        DevCount = 0;
        PrnEntry *entry = ClaimPrnEntry();
        PutMem(entry->Address);
        entry->Address = SaveStr_(address.c_str());
        PutMem(entry->Description);
        entry->Description = SaveStr_("Tarvo \xC3\x84");
        for (int i = 0; i <= PpdCnt; i++)
            if (strcmp(pPPDData[i].file, model) == 0) entry->PpdIndex = i;
        SetPrinterSelectionData(0);
    }
    static bool IsOpen() { return XtIsManaged(XmtGetWidget("snmp")); }
    static bool Open(const std::string &address, const char *model = "tv_generic.ppd") {
        Event(SHEET_CANCEL);
        Select(address, model);
        Event(SHEET_WINDOW);
        return IsOpen();
    }
    // An inner form shows the tab that it showed last.
    static void TurnTo(const Page &page) {
        if (strcmp(page.form, "sdbt3") == 0) XmtSelectTab("sdbt", 2);
        if (strcmp(page.form, "ssntab") == 0) XmtSelectTab("sdbt2", 6);
        XmtSelectTab(page.form, page.tab);
        DispatchWaiting();
    }
    // Texts of the messages since the last call.
    static std::string TakeMessages() {
        std::string out;
        while (pXmtMsgList && pXmtMsgList->head) {
            auto *entry = static_cast<XmtMsgEntry *>(pXmtMsgList->head->item);
            out += std::string(entry->title ? entry->title : "") + ": " + entry->text + ";";
            XmtCallData data = {};
            data.reason = XmtCR_OK;
            XmtMsgEventHandler(&data);
        }
        return out;
    }
    // All pages of one printer beside its walk.
    static void CheckPages(const SimFleet &fleet, const std::string &address) {
        Walk walk = fleet.Read(address);
        ASSERT_TRUE(walk.count(MIB + ".1.1.0")) << address;
        bool flConsole = walk.count(PRT + ".16.5.1.2.1.1");
        ASSERT_EQ(Open(fleet.At(address)), flConsole) << address;
        EXPECT_EQ(TakeMessages(), flConsole ? "" : "Printer Properties: The printer does not answer.;")
            << address;
        for (const Page &page : Pages) {
            if (!flConsole) break;
            TurnTo(page);
            Cells want;
            page.want(walk, &want);
            for (const auto &[name, text] : want) EXPECT_EQ(Shown(name), text) << address << " " << name;
        }
        EXPECT_EQ(TakeMessages(), "") << address;
    }
};

static std::vector<std::string> FindAddresses(const std::string &text) {
    std::vector<std::string> out;
    for (size_t at = 0; (at = text.find("\nprinter ", at)) != text.npos; at++) {
        size_t from = at + strlen("\nprinter ");
        out.push_back(text.substr(from, text.find(' ', from) - from));
    }
    return out;
}

TEST_F(Sheet, EveryCellOfOddPrinters) {
    SimFleet fleet("", "odd.fleet");
    std::vector<std::string> addresses = FindAddresses(ReadWhole(GetSourceDir() + "/tools/prnsim/odd.fleet"));
    EXPECT_GT(addresses.size(), 20u);
    for (const std::string &address : addresses) CheckPages(fleet, address);
}

TEST_F(Sheet, EveryCellOfModelsAndRecordedPrinters) {
    std::string text;
    int number = 0;
    auto add = [&](const std::string &kind) {
        text += "\nprinter 10.71.1." + std::to_string(++number) + " " + kind + "\n";
    };
    for (const char *model : {"p210", "p340", "c410", "c650", "w520", "w760", "x150", "l90", "y900"})
        add(std::string("like tarvo-") + model);
    add("like tarvo-p340\n  sysName.0 text \"%s%n\"\n  sysLocation.0 text \"@/etc/passwd\"\n"
        "  ifEntry.2.1 text \"@icon/x.xpm: ~,f(C[snmp])\"\n  prtInputEntry.13.1.1 text \"@/etc/passwd\"\n"
        "  prtConsoleDisplayBufferText.1.1 text \"%n%s\"\n  prtConsoleLightEntry.5.1.1 text \"@a,~b\"\n"
        "  prtChannelEntry.3.1.1 text \"~%n,f(x)\"");
    const char *variable = getenv("PRN_RECORDINGS");
    std::string recordings = variable ? variable : GetSourceDir() + "/../shared/recordings";
    for (const char *file : {"brother_hl-l8260cdw", "epson_cw-c6500au"}) {
        std::string path = recordings + "/" + file + ".snmprec";
        if (ReadWhole(path).empty()) {
            printf("without the recorded walk %s, which is not here\n", path.c_str());
            continue;
        }
        add("\n  recording \"" + path + "\"");
    }
    SimFleet fleet(text);
    for (const std::string &address : FindAddresses(text)) CheckPages(fleet, address);
}

// ---- What is set

static void Type(const char *field, const char *text) {
    XmtSetFocus(field);
    DispatchWaiting();
    PressKeys("Home shift+End");
    TypeText(text);
    DispatchWaiting();
}

static const std::string LOCATION = "1.3.6.1.2.1.1.6.0";

static int CountSets(const SimFleet &fleet) {
    int count = 0;
    for (const std::string &line : fleet.Log()) count += line.find(" set ") != line.npos;
    return count;
}

// Of the console's text.
static size_t CountReads(const SimFleet &fleet) {
    size_t count = 0;
    for (const std::string &line : fleet.Log())
        count += line.find(PRT + ".16.5.1.2.1.1 ") != std::string::npos;
    return count;
}

TEST_F(Sheet, ContactIsSetByKeysAndOnlyWhatChanged) {
    SimFleet fleet("printer 10.71.1.1 like tarvo-p340\n  sysLocation.0 text \"B\xC3\xBCro\" rw\n");
    ASSERT_TRUE(Open(fleet.At("10.71.1.1")));
    TurnTo({"sdbt3", 1, nullptr});
    EXPECT_EQ(Shown("spcrt2"), "B\xFCro");
    ClickAndDispatch("snmpb2");
    EXPECT_EQ(CountSets(fleet), 0);

    XmtSetFocus("spcrt2");
    DispatchWaiting();
    PressKeys("End");
    TypeText(" 7%s");
    DispatchWaiting();
    ClickAndDispatch("snmpb2");
    EXPECT_EQ(TakeMessages(), "");
    EXPECT_EQ(fleet.Get("10.71.1.1", LOCATION), "B\xC3\xBCro 7%s"); // as it came
    EXPECT_EQ(CountSets(fleet), 7);                                 // six with the community that reads
    ClickAndDispatch("snmpb1");
    EXPECT_EQ(CountSets(fleet), 7);
    EXPECT_FALSE(IsOpen());
    EXPECT_EQ(SNMPRefreshTimerID, 0);
}

// The line feeds that the sheet puts in are not set, wherever an edit has moved them.
TEST_F(Sheet, LongContactIsSetAsItWasWritten) {
    const std::string line(150, 'x'), lines = line + "\n" + line.substr(1, 60);
    SimFleet fleet("printer 10.71.1.1 like tarvo-p340\n  sysLocation.0 text \"" + line +
                   "\" rw\n  sysContact.0 text \"" + std::string(lines).replace(150, 1, "\\n") + "\" rw\n");
    ASSERT_TRUE(Open(fleet.At("10.71.1.1")));
    TurnTo({"sdbt3", 1, nullptr});
    for (const char *field : {"spcrt2", "spcrt3"}) {
        XmtSetFocus(field);
        DispatchWaiting();
        PressKeys(strcmp(field, "spcrt2") == 0 ? "Home" : "End");
        TypeText("yy");
        DispatchWaiting();
    }
    ClickAndDispatch("snmpb2");
    EXPECT_EQ(TakeMessages(), "");
    EXPECT_EQ(fleet.Get("10.71.1.1", LOCATION), "yy" + line);
    EXPECT_EQ(fleet.Get("10.71.1.1", "1.3.6.1.2.1.1.4.0"), lines + "yy");
}

TEST_F(Sheet, ChannelsAreSetAndARefusalIsToldAndTakenBack) {
    std::string state = PRT + ".14.1.1.6.1.";
    SimFleet fleet("printer 10.71.1.1 like tarvo-p340\n"
                   "  prtChannelEntry.6.1.1 integer 3 rw\n  prtChannelEntry.6.1.2 integer 3\n"
                   "  sysLocation.0 text \"lobby\"\n");
    ASSERT_TRUE(Open(fleet.At("10.71.1.1")));
    TurnTo({"sdbt3", 2, nullptr});
    ASSERT_EQ(Shown("spn1b1") + Shown("spn1b2"), "22");
    XmtSelectTab("sdbt3", 1);
    Type("spcrt2", "cellar");
    XmtSelectTab("sdbt3", 2);
    XmtSetValuePF("spn1b1", 4, 1);
    XmtSetValuePF("spn1b2", 4, 1);
    ClickAndDispatch("snmpb2");
    std::string label = Shown("spn1b2_L");
    label.erase(0, label.find_first_not_of(' '));
    EXPECT_EQ(TakeMessages(), "Printer Properties: The contact value could not be set. Reason: Unknown;"
                              "Printer Properties: " +
                                  label + " could not be disabled.;");
    EXPECT_EQ(fleet.Get("10.71.1.1", state + "1"), "4");
    EXPECT_EQ(fleet.Get("10.71.1.1", state + "2"), "3");
    EXPECT_EQ(Shown("spn1b1") + Shown("spn1b2"), "32");
    EXPECT_EQ(Shown("spcrt2"), "cellar"); // as the user wrote it
    EXPECT_EQ(XmtGetValue("spn1b18"), 0); // a row without a channel
}

TEST_F(Sheet, ReadOnlyModelsAndOthers) {
    SimFleet fleet("printer 10.71.1.1 like tarvo-p340\n");
    for (bool flFixed : {true, false}) {
        ASSERT_TRUE(Open(fleet.At("10.71.1.1"), flFixed ? "tv_fixed.ppd" : "tv_Normal.ppd"));
        for (const char *name : {"spcrt1", "spcrt5", "spn1b1", "spn1b15"})
            EXPECT_EQ(XmtIsEnabled(name), !flFixed) << name;
        EXPECT_TRUE(XmtIsEnabled("spn1b16"));
    }
}

// ---- The timer

TEST_F(Sheet, WhatChangesShowsAtTheNextTick) {
    SimFleet fleet("printer 10.71.1.1 like tarvo-p340\nprinter 10.71.1.2 like tarvo-p210\n");
    ASSERT_TRUE(Open(fleet.At("10.71.1.1")));
    EXPECT_EQ(Shown("snmpri"), "30");
    char record[8] = {};
    EXPECT_EQ(DbmGetRecord("IPDisc", "SNMPRefresh", record, sizeof record), 2);
    EXPECT_STREQ(record, "30");
    Type("snmpri", "1");
    ClickAndDispatch("snmpris");
    TurnTo({"sdbt2", 2, nullptr});
    ASSERT_NE(Shown("sic4t1"), "0");
    EXPECT_EQ(fleet.Change("10.71.1.1 prtInputCurrentLevel.1.1 integer 0"), "");
    EXPECT_TRUE(RunLoopUntil([] { return Shown("sic4t1") == "0"; }));

    CloseByManager("snmp");
    DispatchWaiting();
    EXPECT_FALSE(IsOpen());
    EXPECT_EQ(SNMPRefreshTimerID, 0);
    size_t requests = fleet.Log().size();
    XmtPostMsg_("one", "text");
    XmtPostMsg_("two", "text");
    RunLoopFor(1500);
    EXPECT_EQ(fleet.Log().size(), requests);
    EXPECT_EQ(TakeMessages(), "one: text;two: text;");
    ASSERT_TRUE(Open(fleet.At("10.71.1.2"))); // the interval was not saved
    EXPECT_EQ(Shown("snmpri"), "30");
}

TEST_F(Sheet, EveryTickReads) {
    enum { SECONDS = 5 };
    SimFleet fleet("printer 10.71.1.1 like tarvo-p340\n");
    ASSERT_TRUE(Open(fleet.At("10.71.1.1")));
    XmtSetText("snmpri", "1");
    Event(SHEET_SET_INTERVAL);
    size_t before = CountReads(fleet);
    for (int i = 0; i < SECONDS; i++) RunLoopFor(1000);
    EXPECT_NEAR(static_cast<double>(CountReads(fleet) - before), SECONDS, 1);
}

TEST_F(Sheet, TheIntervalIsKept) {
    SimFleet fleet("printer 10.71.1.1 like tarvo-p340\n");
    const struct {
        const char *stored, *shown;
    } cases[] = {{"45", "45"}, {"0", "30"}, {"1001", "30"}, {"%n", "30"}, {"", "30"}};
    for (const auto &c : cases) {
        DbmPutRecord("IPDisc", "SNMPRefresh", c.stored, strlen(c.stored));
        ASSERT_TRUE(Open(fleet.At("10.71.1.1")));
        EXPECT_EQ(Shown("snmpri"), c.shown) << c.stored;
    }
    Type("snmpri", "77");
    ClickAndDispatch("snmpsai");
    char record[8] = {};
    EXPECT_EQ(DbmGetRecord("IPDisc", "SNMPRefresh", record, sizeof record), 2);
    EXPECT_STREQ(record, "77");
    EXPECT_EQ(SNMPRefreshTime, 77);
    XmtSetText("snmpri", "");
    Event(SHEET_SET_INTERVAL);
    EXPECT_NE(SNMPRefreshTimerID, 0);
}

TEST_F(Sheet, AnIntervalThatCannotBeStoredHoldsForTheRun) {
    SimFleet fleet("printer 10.71.1.1 like tarvo-p340\n");
    ASSERT_TRUE(Open(fleet.At("10.71.1.1")));
    ASSERT_EQ(rename(Tool->Path("db").c_str(), Tool->Path("kept").c_str()), 0);
    Tool->Write("db", "a file");
    XmtSetText("snmpri", "77");
    Event(SHEET_SAVE_INTERVAL);
    EXPECT_NE(TakeMessages().find("hold until the program ends"), std::string::npos);
    ASSERT_EQ(unlink(Tool->Path("db").c_str()), 0);
    ASSERT_EQ(rename(Tool->Path("kept").c_str(), Tool->Path("db").c_str()), 0);
    ASSERT_TRUE(Open(fleet.At("10.71.1.1")));
    EXPECT_EQ(Shown("snmpri"), "77");
    XmtSetText("snmpri", "30");
    Event(SHEET_SAVE_INTERVAL);
    ASSERT_TRUE(Open(fleet.At("10.71.1.1")));
    EXPECT_EQ(Shown("snmpri") + TakeMessages(), "30");
}

TEST_F(Sheet, NoPrinterNoSheetAndOneReadOfTheConsoleAtOpening) {
    SetPrinterSelectionData(-1);
    Event(SHEET_WINDOW);
    EXPECT_FALSE(IsOpen());
    SimFleet fleet("printer 10.71.1.1 like tarvo-p340\n");
    for (int i = 0; i < 2; i++) {
        size_t before = CountReads(fleet);
        ASSERT_TRUE(Open(fleet.At("10.71.1.1")));
        EXPECT_EQ(CountReads(fleet) - before, 2u); // the probe is one of them
        EXPECT_EQ(CurTab, TAB_CONSOLE);
    }
    EXPECT_EQ(TakeMessages(), "");
}

// Back on the outer tab, whose inner form shows the statistics.
TEST_F(Sheet, TheStatisticsAreReadAgainBehindAnotherOuterTab) {
    SimFleet fleet("printer 10.71.1.1 like tarvo-p340\n");
    ASSERT_TRUE(Open(fleet.At("10.71.1.1")));
    TurnTo({"ssntab", 2, nullptr});
    for (int tab : {2, 1}) {
        XmtSelectTab("sdbt", tab);
        DispatchWaiting();
    }
    EXPECT_EQ(CurTab, TAB_IP);
    EXPECT_EQ(fleet.Change("10.71.1.1 ip.3.0 counter 77"), "");
    DoSNMPRefresh();
    EXPECT_EQ(Shown("ssnc2t1"), "77");
}

TEST_F(Sheet, TenThousandRefreshesHoldNoMore) {
    SimFleet fleet("printer 10.71.1.1 like tarvo-p340\n");
    ASSERT_TRUE(Open(fleet.At("10.71.1.1")));
    for (int i = 0; i < 100; i++) DoSNMPRefresh();
    size_t held = HeldBytes();
    for (int i = 0; i < 10000; i++) DoSNMPRefresh();
    EXPECT_LT(HeldBytes(), held + 10000);
}

// ---- The reset

static std::string Label(const char *name) {
    return TakeText(XmtGetLabel(name));
}

TEST_F(Sheet, ResetOfAPrinterThatGoesDownAndComesBack) {
    SimFleet fleet("printer 10.71.1.1 like tarvo-p340\n  reset-time 13000\n");
    Select(fleet.At("10.71.1.1"), "tv_Normal.ppd");
    Event(RESET_CONFIRM, 0, "resetconf", XmtCR_CANCEL);
    EXPECT_EQ(CountSets(fleet), 0);
    Event(RESET_CONFIRM, 0, "resetconf", XmtCR_OK);
    EXPECT_EQ(TakeMessages(), "");
    ASSERT_TRUE(XtIsManaged(XmtGetWidget("resetwait")));
    EXPECT_NE(ResetTimerID, -1);
    EXPECT_EQ(Label("rwstat"), "#.........");
    EXPECT_TRUE(RunLoopUntil([] { return ResetTimerID == -1; }));
    EXPECT_EQ(Label("rwmsg"), "The printer is ready");
    EXPECT_EQ(Label("rwstat"), fleet.Get("10.71.1.1", PRT + ".16.5.1.2.1.1"));
    ClickAndDispatch("rwb1");
    EXPECT_FALSE(XtIsManaged(XmtGetWidget("resetwait")));
}

TEST_F(Sheet, AResetThatDoesNotTakeIsTold) {
    SimFleet fleet("printer 10.71.1.1 like tarvo-p340\n  hrDeviceStatus.1 integer 5\n"
                   "printer 10.71.1.2 like tarvo-p340\n  reset-time 0\n");
    for (const char *address : {"10.71.1.1", "10.71.1.2"}) {
        Select(fleet.At(address), "tv_Normal.ppd");
        Event(RESET_CONFIRM, 0, "resetconf", XmtCR_OK);
        std::string failed = "The printer could not be reset";
        EXPECT_EQ(TakeMessages(), failed + ": " + failed + ";") << address;
        EXPECT_FALSE(XtIsManaged(XmtGetWidget("resetwait"))) << address;
    }
    EXPECT_EQ(CountSets(fleet), 10); // none of a printer that is down, five rounds of the other's
}

// Its console is empty at first, and stays so; another one's shows a blank.
TEST_F(Sheet, TheLightSweepsUntilThePrinterIsGivenUp) {
    SimFleet fleet("printer 10.71.1.1 like tarvo-p340\n  prtConsoleDisplayBufferText.1.1 text \"\"\n");
    Select(fleet.At("10.71.1.1"), "tv_SendPublicOnce.ppd");
    for (const char *console : {"", " "}) {
        Event(RESET_CONFIRM, 0, "resetconf", XmtCR_OK);
        ResetStart = time(nullptr) - 125;
        for (int i = 1; i <= RESET_TICKS; i++) {
            ResetDeviceCheck(0);
            int place = i % 20 < 10 ? i % 20 : 19 - i % 20;
            std::string light = "..........";
            light[static_cast<size_t>(place)] = '#';
            EXPECT_EQ(Label("rwstat"), light) << i;
            if (*console) break;
        }
        if (*console) {
            EXPECT_EQ(fleet.Change("10.71.1.1 prtConsoleDisplayBufferText.1.1 text \" \""), "");
            ResetDeviceCheck(0);
            EXPECT_EQ(Label("rwmsg"), "The printer is ready");
        } else {
            EXPECT_NE(Label("rwmsg").find("2 min"), std::string::npos) << Label("rwmsg");
            ResetDeviceCheck(0);
            EXPECT_EQ(Label("rwmsg") + "/" + Label("rwstat"),
                      "The printer does not answer/Check the printer");
        }
        EXPECT_EQ(ResetTimerID, -1);
    }
    for (bool flManager : {true, false}) { // closed midway
        Event(RESET_CONFIRM, 0, "resetconf", XmtCR_OK);
        ASSERT_NE(ResetTimerID, -1);
        flManager ? CloseByManager("resetwait") : ClickAt("rwb1");
        DispatchWaiting();
        EXPECT_EQ(ResetTimerID, -1);
        EXPECT_FALSE(XtIsManaged(XmtGetWidget("resetwait")));
    }
}
