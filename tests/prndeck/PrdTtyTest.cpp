// The list of queues in its width; menus_test.py plays the flows.
#include "prndeck/tty/PrdTty.h"

#include "tests/lib/AppTool.h"

#include <gtest/gtest.h>
#include <tuple>

TEST(FormatQueList, BreaksInFrontOfTheWidth) {
    const std::tuple<const char *, const char *, int> cases[] = {
        {nullptr, "H\n", 0},
        {",q1,q2,", "H\n q1 q2", 2},
        {",abcd,abcd", "H\n abcd abcd", 2},
        {",abcd,abcde,abc,ab", "H\n abcd\n abcde abc\n ab", 4}, // the column restarts behind the name
        {",abcdefghijkl,a", "H\n\n abcdefghijkl\n a", 2}};
    for (auto [list, want, names] : cases) {
        int count = -1;
        EXPECT_EQ(TakeText(FormatQueList(list, "H\n", 10, &count)), want);
        EXPECT_EQ(count, names) << want;
    }
}
