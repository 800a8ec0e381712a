// The token scanner and the sort of queue names.
#include "common/Token.h"

#include "bench/Bench.h"
#include "common/MemMgr.h"

#include <algorithm>
#include <cstring>
#include <random>
#include <sstream>
#include <string>
#include <strings.h>
#include <vector>

static std::string QueueNames(int count) {
    static const char *const places[] = {"lab", "Office", "print", "tarvo", "Floor", "acct", "HALL"};
    std::mt19937 random(2);
    std::string names;
    for (int i = 0; i < count; i++)
        names +=
            "," + std::string(places[random() % std::size(places)]) + "-" + std::to_string(random() % 10000);
    return names;
}

static long SortOurs(int scale) {
    std::string names = QueueNames(5000 * scale);
    names.push_back('\0');
    SortTokens(names.data(), ',', 1);
    return 5000 * scale;
}

static long SortYardstick(int scale) {
    std::string names = QueueNames(5000 * scale), name, sorted;
    std::vector<std::string> words;
    std::istringstream in(names);
    while (std::getline(in, name, ',')) words.push_back(name);
    std::sort(words.begin(), words.end(), [](const std::string &a, const std::string &b) {
        return strcasecmp(a.c_str(), b.c_str()) < 0;
    });
    for (const std::string &word : words) sorted += word + ",";
    return 5000 * scale;
}

static long ScanOurs(int scale) {
    std::string names = QueueNames(5000 * scale);
    long count = 0;
    for (char *token = GetToken(names.c_str(), " ,\t\n"); token; token = GetToken(nullptr, " ,\t\n")) count++;
    return count;
}

static long ScanYardstick(int scale) {
    std::string names = QueueNames(5000 * scale);
    char *place = nullptr, copy[TOKEN_SIZE];
    long count = 0;
    for (char *token = strtok_r(names.data(), " ,\t\n", &place); token;
         token = strtok_r(nullptr, " ,\t\n", &place)) {
        snprintf(copy, sizeof(copy), "%s", token);
        count++;
    }
    return count;
}

static const std::string &LongList(int scale) {
    static std::string lists[5];
    if (lists[scale].empty()) lists[scale] = QueueNames(5000 * scale) + ",last,";
    return lists[scale];
}

// The position of the last word of a long list; the time is told for each word passed.
static long FindOurs(int scale) {
    return FindToken("last", LongList(scale).c_str());
}

static long FindYardstick(int scale) {
    const char *list = LongList(scale).c_str(), *hit = strstr(list, ",last,");
    return std::count(list, hit + 1, ',');
}

// A word of a short list, as the small languages look up their keywords.
static const char keywords[] = ",update,-tty,-help,-v,-d,-wiz,-log,-res,";

static long KeywordsOurs(int scale) {
    long sum = 0, count = 20000L * scale;
    for (long i = 0; i < count; i++) sum += FindToken(i % 2 ? "-wiz" : "-x", keywords);
    return sum > 0 ? count : 0;
}

static long KeywordsYardstick(int scale) {
    static const char *const words[] = {"update", "-tty", "-help", "-v", "-d", "-wiz", "-log", "-res"};
    long sum = 0, count = 20000L * scale;
    for (long i = 0; i < count; i++) {
        const char *wanted = i % 2 ? "-wiz" : "-x";
        auto hit = std::find_if(std::begin(words), std::end(words),
                                [=](auto word) { return !strcmp(word, wanted); });
        sum += hit - words;
    }
    return sum > 0 ? count : 0;
}

int main() {
    BenchHead();
    BenchRow("5000 queue names: SortTokens | std::sort", SortOurs, SortYardstick);
    BenchRow("5000 queue names: GetToken | strtok_r", ScanOurs, ScanYardstick);
    BenchRow("word 5001 of a list: FindToken | strstr, count", FindOurs, FindYardstick);
    BenchRow("keyword of 8: FindToken | array of strcmp", KeywordsOurs, KeywordsYardstick);
    return 0;
}
