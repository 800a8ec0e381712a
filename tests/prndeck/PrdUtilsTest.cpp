// The two lists of models.
#include "prndeck/core/Prd.h"

#include "common/MemMgr.h"
#include "common/utils.h"
#include "print/PrdCommonUtils.h"
#include "tests/lib/AppTool.h"

#include <gtest/gtest.h>

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
