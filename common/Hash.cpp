// An open-addressing hash table of named or numbered entries.
#include "common/Hash.h"

#include "common/MemMgr.h"

#include <cstddef>
#include <cstring>

HashTable *NewHashTable(int size, int kind) {
    if (size < 1 || size >= MEM_MAX / static_cast<int>(sizeof(HashNode))) return nullptr;
    if (size % HASH_STEP == 0) size++;
    size_t bytes = offsetof(HashTable, nodes) + static_cast<size_t>(size) * sizeof(HashNode);
    auto table = static_cast<HashTable *>(GetMem(bytes));
    if (!table) return nullptr;
    table->kind = static_cast<uint8_t>(kind);
    table->size = size;
    return table;
}

// The value is ((h + c) * 31) modulo size for each character. Tables are small enough for that product to
// fit, so the remainder may wait until the sum is about to leave its 64 bits.
static uint32_t HashTextKey(const char *text, uint32_t size) {
    static constexpr uint64_t limit = uint64_t{1} << 56;
    uint64_t hash = 0;
    for (; *text; text++) {
        hash = (hash + static_cast<unsigned char>(*text)) * HASH_STEP;
        if (hash >= limit) hash %= size;
    }
    return static_cast<uint32_t>(hash % size);
}

static bool IsNodeKey(const HashTable *table, const HashNode *node, uintptr_t key) {
    if (table->kind != HASH_TEXT) return node->key.number == key;
    return strcmp(node->key.text, reinterpret_cast<const char *>(key)) == 0;
}

static HashNode *ClaimNode(HashTable *table, HashNode *node, uintptr_t key) {
    HashNode claimed = {{nullptr}, nullptr, 0, NODE_USED};
    if (table->kind == HASH_TEXT) {
        auto text = reinterpret_cast<const char *>(key);
        size_t size = strlen(text) + 1;
        claimed.key.text = static_cast<char *>(GetMem(size));
        if (!claimed.key.text) return nullptr;
        memcpy(claimed.key.text, text, size);
    } else {
        claimed.key.number = key;
    }
    *node = claimed;
    table->used++;
    return node;
}

// The low 32 bits of a number decide where its search starts, all its bits whether it is found.
HashNode *GetNode(HashTable *table, uintptr_t key, int flCreate) {
    if (!table || (table->kind == HASH_TEXT && !key)) return nullptr;
    uint32_t size = static_cast<uint32_t>(table->size);
    uint32_t index = table->kind == HASH_TEXT ? HashTextKey(reinterpret_cast<const char *>(key), size)
                                              : static_cast<uint32_t>(key) * HASH_STEP % size;
    for (uint32_t probes = 0; probes < size; probes++, index = (index + HASH_STEP) % size) {
        HashNode *node = table->nodes + index;
        if (node->state != NODE_USED && flCreate) return ClaimNode(table, node, key);
        if (node->state == NODE_FREE) return nullptr;
        if (node->state == NODE_USED && IsNodeKey(table, node, key)) return node;
    }
    return nullptr;
}

void *PushHashNode(HashTable *table, uintptr_t key, const void *contents, int size) {
    HashNode *node = GetNode(table, key, 1);
    if (!node) return nullptr;
    if (size < 1) return node->data;
    void *data = AdjustMem(node->data, static_cast<size_t>(size));
    if (!data) return nullptr;
    node->data = data;
    node->size = size;
    if (contents) memcpy(data, contents, static_cast<size_t>(size));
    return data;
}

void *FindHashNode(HashTable *table, uintptr_t key) {
    HashNode *node = GetNode(table, key, 0);
    return node ? node->data : nullptr;
}

// The node keeps nothing: what it still named could be resized or released by its next owner.
void *PopHashNode(HashTable *table, uintptr_t key, int flFree) {
    HashNode *node = GetNode(table, key, 0);
    if (!node) return nullptr;
    void *data = node->data;
    if (table->kind == HASH_TEXT) PutMem(node->key.text);
    if (flFree) PutMem(data);
    *node = {{nullptr}, nullptr, 0, NODE_DELETED};
    return data;
}

void *WalkHashTable(HashTable *table, int *index, int flNode) {
    while (table && *index < table->size) {
        HashNode *node = table->nodes + (*index)++;
        if (node->state == NODE_USED) return flNode ? node : node->data;
    }
    return nullptr;
}
