// Managed memory: zero-filled allocations in 32-byte nodes out of 64 KB blocks.
//
// Everything that lives longer than a call comes from here. A block is a data area of 2048 nodes and, in a
// region of its own, its record; the record's MAT shows each node as one character, so that a dump can be
// read and finding room is a search for spaces. A request is served first fit: the first block of the chain
// that has room, and in it the lowest index. An allocation has no header: its length stands in the node
// record at its first index.
//
// Costs: GetMem reads at most the 2048 characters of each block that may have room; PutMem and AdjustMem walk
// the chain to find their block, which is remembered for the next call. A block that empties goes back to the
// system at once, so a caller that takes and gives back its only allocation pays for the mapping each time.
//
// In builds with AddressSanitizer free nodes and the unasked bytes behind an allocation are poisoned.
#pragma once

#include <cstddef>
#include <cstdint>
#include <sys/types.h>

enum {
    MEM_NODE_SIZE = 32,
    MEM_BLOCK_NODES = 2048,
    MEM_BLOCK_SIZE = MEM_NODE_SIZE * MEM_BLOCK_NODES,
    MEM_DEDICATED = MEM_BLOCK_SIZE + 1, // rounded sizes from here on get a block of their own
    MEM_MAX = INT32_MAX - 131072,       // largest rounded size; the block around it still fits its field
    MEM_RUNS = 16,                      // lengths of runs that a block keeps a lowest place for, and 0
    MEM_FREE = ' ',
    MEM_USED = 'U',
};

struct MemNode {
    uint16_t count; // nodes of the allocation that starts here, 0 for none
    void *address;  // its address in the data area, null for none
};

// Shared block: size is MEM_BLOCK_SIZE, freeCount is the number of MEM_FREE in MAT, an allocation of n nodes
// at index i has n times MEM_USED from MAT[i] on, nodes[i] filled and the address data + 32 * i; the other
// records are empty. Dedicated block: size is a multiple of MEM_BLOCK_SIZE and larger, MAT is all MEM_USED,
// freeCount 0, the records are empty and the one allocation starts at data. CheckMem walks all this.
struct MemBlock {
    MemBlock *next;     // null at the tail; new blocks are appended there
    MemBlock *previous; // null at the head
    int32_t size;       // bytes of the data area
    int32_t usedSize;   // dedicated block: rounded size in use; 0 in a shared block
    int32_t freeCount;  // free nodes of a shared block
    char *data;
    // Private to MemMgr.cpp: how the regions were taken, and what the search knows of the MAT. No run of k
    // free nodes starts before from[k]; the last one serves all longer runs. A request of missedCount nodes
    // or more does not fit; 0 when unknown. Both are forgotten, as far as need be, when nodes are freed.
    uint8_t recordFromMalloc;
    uint8_t dataFromMalloc;
    int16_t missedCount;
    int16_t from[MEM_RUNS];
    MemNode nodes[MEM_BLOCK_NODES];
    char MAT[MEM_BLOCK_NODES + 1];
};

extern MemBlock *pMemB;       // head of the chain, null while no block exists; writers: PushBlock, PopBlock
extern const char OutOfMem[]; // "Unable to allocate memory"

// Memory for size bytes and one more, all zero. Null for a size of 0, and, with the OutOfMem message on
// standard error and errno set, when no memory is to be had or the rounded size is above MEM_MAX. Owns: the
// result.
[[nodiscard]] void *GetMem(size_t size);

// Gives an allocation back. Null, an address in no block and one that was given back already are ignored.
void PutMem(const void *address);

// Resizes: the allocation's address, which may have changed; the contents stay up to the smaller of both node
// counts and added nodes are zero. Null as address, or one where no allocation starts: as GetMem. Size 0: as
// PutMem, with a null result. Null when memory is exhausted: the old allocation then stands untouched.
// Owns: the result, in place of the argument.
void *AdjustMem(void *address, size_t size);

// Prints every block with its MAT and its allocations on standard output.
void DumpMem();

// The parts of the above. A new block is in the chain already; null, with the message, when memory is
// exhausted.
MemBlock *GetNewBlock(size_t size);
// A fresh region of the size rounded up to pages, at least one byte more than asked; null on failure.
void *MapBlock(size_t size);
// The block whose data area holds the address, or null.
MemBlock *FindBlock(const void *address);
// Unchains the block and gives both its regions back; its allocations are gone. Null is ignored.
void FreeBlock(MemBlock *block);
void PushBlock(MemBlock *block);
// The new head (null if none is left) when the block was the head, else the block; null for null.
MemBlock *PopBlock(MemBlock *block);
// 1 if count characters from mat on are all the mark, also for a count of 0; never reads past a NUL.
int TestMAT(const char *mat, char mark, int count);

// Duplicators into managed memory. SaveStr takes a literal format only; a plain text goes through SaveStr_. A
// null text gives an empty copy, but SaveStr__ null. Owns: the result. Ends: when memory is exhausted.
[[nodiscard, gnu::format(printf, 1, 2)]] char *SaveStr(const char *format, ...);
[[nodiscard]] char *SaveStr_(const char *text);
[[nodiscard, gnu::format(printf, 1, 2)]] char *SaveStr__(const char *format, ...);

// Invariant walk for tests: null, or what is wrong with the chain (static text).
const char *CheckMem();

// Descriptor of /dev/zero, -1 until the first mapping and while it cannot be opened (regions then come from
// malloc).
extern int fdZero;
// Seams for tests, with the functions of libc as defaults.
extern int (*pMemOpen)(const char *path, int flags, ...);
extern void *(*pMemMap)(void *address, size_t size, int protection, int flags, int descriptor, off_t offset);
