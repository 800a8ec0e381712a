// The BER codec: exact bytes, refused contents, and no byte outside the buffer whatever a packet holds.
#include "SnmpPkg/Decode.h"
#include "SnmpPkg/Encode.h"
#include "SnmpPkg/Pkg.h"
#include "common/MemMgr.h"
#include "tests/lib/PkgCheck.h"
#include "tests/lib/SnmpAgent.h"

#include <cstring>
#include <gtest/gtest.h>

static std::string Hex(const std::string &bytes) {
    std::string out;
    char pair[4];
    for (char ch : bytes) {
        snprintf(pair, sizeof pair, "%02X ", static_cast<uint8_t>(ch));
        out += pair;
    }
    if (!out.empty()) out.pop_back();
    return out;
}

static std::string Unhex(const char *text) {
    std::string out;
    for (char *end; *text != 0; text = end + (*end == ' ')) out += static_cast<char>(strtoul(text, &end, 16));
    return out;
}

static std::string Written(const PkgPacket &packet) {
    return std::string(reinterpret_cast<const char *>(packet.Data) + packet.Pos,
                       static_cast<size_t>(packet.Len));
}

static PkgPacket Received(const std::string &bytes) {
    PkgPacket packet = {};
    memcpy(packet.Data, bytes.data(), bytes.size());
    packet.Len = static_cast<int32_t>(bytes.size());
    return packet;
}

TEST(Codec, IntegersHaveTheShortestForm) {
    struct Case {
        int32_t value;
        const char *want;
    } cases[] = {
        {0, "02 01 00"},           {127, "02 01 7F"},
        {128, "02 02 00 80"},      {255, "02 02 00 FF"},
        {256, "02 02 01 00"},      {32767, "02 02 7F FF"},
        {32768, "02 03 00 80 00"}, {INT32_MAX, "02 04 7F FF FF FF"},
        {-1, "02 04 FF FF FF FF"}, {INT32_MIN, "02 04 80 00 00 00"},
    };
    for (const Case &c : cases) {
        PkgPacket packet;
        PkgStartPacket(&packet);
        int size = PkgEncodeInt(&packet, c.value, BER_INTEGER);
        EXPECT_EQ(Hex(Written(packet)), c.want) << c.value;
        EXPECT_EQ(size, packet.Len) << c.value;
        PkgHeader header;
        int32_t back = 0;
        EXPECT_TRUE(PkgDecodeInt(&packet, &header, &back));
        EXPECT_EQ(back, c.value);
    }
}

TEST(Codec, LengthsChangeFormAt127And256) {
    struct Case {
        int length;
        const char *want;
    } cases[] = {{0, "04 00"},      {126, "04 7E"},       {127, "04 81 7F"},    {128, "04 81 80"},
                 {255, "04 81 FF"}, {256, "04 82 01 00"}, {1024, "04 82 04 00"}};
    std::string text(1024, 'x');
    for (const Case &c : cases) {
        PkgPacket packet;
        PkgStartPacket(&packet);
        int size = PkgEncodeStr(&packet, text.data(), c.length, BER_STRING);
        std::string bytes = Written(packet);
        EXPECT_EQ(Hex(bytes.substr(0, bytes.size() - static_cast<size_t>(c.length))), c.want);
        EXPECT_EQ(size, packet.Len);
        PkgHeader header;
        char back[PKG_TEXT_SIZE];
        EXPECT_TRUE(PkgDecodeStr(&packet, &header, back, c.length + 1)) << c.length;
        EXPECT_EQ(strlen(back), static_cast<size_t>(c.length));
    }
}

TEST(Codec, ObjectIdentifiers) {
    struct Case {
        const char *text;
        const char *want;
        const char *back;
    } cases[] = {
        {"1.3.6.1", "06 03 2B 06 01", "1.3.6.1"},
        {".1.3.6.1", "06 03 2B 06 01", "1.3.6.1"},
        {"1.3", "06 01 2B", "1.3"},
        {"", "06 01 00", "0.0"},
        {nullptr, "06 01 00", "0.0"},
        {"1", "06 01 28", "1.0"},
        {"1.3.127.128.300.16384", "06 09 2B 7F 81 00 82 2C 81 80 00", "1.3.127.128.300.16384"},
        {"1.3.2147483647", "06 06 2B 87 FF FF FF 7F", "1.3.2147483647"},
    };
    for (const Case &c : cases) {
        PkgPacket packet;
        PkgStartPacket(&packet);
        PkgEncodeObjectId(&packet, c.text);
        EXPECT_EQ(Hex(Written(packet)), c.want);
        PkgHeader header;
        char back[PKG_OID_TEXT_SIZE];
        EXPECT_TRUE(PkgDecodeObjectId(&packet, &header, back, sizeof back)) << c.want;
        EXPECT_STREQ(back, c.back);
        EXPECT_EQ(header.Len, static_cast<int>(strlen(c.back)));
    }
    // 127 arcs are sent, one more is not.
    std::string arcs = "1.3";
    for (int i = 2; i < 127; i++) arcs += ".7";
    PkgPacket packet;
    PkgStartPacket(&packet);
    EXPECT_EQ(PkgEncodeObjectId(&packet, arcs.c_str()), 128);
    PkgStartPacket(&packet);
    PkgEncodeObjectId(&packet, (arcs + ".7").c_str());
    EXPECT_FALSE(PkgEncodePacketProlog(&packet, "rdcomm", 1, PDU_GET));
}

TEST(Codec, MessagesByteByByte) {
    PkgVar var = {};
    char name[] = "1.3.6.1.2.1.1.5.0";
    var.Name = name;
    struct Case {
        const char *name;
        int pdu; // -1: trap
        int (*encode)(PkgPacket *packet, const PkgVar *var);
        intptr_t value, data;
        const char *want;
    } cases[] = {
        {"get", PDU_GET, PkgEncodeGetVar, 0, 0,
         "30 26 02 01 00 04 06 72 64 63 6F 6D 6D A0 19 02 01 01 02 01 00 02 01 00 30 0E 30 0C 06 08 2B 06 01 "
         "02 01 01 "
         "05 00 05 00"},
        {"trap", -1, PkgEncodeGetVar, 0, 0,
         "30 1B 02 01 00 04 06 72 64 63 6F 6D 6D A0 0E 30 0C 06 08 2B 06 01 02 01 01 05 00 05 00"},
        {"set small counter64", PDU_SET, PkgEncodeInt64Var, 0, 5,
         "30 27 02 01 00 04 06 72 64 63 6F 6D 6D A3 1A 02 01 01 02 01 00 02 01 00 30 0F 30 0D 06 08 2B 06 01 "
         "02 01 01 "
         "05 00 46 01 05"},
        {"set 9 bits", PDU_SET, PkgEncodeBitStrVar, 9, reinterpret_cast<intptr_t>("\xA5\x80"),
         "30 29 02 01 00 04 06 72 64 63 6F 6D 6D A3 1C 02 01 01 02 01 00 02 01 00 30 11 30 0F 06 08 2B 06 01 "
         "02 01 01 "
         "05 00 03 03 07 A5 80"},
    };
    for (const Case &c : cases) {
        PkgPacket packet;
        PkgStartPacket(&packet);
        var.SendValue = c.value;
        var.SendData = c.data;
        EXPECT_EQ(c.encode(&packet, &var), packet.Len) << c.name;
        bool fits = c.pdu < 0 ? PkgEncodeTrapPacketProlog(&packet, "rdcomm")
                              : PkgEncodePacketProlog(&packet, "rdcomm", 1, c.pdu);
        EXPECT_TRUE(fits) << c.name;
        EXPECT_EQ(Hex(Written(packet)), c.want) << c.name;
    }
}

TEST(Codec, OverrunIsFalseAndWritesNothingOutside) {
    struct {
        char before[64];
        PkgPacket packet;
        char behind[64];
    } guarded;
    memset(&guarded, 0x55, sizeof guarded);
    std::string text(2000, 'x');
    int fitted = 0;
    for (int length = 0; length <= 2000; length++) {
        PkgStartPacket(&guarded.packet);
        PkgVar var = {};
        var.Name = text.data() + 2000;
        var.SendValue = length;
        var.SendData = reinterpret_cast<intptr_t>(text.data());
        PkgEncodeStrVar(&guarded.packet, &var, BER_STRING);
        if (!PkgEncodePacketProlog(&guarded.packet, "rdcomm", 1, PDU_SET)) continue;
        fitted = length;
        ASSERT_EQ(guarded.packet.Len, PKG_WRITE_START - guarded.packet.Pos);
    }
    EXPECT_EQ(fitted, 1399 - 43); // headers with two-byte lengths, version, community, three integers, "0.0"
    for (int length : {-1, INT32_MIN, INT32_MAX}) {
        PkgStartPacket(&guarded.packet);
        EXPECT_EQ(PkgEncodeStr(&guarded.packet, "x", length, BER_STRING), 0);
        EXPECT_FALSE(PkgEncodePacketProlog(&guarded.packet, "rdcomm", 1, PDU_SET));
    }
    for (char ch : guarded.before) ASSERT_EQ(ch, 0x55);
    for (char ch : guarded.behind) ASSERT_EQ(ch, 0x55);
}

TEST(Codec, IntegerContents) {
    struct Case {
        const char *bytes;
        bool ok;
        int32_t want;
    } cases[] = {
        {"02 00", true, 0},
        {"02 01 80", true, -128},
        {"41 04 FF FF FF FF", true, -1},
        {"41 05 00 FF FF FF FF", true, -1},
        {"41 05 01 00 00 00 00", false, 0},
        {"02 06 00 00 12 34 56 78", true, 0x12345678},
        {"02 84 00 00 00 01 07", true, 7},
        {"02 85 01 00 00 00 01 07", true, 7}, // a length of five bytes keeps its low 32 bits
        {"02 84 80 00 00 01 07", false, 0},   // negative
        {"02 82 05 79", false, 0},            // 1401
    };
    for (const Case &c : cases) {
        PkgPacket packet = Received(Unhex(c.bytes));
        PkgHeader header;
        int32_t value = 0;
        EXPECT_EQ(PkgDecodeInt(&packet, &header, &value), c.ok) << c.bytes;
        EXPECT_EQ(value, c.want) << c.bytes;
    }
}

TEST(Codec, ObjectIdContentsThatAreRefused) {
    struct Case {
        const char *bytes;
        int pos; // afterwards
    } cases[] = {
        {"06 00 05 00", 2},    // nothing to read, nothing consumed
        {"06 02 2B 86 01", 4}, // the last arc runs past the content
        {"06 83 00 FF FF 2B", PKG_READ_END},
        {"04 01 2B", 2}, // another tag: the content is left to the caller
    };
    for (const Case &c : cases) {
        PkgPacket packet = Received(Unhex(c.bytes));
        PkgHeader header;
        char text[PKG_OID_TEXT_SIZE];
        EXPECT_FALSE(PkgDecodeObjectId(&packet, &header, text, sizeof text)) << c.bytes;
        if (c.pos != PKG_READ_END) {
            EXPECT_EQ(packet.Pos, c.pos) << c.bytes;
        }
    }
    // A whole packet of one identifier, and the longest text that may come out of one.
    std::string all = Unhex("06 82 05 74") + std::string(1396, '\x7F');
    PkgPacket packet = Received(all);
    PkgHeader header;
    char text[PKG_OID_TEXT_SIZE];
    EXPECT_TRUE(PkgDecodeObjectId(&packet, &header, text, sizeof text));
    EXPECT_EQ(strlen(text), 3u + 1395 * 4); // "3.7" and ".127" each
    packet.Pos = 0;
    EXPECT_FALSE(PkgDecodeObjectId(&packet, &header, text, 100));
    EXPECT_EQ(packet.Pos, PKG_DATA_SIZE);
}

TEST(Codec, WideAndBitContents) {
    PkgHeader header;
    PkgInt64 wide;
    PkgPacket packet = Received(Unhex("46 08 01 02 03 04 05 06 07 08"));
    EXPECT_TRUE(PkgDecodeInt64(&packet, &header, &wide));
    EXPECT_EQ(wide.High, 0x01020304u);
    EXPECT_EQ(wide.Low, 0x05060708u);
    packet = Received(Unhex("46 05 FF 02 03 04 05"));
    EXPECT_TRUE(PkgDecodeInt64(&packet, &header, &wide));
    EXPECT_EQ(wide.High, 0xFF020304u);
    EXPECT_EQ(wide.Low, 0xFFFFFF05u);
    packet = Received(Unhex("46 09 01 00 00 00 00 00 00 00 00"));
    EXPECT_FALSE(PkgDecodeInt64(&packet, &header, &wide));

    struct Case {
        const char *bytes;
        bool ok;
        int32_t count;
    } cases[] = {{"03 03 07 A5 80", true, 9},
                 {"03 02 00 A5", true, 8},
                 {"03 01 00", true, 0},
                 {"03 00", false, 0},
                 {"03 01 01", false, 0},
                 {"03 02 08 A5", false, 0},
                 {"03 05 00 01 02 03 04", false, 0}};
    for (const Case &c : cases) {
        uint8_t bytes[3] = {};
        PkgBits bits = {0, bytes, sizeof bytes};
        packet = Received(Unhex(c.bytes));
        EXPECT_EQ(PkgDecodeBitStr(&packet, &header, &bits), c.ok) << c.bytes;
        EXPECT_EQ(bits.Count, c.count) << c.bytes;
        EXPECT_EQ(packet.Pos, packet.Len) << c.bytes;
    }
    PkgBits none = {0, nullptr, 8};
    packet = Received(Unhex("03 02 00 A5"));
    EXPECT_FALSE(PkgDecodeBitStr(&packet, &header, &none));
}

TEST(Codec, HeadersAtTheEndOfTheBuffer) {
    PkgPacket packet = {};
    memset(packet.Data, 0xFF, sizeof packet.Data);
    packet.Len = PKG_DATA_SIZE;
    PkgHeader header;
    for (int pos : {-5, 0, 1290, 1398, 1399, 1400, 1401, 5000}) {
        packet.Pos = pos;
        EXPECT_FALSE(PkgDecodeHeader(&packet, &header)) << pos;
        EXPECT_LE(packet.Pos, PKG_READ_END) << pos;
        packet.Pos = pos;
        PkgRdInt(&packet);
        EXPECT_LE(packet.Pos, PKG_READ_END) << pos;
    }
}

TEST(Codec, Prologs) {
    std::string binding = BerElement(0x30, BerBinding("1.3.6.1", BerInt(5)));
    std::string body = BerInt(7) + BerInt(0) + BerInt(0) + binding;
    std::string trap = BerObject("1.3.6.1.4.1") + BerElement(0x40, "\x0A\x01\x02\x03") + BerInt(6) +
                       BerInt(4) + BerInt(99, 0x43) + binding;
    std::string good = BerMessage(0, "pub%n%slic", 0xA2, body);
    struct Case {
        const char *name;
        std::string bytes;
        bool ok;
    } cases[] = {
        {"response", good, true},
        {"bytes behind the message", good + "tail", true},
        {"a byte short", good.substr(0, good.size() - 1), false},
        {"version 2c", BerMessage(1, "public", 0xA2, body), false},
        {"no such name", BerResponse(7, binding, 2, 1), false},
        {"error index alone", BerResponse(7, binding, 0, 1), false},
        {"primitive PDU", BerMessage(0, "public", 0x82, body), false},
        {"community of another type", BerElement(0x30, BerInt(0) + BerInt(0) + BerElement(0xA2, body)),
         false},
        {"a set for a sequence", BerElement(0x31, good.substr(2)), false},
        {"trap", BerMessage(0, "public", 0xA4, trap), true},
        {"trap without address", BerMessage(0, "public", 0xA4, BerObject("1.3") + BerElement(0x40, "abc")),
         false},
        {"community of 1300 bytes", BerMessage(0, std::string(1300, 'c'), 0xA2, body), true},
        {"nothing", "", false},
    };
    for (const Case &c : cases) {
        PkgPacket packet = Received(c.bytes);
        PkgProlog prolog;
        bool ok = PkgDecodePacketProlog(&packet, &prolog);
        EXPECT_EQ(ok, c.ok) << c.name;
        EXPECT_EQ(prolog.Community != nullptr, ok) << c.name;
        PkgFreeProlog(&prolog);
    }
    PkgPacket packet = Received(good + "tail");
    PkgProlog prolog;
    ASSERT_TRUE(PkgDecodePacketProlog(&packet, &prolog));
    EXPECT_STREQ(prolog.Community, "pub%n%slic");
    EXPECT_EQ(prolog.RequestId, 7);
    EXPECT_EQ(packet.Len, static_cast<int>(good.size()));
    EXPECT_EQ(packet.Data[packet.Pos], BER_SEQUENCE); // the list of bindings
    PkgFreeProlog(&prolog);
    packet = Received(BerMessage(0, "public", 0xA4, trap));
    ASSERT_TRUE(PkgDecodePacketProlog(&packet, &prolog));
    EXPECT_STREQ(prolog.Enterprise, "1.3.6.1.4.1");
    EXPECT_EQ(prolog.AgentAddress[3], 3);
    EXPECT_EQ(prolog.Specific, 4);
    EXPECT_EQ(prolog.TimeStamp, 99);
    PkgFreeProlog(&prolog);
    packet = Received(BerResponse(7, binding, 2, 1));
    EXPECT_FALSE(PkgDecodePacketProlog(&packet, &prolog));
    EXPECT_EQ(prolog.ErrorStatus, 2); // told, though refused
    EXPECT_EQ(pMemB, nullptr);        // every copy was given back
}

TEST(Codec, EveryTruncationAndEveryChangedByteIsSurvived) {
    std::string all;
    unsigned tags[] = {0x02, 0x03, 0x04, 0x05, 0x06, 0x40, 0x41, 0x44, 0x46, 0x47, 0x81};
    for (unsigned tag : tags)
        all += BerBinding("1.3.6.1.2.1." + std::to_string(tag * 200),
                          BerElement(tag, std::string("\x00\x01\x02\x03", tag == 5 ? 0 : 4)));
    std::string bodies[] = {
        BerResponse(1, all),
        BerResponse(70000, BerBinding("1.3.6.1.2.1.1.5.0", BerElement(0x04, std::string(300, 'n')))),
        BerMessage(0, "public", 0xA4,
                   BerObject("1.3.6.1.4.1") + BerElement(0x40, "\x0A\x01\x02\x03") + BerInt(6) + BerInt(4) +
                       BerInt(99, 0x43) + BerElement(0x30, all)),
    };
    SnmpPackage package;
    ASSERT_EQ(SnmpSetup(&package, PKG_INIT, PKG_EMPTY, "1.3.6.1.2.1.1.5.0"), SUCCESS);
    auto read = [&](const std::string &bytes) {
        PkgPacket packet = Received(bytes);
        PkgProlog prolog;
        PkgPrologText text;
        InitRecVars(&package);
        if (PkgReadProlog(&packet, &prolog, &text)) DecodeVariables(&packet, &package, prolog.Version);
        const char *wrong = PkgCheck(package);
        ASSERT_EQ(wrong, nullptr) << wrong;
    };
    for (const std::string &good : bodies) {
        for (size_t length = 0; length <= good.size(); length++) read(good.substr(0, length));
        for (size_t at = 0; at < good.size(); at++) {
            std::string bad = good;
            for (int value = 0; value < 256; value++) {
                bad[at] = static_cast<char>(value);
                read(bad);
                if (HasFatalFailure()) FAIL() << Hex(bad);
            }
        }
    }
}
