// Lists: a random sequence against a plain model, walks under change, and the limits of each operation.
#include "common/List.h"

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "common/MemMgr.h"

class List : public testing::Test {
protected:
    void TearDown() override {
        ListDel(list);
        EXPECT_EQ(pMemB, nullptr) << "something was not given back";
    }
    void Push(const char *text) { ListPushItem(list, text, static_cast<int>(strlen(text)) + 1); }
    ListHead *list = ListCreate();
};

// The items as one text; forward and backward links must agree.
static std::string Shown(ListHead *list) {
    std::string forward, backward;
    for (auto item = static_cast<char *>(ListWalk(list, 0)); item;
         item = static_cast<char *>(ListWalk(list, 1)))
        forward += std::string(item) + " ";
    for (auto item = static_cast<char *>(ListWalkBackward(list, 0)); item;
         item = static_cast<char *>(ListWalkBackward(list, 1)))
        backward = std::string(item) + " " + backward;
    EXPECT_EQ(forward, backward);
    return forward;
}

struct ModelItem {
    void *item;
    std::string text;
};

static void PopStep(ListHead *list, std::vector<ModelItem> &model, size_t at, int way) {
    bool flFree = way & 1;
    void *item = model[at].item, *result = nullptr;
    if (way < 2)
        result = ListPopItem(list, item, flFree);
    else if (way < 4)
        at = 0, item = model[0].item,
        result = way < 3 ? ListPopItem(list, nullptr, 0) : ListPopFirstItem(list, 1);
    else
        at = model.size() - 1, item = model[at].item, result = ListPopLastItem(list, flFree);
    ASSERT_EQ(result, flFree ? nullptr : item);
    if (!flFree) {
        ASSERT_EQ(static_cast<char *>(item), model[at].text) << "a popped item is whole";
        PutMem(item);
    }
    model.erase(model.begin() + static_cast<long>(at));
}

static void ExpectEqual(ListHead *list, const std::vector<ModelItem> &model) {
    std::string texts;
    int total = 0, position = 0;
    for (const ModelItem &entry : model) {
        texts += entry.text + " ";
        total += static_cast<int>(entry.text.size()) + 1;
        ASSERT_EQ(ListFindItemN(list, ++position), entry.item);
        ASSERT_EQ(ListGetItemPos(list, entry.item), position);
    }
    ASSERT_EQ(Shown(list), texts);
    ASSERT_EQ(list->count, static_cast<int>(model.size()));
    ASSERT_EQ(list->total, total);
}

TEST_F(List, FollowsAPlainModel) {
    std::mt19937 random(11);
    std::vector<ModelItem> model;
    for (int step = 0; step < 3000 && !HasFatalFailure(); step++) {
        SCOPED_TRACE("step " + std::to_string(step));
        size_t at = model.empty() ? 0 : random() % model.size();
        unsigned action = model.empty() ? 15 : random() % (model.size() > 40 ? 8 : 16);
        if (action < 6) {
            PopStep(list, model, at, static_cast<int>(action));
        } else if (action < 8) {
            ListMoveItem(model[at].item, list, list);
            std::rotate(model.begin() + static_cast<long>(at), model.begin() + static_cast<long>(at) + 1,
                        model.end());
        } else {
            std::string text(random() % 50, static_cast<char>('a' + step % 26));
            model.push_back({ListPushItem(list, text.c_str(), static_cast<int>(text.size()) + 1), text});
        }
        ExpectEqual(list, model);
    }
}

TEST_F(List, WalksWhileItemsGo) {
    for (const char *text : {"a", "b", "c", "d", "e"}) Push(text);
    void *item = ListWalk(list, 0);
    ListPopItem(list, item, 1); // the one just given
    ListPopFirstItem(list, 1);  // the one that would come next
    EXPECT_STREQ(static_cast<char *>(ListWalk(list, 1)), "c");
    EXPECT_STREQ(static_cast<char *>(ListWalkBackward(list, 0)), "e");
    ListPopItem(list, ListFindItemN(list, 2), 1);
    EXPECT_STREQ(static_cast<char *>(ListWalkBackward(list, 1)), "c");
    EXPECT_EQ(ListWalkBackward(list, 1), nullptr);
    EXPECT_EQ(ListWalkBackward(list, 1), nullptr);
}

TEST_F(List, MovesAndCopies) {
    ListHead *target = ListCreate();
    for (const char *text : {"a", "b", "c"}) Push(text);
    void *item = ListFindItemN(list, 2);
    ListMoveItem(item, list, target);
    ListMoveItem(item, list, target); // not there any more
    EXPECT_EQ(ListFindItemN(target, 1), item);
    EXPECT_EQ(list->total, 4);
    ListCopy(list, target);
    EXPECT_EQ(Shown(target), "b a c ");
    ListCopy(target, target);
    EXPECT_EQ(Shown(target), "b a c b a c ");
    EXPECT_EQ(Shown(list), "a c ");
    ListDelAllItems(target);
    EXPECT_EQ(target->count + target->total, 0);
    EXPECT_EQ(ListWalk(target, 0), nullptr);
    ListDel(target);
}

TEST_F(List, FillsWithZerosAndRefusesNothing) {
    auto zeros = static_cast<char *>(ListPushItem(list, nullptr, 40));
    EXPECT_EQ(std::string(zeros, 40), std::string(40, '\0'));
    EXPECT_EQ(ListPushItem(list, "x", 0), nullptr);
    EXPECT_EQ(ListPushItem(list, "x", -1), nullptr);
    EXPECT_EQ(ListFindItemN(list, 0), nullptr);
    EXPECT_EQ(ListFindItemN(list, 2), nullptr);
    EXPECT_EQ(ListGetItemPos(list, "x"), 0);
    EXPECT_EQ(ListPopItem(list, &list, 0), nullptr);
    EXPECT_EQ(list->count, 1);

    EXPECT_EQ(ListPushItem(nullptr, "x", 1), nullptr);
    EXPECT_EQ(ListPopItem(nullptr, nullptr, 0), nullptr);
    EXPECT_EQ(ListWalk(nullptr, 0), nullptr);
    ListMoveItem(zeros, nullptr, list);
    ListMoveItem(zeros, list, nullptr);
    ListCopy(list, nullptr);
    ListDel(nullptr);
    EXPECT_EQ(list->count, 1);
}

TEST_F(List, DumpsFirstWords) {
    long number = -7;
    ListPushItem(list, &number, sizeof(number));
    ListPushItem(list, "\x02", 1);
    testing::internal::CaptureStdout();
    ListDump(list);
    fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "  1) -7\n  2) 2\n");
}
