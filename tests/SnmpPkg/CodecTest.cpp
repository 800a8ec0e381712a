// The BER codec: exact bytes, refused contents, and no byte outside the buffer whatever a packet holds.
#include "SnmpPkg/Decode.h"
#include "SnmpPkg/Encode.h"
#include "common/MemMgr.h"
#include "tests/lib/PkgCheck.h"
#include "tests/lib/SnmpAgent.h"

#include <gtest/gtest.h>
#include <tuple>
#include <vector>

static std::string Unhex(const char *text) {
    std::string out;
    for (char *end; *text != 0; text = end + (*end == ' ')) out += static_cast<char>(strtoul(text, &end, 16));
    return out;
}

static std::string Written(const PkgPacket &packet) {
    return {reinterpret_cast<const char *>(packet.Data) + packet.Pos, static_cast<size_t>(packet.Len)};
}

TEST(Codec, ObjectIdentifiers) {
    const std::tuple<const char *, const char *, const char *> cases[] = {
        {".1.3.6.1", "06 03 2B 06 01", "1.3.6.1"},
        {"", "06 01 00", "0.0"},
        {"1", "06 01 28", "1.0"},
        {"1.3.127.128.300.16384", "06 09 2B 7F 81 00 82 2C 81 80 00", "1.3.127.128.300.16384"},
        {"1.3.2147483647", "06 06 2B 87 FF FF FF 7F", "1.3.2147483647"}};
    PkgHeader header;
    char back[PKG_OID_TEXT_SIZE];
    for (auto [text, want, again] : cases) {
        PkgPacket packet;
        PkgStartPacket(&packet);
        PkgEncodeObjectId(&packet, text);
        EXPECT_EQ(Written(packet), Unhex(want)) << text;
        EXPECT_TRUE(PkgDecodeObjectId(&packet, &header, back, sizeof back)) << text;
        EXPECT_STREQ(back, again);
    }
    // A whole packet of one identifier is the longest text that may come out of one.
    PkgPacket packet = Received(Unhex("06 82 05 74") + std::string(1396, '\x7F'));
    EXPECT_TRUE(PkgDecodeObjectId(&packet, &header, back, sizeof back));
    EXPECT_EQ(strlen(back), 3u + 1395 * 4); // "3.7" and ".127" each
    // Less room than the text needs is refused, and nothing is written behind it.
    packet = Received(Unhex("06 0B 2B 8F FF FF FF 7F 8F FF FF FF 7F"));
    for (int capacity = 0; capacity <= 40; capacity++) {
        std::vector<char> room(static_cast<size_t>(capacity));
        packet.Pos = 0;
        bool fits = PkgDecodeObjectId(&packet, &header, room.data(), capacity);
        EXPECT_TRUE(fits ? room.data() == std::string("1.3.4294967295.4294967295") : capacity < 37)
            << capacity;
        EXPECT_EQ(packet.Pos, capacity == 0 ? 2 : 13) << capacity;
    }
}

TEST(Codec, WhatDoesNotFitIsNotWritten) {
    std::string text(2000, 'x');
    PkgPacket packet;
    int fitted = 0;
    for (int length = 0; length <= 2000; length++) {
        PkgVar var = {};
        var.SendValue = length;
        var.SendData = reinterpret_cast<intptr_t>(text.data());
        PkgStartPacket(&packet);
        PkgEncodeStrVar(&packet, &var, BER_STRING);
        if (PkgEncodePacketProlog(&packet, "rdcomm", 1, PDU_SET)) fitted = length;
    }
    EXPECT_EQ(fitted, 1399 - 43); // headers with two-byte lengths, version, community, three integers, "0.0"
    for (auto [prolog, most] : {std::pair(0, 1399 - 24), std::pair(1, 1399 - 13)}) {
        for (int length = 0; length <= 2000; length++) {
            std::string community(static_cast<size_t>(length), 'c');
            PkgStartPacket(&packet);
            bool fits = prolog == 0 ? PkgEncodePacketProlog(&packet, community.c_str(), 1, PDU_GET)
                                    : PkgEncodeTrapPacketProlog(&packet, community.c_str());
            ASSERT_EQ(fits, length <= most) << prolog << " " << length;
        }
    }
    for (int length : {-1, INT32_MIN, INT32_MAX}) {
        PkgStartPacket(&packet);
        EXPECT_EQ(PkgEncodeStr(&packet, "x", length, BER_STRING), 0);
        EXPECT_FALSE(PkgEncodePacketProlog(&packet, "rdcomm", 1, PDU_SET));
    }
    std::string arcs = "1.3";
    for (int i = 2; i < 127; i++) arcs += ".7";
    PkgStartPacket(&packet);
    EXPECT_EQ(PkgEncodeObjectId(&packet, arcs.c_str()), 128);
    PkgEncodeObjectId(&packet, (arcs + ".7").c_str());
    EXPECT_FALSE(PkgEncodePacketProlog(&packet, "rdcomm", 1, PDU_GET));
}

TEST(Codec, NumberContents) {
    const std::tuple<const char *, bool, int32_t> cases[] = {
        {"02 00", true, 0},
        {"02 01 80", true, -128},
        {"41 05 00 FF FF FF FF", true, -1},
        {"41 05 01 00 00 00 00", false, 0},
        {"02 06 00 00 12 34 56 78", true, 0x12345678},
        {"02 85 01 00 00 00 01 07", true, 7}, // a length of five bytes keeps its low 32 bits
        {"02 84 80 00 00 01 07", false, 0},   // negative
        {"02 82 05 79", false, 0}};           // 1401
    PkgHeader header;
    for (auto [bytes, ok, want] : cases) {
        PkgPacket packet = Received(Unhex(bytes));
        int32_t value = 0;
        EXPECT_EQ(PkgDecodeInt(&packet, &header, &value), ok) << bytes;
        EXPECT_EQ(value, want) << bytes;
    }
}

TEST(Codec, LongNumberContents) {
    const std::tuple<const char *, bool, uint32_t, uint32_t> cases[] = {
        {"46 00", true, 0, 0},
        {"46 01 05", true, 5, 0}, // the first four bytes are the high ones
        {"46 04 01 02 03 04", true, 0x01020304, 0},
        {"46 05 FF 02 03 04 05", true, 0xFF020304, 0xFFFFFF05},
        {"46 08 01 02 03 04 05 06 07 08", true, 0x01020304, 0x05060708},
        {"46 09 00 02 03 04 05 06 07 08 09", true, 0x00020304, 0x06070809},
        {"46 09 01 02 03 04 05 06 07 08 09", false, 0, 0}};
    PkgHeader header;
    for (auto [bytes, ok, high, low] : cases) {
        PkgPacket packet = Received(Unhex(bytes));
        PkgInt64 value = {1, 1};
        EXPECT_EQ(PkgDecodeInt64(&packet, &header, &value), ok) << bytes;
        EXPECT_EQ(std::tuple(value.High, value.Low), std::tuple(high, low)) << bytes;
    }
}

static const std::string Binding = BerElement(0x30, BerBinding("1.3.6.1", BerInt(5)));
static const std::string Trap = BerObject("1.3.6.1.4.1") + BerElement(0x40, "\x0A\x01\x02\x03") + BerInt(6) +
                                BerInt(4) + BerInt(99, 0x43) + Binding;

TEST(Codec, Prologs) {
    std::string body = BerInt(7) + BerInt(0) + BerInt(0) + Binding;
    std::string good = BerMessage(0, "pub%n%slic", 0xA2, body);
    const std::tuple<const char *, std::string, bool> cases[] = {
        {"bytes behind the message", good + "tail", true},
        {"a byte short", good.substr(0, good.size() - 1), false},
        {"version 2c", BerMessage(1, "public", 0xA2, body), false},
        {"a set in the place of the sequence", "\x31" + good.substr(1), false},
        {"a PDU without elements", BerMessage(0, "public", 0x82, body), false},
        {"a PDU of another class", BerMessage(0, "public", 0x62, body), false},
        {"a community that is a number", BerElement(0x30, BerInt(0) + BerInt(7) + BerElement(0xA2, body)),
         false},
        {"an error index alone", BerResponse(7, Binding, 0, 1), false},
        {"no such name", BerResponse(7, Binding, 2, 1), false},
        {"trap", BerMessage(0, "public", 0xA4, Trap), true},
        {"trap without address", BerMessage(0, "public", 0xA4, BerObject("1.3") + BerElement(0x40, "abc")),
         false},
        {"community of 1300 bytes", BerMessage(0, std::string(1300, 'c'), 0xA2, body), true}};
    PkgProlog prolog;
    for (const auto &[name, bytes, want] : cases) {
        PkgPacket packet = Received(bytes);
        bool ok = PkgDecodePacketProlog(&packet, &prolog);
        EXPECT_EQ(ok, want) << name;
        EXPECT_EQ(prolog.Community != nullptr, ok) << name;
        if (std::string(name) == "bytes behind the message") {
            EXPECT_STREQ(prolog.Community, "pub%n%slic");
            EXPECT_EQ(packet.Len, static_cast<int>(good.size()));
        }
        if (std::string(name) == "trap") {
            EXPECT_STREQ(prolog.Enterprise, "1.3.6.1.4.1");
            EXPECT_TRUE(prolog.AgentAddress[3] == 3 && prolog.TimeStamp == 99);
        }
        PkgFreeProlog(&prolog);
    }
    PkgPacket packet = Received(BerResponse(7, Binding, 2, 1));
    EXPECT_FALSE(PkgDecodePacketProlog(&packet, &prolog));
    EXPECT_EQ(prolog.ErrorStatus, 2); // told, though refused
    EXPECT_EQ(pMemB, nullptr);        // every copy was given back
}

TEST(Codec, EveryTruncationAndEveryChangedByteIsSurvived) {
    std::string all;
    for (unsigned tag : {0x02, 0x03, 0x04, 0x05, 0x06, 0x40, 0x41, 0x44, 0x46, 0x47, 0x81})
        all += BerBinding("1.3.6.1.2.1." + std::to_string(tag * 200),
                          BerElement(tag, std::string("\x00\x01\x02\x03", tag == 5 ? 0 : 4)));
    std::string full =
        BerResponse(1, all + BerBinding("1.3.6.1.2.1.1.5.0", BerElement(0x04, std::string(1166, 'n'))));
    ASSERT_EQ(full.size(), static_cast<size_t>(PKG_DATA_SIZE));
    SnmpPackage package;
    ASSERT_EQ(SnmpSetup(&package, PKG_INIT, PKG_EMPTY, "1.3.6.1.2.1.1.5.0"), SUCCESS);
    auto read = [&](const std::string &bytes) {
        InitRecVars(&package);
        ReadDatagram(&package, bytes);
        const char *wrong = PkgCheck(package);
        ASSERT_EQ(wrong, nullptr) << wrong << ": " << testing::PrintToString(bytes);
    };
    for (const std::string &good : {full, BerResponse(70000, all), BerMessage(0, "public", 0xA4, Trap)}) {
        for (size_t length = 0; length <= good.size(); length++) read(good.substr(0, length));
        for (size_t i = 0; i < good.size() * 256 && !HasFatalFailure(); i++) {
            std::string bad = good;
            bad[i / 256] = static_cast<char>(i);
            read(bad);
        }
    }
}
