// The words of the command line, and the two lists of models.
#include "prndeck/Prd.h"

#include "common/MemMgr.h"
#include "common/PrdCommonUtils.h"
#include "common/utils.h"
#include "tests/lib/AppTool.h"

#include <gtest/gtest.h>
#include <unistd.h>

TEST(ScanWords, FromLeftToRight) {
    struct Case {
        std::vector<std::string> words;
        const char *want; // face, -wiz, -nd as left behind, or status and text of a run that ended
    };
    const Case cases[] = {
        {{}, "0 0 0"},
        {{"-tty"}, "1 0 0"},
        {{"update", "-d", "zzz", "", "-TTY", "-t", "-wizz", "tty"}, "0 0 0"},
        {{"zzz", "-nd", "-wiz"}, "0 1 1"},
        {{"-tty,-wiz"}, "1 0 0"}, // a run of the list counts as its first word
        {{"-tty", "junk", "-v", "-help"}, "end 0 prndeck 4.50.29\n"},
        {{"-help", "-v"}, "end 1 prndeck: WARNING: can't open display\n"},
    };
    for (const Case &c : cases) {
        ChildEnd end = RunForked([&] {
            std::vector<char *> words;
            for (const std::string &word : c.words) words.push_back(const_cast<char *>(word.c_str()));
            int face = ScanWords(static_cast<int>(words.size()), words.data());
            fprintf(stderr, "%i %i %i", face, flWiz, flDiscOff);
            fflush(stderr);
            _exit(99);
        });
        EXPECT_EQ(end.status == 99 ? end.err : "end " + std::to_string(end.status) + " " + end.err, c.want);
        EXPECT_EQ(end.out, "");
    }
}

static std::string Models() {
    return std::string(PpdList ? PpdList : "") + "|" + PpdModelList;
}

TEST(LoadModels, SortedAndInStep) {
    AppTool tool;
    tool.Write("ppd/c.txt", "*ModelName: \"Text\"\n");
    tool.Write("ppd/b.ppd", "*ModelName: \"Model B\"\n");
    tool.Write("ppd/A.ppd", "*PPD-Adobe: \"4.3\"\n*ModelName: \"Model A\"\n");
    LoadModels();
    EXPECT_EQ(Models(), " A.ppd b.ppd |Model A,Model B");
    EXPECT_STREQ(Line, "Model A,Model B");
    EXPECT_STREQ(GetModelFile(2), "b.ppd");
    EXPECT_STREQ(GetModelBase(1), "A");
    EXPECT_STREQ(GetModelFile(0), "A.ppd"); // no position counts as the first
    EXPECT_STREQ(GetModelBase(3), "");

    tool.Write("ppd/A.ppd", "no key\n");
    tool.Write("ppd/b.ppd", "*ModelName: \"B, 100% \\ B\"\n");
    LoadModels();
    EXPECT_EQ(Models(), " A.ppd b.ppd |B\\, 100% \\\\ B"); // one entry, whatever the name holds
}
