// The records of a headerless database (common/Dbm.h) as a table in memory: a look-up and an edit cost the
// same however many there are, so that a run over thousands of queues is linear.
//
// Edits since the last Mark can be taken back. A record that is put stands last, as in the file layers; of a
// key that a file has twice the first record counts, and the others are left out.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

class RecordTable {
public:
    struct Record {
        std::string key;
        std::string data;
        bool flWhole; // the key had its NUL: it can be found
        bool flThere; // false once it is deleted or replaced
    };

    void Clear();
    // As the file has it: key without its NUL, which a key that isn't whole never had.
    void Load(std::string_view key, std::string_view data, bool flWhole);
    const std::string *Find(const std::string &key) const;   // its data, or null
    bool Put(const std::string &key, std::string_view data); // false if they are too large for a record
    void Delete(const std::string &key);
    void Mark();
    void Revert();
    const std::vector<Record> &Records() const { return records; } // in the order of the file
    std::string Image() const;                                     // the bytes of the file

private:
    struct Edit {
        std::string key;
        size_t before, after; // places in records, NONE
    };
    void Change(const std::string &key, size_t after);
    size_t Place(const std::string &key) const;

    static constexpr size_t NONE = static_cast<size_t>(-1);
    std::vector<Record> records;
    std::unordered_map<std::string, size_t> places;
    std::vector<Edit> edits;
};
