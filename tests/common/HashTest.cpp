// Hash tables: a random sequence against a model of the nodes, numeric keys and full tables.
#include "common/Hash.h"

#include "common/MemMgr.h"

#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

// The nodes as they must be: hash value and probe written down once more, over plain records.
struct ModelNode {
    int state;
    std::string key, data;
};

static int ModelNodeOf(std::vector<ModelNode> &nodes, const std::string &key, bool flCreate) {
    size_t size = nodes.size(), index = 0;
    for (char ch : key) index = (index + static_cast<unsigned char>(ch)) * 31 % size;
    for (size_t probes = 0; probes < size; probes++, index = (index + 31) % size) {
        ModelNode &node = nodes[index];
        if (node.state == NODE_USED && node.key == key) return static_cast<int>(index);
        if (node.state != NODE_USED && flCreate) return node = {NODE_USED, key, ""}, static_cast<int>(index);
        if (node.state == NODE_FREE) return -1;
    }
    return -1;
}

static void HashStep(HashTable *table, std::vector<ModelNode> &nodes, std::string key, unsigned random) {
    bool flPush = random % 5 < 3;
    int index = ModelNodeOf(nodes, key, flPush);
    uintptr_t text = HashText(key.c_str());
    std::string data(random % 60, 'd');
    void *got = flPush ? PushHashNode(table, text, data.c_str(), static_cast<int>(data.size()) + 1)
                       : PopHashNode(table, text, 0);
    ASSERT_EQ(got != nullptr, index >= 0);
    if (index < 0) return;
    ModelNode &node = nodes[static_cast<size_t>(index)];
    if (flPush) {
        node.data = data;
    } else {
        ASSERT_EQ(static_cast<char *>(got), node.data);
        PutMem(got);
        node = {NODE_DELETED, "", ""};
    }
}

static void ExpectEqual(HashTable *table, const std::vector<ModelNode> &nodes) {
    int index = 0;
    for (size_t i = 0; i < nodes.size(); i++) {
        ASSERT_EQ(table->nodes[i].state, nodes[i].state) << "node " << i;
        if (nodes[i].state != NODE_USED) continue;
        ASSERT_EQ(static_cast<char *>(WalkHashTable(table, &index, 0)), nodes[i].data);
        ASSERT_EQ(table->nodes[i].key.text, nodes[i].key);
    }
    ASSERT_EQ(WalkHashTable(table, &index, 0), nullptr);
}

TEST(Hash, FollowsAModelOfItsNodes) {
    for (int size : {1, 25, 31, 62, 83}) {
        std::mt19937 random(static_cast<unsigned>(size));
        HashTable *table = NewHashTable(size, HASH_TEXT);
        std::vector<ModelNode> nodes(static_cast<size_t>(size % 31 == 0 ? size + 1 : size));
        for (int step = 0; step < 1000 && !testing::Test::HasFatalFailure(); step++) {
            SCOPED_TRACE("size " + std::to_string(size) + " step " + std::to_string(step));
            std::string key(1 + random() % 40, static_cast<char>(0xE0 + random() % 3));
            HashStep(table, nodes, key, static_cast<unsigned>(random()));
            ExpectEqual(table, nodes);
        }
        for (const ModelNode &node : nodes)
            if (node.state == NODE_USED) PopHashNode(table, HashText(node.key.c_str()), 1);
        PutMem(table);
        EXPECT_EQ(pMemB, nullptr) << "something was not given back";
    }
}

TEST(Hash, TakesNumbersUntilItIsFull) {
    HashTable *table = NewHashTable(7, HASH_NUMBER);
    const uintptr_t keys[] = {0, 7, 14, 1, 1 + (uintptr_t{1} << 32), 99, 100};
    for (uintptr_t key : keys) ASSERT_NE(PushHashNode(table, key, &key, sizeof(key)), nullptr);
    for (uintptr_t key : keys) EXPECT_EQ(*static_cast<uintptr_t *>(FindHashNode(table, key)), key);
    EXPECT_EQ(PushHashNode(table, 1000, "x", 2), nullptr);
    EXPECT_EQ(FindHashNode(table, 1000), nullptr) << "the search of a full table ends";
    void *popped = PopHashNode(table, 14, 0);
    EXPECT_EQ(PushHashNode(table, 1000, nullptr, 0), nullptr) << "entered without data";
    EXPECT_NE(PushHashNode(table, 1000, "x", 2), popped) << "the node knows the popped data no more";
    while (pMemB) FreeBlock(pMemB);
}
