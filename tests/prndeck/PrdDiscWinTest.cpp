// The dialog of where printers are looked for, the browser's window, and the web port of a printer.
#include "prndeck/core/Prd.h"

#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "prndeck/core/PrdDisc.h"
#include "prndeck/core/PrdDiscNets.h"
#include "prndeck/gui/PrdDiscWeb.h"
#include "prndeck/gui/PrdDiscWin.h"
#include "prndeck/gui/PrdGui.h"
#include "prndeck/gui/PrdGuiIds.h"
#include "tests/lib/AppTool.h"
#include "tests/lib/WindowRig.h"
#include "xmt/XmtMsg.h"
#include "xmt/XmtUtils.h"

#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

static std::unique_ptr<AppTool> Tool;

class DiscWin : public testing::Test {
protected:
    static void TearDownTestSuite() { Tool.reset(); }
    void SetUp() override {
        static std::string reason;
        static bool flRig = StartWindowRig("1280x1024x24", &reason);
        if (!flRig) GTEST_SKIP() << reason;
        if (!Tool) MakeWindows();
        PutMem(pIpListMod);
        pIpListMod = nullptr;
        ClearSubnetList();
        TakeMessages();
    }
    static void MakeWindows() {
        Tool = std::make_unique<AppTool>();
        pNLSLang = SaveStr_("en_US");
        Tool->WriteDb("en_US/CoreString",
                      {{"20_79", std::string("Enabled\0", 8)}, {"20_80", std::string("Disabled\0", 9)}});
        Tool->WriteDb("en_US/PrtHelp", {{"x", "x"}});
        Tool->WriteModels({"tv_generic.ppd"});
        flUserIsRoot = 1;
        pDiscIoctl = [](int, unsigned long, void *argument) {
            static_cast<ifconf *>(argument)->ifc_len = 0;
            return 0;
        };
        GenGui();
        RealizeWindows();
    }
    static void Event(int id, intptr_t value = 0, const char *text = nullptr) {
        XmtCallData data = {};
        data.id = id;
        data.reason = XmtCR_DEFAULT;
        data.value = value;
        data.text = text;
        IPDiscoveryEventHandler(&data);
    }
    // Texts of the messages since the last call, which are the keys of the catalogue here.
    static std::string TakeMessages() {
        std::string out;
        while (pXmtMsgList && pXmtMsgList->head) {
            auto *entry = static_cast<XmtMsgEntry *>(pXmtMsgList->head->item);
            out += std::string(entry->title ? entry->title : "") + ":" + entry->text + " ";
            XmtCallData data = {};
            data.reason = XmtCR_OK;
            XmtMsgEventHandler(&data);
        }
        return out;
    }
    static void SetFields(const char *prefix, const std::vector<const char *> &numbers) {
        for (size_t i = 0; i < numbers.size(); i++)
            XmtSetText((prefix + std::to_string(i + 1)).c_str(), numbers[i]);
    }
    static std::string Fields(const char *prefix) {
        std::string out;
        for (int i = 1; i <= 4; i++) {
            char *text = XmtGetText((prefix + std::to_string(i)).c_str());
            out += std::string(i > 1 ? "." : "") + text;
            XtFree(text);
        }
        return out;
    }
    static std::string Rows(const char *list) {
        XmStringTable items;
        int count;
        XtVaGetValues(XmtGetWidget(list), XmNitems, &items, XmNitemCount, &count, nullptr);
        std::string out;
        for (int i = 0; i < count; i++) {
            auto *text = static_cast<char *>(
                XmStringUnparse(items[i], nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT, nullptr, 0, XmOUTPUT_ALL));
            out += std::string(text) + "|";
            XtFree(text);
        }
        return out;
    }
    static std::string Buttons() {
        std::string out;
        for (const char *name : {"ipsnr", "ipsned", "ipar"}) out += XmtIsEnabled(name) ? '1' : '0';
        return out;
    }
};

TEST_F(DiscWin, WhatTheFieldsOfASubnetHold) {
    struct {
        std::vector<const char *> mask, address;
        const char *message, *fields;
    } cases[] = {
        {{"255", "0", "255", "0"}, {"10", "0", "0", "0"}, "20_161:20_161 ", "255.0..0"},
        {{"255", "253", "0", "0"}, {"10", "0", "0", "0"}, "20_161:20_161 ", "255..0.0"},
        {{"255", "", "0", "0"}, {"10", "0", "0", "0"}, "20_161:20_162 ", "255..0.0"},
        {{"255", "0", "0", "0"}, {"10", "0", "", "0"}, "20_163:20_164 ", "255.0.0.0"},
        {{"255", "255", "192", "0"}, {"10", "0", "64", "0"}, "", "..."},
        {{"0", "0", "0", "0"}, {"10", "0", "0", "1"}, "", "..."},
    };
    Event(DISC_DIALOG);
    for (const auto &c : cases) {
        SetFields("smt", c.mask);
        SetFields("snt", c.address);
        Event(DISC_SUBNET_ADD);
        EXPECT_EQ(TakeMessages(), c.message);
        EXPECT_EQ(Fields("smt"), c.fields);
    }
    EXPECT_EQ(Rows("ipsl"), "10.0.64.0             255.255.192.0        Enabled|10.0.0.1              "
                            "0.0.0.0              Enabled|");
    XmtHide("ipDisc");
}

TEST_F(DiscWin, ASelectionFillsTheFieldsAndAllowsWhatFits) {
    SubnetEntry own = {"10.71.2.0", "255.255.255.0", 1, 1}, found = {"10.71.1.1", "255.255.0.0", 1, 0};
    UpdateSubnetList(&own, SUBNET_APPEND);
    UpdateSubnetList(&found, SUBNET_APPEND);
    Event(DISC_DIALOG);
    EXPECT_EQ(Buttons(), "000");
    Event(DISC_SUBNETS, 1);
    EXPECT_EQ(Buttons() + Fields("snt") + " " + Fields("smt"), "11010.71.2.0 255.255.255.0");
    Event(DISC_SUBNETS, 2);
    EXPECT_EQ(Buttons() + Fields("snt"), "01010.71.1.1") << "what was found can't be removed";
    Event(DISC_SUBNET_SWITCH);
    EXPECT_EQ(Buttons() + Fields("snt"), "000...");
    Event(DISC_SUBNETS, 1);
    Event(DISC_SUBNET_REMOVE);
    Event(DISC_SUBNET_REMOVE); // nothing is selected
    EXPECT_EQ(Rows("ipsl"), "10.71.1.1             255.255.0.0         Disabled|");
    XmtHide("ipDisc");
}

TEST_F(DiscWin, AddressesThatAreRefusedOrKnown) {
    Event(DISC_DIALOG);
    struct {
        std::vector<const char *> address;
        const char *message;
    } cases[] = {{{"127", "0", "0", "1"}, ":80_21 "},
                 {{"", "1", "2", "3"}, ":80_21 "},
                 {{"224", "0", "0", "1"}, ":80_21 "},
                 {{"11", "", "", "5"}, ""},
                 {{"11", "0", "0", "5"}, ":80_23 "}};
    for (const auto &c : cases) {
        SetFields("ipa", c.address);
        Event(DISC_ADDRESS_ADD);
        EXPECT_EQ(TakeMessages(), c.message);
        EXPECT_EQ(Fields("ipa"), "...");
    }
    Event(DISC_ADDRESS_REMOVE); // nothing is selected
    EXPECT_EQ(Rows("ipal"), "11.0.0.5|");
    Event(DISC_ADDRESSES, 1, "11.0.0.5");
    EXPECT_EQ(Buttons() + Fields("ipa"), "00111.0.0.5");
    SetFields("ipa", {"127", "0", "0", "1"});
    Event(DISC_ADDRESS_ADD);
    EXPECT_EQ(TakeMessages() + Buttons(), ":80_21 001") << "the row stays lit";
    Event(DISC_APPLY);
    EXPECT_EQ(Buttons(), "000") << "rows that were filled anew";
    Event(DISC_ADDRESSES, 1, "11.0.0.5");
    Event(DISC_ADDRESS_REMOVE);
    EXPECT_EQ(Rows("ipal"), "");
    XmtHide("ipDisc");
}

TEST_F(DiscWin, AListThatCannotBeStoredIsToldAndStays) {
    ASSERT_EQ(rename(Tool->Path("db").c_str(), Tool->Path("kept").c_str()), 0);
    Tool->Write("db", "a file");
    SetFields("ipa", {"12", "0", "0", "1"});
    Event(DISC_ADDRESS_ADD);
    Event(DISC_APPLY);
    EXPECT_EQ(TakeMessages(), ":80_24 ");
    EXPECT_TRUE(pIpList && strstr(pIpList, ",12.0.0.1,")) << "asked until the program ends";
    XmtSetText("brp", "lynx");
    Event(DISC_BROWSER_OK);
    EXPECT_EQ(TakeMessages() + pPreferredWB, ":80_24 lynx");
    ASSERT_EQ(unlink(Tool->Path("db").c_str()), 0);
    ASSERT_EQ(rename(Tool->Path("kept").c_str(), Tool->Path("db").c_str()), 0);
    Event(DISC_APPLY);
    EXPECT_EQ(TakeMessages(), "");
    EXPECT_TRUE(strstr(pIpList, ",12.0.0.1,"));
}

// ---- The browser

TEST_F(DiscWin, ABrowserIsStartedIfItsCommandIsThere) {
    const std::string program = Tool->Write("a-browser", "");
    chmod(program.c_str(), 0755);
    struct {
        std::string command;
        int result;
        std::string line; // empty: nothing is started
    } cases[] = {
        {"no-such-browser -x", 0, ""},
        {Tool->Path("gone"), 0, ""},
        {" ", 0, ""},
        {program + " -x", 0, program + " -x http://10.0.0.5 &"},
        {"sh -c", 256, "sh -c http://10.0.0.5 &"},
        {"X=1 $BROWSER", 0, "X=1 $BROWSER http://10.0.0.5 &"}, // for the shell to say
    };
    for (const auto &c : cases) {
        SystemSpy spy;
        spy.result = c.result;
        WriteBrowser(c.command.c_str());
        EXPECT_EQ(InvokeWebBrowser("10.0.0.5", ""), !c.line.empty() && c.result == 0) << c.command;
        EXPECT_EQ(spy.lines, c.line.empty() ? std::vector<std::string>{} : std::vector{c.line});
        EXPECT_FALSE(InvokeWebBrowser("10.0.0.5;reboot", ""));
    }
}

TEST_F(DiscWin, RootSeesABrowserThatOthersMayHaveStoredBeforeItRuns) {
    SystemSpy spy;
    PrnEntry printer{};
    char address[] = "10.0.0.5";
    printer.Address = address;
    pCurPrnData = &printer;
    WriteBrowser("sh -x");
    chmod(Tool->Db("IPDisc").c_str(), 0666);
    ReadBrowser();
    OpenWebPage();
    EXPECT_EQ(TakeMessages(), ":80_34 ");
    EXPECT_TRUE(XtIsManaged(XmtGetWidget("brw")) && spy.lines.empty());
    SetBrowser();
    XmtHide("brw");
    OpenWebPage();
    EXPECT_EQ(spy.lines.size(), 1U);
    chmod(Tool->Db("IPDisc").c_str(), 0644);
    ReadBrowser();
    EXPECT_FALSE(flBrowserDoubtful);
    pCurPrnData = nullptr;
}

TEST_F(DiscWin, AMissingBrowserIsToldAndAskedFor) {
    SystemSpy spy;
    WriteBrowser("no-such-browser");
    DevCount = 0;
    PrnEntry *entry = ClaimPrnEntry();
    PutMem(entry->Address);
    entry->Address = SaveStr_("127.0.3.9");
    pCurPrnData = entry;
    GetProfile(); // has no page
    EXPECT_EQ(TakeMessages(), "");
    entry->Flags = PRN_WEB;
    GetProfile();
    EXPECT_EQ(TakeMessages(), "Quillbrook Warning:80_32 ");
    EXPECT_TRUE(XtIsManaged(XmtGetWidget("brw")));
    XmtSetText("brp", "");
    Event(DISC_BROWSER_OK);
    EXPECT_EQ(TakeMessages() + pPreferredWB, ":80_33 no-such-browser");
    XmtHide("brw");
    pCurPrnData = nullptr;
    DevCount = 0;
}

TEST_F(DiscWin, AWebPortIsOpenClosedOrHangs) {
    int listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr *>(&address), size), 0);
    getsockname(listener, reinterpret_cast<sockaddr *>(&address), &size);
    uint16_t saved = BrowserPort;
    BrowserPort = ntohs(address.sin_port);
    EXPECT_FALSE(TestBrowser("127.0.0.1") || flConnectTimedOut) << "closed";
    listen(listener, 0);
    EXPECT_TRUE(TestBrowser("127.0.0.1") && !flConnectTimedOut) << "open";
    time_t start = time(nullptr);
    bool flOpen = true;
    for (int i = 0; i < 3 && flOpen; i++)
        flOpen = TestBrowser("127.0.0.1"); // fills what waits to be accepted
    EXPECT_TRUE(!flOpen && flConnectTimedOut && time(nullptr) - start <= BROWSER_SECONDS + 2) << "hangs";
    BrowserPort = saved;
    close(listener);
}
