// An open-addressing hash table of named or numbered entries; it does not grow.
//
// The table and its nodes are one managed allocation, which PutMem releases when the entries are gone;
// callers choose its size for what they keep. A node once deleted is passed over by searches and only used
// again for a new entry, so that many deletions make searches long. The entering search stops at the first
// node that is free or deleted: a key that stands further along is then entered a second time, and the nearer
// one is found.
#pragma once

#include <cstdint>

enum { HASH_NUMBER, HASH_TEXT };             // key kinds
enum { NODE_FREE, NODE_USED, NODE_DELETED }; // states of a node
enum { HASH_STEP = 31 };                     // of the probe, and the factor of the hash value

union HashKey {
    char *text; // managed copy
    uintptr_t number;
};

struct HashNode {
    HashKey key;
    void *data;    // managed, null for an entry without
    int size;      // of the data in bytes
    uint8_t state; // NODE_FREE, ...
};

struct HashTable {
    uint8_t kind; // HASH_NUMBER, HASH_TEXT
    int used;     // nodes ever claimed; a deletion does not lower it
    int size;     // never a multiple of HASH_STEP, so that a probe reaches every node
    HashNode nodes[1];
};

// The key argument of a text table is the text's address, of a numeric one the number or an address.
inline uintptr_t HashText(const char *text) {
    return reinterpret_cast<uintptr_t>(text);
}

// A table of size nodes, or of one more; null for a size below 1 or when memory is exhausted.
// Owns: the table.
[[nodiscard]] HashTable *NewHashTable(int size, int kind);
// The key's node; with flCreate it is claimed if it is not there: without data then. Null if the key is
// absent, the table full, or no memory left for a copy of the key. A null table or a null text has no node.
HashNode *GetNode(HashTable *table, uintptr_t key, int flCreate);
// Enters the key if it is not there. With a size above 0 its data is brought to the size and, with contents,
// filled. The result is the data (null for a new entry without), or null when it failed.
void *PushHashNode(HashTable *table, uintptr_t key, const void *contents, int size);
void *FindHashNode(HashTable *table, uintptr_t key);
// Deletes the entry. The result is the data's address: with flFree it has been released, without it is the
// caller's.
void *PopHashNode(HashTable *table, uintptr_t key, int flFree);
// The next entry's data, or its node with flNode; null at the end. *index starts at 0. An entry without data
// looks like the end unless flNode is set.
void *WalkHashTable(HashTable *table, int *index, int flNode);
