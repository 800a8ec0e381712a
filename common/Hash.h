// An open-addressing hash table of named or numbered entries; it does not grow.
#pragma once

#include <cstdint>

enum { HASH_NUMBER, HASH_TEXT };               // key kinds
enum { NODE_FREE, NODE_USED, NODE_DELETED };   // states of a node

union HashKey {
    char *text; // managed copy
    uintptr_t number;
};

struct HashNode {
    HashKey key;
    void *data; // managed
    int size;
    uint8_t state;
};

struct HashTable {
    uint8_t kind;
    int used; // nodes ever claimed; a deletion does not lower it
    int size; // never a multiple of 31, the probe step
    HashNode nodes[1];
};

// The key argument of a text table is the text's address, of a numeric one the number.
inline uintptr_t HashText(const char *text) { return reinterpret_cast<uintptr_t>(text); }

HashTable *NewHashTable(int size, int kind);
HashNode *GetNode(HashTable *table, uintptr_t key, int flCreate);
void *PushHashNode(HashTable *table, uintptr_t key, const void *contents, int size);
void *FindHashNode(HashTable *table, uintptr_t key);
void *PopHashNode(HashTable *table, uintptr_t key, int flFree);
void *WalkHashTable(HashTable *table, int *index, int flNode);
