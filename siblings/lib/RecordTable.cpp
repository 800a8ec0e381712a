// Edits of records, and their bytes.
#include "siblings/lib/RecordTable.h"

#include "common/Dbm.h"

#include <cstdint>

void RecordTable::Clear() {
    records.clear();
    places.clear();
    edits.clear();
}

void RecordTable::Load(std::string_view key, std::string_view data, bool flWhole) {
    std::string name(key);
    if (flWhole && !places.emplace(name, records.size()).second) return;
    records.push_back({name, std::string(data), flWhole, true});
}

size_t RecordTable::Place(const std::string &key) const {
    auto found = places.find(key);
    return found == places.end() ? NONE : found->second;
}

const std::string *RecordTable::Find(const std::string &key) const {
    size_t place = Place(key);
    return place == NONE ? nullptr : &records[place].data;
}

void RecordTable::Change(const std::string &key, size_t after) {
    size_t before = Place(key);
    edits.push_back({key, before, after});
    if (before != NONE) records[before].flThere = false;
    if (after == NONE)
        places.erase(key);
    else
        places[key] = after;
}

bool RecordTable::Put(const std::string &key, std::string_view data) {
    if (key.size() + 1 + data.size() + DBM_WORD > DBM_BODY_MAX) return false;
    const std::string *old = Find(key);
    if (old && *old == data) return true;
    Change(key, records.size());
    records.push_back({key, std::string(data), true, true});
    return true;
}

void RecordTable::Delete(const std::string &key) {
    if (Place(key) != NONE) Change(key, NONE);
}

void RecordTable::Mark() {
    edits.clear();
}

void RecordTable::Revert() {
    for (; !edits.empty(); edits.pop_back()) {
        const Edit &edit = edits.back();
        if (edit.after != NONE) records[edit.after].flThere = false;
        if (edit.before == NONE) {
            places.erase(edit.key);
        } else {
            places[edit.key] = edit.before;
            records[edit.before].flThere = true;
        }
    }
}

static void AddWord(std::string &bytes, size_t number) {
    uint16_t word = static_cast<uint16_t>(number);
    bytes.append(reinterpret_cast<const char *>(&word), sizeof word);
}

std::string RecordTable::Image() const {
    std::string image;
    for (const Record &record : records) {
        if (!record.flThere) continue;
        std::string body;
        size_t K = record.key.size() + (record.flWhole ? 1 : 0);
        AddWord(body, K);
        body += record.key;
        if (record.flWhole) body += '\0';
        body += record.data;
        DbScramble(body.data(), body.size());
        AddWord(image, body.size());
        image += body;
    }
    return image;
}
