// The package record: what a set-up run leaves in it, and what the bindings of an answer do to it.
#include "SnmpPkg/Decode.h"
#include "SnmpPkg/Log.h"
#include "SnmpPkg/Pkg.h"
#include "tests/lib/Capture.h"
#include "tests/lib/SnmpAgent.h"

#include <arpa/inet.h>
#include <cstring>
#include <gtest/gtest.h>

static const char Unfilled[] = "______________";

static PkgPacket Received(const std::string &bytes) {
    PkgPacket packet = {};
    memcpy(packet.Data, bytes.data(), bytes.size());
    packet.Len = static_cast<int32_t>(bytes.size());
    return packet;
}

// Puts an answer with these bindings into the package, as the engine does it.
static void Answer(SnmpPackage *package, const std::string &bindings) {
    PkgPacket packet = Received(BerResponse(1, bindings));
    PkgProlog prolog;
    PkgPrologText text;
    ASSERT_TRUE(PkgReadProlog(&packet, &prolog, &text));
    DecodeVariables(&packet, package, prolog.Version);
}

static int NoCallback(int, intptr_t, int, int, SnmpPackage *, PkgSource *) {
    return 0;
}

TEST(Setup, EveryCommandAndItsBytesOnTheWire) {
    SnmpPackage package;
    int table = 0;
    memset(static_cast<void *>(&package), 0xEE, sizeof package);
    EXPECT_EQ(SnmpSetupPkg(nullptr, PKG_INIT, PKG_END), SETUP_ERR_XTL_INIT);
    EXPECT_EQ(SnmpSetupPkg(&package, PKG_INIT, PKG_END), SUCCESS);
    EXPECT_EQ(package.NumVars, 0);
    EXPECT_STREQ(package.Community, "rdcomm");
    EXPECT_EQ(package.Port, 161);
    EXPECT_EQ(package.Timeout, 3);
    ASSERT_EQ(SnmpSetup(&package, PKG_INIT, PKG_COMMUNITY, "wrcommx", PKG_CALLBACK, NoCallback, PKG_USERDATA,
                        static_cast<void *>(&table), PKG_LOG, 1, PKG_NUMBER, "1.3.1", -5, PKG_COUNTER,
                        "1.3.2", 1, PKG_GAUGE, "1.3.3", 2, PKG_TIMETICKS, "1.3.4", 3, PKG_UINTEGER32, "1.3.5",
                        4),
              SUCCESS);
    // A set-up may go on in a second run.
    ASSERT_EQ(SnmpSetup(&package, PKG_STRING, "1.3.6", "lobby", PKG_OPAQUE, "1.3.7", 2, "\x01\x00",
                        PKG_OBJECT, "1.3.8", "1.3.6", PKG_EMPTY, "1.3.9", PKG_IPADDRESS, "1.3.10",
                        static_cast<int>(htonl(0x00010203)), PKG_IPADDRESS_TEXT, "1.3.11", "10.0.0.7",
                        PKG_COUNTER64, "1.3.12", 1, 2, PKG_NSAP, "1.3.13", 1, "\x07", PKG_BITSTRING, "1.3.14",
                        8, "\xA5"),
              SUCCESS);
    EXPECT_STREQ(package.Community, "wrcommx");
    EXPECT_EQ(package.Callback, &NoCallback);
    EXPECT_EQ(package.UserData, reinterpret_cast<intptr_t>(&table));
    EXPECT_EQ(package.LogPackets, 1);
    std::string values[] = {
        BerElement(0x02, "\xFF\xFF\xFF\xFB"),
        BerInt(1, 0x41),
        BerInt(2, 0x42),
        BerInt(3, 0x43),
        BerInt(4, 0x47),
        BerElement(0x04, "lobby"),
        BerElement(0x44, std::string("\x01\x00", 2)),
        BerObject("1.3.6"),
        BerElement(0x05, ""),
        BerElement(0x40, std::string("\x00\x01\x02\x03", 4)),
        BerElement(0x40, std::string("\x0A\x00\x00\x07", 4)),
        BerElement(0x46, std::string("\x01\x00\x00\x00\x02", 5)),
        BerElement(0x45, "\x07"),
        BerElement(0x03, std::string("\x00\xA5", 2)),
    };
    ASSERT_EQ(package.NumVars, static_cast<int>(std::size(values)));
    std::string bindings;
    for (int i = 0; i < package.NumVars; i++) {
        bindings += BerBinding("1.3." + std::to_string(i + 1), values[i]);
        EXPECT_STREQ(package.Vars[i].RecText, Unfilled) << i;
    }
    PkgPacket packet;
    package.Pdu = PDU_SET;
    ASSERT_EQ(EncodePkg(&package, &packet), SUCCESS);
    std::string want =
        BerMessage(0, "wrcommx", 0xA3, BerInt(1) + BerInt(0) + BerInt(0) + BerElement(0x30, bindings));
    EXPECT_EQ(
        std::string(reinterpret_cast<char *>(packet.Data) + packet.Pos, static_cast<size_t>(packet.Len)),
        want);
    // A broadcast carries the first variable alone, and a get no values.
    package.SendMode = PKG_MODE_BROADCAST;
    package.Pdu = PDU_GET;
    ASSERT_EQ(EncodePkg(&package, &packet), SUCCESS);
    want = BerMessage(0, "wrcommx", 0xA0,
                      BerInt(1) + BerInt(0) + BerInt(0) +
                          BerElement(0x30, BerBinding("1.3.1", BerElement(5, ""))));
    EXPECT_EQ(
        std::string(reinterpret_cast<char *>(packet.Data) + packet.Pos, static_cast<size_t>(packet.Len)),
        want);
}

TEST(Setup, RunsThatStopOrHoldUnusableArguments) {
    SnmpPackage package;
    EXPECT_EQ(SnmpSetupPkg(&package, PKG_INIT, PKG_EMPTY, "1.3.1", 0, PKG_EMPTY, "1.3.2", PKG_END),
              SETUP_ERR_INVALID_PARAM);
    EXPECT_EQ(package.NumVars, 1);
    EXPECT_EQ(SnmpSetupPkg(&package, PKG_SENDMODE, 1, PKG_END), SETUP_ERR_INVALID_PARAM);
    // What cannot be used makes no variable; the rest of the run is carried out.
    EXPECT_EQ(SnmpSetup(&package, PKG_INIT, PKG_STRING, "1.3.1", nullptr, PKG_OPAQUE, "1.3.2", -1, "x",
                        PKG_IPADDRESS_TEXT, "1.3.3", "10.0.0.x", PKG_BITSTRING, "1.3.4", -9, "x", PKG_EMPTY,
                        "1.3.5"),
              SETUP_ERR_INVALID_PARAM);
    ASSERT_EQ(package.NumVars, 1);
    EXPECT_STREQ(package.Vars[0].Name, "1.3.5");
    // Null names make no variable and are no error.
    EXPECT_EQ(SnmpSetup(&package, PKG_INIT, PKG_EMPTY, nullptr, PKG_NUMBER, nullptr, 5, PKG_EMPTY_LIST,
                        "1.3.1", "1.3.2", nullptr, PKG_TABLE_LIST, "1.3.3", nullptr, PKG_EMPTY_LIST, nullptr,
                        PKG_TABLE_NAME, "1.3.4"),
              SUCCESS);
    ASSERT_EQ(package.NumVars, 4);
    EXPECT_STREQ(package.Vars[3].Name, "1.3.4");
    EXPECT_EQ(package.Vars[2].NameRoom, 6 + PKG_TABLE_SPARE);
    EXPECT_EQ(package.Vars[0].SendValue, 1);
    EXPECT_EQ(package.Vars[0].SendData, reinterpret_cast<intptr_t>(package.Values));
}

TEST(Setup, CapacitiesHold) {
    struct Case {
        const char *name;
        std::string oid;
        std::string text;
        int want; // variables that fit
    } cases[] = {
        {"fifty variables", "1.3", "", 50},
        {"names", std::string(100, '1'), "", (2048 - 7) / 101},
        {"values", "1.3", std::string(99, 'x'), 2048 / 100},
        {"a name longer than the area", std::string(3000, '1'), "", 0},
        {"a value as long as the area", "1.3", std::string(2048, 'x'), 0},
        {"a value that just fits", "1.3", std::string(2047, 'x'), 1},
    };
    for (const Case &c : cases) {
        SnmpPackage package;
        ASSERT_EQ(SnmpSetup(&package, PKG_INIT), SUCCESS);
        for (int i = 0; i < 60; i++) {
            int code = SnmpSetup(&package, PKG_STRING, c.oid.c_str(), c.text.c_str());
            EXPECT_EQ(code, i < c.want ? SUCCESS : SETUP_ERR_INVALID_PARAM) << c.name << " " << i;
        }
        EXPECT_EQ(package.NumVars, c.want) << c.name;
        EXPECT_LE(package.NameUsed, PKG_NAMES_SIZE) << c.name;
        EXPECT_LE(package.ValueUsed, PKG_VALUES_SIZE) << c.name;
    }
    SnmpPackage package;
    EXPECT_EQ(SnmpSetup(&package, PKG_INIT, PKG_COMMUNITY, std::string(2500, 'c').c_str(), PKG_USERDATA,
                        static_cast<void *>(&package)),
              SETUP_ERR_INVALID_PARAM);
    EXPECT_STREQ(package.Community, "rdcomm");
    EXPECT_NE(package.UserData, 0);
    // The two communities of a write, over and over, take no further room.
    for (int i = 0; i < 1000; i++)
        ASSERT_EQ(SnmpSetup(&package, PKG_COMMUNITY, i % 2 ? "rdcomm" : "wrcommx"), SUCCESS);
}

TEST(Receive, ValuesByType) {
    struct Case {
        const char *name;
        std::string value;
        int status, type, rclass;
        int64_t recValue; // of the types that hold a number or a length
        const char *text;
    } cases[] = {
        {"integer", BerInt(-3), 0, VT_NUMBER, 0, -3, "-3"},
        {"integer of no bytes", BerElement(0x02, ""), 0, VT_NUMBER, 0, 0, "0"},
        {"counter", BerElement(0x41, "\xFF\xFF\xFF\xFF"), 0, VT_COUNTER, 1, -1, "4294967295"},
        {"counter of five bytes", BerInt(0xFFFFFFFF, 0x41), 0, VT_COUNTER, 1, -1, "4294967295"},
        {"counter too large", BerInt(0x100000000, 0x41), 15, VT_COUNTER, 1, 0, Unfilled},
        {"gauge", BerInt(7, 0x42), 0, VT_GAUGE, 1, 7, "7"},
        {"timeticks", BerInt(7, 0x43), 0, VT_TIMETICKS, 1, 7, "7"},
        {"uinteger", BerInt(7, 0x47), 0, 7, 1, 7, "7"},
        {"string", BerElement(0x04, "%s%n"), 0, VT_STRING, 0, 4, "%s%n"},
        {"empty string", BerElement(0x04, ""), 0, VT_STRING, 0, 0, ""},
        {"opaque", BerElement(0x44, "ab"), 0, 68, 1, 2, "ab"},
        {"nsap", BerElement(0x45, "ab"), 0, VT_NSAPADDRESS, 1, 2, "ab"},
        {"null", BerElement(0x05, ""), 0, VT_EMPTY, 0, 0, ""},
        {"address", BerElement(0x40, std::string("\x0A\x00\x00\x07", 4)), 0, VT_IPADDRESS, 1,
         static_cast<int32_t>(htonl(0x0A000007)), "10.0.0.7"},
        {"address of no bytes", BerElement(0x40, ""), 15, VT_IPADDRESS, 1, 0, Unfilled},
        {"address of 3 bytes", BerElement(0x40, "abc"), 15, VT_IPADDRESS, 1, 0, Unfilled},
        {"address of 5 bytes", BerElement(0x40, "abcde"), 15, VT_IPADDRESS, 1, 0, Unfilled},
        {"address of 1000 bytes", BerElement(0x40, std::string(1000, 'a')), 15, VT_IPADDRESS, 1, 0, Unfilled},
        {"bits", BerElement(0x03, "\x07\xA5\x80"), 0, VT_BITSTRING, 0, 9, "0xA5 0x80 "},
        {"counter64", BerElement(0x46, "\x01\x02"), 15, VT_COUNTER64, 1, 0, Unfilled},
        {"no such object", BerElement(0x80, ""), 15, VT_NOSUCHOBJ, 2, 0, Unfilled},
        {"no such instance", BerElement(0x81, ""), 15, VT_NOSUCHINS, 2, 0, Unfilled},
        {"end of MIB", BerElement(0x82, ""), 15, VT_ENDOFMIB, 2, 0, Unfilled},
    };
    for (const Case &c : cases) {
        SnmpPackage package;
        ASSERT_EQ(SnmpSetup(&package, PKG_INIT, PKG_EMPTY, "1.3.6.1", PKG_EMPTY, "1.3.6.2"), SUCCESS);
        InitRecVars(&package);
        // The binding behind it is read whatever became of the first.
        Answer(&package, BerBinding("1.3.6.1", c.value) + BerBinding("1.3.6.2", BerInt(77)));
        const PkgVar &var = package.Vars[0];
        EXPECT_EQ(var.Status, c.status) << c.name;
        EXPECT_EQ(var.RecType, c.type) << c.name;
        EXPECT_EQ(var.RecClass, c.rclass) << c.name;
        EXPECT_EQ(var.RecValue, c.recValue) << c.name;
        EXPECT_STREQ(var.RecText, c.text) << c.name;
        EXPECT_STREQ(package.Vars[1].RecText, "77") << c.name;
        EXPECT_EQ(package.NumRecVars, 2) << c.name;
    }
    SnmpPackage package;
    ASSERT_EQ(SnmpSetup(&package, PKG_INIT, PKG_EMPTY, "1.3.6.1", PKG_EMPTY, "1.3.6.2"), SUCCESS);
    InitRecVars(&package);
    Answer(&package,
           BerBinding("1.3.6.1", BerObject("1.3.6.1.4")) + BerBinding("1.3.6.2", BerElement(0x4F, "")));
    EXPECT_EQ(package.Vars[0].RecValue, reinterpret_cast<intptr_t>(package.Vars[0].RecText));
    EXPECT_STREQ(package.Vars[0].RecText, "1.3.6.1.4");
    EXPECT_EQ(package.Vars[1].RecType, VT_UNKNOWN);
    EXPECT_EQ(*reinterpret_cast<uint8_t *>(&package.Vars[1].RecValue), 0x4F);
}

TEST(Receive, NamesThatWereNotAskedFor) {
    SnmpPackage package;
    ASSERT_EQ(SnmpSetup(&package, PKG_INIT, PKG_EMPTY, "1.3.6.1"), SUCCESS);
    InitRecVars(&package);
    Answer(&package, BerBinding("1.3.6.2", BerInt(2)) + BerBinding("1.3.6.1", BerInt(1)) +
                         BerBinding("1.3.6.3", BerInt(3)));
    ASSERT_EQ(package.NumRecVars, 3);
    EXPECT_EQ(package.NumVars, 1);
    EXPECT_STREQ(package.Vars[1].Name, "1.3.6.2");
    EXPECT_STREQ(package.Vars[2].RecText, "3");
    // Sixty of them: fifty variables in all, and the last binding, of a known name, is still read.
    std::string bindings;
    for (int i = 0; i < 60; i++) bindings += BerBinding("1.3.7." + std::to_string(i), BerInt(i));
    InitRecVars(&package);
    EXPECT_EQ(package.NumRecVars, 1);
    Answer(&package, bindings + BerBinding("1.3.6.1", BerInt(1)));
    EXPECT_EQ(package.NumRecVars, 50);
    EXPECT_STREQ(package.Vars[49].Name, "1.3.7.48");
    EXPECT_STREQ(package.Vars[0].RecText, "1");
    // Names too long for the area are stepped over too.
    std::string arcs = "1.3";
    for (int i = 0; i < 200; i++) arcs += ".127";
    InitRecVars(&package);
    for (int i = 0; i < 5; i++)
        Answer(&package,
               BerBinding(arcs + "." + std::to_string(i), BerInt(i)) + BerBinding("1.3.6.1", BerInt(i)));
    EXPECT_EQ(package.NumRecVars, 3);
    EXPECT_STREQ(package.Vars[0].RecText, "4");
    // The first binding alone, with the prolog in managed memory.
    PkgPacket packet =
        Received(BerResponse(9, BerBinding("1.3.8", BerInt(8)) + BerBinding("1.3.9", BerInt(9))));
    PkgProlog prolog;
    InitRecVars(&package);
    ASSERT_TRUE(DecodeVariable(&packet, &package, &prolog));
    EXPECT_EQ(package.NumRecVars, 2);
    EXPECT_STREQ(prolog.Community, "rdcomm");
    PkgFreeProlog(&prolog);
}

TEST(Receive, ValuesThatNoLongerFit) {
    const char *names[] = {"1.3.1", "1.3.2", "1.3.3", "1.3.4", "1.3.5", "1.3.6", "1.3.7"};
    SnmpPackage package;
    ASSERT_EQ(SnmpSetup(&package, PKG_INIT, PKG_EMPTY_LIST, names[0], names[1], names[2], names[3], names[4],
                        names[5], names[6], nullptr),
              SUCCESS);
    InitRecVars(&package);
    Answer(&package, BerBinding(names[0], BerElement(0x04, std::string(1300, 'a'))));
    Answer(&package, BerBinding(names[1], BerElement(0x04, std::string(1300, 'b'))) +
                         BerBinding(names[2], BerElement(0x04, "still fits")));
    Answer(&package, BerBinding(names[3], BerElement(0x03, std::string(200, 0))));
    Answer(&package, BerBinding(names[4], BerElement(0x04, std::string(2048 - 7 - 1301 - 11 - 1, 'e'))));
    Answer(&package, BerBinding(names[5], BerInt(5)) + BerBinding(names[6], BerElement(0x05, "")) +
                         BerBinding(names[1], BerObject("1.3")));
    const int want[] = {0, 15, 0, 15, 0, 15, 0};
    for (int i = 0; i < 7; i++) EXPECT_EQ(package.Vars[i].Status, want[i]) << i;
    EXPECT_EQ(strlen(package.Vars[0].RecText), 1300u);
    EXPECT_STREQ(package.Vars[1].RecText, Unfilled);
    EXPECT_STREQ(package.Vars[2].RecText, "still fits");
    EXPECT_EQ(package.RecValueUsed, PKG_VALUES_SIZE);
}

TEST(Receive, NothingOfTheLastHostIsLeft) {
    SnmpPackage package;
    ASSERT_EQ(SnmpSetup(&package, PKG_INIT, PKG_EMPTY, "1.3.1"), SUCCESS);
    InitRecVars(&package);
    Answer(&package, BerBinding("1.3.1", BerElement(0x04, "abcdef")));
    EXPECT_EQ(package.Vars[0].RecValue, 6);
    EXPECT_NE(package.Vars[0].RecData, nullptr);
    InitRecVars(&package);
    const PkgVar &var = package.Vars[0];
    EXPECT_EQ(var.Status, SEND_DATA_NOT_FILLED);
    EXPECT_EQ(var.RecValue, 0);
    EXPECT_EQ(var.RecType, 0);
    EXPECT_EQ(var.RecData, nullptr);
    EXPECT_STREQ(var.RecText, Unfilled);
    for (int i = package.ValueUsed; i < PKG_VALUES_SIZE; i++) ASSERT_EQ(package.Values[i], 0) << i;
}

TEST(Names, OfCodes) {
    EXPECT_STREQ(PkgErrName(SEND_ERR_TIMED_OUT), "SEND_ERR_TIMED_OUT");
    EXPECT_STREQ(PkgErrName(16), "SEND_ERR_BAD_ADDRESS");
    EXPECT_STREQ(PkgErrName(-333), "XTLERR_NOT_FOUND     ");
    EXPECT_STREQ(PkgErrName(-302), "XTLERR_UDP_INIT      ");
    for (int code : {17, -1, -300, -334, INT32_MIN, INT32_MAX})
        EXPECT_STREQ(PkgErrName(code), "UNKNOWN") << code;
}

TEST(Log, OneLineForEachHeader) {
    SnmpPackage package;
    ASSERT_EQ(SnmpSetup(&package, PKG_INIT, PKG_LOG, 1), SUCCESS);
    PkgPacket packet =
        Received(BerElement(0x30, BerInt(5, 0x42) + BerElement(0x4F, "ab") + BerElement(0x81, "")) + "rest");
    packet.Len -= 4;
    std::string out;
    {
        Capture capture;
        LogPacket(&package, &packet, "Receive Packet");
        package.LogPackets = 0;
        LogPacket(&package, &packet, "Nothing");
        fflush(stdout);
        out = capture.Out();
    }
    EXPECT_EQ(out, "\nReceive Packet\n"
                   "Class = 00   Flag = 20   Length  = 9   Type = 30    not defined: \n"
                   "Class = 40   Flag = 00   Length  = 1   Type = 42    VT_GAUGE:  \n"
                   "Class = 40   Flag = 00   Length  = 2   Type = 4F    not defined: \n"
                   "Class = 80   Flag = 00   Length  = 0   Type = 81    VT_NOSUCHINS: \n");
    EXPECT_EQ(packet.Pos, 0);
}
