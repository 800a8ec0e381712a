// Values set in a printer, and its reset, beside an agent that keeps a record of what it was asked.
#include "prndeck/core/PrdSnmpSet.h"

#include "SnmpPkg/Pkg.h"
#include "common/MemMgr.h"
#include "print/PrdCommonUtils.h"
#include "prndeck/core/PrdDisc.h"
#include "prndeck/core/PrdSnmpRead.h"
#include "tests/lib/AppTool.h"
#include "tests/lib/SnmpAgent.h"

#include <gtest/gtest.h>

static constexpr char Name[] = "1.3.6.1.2.1.1.6.0";
static constexpr char Reset[] = "1.3.6.1.2.1.43.5.1.1.3.1";

// The selected printer is the agent.
struct SetRig {
    PrnEntry entry = {};
    SnmpAgent agent;
    uint16_t saved = SnmpAgentPort;
    explicit SetRig(SnmpAgent::Handler handler) : agent(std::move(handler)) {
        entry.Address = const_cast<char *>("127.0.4.1");
        SnmpAgentPort = agent.Port();
        pCurPrnData = &entry;
    }
    ~SetRig() {
        SnmpAgentPort = saved;
        pCurPrnData = nullptr;
    }
    // The sets by the first letter of their communities, q for a query.
    std::string Log() {
        std::string out;
        for (const AgentRequest &request : agent.Requests())
            out += request.pdu == 0xA3 ? request.community.substr(0, 1) : "q";
        return out;
    }
};

static void Refuse(SnmpAgent &agent, const AgentRequest &request) {
    agent.Send(request, BerMessage(0, request.community, 0xA2,
                                   BerInt(request.id) + BerInt(2) + BerInt(1) +
                                       BerElement(0x30, BerBinding(request.name, request.value))));
}

struct SetCase {
    const char *what;
    SnmpAgent::Handler handler;
    std::string text;
    bool want;
    const char *log;
};
static const SetCase Sets[] = {
    {"taken at once", [](SnmpAgent &a, const AgentRequest &r) { a.Answer(r, r.value); }, "lobby", true, "r"},
    {"an empty text", [](SnmpAgent &a, const AgentRequest &r) { a.Answer(r, r.value); }, "", true, "r"},
    {"300 characters", [](SnmpAgent &a, const AgentRequest &r) { a.Answer(r, r.value); },
     std::string(300, 'x'), true, "r"},
    {"by the second community",
     [](SnmpAgent &a, const AgentRequest &r) {
         r.community == "wrcommx" ? a.Answer(r, r.value) : Refuse(a, r);
     },
     "lobby", true, "rrrrrrw"},
    {"stored in part", [](SnmpAgent &a, const AgentRequest &r) { a.Answer(r, BerElement(4, "lob")); },
     "lobby", false, "rrrrrrwwwwww"},
    {"what an unanswered variable shows", Refuse, "______________", false, "rrrrrrwwwwww"},
    {"more than a packet holds", Refuse, std::string(3000, 'x'), false, ""},
};

TEST(SnmpSet, TextsCountWhenThePrinterGivesThemBack) {
    for (const SetCase &c : Sets) {
        SetRig rig(c.handler);
        EXPECT_EQ(SNMPSetStringValue(Name, c.text.c_str()), c.want) << c.what;
        EXPECT_EQ(rig.Log(), c.log) << c.what;
    }
}

TEST(SnmpSet, NumbersLikewise) {
    {
        SetRig rig([](SnmpAgent &a, const AgentRequest &r) { a.Answer(r, r.value); });
        EXPECT_TRUE(SNMPSetIntValue(Name, 4));
        EXPECT_EQ(rig.agent.Requests()[0].value, BerInt(4));
    }
    SetRig rig([](SnmpAgent &a, const AgentRequest &r) { a.Answer(r, BerElement(4, "abc")); });
    EXPECT_FALSE(SNMPSetIntValue(Name, 3)) << "a text of three bytes";
    EXPECT_EQ(rig.agent.Count(), 12);
}

TEST(SnmpSet, NothingIsSetWithoutAPrinter) {
    pCurPrnData = nullptr;
    EXPECT_FALSE(SNMPSetStringValue(Name, "x") || SNMPSetIntValue(Name, 1) || SNMPSendReset(Reset, 4));
}

// ---- The reset

struct ResetCase {
    const char *what;
    const char *mode;     // of the model; null for none
    const char *statuses; // what the queries find, the last one from then on
    bool want;
    const char *log;
};
static const ResetCase Resets[] = {
    {"normal", "SNMPResetNormal", "25", true, "qwqqqq"},
    {"normal, by the second community", nullptr, "225", true, "qwqrqqqq"},
    {"normal, stays up", nullptr, "2", false, "qwqrqwqrqwqrqwqrqwqrq"},
    {"an unknown word", "SNMPResetSomehow", "325", true, "qwqrqqqq"},
    {"private", "SNMPResetPrivate", "225", true, "qwqwqqqq"},
    {"public", "SNMPResetPublic", "15", true, "qrqqqq"},
    {"public, stays up", "SNMPResetPublic", "2", false, "qrqrqrqrqrq"},
    {"a community of its own", "SNMPResetCustomComm", "225", true, "qwqwqqqq"},
    {"private, once", "SNMPResetSendPrivateOnce", "2", true, "qw"},
    {"public, once", "SNMPResetSendPublicOnce", "2", true, "qr"},
    {"in a test", nullptr, "4", false, "q"},
    {"down", "SNMPResetSendPrivateOnce", "5", false, "q"},
    {"no status", nullptr, "0", false, "q"},
    {"comes back at once", nullptr, "2552", false, "qwqqq"},
};

TEST(SnmpSet, ResetsByTheModesOfModels) {
    AppTool tool;
    std::string records;
    Records models;
    for (const ResetCase &c : Resets)
        if (c.mode)
            models.push_back({std::string("tv_") + c.mode,
                              std::string(".sppditem SNMPResetMode\n") + c.mode + "\n.eppditem\n"});
    models.push_back({"tv_none", "x"});
    std::vector<std::string> files = {"tv_none.ppd"};
    for (size_t i = 0; i + 1 < models.size(); i++) files.push_back(models[i].first + ".ppd");
    tool.WriteDb("en_US/PrtString", models);
    tool.WriteModels(files);
    InitPpdData();
    for (const ResetCase &c : Resets) {
        size_t queries = 0;
        const std::string statuses = c.statuses;
        SetRig rig([&](SnmpAgent &a, const AgentRequest &r) {
            if (r.pdu == 0xA3) return a.Answer(r, r.value);
            a.Answer(r, BerInt(statuses[std::min(queries++, statuses.size() - 1)] - '0'));
        });
        std::string file = c.mode ? std::string("tv_") + c.mode + ".ppd" : "tv_none.ppd";
        int32_t &row = rig.entry.PpdIndex;
        for (row = 1; row < PpdCnt && pPPDData[row].file != file;) row++;
        EXPECT_EQ(SNMPSendReset(Reset, 4), c.want) << c.what;
        EXPECT_EQ(rig.Log(), c.log) << c.what;
    }
}

TEST(SnmpSet, ItemsOfModels) {
    char value[PPD_VALUE];
    PrnEntry entry = {};
    entry.PpdIndex = PpdCnt + 1;
    EXPECT_EQ(GetPrnModelItem(&entry, "SNMPResetMode", value, sizeof value), nullptr);
    EXPECT_EQ(GetPrnModelItem(nullptr, "SNMPResetMode", value, sizeof value), nullptr);
}
