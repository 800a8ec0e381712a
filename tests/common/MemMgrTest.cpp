// The manager against a plain first fit model, its failures, and the duplicators of texts.
#include "common/MemMgr.h"

#include "common/utils.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <string>
#include <sys/mman.h>
#include <utility>

static char *Get(size_t size) {
    return static_cast<char *>(GetMem(size));
}

static bool IsZero(const char *data, size_t size) {
    return std::string_view(data, size).find_first_not_of('\0') == std::string_view::npos;
}

// Each test starts and ends without blocks.
class MemMgr : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(pMemB, nullptr); }
    void TearDown() override {
        EXPECT_STREQ(CheckMem(), nullptr);
        while (pMemB) FreeBlock(pMemB);
        pMemMap = mmap;
    }
};

// ---- random sequences against the model

struct Owned {
    char *address;
    std::string bytes; // that it must hold
};

static size_t Nodes(size_t size) {
    return size / MEM_NODE_SIZE + 1;
}

// Where first fit puts so many nodes; null where a new block is due.
static char *FirstFit(size_t count) {
    for (MemBlock *block = pMemB; block; block = block->next)
        if (const char *room = strstr(block->MAT, std::string(count, MEM_FREE).c_str()))
            return block->data + (room - block->MAT) * MEM_NODE_SIZE;
    return nullptr;
}

// Where AdjustMem must put it: in place, down, or by first fit while the old nodes are still taken.
static char *AdjustedPlace(char *address, size_t old, size_t count) {
    MemBlock *block = FindBlock(address);
    if (block->size > MEM_BLOCK_SIZE)
        return count * MEM_NODE_SIZE <= static_cast<size_t>(block->size) ? address : nullptr;
    size_t index = static_cast<size_t>(address - block->data) / MEM_NODE_SIZE;
    size_t added = count > old ? count - old : 0;
    std::string mat = block->MAT, room(added, MEM_FREE);
    if (mat.compare(std::min(index + old, mat.size()), added, room) == 0) return address;
    if (index >= added && mat.compare(index - added, added, room) == 0)
        return address - added * MEM_NODE_SIZE;
    return FirstFit(count);
}

// A size around the limits, or most often a small one.
static size_t RandomSize(std::mt19937 &random) {
    static const size_t edges[] = {31, 32, 65503, 65504, 65535, 65536, 131071, 131072};
    static const size_t limits[] = {31, 31, 31, 64, 64, 200, 200, 1000, 8192, 30000, 70000, 150000};
    if (random() % 16 == 0) return edges[random() % std::size(edges)];
    return 1 + random() % limits[random() % std::size(limits)];
}

static void GrowStep(Owned &owned, size_t size, char ch) {
    bool flNew = !owned.address;
    size_t old = flNew ? 0 : Nodes(owned.bytes.size()), kept = std::min(size, owned.bytes.size());
    char *place = flNew ? FirstFit(Nodes(size)) : AdjustedPlace(owned.address, old, Nodes(size));
    owned.address = flNew ? Get(size) : static_cast<char *>(AdjustMem(owned.address, size));
    ASSERT_NE(owned.address, nullptr);
    MemBlock *block = FindBlock(owned.address);
    if (!place) { // a new block stands behind all others
        ASSERT_TRUE(!block->next && (block->size > MEM_BLOCK_SIZE) == (Nodes(size) > MEM_BLOCK_NODES));
    }
    ASSERT_EQ(owned.address, place ? place : block->data) << "size " << size;
    ASSERT_EQ(std::string(owned.address, kept), owned.bytes.substr(0, kept)) << "size " << size;
    if (size_t start = old * MEM_NODE_SIZE; start <= size) {
        ASSERT_TRUE(IsZero(owned.address + start, size + 1 - start)) << "size " << size;
    }
    owned.bytes.assign(size, ch);
    memset(owned.address, ch, size);
}

TEST_F(MemMgr, FollowsTheFirstFitModel) {
    for (unsigned seed = 1; seed <= 4; seed++) {
        std::mt19937 random(seed);
        std::map<int, Owned> model;
        for (int step = 0; step < 4000 && !HasFatalFailure(); step++) {
            int id = static_cast<int>(random() % 300);
            SCOPED_TRACE("seed " + std::to_string(seed) + " step " + std::to_string(step));
            if (model.count(id) && random() % 2) {
                ASSERT_EQ(std::string(model[id].address, model[id].bytes.size()), model[id].bytes);
                PutMem(model[id].address);
                model.erase(id);
            } else {
                GrowStep(model[id], RandomSize(random), static_cast<char>('a' + step % 26));
            }
            if (step % 16 == 0) {
                ASSERT_STREQ(CheckMem(), nullptr);
            }
        }
        for (const auto &[id, owned] : model) PutMem(owned.address);
        EXPECT_EQ(pMemB, nullptr) << "seed " << seed;
    }
}

// ---- what is no allocation, and what cannot be one

TEST_F(MemMgr, IgnoresAddressesThatAreNotItsOwn) {
    char local[8], *first = Get(100), *second = Get(100);
    for (const void *address : {static_cast<const void *>(local), static_cast<const void *>(first + 64)})
        PutMem(address);
    PutMem(second);
    PutMem(second);
    EXPECT_EQ(AdjustMem(second, 10), second) << "no allocation starts there: a new one";
    EXPECT_EQ(pMemB->freeCount, MEM_BLOCK_NODES - 5);
    EXPECT_EQ(AdjustMem(second, 0), nullptr);
    PutMem(first);
    PutMem(first);
    EXPECT_EQ(pMemB, nullptr);
}

static int mapsLeft;

static void *FailingMap(void *address, size_t size, int protection, int flags, int descriptor, off_t offset) {
    if (mapsLeft-- <= 0) return errno = ENOMEM, MAP_FAILED;
    return mmap(address, size, protection, flags, descriptor, offset);
}

// Bytes of the regions that the manager holds.
static size_t MappedBytes() {
    std::ifstream maps("/proc/self/maps");
    size_t sum = 0, low, high;
    for (std::string line; std::getline(maps, line);)
        if (line.ends_with("/dev/zero") && sscanf(line.c_str(), "%zx-%zx", &low, &high) == 2)
            sum += high - low;
    return sum;
}

TEST_F(MemMgr, TellsAFailureAndKeepsTheOldContents) {
    char *kept = strcpy(Get(65535), "kept");
    size_t mapped = MappedBytes();
    ASSERT_GT(mapped, size_t{MEM_BLOCK_SIZE});
    pMemMap = FailingMap;
    static const std::pair<size_t, int> cases[] = {
        {70000, 0}, {70000, 1}, {MEM_MAX, 2}, {INT32_MAX, 2}, {size_t{UINT32_MAX} + 5, 2}, {SIZE_MAX, 2}};
    for (auto [size, maps] : cases) {
        testing::internal::CaptureStderr();
        mapsLeft = maps;
        EXPECT_EQ(GetMem(size), nullptr) << size;
        EXPECT_EQ(errno, ENOMEM);
        mapsLeft = maps;
        EXPECT_EQ(AdjustMem(kept, size), nullptr) << size;
        const std::string message = "ERROR: Unable to allocate memory\n";
        EXPECT_EQ(testing::internal::GetCapturedStderr(), message + message);
        EXPECT_STREQ(kept, "kept");
    }
    EXPECT_EQ(MappedBytes(), mapped) << "one region of two is given back";
    mapsLeft = 0;
    EXPECT_EXIT((void)SaveStr_("x"), testing::ExitedWithCode(1), "Unable to allocate memory : Cannot");
}

// ---- duplicators

TEST_F(MemMgr, SavesTexts) {
    for (size_t length : {0, 1, 1023, 1024, 65534, 100000}) {
        std::string text(length, 't');
        char *copies[] = {SaveStr("%s", text.c_str()), SaveStr_(text.c_str()), SaveStr__("%s", text.c_str())};
        for (char *copy : copies) EXPECT_EQ(copy, text) << length;
        for (char *copy : copies) PutMem(copy);
    }
    EXPECT_STREQ(SaveStr_("100%s%n"), "100%s%n");
    EXPECT_STREQ(SaveStr_(nullptr), "");
}
