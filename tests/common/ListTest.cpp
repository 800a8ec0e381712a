// Lists: a random sequence against a plain model, and walks under change.
#include "common/List.h"

#include "common/MemMgr.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

// The items as one text; the two ways of walking must agree.
static std::string Shown(ListHead *list) {
    std::string forward, backward;
    for (void *item = ListWalk(list, 0); item; item = ListWalk(list, 1))
        forward += static_cast<char *>(item) + std::string(" ");
    for (void *item = ListWalkBackward(list, 0); item; item = ListWalkBackward(list, 1))
        backward = static_cast<char *>(item) + std::string(" ") + backward;
    EXPECT_EQ(forward, backward);
    return forward;
}

static void PopStep(ListHead *list, std::vector<char *> &model, size_t at, unsigned action) {
    if (action >= 2) at = action < 4 ? 0 : model.size() - 1;
    char *item = model[at];
    void *popped = action < 3   ? ListPopItem(list, action < 2 ? item : nullptr, 0)
                   : action < 4 ? ListPopFirstItem(list, 0)
                                : ListPopLastItem(list, 0);
    ASSERT_EQ(popped, item);
    ASSERT_EQ(ListPopItem(list, item, 1), nullptr) << "it is not there any more";
    PutMem(item);
    model.erase(model.begin() + static_cast<long>(at));
}

static void ExpectEqual(ListHead *list, const std::vector<char *> &model) {
    std::string texts;
    int position = 0;
    for (char *item : model) {
        texts += item + std::string(" ");
        ASSERT_EQ(ListFindItemN(list, ++position), item);
        ASSERT_EQ(ListGetItemPos(list, item), position);
    }
    ASSERT_EQ(Shown(list), texts);
    ASSERT_EQ(list->count, position);
    ASSERT_EQ(list->total, static_cast<int>(texts.size())) << "a blank here is a NUL there";
    ASSERT_TRUE(!ListFindItemN(list, 0) && !ListFindItemN(list, position + 1));
}

TEST(List, FollowsAPlainModel) {
    std::mt19937 random(11);
    ListHead *list = ListCreate();
    std::vector<char *> model;
    for (int step = 0; step < 3000 && !testing::Test::HasFatalFailure(); step++) {
        SCOPED_TRACE("step " + std::to_string(step));
        size_t at = model.empty() ? 0 : random() % model.size();
        unsigned action = model.empty() ? 15 : random() % (model.size() > 40 ? 8 : 16);
        if (action < 6) {
            PopStep(list, model, at, action);
        } else if (action < 8) {
            ListMoveItem(model[at], list, list);
            std::rotate(model.begin() + static_cast<long>(at), model.begin() + static_cast<long>(at) + 1,
                        model.end());
        } else {
            std::string text(random() % 50, static_cast<char>('a' + step % 26));
            void *item = ListPushItem(list, text.c_str(), static_cast<int>(text.size()) + 1);
            model.push_back(static_cast<char *>(item));
        }
        ExpectEqual(list, model);
    }
    ListCopy(list, list);
    EXPECT_EQ(list->count, 2 * static_cast<int>(model.size()));
    ListDel(list);
    EXPECT_EQ(pMemB, nullptr) << "something was not given back";
}

TEST(List, WalksWhileItemsGo) {
    ListHead *list = ListCreate();
    for (const char *text : {"a", "b", "c", "d", "e"}) ListPushItem(list, text, 2);
    ListPopItem(list, ListWalk(list, 0), 1); // the one just given
    ListPopFirstItem(list, 1);               // the one that would come next
    EXPECT_STREQ(static_cast<char *>(ListWalk(list, 1)), "c");
    EXPECT_STREQ(static_cast<char *>(ListWalkBackward(list, 0)), "e");
    ListPopItem(list, ListFindItemN(list, 2), 1);
    EXPECT_STREQ(static_cast<char *>(ListWalkBackward(list, 1)), "c");
    EXPECT_EQ(ListWalkBackward(list, 1), nullptr);
    ListDel(list);
}
