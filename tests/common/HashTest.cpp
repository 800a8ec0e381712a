// Hash tables: hash values and probes by hand, a random sequence against a model of the nodes, and the
// limits.
#include "common/Hash.h"

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "common/MemMgr.h"

static long NodeIndex(HashTable *table, HashNode *node) {
    return node ? node - table->nodes : -1;
}

// The index at which a fresh table enters the key: its hash value.
static long FirstIndex(int size, const std::string &text) {
    HashTable *table = NewHashTable(size, HASH_TEXT);
    long index = NodeIndex(table, GetNode(table, HashText(text.c_str()), 1));
    PopHashNode(table, HashText(text.c_str()), 1);
    PutMem(table);
    return index;
}

// The definition, in the arithmetic that it names.
static long HashValue(int size, const std::string &text) {
    uint32_t hash = 0;
    for (char ch : text) hash = (hash + static_cast<unsigned char>(ch)) * 31 % static_cast<uint32_t>(size);
    return hash;
}

// From the start each time: of a key that was entered twice the nearer one goes first, wherever the walk
// stands.
static void FreeTable(HashTable *table) {
    int index = 0;
    for (void *found; (found = WalkHashTable(table, &index, 1)); index = 0) {
        auto node = static_cast<HashNode *>(found);
        PopHashNode(table, table->kind == HASH_TEXT ? HashText(node->key.text) : node->key.number, 1);
    }
    PutMem(table);
    EXPECT_EQ(pMemB, nullptr) << "something was not given back";
}

TEST(Hash, SizesItsTable) {
    for (auto [asked, wanted] : {std::pair{1, 1}, {30, 30}, {31, 32}, {32, 32}, {62, 63}, {310, 311}}) {
        HashTable *table = NewHashTable(asked, HASH_NUMBER);
        EXPECT_EQ(table->size, wanted);
        PutMem(table);
    }
    for (int refused : {0, -1, INT32_MAX}) EXPECT_EQ(NewHashTable(refused, HASH_TEXT), nullptr) << refused;
}

TEST(Hash, ComputesTextValues) {
    std::mt19937 random(5);
    for (int round = 0; round < 500; round++) {
        std::string text(1 + random() % 100, ' ');
        for (char &ch : text) ch = static_cast<char>(1 + random() % 255);
        int size = 1 + static_cast<int>(random() % 3000);
        if (size % 31 == 0) size++;
        ASSERT_EQ(FirstIndex(size, text), HashValue(size, text)) << text << " in " << size;
    }
}

TEST(Hash, FindsKeysByValue) {
    HashTable *texts = NewHashTable(50, HASH_TEXT), *numbers = NewHashTable(50, HASH_NUMBER);
    char first[] = "host", second[] = "host";
    auto data = static_cast<char *>(PushHashNode(texts, HashText(first), "one", 4));
    first[0] = 'm'; // the key was copied
    EXPECT_EQ(FindHashNode(texts, HashText(second)), data);
    EXPECT_EQ(FindHashNode(texts, HashText(first)), nullptr);
    EXPECT_EQ(FindHashNode(texts, HashText(nullptr)), nullptr);

    uintptr_t low = 0x1234, high = low + (uintptr_t{1} << 32);
    PushHashNode(numbers, low, "low", 4);
    PushHashNode(numbers, high, "high", 5);
    EXPECT_STREQ(static_cast<char *>(FindHashNode(numbers, low)), "low");
    EXPECT_STREQ(static_cast<char *>(FindHashNode(numbers, high)), "high");
    EXPECT_EQ(NodeIndex(numbers, GetNode(numbers, low, 0)), 0x1234 * 31 % 50);
    PushHashNode(numbers, 0, "zero", 5);
    EXPECT_STREQ(static_cast<char *>(FindHashNode(numbers, 0)), "zero");
    PopHashNode(texts, HashText(second), 1);
    PutMem(texts);
    FreeTable(numbers);
}

TEST(Hash, LeavesPoppedDataToTheCaller) {
    HashTable *table = NewHashTable(10, HASH_TEXT);
    PushHashNode(table, HashText("a"), "mine", 5);
    auto mine = static_cast<char *>(PopHashNode(table, HashText("a"), 0));
    EXPECT_NE(PushHashNode(table, HashText("a"), "new", 4), mine) << "the node knows it no more";
    PopHashNode(table, HashText("a"), 1);
    EXPECT_STREQ(mine, "mine");
    PutMem(mine);
    FreeTable(table);
}

TEST(Hash, KeepsAndResizesData) {
    HashTable *table = NewHashTable(10, HASH_NUMBER);
    EXPECT_EQ(PushHashNode(table, 1, nullptr, 0), nullptr) << "entered without data";
    EXPECT_NE(GetNode(table, 1, 0), nullptr);
    auto data = static_cast<char *>(PushHashNode(table, 1, nullptr, 8));
    EXPECT_EQ(std::string(data, 8), std::string(8, '\0'));
    strcpy(data, "kept");
    EXPECT_STREQ(static_cast<char *>(PushHashNode(table, 1, nullptr, 8)), "kept");
    EXPECT_STREQ(static_cast<char *>(PushHashNode(table, 1, nullptr, 0)), "kept");
    EXPECT_STREQ(static_cast<char *>(PushHashNode(table, 1, nullptr, 500)), "kept");
    EXPECT_EQ(GetNode(table, 1, 0)->size, 500);
    EXPECT_EQ(table->used, 1);
    FreeTable(table);
}

TEST(Hash, IsFullAndNull) {
    HashTable *table = NewHashTable(7, HASH_NUMBER);
    for (int key = 0; key < 7; key++)
        ASSERT_NE(PushHashNode(table, static_cast<uintptr_t>(key * 7), &key, 4), nullptr);
    EXPECT_EQ(PushHashNode(table, 1000, "x", 2), nullptr);
    EXPECT_NE(PushHashNode(table, 42, "x", 2), nullptr) << "a key that is there";
    EXPECT_EQ(FindHashNode(table, 1000), nullptr) << "the search of a full table ends";
    PopHashNode(table, 14, 1);
    EXPECT_NE(PushHashNode(table, 1000, "x", 2), nullptr);
    FreeTable(table);

    int index = 0;
    EXPECT_EQ(PushHashNode(nullptr, 1, "x", 2), nullptr);
    EXPECT_EQ(PopHashNode(nullptr, 1, 1), nullptr);
    EXPECT_EQ(WalkHashTable(nullptr, &index, 1), nullptr);
}

// The nodes as they must be: the probe written down once more, over plain records.
struct ModelNode {
    int state;
    std::string key, data;
};

static int ModelNodeOf(std::vector<ModelNode> &nodes, const std::string &key, bool flCreate) {
    int size = static_cast<int>(nodes.size());
    int index = static_cast<int>(HashValue(size, key));
    for (int probes = 0; probes < size; probes++, index = (index + 31) % size) {
        ModelNode &node = nodes[static_cast<size_t>(index)];
        if (node.state == NODE_USED && node.key == key) return index;
        if (node.state != NODE_USED && flCreate) return node = {NODE_USED, key, ""}, index;
        if (node.state == NODE_FREE) return -1;
    }
    return -1;
}

static void HashStep(HashTable *table, std::vector<ModelNode> &nodes, std::mt19937 &random,
                     const std::string &key) {
    if (random() % 5 < 3) {
        std::string data = key + std::to_string(random() % 1000);
        int index = ModelNodeOf(nodes, key, true);
        void *pushed =
            PushHashNode(table, HashText(key.c_str()), data.c_str(), static_cast<int>(data.size()) + 1);
        ASSERT_EQ(pushed != nullptr, index >= 0);
        if (index >= 0) nodes[static_cast<size_t>(index)].data = data;
    } else {
        int index = ModelNodeOf(nodes, key, false);
        bool flFree = random() % 2;
        auto popped = static_cast<char *>(PopHashNode(table, HashText(key.c_str()), flFree));
        ASSERT_EQ(popped != nullptr, index >= 0);
        if (index < 0) return;
        if (!flFree) {
            ASSERT_EQ(popped, nodes[static_cast<size_t>(index)].data);
            PutMem(popped);
        }
        nodes[static_cast<size_t>(index)] = {NODE_DELETED, "", ""};
    }
}

static void ExpectEqual(HashTable *table, const std::vector<ModelNode> &nodes) {
    int index = 0;
    for (size_t i = 0; i < nodes.size(); i++) {
        ASSERT_EQ(table->nodes[i].state, nodes[i].state) << "node " << i;
        if (nodes[i].state != NODE_USED) continue;
        auto data = static_cast<char *>(WalkHashTable(table, &index, 0));
        ASSERT_EQ(index, static_cast<int>(i) + 1);
        ASSERT_EQ(table->nodes[i].key.text, nodes[i].key);
        ASSERT_EQ(data, nodes[i].data);
    }
    ASSERT_EQ(WalkHashTable(table, &index, 0), nullptr);
}

TEST(Hash, FollowsAModelOfItsNodes) {
    for (unsigned seed = 1; seed <= 8; seed++) {
        std::mt19937 random(seed);
        HashTable *table = NewHashTable(20 + static_cast<int>(seed) * 7, HASH_TEXT);
        std::vector<ModelNode> nodes(static_cast<size_t>(table->size));
        for (int step = 0; step < 1000 && !testing::Test::HasFatalFailure(); step++) {
            SCOPED_TRACE("seed " + std::to_string(seed) + " step " + std::to_string(step));
            HashStep(table, nodes, random, "key" + std::to_string(random() % 90));
            ExpectEqual(table, nodes);
        }
        FreeTable(table);
    }
}
