// The manager against a plain first fit model, its rounding, resizing, failures, dump and duplicators.
#include "common/MemMgr.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>

#include "common/utils.h"

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
static bool IsHidden(const void *address) {
    return __asan_address_is_poisoned(address);
}
static void Show(const void *address, size_t size) {
    __asan_unpoison_memory_region(address, size);
}
static constexpr bool flHides = true;
#else
static bool IsHidden(const void *) {
    return true;
}
static void Show(const void *, size_t) {}
static constexpr bool flHides = false;
#endif

static char *Get(size_t size) {
    return static_cast<char *>(GetMem(size));
}
static char *Adjust(char *address, size_t size) {
    return static_cast<char *>(AdjustMem(address, size));
}

static bool IsZero(const char *data, size_t size) {
    for (size_t i = 0; i < size; i++)
        if (data[i]) return false;
    return true;
}

static bool IsAll(const char *data, char ch, size_t size) {
    for (size_t i = 0; i < size; i++)
        if (data[i] != ch) return false;
    return true;
}

static int CountBlocks() {
    int count = 0;
    for (MemBlock *block = pMemB; block; block = block->next) count++;
    return count;
}

// Each test starts and ends without blocks.
class MemMgr : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(pMemB, nullptr); }
    void TearDown() override {
        EXPECT_STREQ(CheckMem(), nullptr);
        while (pMemB) FreeBlock(pMemB);
        pMemOpen = open;
        pMemMap = mmap;
    }
};

// ---- rounding

TEST_F(MemMgr, TakesNodesForSizeAndOneMore) {
    struct Case {
        size_t size;
        int nodes;     // in a shared block
        int dedicated; // bytes of a dedicated one
    };
    static const Case cases[] = {{1, 1, 0},           {31, 1, 0},         {32, 2, 0},
                                 {63, 2, 0},          {64, 3, 0},         {65503, 2047, 0},
                                 {65504, 2048, 0},    {65535, 2048, 0},   {65536, 0, 131072},
                                 {131071, 0, 131072}, {131072, 0, 196608}};
    for (const Case &c : cases) {
        char *address = Get(c.size);
        ASSERT_NE(address, nullptr) << c.size;
        EXPECT_TRUE(IsZero(address, c.size + 1)) << c.size;
        EXPECT_EQ(pMemB->freeCount, c.dedicated ? 0 : MEM_BLOCK_NODES - c.nodes) << c.size;
        EXPECT_EQ(pMemB->size, c.dedicated ? c.dedicated : MEM_BLOCK_SIZE) << c.size;
        EXPECT_EQ(address, pMemB->data) << c.size;
        EXPECT_STREQ(CheckMem(), nullptr) << c.size;
        PutMem(address);
        EXPECT_EQ(pMemB, nullptr) << c.size;
    }
    EXPECT_EQ(GetMem(0), nullptr);
}

TEST_F(MemMgr, FillsABlockToItsLastNodeAndOpensAnother) {
    char *most = Get(65535 - 32), *last = Get(31);
    EXPECT_EQ(last, pMemB->data + 65504);
    EXPECT_EQ(pMemB->freeCount, 0);
    char *next = Get(1);
    ASSERT_NE(pMemB->next, nullptr);
    EXPECT_EQ(next, pMemB->next->data);
    PutMem(most);
    PutMem(last);
    EXPECT_EQ(pMemB->data, next) << "an emptied block leaves the chain at once";
}

TEST_F(MemMgr, IgnoresAddressesThatAreNotItsOwn) {
    char local[8];
    char *first = Get(100), *second = Get(100);
    for (const void *address : {static_cast<const void *>(nullptr), static_cast<const void *>(local),
                                static_cast<const void *>(OutOfMem), static_cast<const void *>(first + 64)})
        PutMem(address);
    PutMem(second);
    PutMem(second);
    EXPECT_EQ(pMemB->freeCount, MEM_BLOCK_NODES - 4);
    PutMem(first);
    PutMem(first);
    EXPECT_EQ(pMemB, nullptr);
}

TEST_F(MemMgr, HidesFreeNodesAndTails) {
    if (!flHides) GTEST_SKIP() << "built without AddressSanitizer";
    char *small = Get(10), *other = Get(10), *large = Get(70000);
    EXPECT_FALSE(IsHidden(small + 10));
    EXPECT_TRUE(IsHidden(small + 11));
    EXPECT_TRUE(IsHidden(large + 70001));
    EXPECT_EQ(Adjust(small, 20), small);
    EXPECT_FALSE(IsHidden(small + 20));
    EXPECT_TRUE(IsHidden(small + 21));
    PutMem(other);
    EXPECT_TRUE(IsHidden(other));
    EXPECT_EQ(Adjust(small, 50), small);
    EXPECT_FALSE(IsHidden(other));
}

// ---- random sequences against the model

// A MAT for each shared block, its number in the chain's order, and every allocation with the bytes it must
// hold.
struct Model {
    struct Owned {
        char *address;
        std::string bytes;
        size_t rounded;
    };
    std::vector<std::string> mats; // in chain order; empty for a dedicated block
    std::map<int, Owned> owned;
};

static size_t Rounded(size_t size) {
    return (size + 1 + 31) / 32 * 32;
}

// Where first fit puts so many nodes: block number and index; a new block stands behind all others.
static std::pair<size_t, size_t> FirstFit(const std::vector<std::string> &mats, size_t count) {
    for (size_t i = 0; i < mats.size(); i++)
        if (size_t index = mats[i].find(std::string(count, ' ')); index != std::string::npos)
            return {i, index};
    return {mats.size(), 0};
}

static std::vector<std::string> ShownMats() {
    std::vector<std::string> mats;
    for (MemBlock *block = pMemB; block; block = block->next)
        mats.push_back(block->size > MEM_BLOCK_SIZE ? "" : block->MAT);
    return mats;
}

static const char *AddressOf(size_t number, size_t index) {
    MemBlock *block = pMemB;
    while (block && number--) block = block->next;
    return block ? block->data + index * MEM_NODE_SIZE : nullptr;
}

static size_t RandomSize(std::mt19937 &random) {
    static const size_t limits[] = {31, 31, 31, 64, 64, 200, 200, 1000, 8192, 30000, 70000, 150000};
    return 1 + random() % limits[random() % std::size(limits)];
}

static void Fill(Model::Owned &owned, size_t size, char ch) {
    owned.bytes.assign(size, ch);
    owned.rounded = Rounded(size);
    memset(owned.address, ch, size);
}

static void GetStep(Model &model, int id, size_t size) {
    auto mats = ShownMats();
    bool flShared = Rounded(size) <= MEM_BLOCK_SIZE;
    auto [number, index] = flShared ? FirstFit(mats, Rounded(size) / 32) : std::pair{mats.size(), size_t{0}};
    Model::Owned owned{Get(size), "", 0};
    ASSERT_EQ(owned.address, AddressOf(number, index)) << "size " << size;
    ASSERT_TRUE(IsZero(owned.address, size + 1)) << "size " << size;
    Fill(owned, size, static_cast<char>('a' + id % 26));
    model.owned[id] = owned;
}

// Where AdjustMem must put an allocation of a shared block that stays in nodes: in place, down, or by first
// fit while the old nodes are still taken.
static const char *AdjustedPlace(char *address, size_t old, size_t count) {
    MemBlock *block = FindBlock(address);
    size_t index = static_cast<size_t>(address - block->data) / MEM_NODE_SIZE,
           added = count > old ? count - old : 0;
    std::string mat = block->MAT, room(added, ' ');
    if (added == 0 || mat.compare(index + old, added, room) == 0) return address;
    if (index >= added && mat.compare(index - added, added, room) == 0)
        return address - added * MEM_NODE_SIZE;
    auto [number, place] = FirstFit(ShownMats(), count);
    return number == ShownMats().size() ? nullptr : AddressOf(number, place);
}

static void AdjustStep(Model &model, int id, size_t size) {
    Model::Owned &owned = model.owned[id];
    bool flNodes = owned.rounded <= MEM_BLOCK_SIZE && Rounded(size) <= MEM_BLOCK_SIZE &&
                   FindBlock(owned.address)->size == MEM_BLOCK_SIZE;
    const char *place =
        flNodes ? AdjustedPlace(owned.address, owned.rounded / 32, Rounded(size) / 32) : nullptr;
    char *address = Adjust(owned.address, size);
    ASSERT_NE(address, nullptr);
    if (place) {
        ASSERT_EQ(address, place) << "size " << size;
    }
    size_t kept = std::min(size, owned.bytes.size());
    ASSERT_EQ(std::string(address, kept), owned.bytes.substr(0, kept)) << "size " << size;
    if (Rounded(size) > owned.rounded) {
        ASSERT_TRUE(IsZero(address + owned.rounded, size + 1 - owned.rounded)) << "size " << size;
    }
    owned.address = address;
    Fill(owned, size, static_cast<char>('A' + id % 26));
}

static void PutStep(Model &model, int id) {
    Model::Owned &owned = model.owned[id];
    ASSERT_EQ(std::string(owned.address, owned.bytes.size()), owned.bytes);
    PutMem(owned.address);
    model.owned.erase(id);
}

TEST_F(MemMgr, FollowsTheFirstFitModel) {
    for (unsigned seed = 1; seed <= 6; seed++) {
        std::mt19937 random(seed);
        Model model;
        for (int step = 0; step < 4000 && !HasFatalFailure(); step++) {
            int id = static_cast<int>(random() % 300);
            SCOPED_TRACE("seed " + std::to_string(seed) + " step " + std::to_string(step));
            if (!model.owned.count(id))
                GetStep(model, id, RandomSize(random));
            else if (random() % 2)
                PutStep(model, id);
            else
                AdjustStep(model, id, RandomSize(random));
            if (step % 16 == 0) {
                ASSERT_STREQ(CheckMem(), nullptr);
            }
        }
        while (!model.owned.empty() && !HasFatalFailure()) PutStep(model, model.owned.begin()->first);
        EXPECT_EQ(pMemB, nullptr) << "seed " << seed;
    }
}

// ---- AdjustMem

TEST_F(MemMgr, AdjustsInPlaceUpToTheBlockEnd) {
    char *low = Get(31), *high = Get(1023);
    memset(high, 'h', 1023);
    EXPECT_EQ(Adjust(high, 65535 - 32), high) << "up to the last node";
    EXPECT_TRUE(IsAll(high, 'h', 1023));
    EXPECT_TRUE(IsZero(high + 1024, 65535 - 32 - 1024));
    EXPECT_EQ(pMemB->freeCount, 0);
    EXPECT_EQ(Adjust(high, 100), high) << "shrunk";
    EXPECT_EQ(pMemB->freeCount, MEM_BLOCK_NODES - 5);
    EXPECT_EQ(Adjust(high, 1023), high);
    EXPECT_TRUE(IsZero(high + 128, 1024 - 128)) << "grown again over nodes that held data";
    PutMem(low);
}

TEST_F(MemMgr, AdjustsDownOverFreeNodes) {
    char *low = Get(31), *hole = Get(63), *moved = Get(127), *high = Get(31);
    strcpy(low, "low");
    strcpy(high, "high");
    memset(hole, 'x', 63);
    for (char i = 0; i < 127; i++) moved[static_cast<int>(i)] = i;
    PutMem(hole);
    char *target = Adjust(moved, 191);
    EXPECT_EQ(target, hole);
    for (char i = 0; i < 127; i++) ASSERT_EQ(target[static_cast<int>(i)], i);
    EXPECT_TRUE(IsZero(target + 128, 64));
    EXPECT_STREQ(low, "low");
    EXPECT_STREQ(high, "high");
    EXPECT_EQ(pMemB->nodes[7].address, high) << "the neighbours' records stay";
    EXPECT_STREQ(CheckMem(), nullptr);
    PutMem(moved);
    EXPECT_EQ(pMemB->freeCount, MEM_BLOCK_NODES - 8) << "its old address is none any more";
    PutMem(low);
    EXPECT_EQ(Adjust(target, 223), low) << "down to the first node";
}

TEST_F(MemMgr, AdjustsNullAndZero) {
    char *address = Adjust(nullptr, 10);
    EXPECT_EQ(pMemB->freeCount, MEM_BLOCK_NODES - 1) << "the nodes of GetMem";
    char *other = Adjust(address + 320, 10);
    EXPECT_EQ(other, address + 32) << "no allocation starts there: a new one";
    EXPECT_EQ(Adjust(address, 0), nullptr);
    EXPECT_EQ(Adjust(other, 0), nullptr);
    EXPECT_EQ(Adjust(nullptr, 0), nullptr);
    EXPECT_EQ(pMemB, nullptr);
}

TEST_F(MemMgr, KeepsADedicatedBlockHoweverSmall) {
    char *address = Get(200000);
    memset(address, 'x', 200000);
    ASSERT_EQ(Adjust(address, 100), address);
    EXPECT_EQ(pMemB->size, 262144);
    EXPECT_TRUE(IsAll(address, 'x', 100));
    Show(address, 200000);
    EXPECT_TRUE(IsZero(address + 128, 200000 - 128)) << "cleared at once";
    ASSERT_EQ(Adjust(address, 150000), address);
    EXPECT_TRUE(IsZero(address + 128, 150000 - 128));
    memset(address, 'y', 150000);
    ASSERT_EQ(Adjust(address, 262143), address) << "exactly its size";
    EXPECT_TRUE(IsZero(address + 150016, 262143 - 150016));
    char *moved = Adjust(address, 262144);
    EXPECT_NE(moved, address);
    EXPECT_TRUE(IsAll(moved, 'y', 150000));
    EXPECT_TRUE(IsZero(moved + 150016, 262144 - 150016));
    EXPECT_EQ(CountBlocks(), 1);
}

// ---- failures

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

static int FailingOpen(const char *, int, ...) {
    return errno = EMFILE, -1;
}

TEST_F(MemMgr, ReportsAFailedMappingAndKeepsTheOldContents) {
    char *kept = Get(65535);
    strcpy(kept, "kept");
    size_t mapped = MappedBytes();
    ASSERT_GT(mapped, size_t{MEM_BLOCK_SIZE});
    pMemMap = FailingMap;
    for (int fails = 0; fails < 2; fails++) {
        for (size_t size : {size_t{1}, size_t{100000}}) {
            mapsLeft = fails;
            testing::internal::CaptureStderr();
            EXPECT_EQ(GetMem(size), nullptr);
            EXPECT_EQ(errno, ENOMEM);
            EXPECT_EQ(testing::internal::GetCapturedStderr(), "ERROR: Unable to allocate memory\n");
            EXPECT_EQ(CountBlocks(), 1);
        }
        mapsLeft = fails;
        testing::internal::CaptureStderr();
        EXPECT_EQ(AdjustMem(kept, 100000), nullptr);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "ERROR: Unable to allocate memory\n");
        EXPECT_STREQ(kept, "kept");
    }
    EXPECT_EQ(MappedBytes(), mapped) << "one region of two is given back";
}

TEST_F(MemMgr, RefusesSizesBeyondItsFields) {
    char *kept = Get(10);
    for (size_t size : {size_t{MEM_MAX}, size_t{INT32_MAX}, size_t{UINT32_MAX} + 5, SIZE_MAX}) {
        testing::internal::CaptureStderr();
        EXPECT_EQ(GetMem(size), nullptr) << size;
        EXPECT_EQ(AdjustMem(kept, size), nullptr) << size;
        EXPECT_EQ(testing::internal::GetCapturedStderr(),
                  "ERROR: Unable to allocate memory\nERROR: Unable to allocate memory\n");
    }
    EXPECT_EQ(CountBlocks(), 1);
}

TEST_F(MemMgr, FallsBackToMallocAndGivesItBack) {
    int saved = std::exchange(fdZero, -1);
    char *mapped = (fdZero = saved, Get(10));
    saved = std::exchange(fdZero, -1);
    pMemOpen = FailingOpen;
    char *large = Get(65535), *dedicated = Get(70000);
    EXPECT_EQ(CountBlocks(), 3);
    EXPECT_TRUE(IsZero(large, 65536) && IsZero(dedicated, 70001));
    memset(dedicated, 'x', 70000);
    EXPECT_EQ(Adjust(dedicated, 131071), dedicated);
    EXPECT_TRUE(IsZero(dedicated + 70016, 131071 - 70016));
    PutMem(mapped);
    fdZero = saved;
    PutMem(large); // a leak or a wrong release is the sanitizer's to find
    PutMem(dedicated);
    EXPECT_EQ(pMemB, nullptr);
}

// ---- the chain's own operations

TEST_F(MemMgr, ChainsAndUnchainsBlocks) {
    MemBlock *a = GetNewBlock(1), *b = GetNewBlock(65537), *c = GetNewBlock(65536);
    EXPECT_EQ(a->size, 65536);
    EXPECT_EQ(b->size, 65537) << "its caller rounds";
    EXPECT_EQ(c->freeCount, MEM_BLOCK_NODES);
    EXPECT_EQ(FindBlock(b->data + 65536), b);
    EXPECT_NE(FindBlock(b->data + 65537), b);
    EXPECT_EQ(PopBlock(nullptr), nullptr);
    EXPECT_EQ(PopBlock(b), b);
    EXPECT_EQ(FindBlock(b->data), nullptr);
    EXPECT_EQ(a->next, c);
    EXPECT_EQ(PopBlock(a), c);
    EXPECT_EQ(PopBlock(c), nullptr);
    PushBlock(c);
    PushBlock(b);
    PushBlock(a);
    EXPECT_EQ(pMemB, c);
    EXPECT_EQ(a->previous, b);
    EXPECT_EQ(TestMAT(a->MAT + 2040, MEM_FREE, 8), 1);
    EXPECT_EQ(TestMAT(a->MAT + 2040, MEM_FREE, 9), 0) << "the NUL stops it";
    EXPECT_EQ(TestMAT(a->MAT, MEM_USED, 0), 1);
    FreeBlock(b); // of a size that no request makes
}

// ---- dump

TEST_F(MemMgr, DumpsBlocks) {
    char *text = SaveStr_("hello"), *binary = Get(32), *large = Get(100000);
    memset(binary, 'b', 32);
    MemBlock *shared = pMemB, *dedicated = shared->next;
    testing::internal::CaptureStdout();
    DumpMem();
    fflush(stdout);
    std::string got = testing::internal::GetCapturedStdout();
    auto number = [](const void *address) { return std::to_string(reinterpret_cast<long>(address)); };
    std::string rows = "\n\tUUU" + std::string(61, '_');
    for (int i = 1; i < 32; i++) rows += "\n\t" + std::string(64, '_');
    EXPECT_EQ(got, "\n============ Block(" + number(shared) +
                       ") size(65536) Free(2045) Used(3) FreeNodeCount(2045) SizeCnt(2045) <==(0) (" +
                       number(dedicated) + ")==>\n\tBlock MAT:" + rows + "\n\n\tAllocated Nodes:\n" +
                       "\tMAT index(     0) Memory Addr(" + number(text) +
                       ") nodes(    1) size(   32) Memory(hello)\n" + "\tMAT index(     1) Memory Addr(" +
                       number(binary) + ") nodes(    2) size(   64) Memory(" + std::string(32, 'b') +
                       ")\n\n" + "\n============ Dedicated Block(" + number(large) +
                       ") size(131072) FreeNodeCount(0) <==(" + number(shared) + ") (0)==>");
}

// ---- duplicators

TEST_F(MemMgr, SavesTexts) {
    std::string longText(100000, 'x');
    char *copy = SaveStr("%s-%d", longText.c_str(), 7);
    EXPECT_EQ(copy, longText + "-7");
    PutMem(copy);
    for (size_t length : {size_t{0}, size_t{1}, size_t{1022}, size_t{1023}, size_t{1024}, size_t{65534}}) {
        std::string text(length, 't');
        char *copies[] = {SaveStr("%s", text.c_str()), SaveStr_(text.c_str()), SaveStr__("%s", text.c_str())};
        for (char *one : copies) EXPECT_EQ(one, text) << length;
        for (char *one : copies) PutMem(one);
    }
    EXPECT_STREQ(SaveStr_("100%s%n"), "100%s%n");
    EXPECT_STREQ(SaveStr_(nullptr), "");
    EXPECT_EQ(SaveStr__("%s", longText.c_str()), longText);
    const char *none = nullptr;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-security"
    EXPECT_STREQ(SaveStr(none), "");
    EXPECT_EQ(SaveStr__(none), nullptr);
#pragma GCC diagnostic pop
}

TEST_F(MemMgr, EndsWhenNoTextCanBeSaved) {
    my_name = "memtest";
    pMemMap = FailingMap;
    mapsLeft = 0;
    const char *wanted = "memtest: Unable to allocate memory : Cannot allocate memory";
    EXPECT_EXIT((void)SaveStr_("x"), testing::ExitedWithCode(1), wanted);
    EXPECT_EXIT((void)SaveStr("%d", 1), testing::ExitedWithCode(1), wanted);
}
