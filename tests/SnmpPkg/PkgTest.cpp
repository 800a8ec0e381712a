// The package record: what a set-up run leaves in it, and what the bindings of an answer do to it.
#include "tests/lib/PkgCheck.h"
#include "tests/lib/SnmpAgent.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <tuple>

static const char Unfilled[] = "______________";

static void Answer(SnmpPackage *package, const std::string &bindings) {
    ASSERT_TRUE(ReadDatagram(package, BerResponse(1, bindings)));
}

static std::string Encoded(SnmpPackage &package, int mode, int pdu) {
    PkgPacket packet;
    package.SendMode = mode;
    package.Pdu = pdu;
    EXPECT_EQ(EncodePkg(&package, &packet), SUCCESS);
    return {reinterpret_cast<char *>(packet.Data) + packet.Pos, static_cast<size_t>(packet.Len)};
}

TEST(Setup, EveryCommandAndItsBytesOnTheWire) {
    SnmpPackage package;
    EXPECT_EQ(SnmpSetupPkg(nullptr, PKG_INIT, PKG_END), SETUP_ERR_XTL_INIT);
    for (int command : {-1, 0, PKG_END + 1}) // ends the run, whatever stands behind it
        EXPECT_EQ(SnmpSetupPkg(&package, PKG_INIT, command, 99), SETUP_ERR_INVALID_PARAM) << command;
    memset(static_cast<void *>(&package), 0xEE, sizeof package);
    ASSERT_EQ(SnmpSetup(&package, PKG_INIT, PKG_COMMUNITY, "wrcommx", PKG_USERDATA,
                        static_cast<void *>(&package), PKG_LOG, 1, PKG_NUMBER, "1.3.1", -5, PKG_COUNTER,
                        "1.3.2", 1, PKG_GAUGE, "1.3.3", 2, PKG_TIMETICKS, "1.3.4", 3, PKG_UINTEGER32, "1.3.5",
                        4),
              SUCCESS);
    // A set-up may go on in a second run.
    ASSERT_EQ(SnmpSetup(&package, PKG_STRING, "1.3.6", "lobby", PKG_OPAQUE, "1.3.7", 2, "\x01\x00",
                        PKG_OBJECT, "1.3.8", "1.3.6", PKG_EMPTY, "1.3.9", PKG_IPADDRESS, "1.3.10",
                        static_cast<int>(htonl(0x00010203)), PKG_IPADDRESS_TEXT, "1.3.11", "10.0.0.7",
                        PKG_COUNTER64, "1.3.12", 1, 2, PKG_COUNTER64, "1.3.13", 0, 5, PKG_NSAP, "1.3.14", 1,
                        "\x07", PKG_BITSTRING, "1.3.15", 8, "\xA5", PKG_BITSTRING, "1.3.16", 9, "\xA5\x80"),
              SUCCESS);
    EXPECT_EQ(package.UserData, reinterpret_cast<intptr_t>(&package));
    EXPECT_TRUE(package.LogPackets == 1 && package.Port == 161 && package.Timeout == 3);
    std::string values[] = {BerInt(-5),
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
                            BerInt(5, 0x46),
                            BerElement(0x45, "\x07"),
                            BerElement(0x03, std::string("\x00\xA5", 2)),
                            BerElement(0x03, "\x07\xA5\x80")};
    values[0] = BerElement(0x02, "\xFF\xFF\xFF\xFB"); // negative numbers always take four bytes
    std::string set, get, head = BerInt(1) + BerInt(0) + BerInt(0);
    for (size_t i = 0; i < std::size(values); i++) {
        set += BerBinding("1.3." + std::to_string(i + 1), values[i]);
        get += BerBinding("1.3." + std::to_string(i + 1), BerElement(5, ""));
    }
    auto message = [](unsigned pdu, const std::string &body) { return BerMessage(0, "wrcommx", pdu, body); };
    EXPECT_EQ(Encoded(package, PKG_MODE_GET, PDU_SET), message(0xA3, head + BerElement(0x30, set)));
    EXPECT_EQ(Encoded(package, PKG_MODE_TRAP, PDU_GET), message(0xA0, get)); // neither numbers nor a list
    std::string first = BerElement(0x30, BerBinding("1.3.1", BerElement(5, "")));
    EXPECT_EQ(Encoded(package, PKG_MODE_BROADCAST, PDU_GET), message(0xA0, head + first));
}

// An empty variable counts a 0 byte, and nothing is written behind the last variable.
TEST(Setup, WhatStandsInTheRecord) {
    SnmpPackage package;
    ASSERT_EQ(
        SnmpSetup(&package, PKG_INIT, PKG_NUMBER, "1.3.1", 7, PKG_EMPTY, "1.3.2", PKG_TABLE_NAME, "1.3.3"),
        SUCCESS);
    const intptr_t sent[] = {7, 1, 1};
    for (int i = 0; i < 3; i++) EXPECT_EQ(package.Vars[i].SendValue, sent[i]) << i;
    EXPECT_EQ(package.Vars[2].NameRoom, package.Vars[1].NameRoom + PKG_TABLE_SPARE);
    const char *rest = reinterpret_cast<const char *>(&package.Vars[3]);
    EXPECT_EQ(std::count(rest, reinterpret_cast<const char *>(&package.Vars[PKG_VARS]), 0),
              static_cast<ptrdiff_t>((PKG_VARS - 3) * sizeof(PkgVar)));
}

TEST(Setup, NamesOfResults) {
    const std::pair<int, const char *> cases[] = {{0, pErr[0]},       {16, pErr[16]},
                                                  {17, "UNKNOWN"},    {-1, "UNKNOWN"},
                                                  {-300, "UNKNOWN"},  {-301, "XTLERR_IPX_INIT      "},
                                                  {-333, pXtlErr[0]}, {-334, "UNKNOWN"}};
    for (auto [code, name] : cases) EXPECT_STREQ(PkgErrName(code), name) << code;
}

TEST(Setup, CapacitiesHold) {
    const std::tuple<std::string, std::string, int> cases[] = {// name, value, how many fit
                                                               {"1.3", "", 50},
                                                               {std::string(100, '1'), "", (2048 - 7) / 101},
                                                               {"1.3", std::string(99, 'x'), 2048 / 100},
                                                               {std::string(3000, '1'), "", 0},
                                                               {"1.3", std::string(2048, 'x'), 0},
                                                               {"1.3", std::string(2047, 'x'), 1}};
    SnmpPackage package;
    for (const auto &[name, value, want] : cases) {
        ASSERT_EQ(SnmpSetup(&package, PKG_INIT), SUCCESS);
        for (int i = 0; i < 60; i++)
            EXPECT_EQ(SnmpSetup(&package, PKG_STRING, name.c_str(), value.c_str()) == SUCCESS, i < want);
        EXPECT_EQ(package.NumVars, want) << name << value;
        EXPECT_EQ(PkgCheck(package), nullptr);
    }
    // The two communities of a write, over and over, take no further room.
    for (int i = 0; i < 1000; i++)
        ASSERT_EQ(SnmpSetup(&package, PKG_COMMUNITY, i % 2 ? "rdcomm" : "wrcommx"), SUCCESS);
}

TEST(Receive, ValuesByType) {
    struct Case {
        std::string value;
        int status, type, rclass;
        int64_t recValue; // of the types that hold a number or a length
        const char *text;
    } cases[] = {
        {BerInt(-3), 0, VT_NUMBER, 0, -3, "-3"},
        {BerInt(0xFFFFFFFF, 0x41), 0, VT_COUNTER, 1, -1, "4294967295"},
        {BerInt(0x100000000, 0x41), 15, VT_COUNTER, 1, 0, Unfilled},
        {BerElement(0x04, "%s%n"), 0, VT_STRING, 0, 4, "%s%n"},
        {BerElement(0x04, ""), 0, VT_STRING, 0, 0, ""},
        {BerElement(0x05, ""), 0, VT_EMPTY, 0, 0, ""},
        {BerElement(0x40, "\x0A\x01\x02\x07"), 0, VT_IPADDRESS, 1, 0x0702010A, "10.1.2.7"},
        {BerElement(0x40, "abc"), 15, VT_IPADDRESS, 1, 0, Unfilled},
        {BerElement(0x40, std::string(1000, 'a')), 15, VT_IPADDRESS, 1, 0, Unfilled},
        {BerElement(0x03, "\x07\xA5\x80"), 0, VT_BITSTRING, 0, 9, "0xA5 0x80 "},
        {BerElement(0x46, "\x01\x02"), 15, VT_COUNTER64, 1, 0, Unfilled},
        {BerElement(0x80, ""), 15, VT_NOSUCHOBJ, 2, 0, Unfilled},
        {BerElement(0x4F, ""), 15, VT_UNKNOWN, 1, 0x4F, Unfilled},
    };
    SnmpPackage package;
    ASSERT_EQ(SnmpSetup(&package, PKG_INIT, PKG_EMPTY, "1.3.6.1", PKG_EMPTY, "1.3.6.2"), SUCCESS);
    const PkgVar &var = package.Vars[0];
    for (const Case &c : cases) {
        // The binding behind it is read whatever became of the first, and nothing of the last host is left.
        InitRecVars(&package);
        EXPECT_TRUE(var.RecValue == 0 && var.RecData == nullptr && strcmp(var.RecText, Unfilled) == 0);
        Answer(&package, BerBinding("1.3.6.1", c.value) + BerBinding("1.3.6.2", BerInt(77)));
        EXPECT_EQ(std::tuple(var.Status, var.RecType, var.RecClass, var.RecValue, std::string(var.RecText)),
                  std::tuple(c.status, c.type, c.rclass, c.recValue, c.text))
            << testing::PrintToString(c.value);
        EXPECT_STREQ(package.Vars[1].RecText, "77") << c.text;
        EXPECT_EQ(package.NumRecVars, 2) << c.text;
    }
    Answer(&package, BerBinding("1.3.6.1", BerObject("1.3.6.1.4")));
    EXPECT_STREQ(reinterpret_cast<char *>(var.RecValue), "1.3.6.1.4");
}

// The reader of one binding, for callers with a loop of their own.
TEST(Receive, OneBinding) {
    const std::pair<std::string, bool> cases[] = {
        {BerResponse(1, BerBinding("1.3.6.1", BerInt(5)) + BerBinding("1.3.6.2", BerInt(6))), true},
        {BerResponse(1, ""), false},
        {BerResponse(1, BerBinding("1.3.6.1", BerInt(5)), 2, 1), false}};
    SnmpPackage package;
    ASSERT_EQ(SnmpSetup(&package, PKG_INIT, PKG_EMPTY, "1.3.6.1", PKG_EMPTY, "1.3.6.2"), SUCCESS);
    for (const auto &[bytes, want] : cases) {
        PkgPacket packet = Received(bytes);
        PkgProlog prolog;
        InitRecVars(&package);
        EXPECT_EQ(DecodeVariable(&packet, &package, &prolog), want);
        EXPECT_EQ(prolog.Community != nullptr, want);
        EXPECT_STREQ(package.Vars[0].RecText, want ? "5" : Unfilled);
        EXPECT_STREQ(package.Vars[1].RecText, Unfilled);
        PkgFreeProlog(&prolog);
    }
}

TEST(Receive, ValuesThatNoLongerFit) {
    const std::tuple<std::string, int> values[] = {
        // one behind the other, and the status of each
        {BerElement(0x04, std::string(1300, 'a')), 0},
        {BerElement(0x04, std::string(1300, 'b')), 15},
        {BerElement(0x04, "still fits"), 0},
        {BerElement(0x03, std::string(200, 0)), 15},
        {BerElement(0x04, std::string(2048 - 7 - 1301 - 11 - 1, 'e')), 0},
        {BerInt(5), 15},
        {BerElement(0x05, ""), 0}};
    SnmpPackage package;
    ASSERT_EQ(SnmpSetup(&package, PKG_INIT, PKG_EMPTY_LIST, "1.3.0", "1.3.1", "1.3.2", "1.3.3", "1.3.4",
                        "1.3.5", "1.3.6", nullptr),
              SUCCESS);
    for (int i = 0; i < 7; i++) {
        Answer(&package, BerBinding("1.3." + std::to_string(i), std::get<0>(values[i])));
        EXPECT_EQ(package.Vars[i].Status, std::get<1>(values[i])) << i;
        EXPECT_EQ(PkgCheck(package), nullptr);
    }
    EXPECT_STREQ(package.Vars[1].RecText, Unfilled);
    EXPECT_EQ(package.RecValueUsed, PKG_VALUES_SIZE);
}
