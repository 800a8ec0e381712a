// Signatures of firmware files.
#include "prndeck/core/PrdUpgrade.h"

#include "prndeck/core/PrdSend.h"
#include "tests/lib/AppTool.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>

struct UpgradeCase {
    const char *what;
    const char *item;
    std::string head;
    UpgradeResult want;
};

// The words in front of the model, "@PJL ENTER LANGUAGE = XFLASH", may stand behind others.
static const UpgradeCase Cases[] = {
    {"an unknown kind", "tape", "/download", UPGRADE_UNSUPPORTED},
    {"no kind", "", "/download", UPGRADE_UNSUPPORTED},
    {"PostScript", "ps", "%!PS\nsystemdict /download get exec", UPGRADE_FITS},
    {"PostScript of another use", "ps", "%!PS\nshowpage", UPGRADE_INVALID},
    {"the card", "milan", "MiLAN Firmware Update, 2.1", UPGRADE_FITS},
    {"the card's words further on", "milan", " MiLAN Firmware Update, 2.1", UPGRADE_INVALID},
    {"joined by an equals sign", "pjl P340 P345", "\033%-12345X@PJL ENTER LANGUAGE=XFLASH P345-B\n",
     UPGRADE_FITS},
    {"a comma between models", "pjl P340,P345", "@PJL ENTER LANGUAGE=XFLASH P345", UPGRADE_FITS},
    {"blanks around it", "pjl P340", "@PJL ENTER LANGUAGE = XFLASH P340\n", UPGRADE_INVALID},
    {"another model", "pjl P340", "@PJL ENTER LANGUAGE=XFLASH C410\n", UPGRADE_OTHER_MODEL},
    {"a part of the model", "pjl P340", "@PJL ENTER LANGUAGE=XFLASH P34\n", UPGRADE_OTHER_MODEL},
    {"no model accepted", "pjl", "@PJL ENTER LANGUAGE=XFLASH P340\n", UPGRADE_OTHER_MODEL},
    {"cut behind the words", "pjl P340", "@PJL ENTER LANGUAGE=XFLASH", UPGRADE_OTHER_MODEL},
    {"a comment first", "pjl P340", "@PJL COMMENT x\n@PJL ENTER LANGUAGE=XFLASH P340\n", UPGRADE_FITS},
    {"the start twice", "pjl P340", "@PJL @PJL ENTER LANGUAGE=XFLASH P340\n", UPGRADE_FITS},
    {"another language first", "pjl P340", "@PJL ENTER LANGUAGE=PCL\n@PJL ENTER LANGUAGE=XFLASH P340\n",
     UPGRADE_FITS},
    {"no start", "pjl P340", "ENTER LANGUAGE=XFLASH P340\n", UPGRADE_INVALID},
    {"a NUL behind the start", "pjl P340", std::string("@PJL\0ENTER LANGUAGE=XFLASH P340", 31),
     UPGRADE_INVALID},
    {"nothing", "pjl P340", "", UPGRADE_INVALID},
};

TEST(Upgrade, SignaturesOfTheThreeKinds) {
    for (const UpgradeCase &c : Cases) EXPECT_EQ(TestUpgrade(c.item, c.head), c.want) << c.what;
}

TEST(Upgrade, WhatIsReadOfAFile) {
    AppTool tool;
    std::string path = tool.Path("firmware");
    char head[UPGRADE_HEAD];
    std::ofstream(path) << std::string(2000, 'x');
    EXPECT_EQ(ReadUpgradeHead(path.c_str(), head), UPGRADE_HEAD);
    EXPECT_EQ(ReadUpgradeHead(tool.Path("missing").c_str(), head), -1);
    EXPECT_EQ(ReadUpgradeHead(tool.Path(".").c_str(), head), -1) << "a directory";
    ASSERT_EQ(mkfifo(tool.Path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(ReadUpgradeHead(tool.Path("pipe").c_str(), head), 0) << "nobody writes";
}

TEST(Send, LinesKeepTheirShapeWhateverStandsInThem) {
    EXPECT_EQ(MakeSendLine(SEND_TEST_PAGE, "q1", "TestPage.ps"), "prnout -dq1  -oNoUi TestPage.ps\n");
    EXPECT_EQ(MakeSendLine(SEND_FILE, "q1", "/tmp/a b"), "prnout -dq1   '/tmp/a b'\n");
    EXPECT_EQ(MakeSendLine(SEND_UPGRADE, "q1", "-x"), "prnout -dq1 -DL -oNoUi ./-x\n");
    EXPECT_EQ(MakeRemoveLine("q1", " "), "");
    EXPECT_EQ(MakeRemoveLine("q1", "-"), "");
}
