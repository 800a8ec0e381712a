// The reader of descriptions: statements, blocks, values, tables, recordings.
#include "tools/prnsim/SimKnobs.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <utility>

enum { INCLUDES_DEEP = 16, INCLUDES_MAX = 1000, PRINTERS_MAX = 65536 };

using Words = std::vector<SimWord>;

struct TypeRow {
    std::string_view word, code; // code: in a recording
    SimTag tag;
    int64_t low = 0, high = 0; // of numbers
};

static constexpr TypeRow Types[] = {
    {.word = "integer", .code = "2", .tag = SIM_INTEGER, .low = INT32_MIN, .high = INT32_MAX},
    {.word = "text", .code = "4", .tag = SIM_OCTETS},
    {.word = "hex", .code = "4x", .tag = SIM_OCTETS},
    {.word = "oid", .code = "6", .tag = SIM_OBJECT},
    {.word = "ip", .code = "64", .tag = SIM_IP},
    {.word = "counter", .code = "65", .tag = SIM_COUNTER, .high = UINT32_MAX},
    {.word = "gauge", .code = "66", .tag = SIM_GAUGE, .high = UINT32_MAX},
    {.word = "ticks", .code = "67", .tag = SIM_TICKS, .high = UINT32_MAX},
    {.word = "uptime", .code = "-", .tag = SIM_TICKS},
    {.word = "null", .code = "5", .tag = SIM_NULL},
};

class FleetReader {
public:
    FleetReader(SimFleet *into, const SimReadOptions &how) : fleet(into), options(how) {}
    void ReadFile(const std::string &path);
    void Finish();
    size_t Change(std::string_view text, std::set<SimOid> *changed);

private:
    enum Place { AT_TOP, IN_ALL, IN_MODEL, IN_PRINTER };
    enum { FOR_TOP = 1, FOR_ALL = 2, FOR_VALUES = 4, FOR_ANY = 7 };
    struct Statement {
        std::string_view word;
        int places;
        size_t least, most; // words, with the first
        void (FleetReader::*read)(const Words &words);
        std::string_view usage;
    };
    struct Column {
        char32_t number;
        const TypeRow *type;
        SimValue traits; // writable, keep, max, cut
    };
    static const Statement Statements[];

    [[noreturn]] void Fail(const std::string &text) const { throw SimFault(Where() + ": " + text); }
    std::string Where() const { return file + ":" + std::to_string(line); }
    void ReadLines(const std::string &path, void (FleetReader::*read)(std::string_view text));
    void ReadLine(std::string_view text);
    void RunLine(const Words &words);
    void RunStatement(const Statement &statement, const Words &words);
    void ReadKnobLine(const Words &words);

    void Include(const Words &words);
    void Name(const Words &words);
    void Subnet(const Words &words);
    void Seed(const Words &words);
    void Pace(const Words &words);
    void All(const Words &words);
    void Model(const Words &words);
    void Printer(const Words &words);
    void Remove(const Words &words);
    void Writable(const Words &words);
    void Table(const Words &words);
    void Row(const Words &words);
    void Recording(const Words &words);
    void At(const Words &words);
    void Warm(const Words &words);

    void ValueLine(const Words &words);
    SimEntry Entry(const Words &words, size_t first) const;
    const TypeRow &Type(const SimWord &word) const;
    SimValue Value(const TypeRow &type, const SimWord &word) const;
    void TextValue(const SimWord &word, SimValue *value) const;
    void HexValue(const SimWord &word, SimValue *value) const;
    void Traits(const Words &words, size_t at, size_t end, SimValue *value) const;
    void RecordLine(std::string_view text);
    void Put(const SimOid &name, SimValue value, bool flOnce = true);

    bool Resolve(const std::string &text, SimOid *oid) const;
    SimOid OidOf(const SimWord &word) const;
    bool Address(const std::string &text, uint32_t *address) const;
    uint32_t AddressOf(const SimWord &word) const;
    const SimBlock *ModelOf(const SimWord &word) const;
    SimResolver Resolver() const;
    std::string Beside(const std::string &name) const;

    void CloseBlock();
    void Add(uint32_t first, uint32_t last, const SimBlock *model);
    void Force(const SimBlock *model, const SimKnobs &forced, SimBlock *own) const;
    SimKnobs ForcedKnobs() const;

    SimFleet *fleet;
    const SimReadOptions &options;
    std::string file;
    int line = 0, depth = 0, included = 0;
    bool flChanging = false;                   // one line for a printer of a fleet that is at work
    std::map<uint32_t, std::string> addresses; // where each printer stands
    std::vector<std::pair<SimBlock *, const SimBlock *>> owned; // printers' blocks and their models

    // The open block.
    Place place = AT_TOP;
    SimBlock *block = nullptr;
    const SimBlock *base = nullptr; // of a printer: its model
    std::map<SimOid, SimEntry> draft;
    std::set<SimOid> said;
    SimOid entry;
    std::vector<Column> columns;
    SimKnobs all = {};
};

const FleetReader::Statement FleetReader::Statements[] = {
    {"include", FOR_ANY, 2, 2, &FleetReader::Include, "include \"FILE\""},
    {"name", FOR_ANY, 3, 3, &FleetReader::Name, "name WORD OID"},
    {"subnet", FOR_ANY, 2, 2, &FleetReader::Subnet, "subnet ADDRESS/BITS"},
    {"seed", FOR_ANY, 2, 2, &FleetReader::Seed, "seed NUMBER"},
    {"pace", FOR_ANY, 2, 2, &FleetReader::Pace, "pace NUMBER"},
    {"all", FOR_ANY, 1, 1, &FleetReader::All, "all"},
    {"model", FOR_ANY, 2, 4, &FleetReader::Model, "model WORD [like MODEL]"},
    {"printer", FOR_ANY, 2, 6, &FleetReader::Printer, "printer ADDRESS [to ADDRESS] [like MODEL]"},
    {"remove", FOR_VALUES, 2, 2, &FleetReader::Remove, "remove OID"},
    {"writable", FOR_VALUES, 2, SIZE_MAX, &FleetReader::Writable,
     "writable OID [max N] [only N ...] [cut N] [keep]"},
    {"table", FOR_VALUES, 4, SIZE_MAX, &FleetReader::Table, "table OID COLUMN TYPE [rw ...], ..."},
    {"row", FOR_VALUES, 3, SIZE_MAX, &FleetReader::Row, "row INDEX VALUE ..."},
    {"recording", FOR_VALUES, 2, 2, &FleetReader::Recording, "recording \"FILE\""},
    {"warm", FOR_VALUES, 3, 4, &FleetReader::Warm, "warm OID TYPE VALUE"},
    {"at", FOR_VALUES, 4, SIZE_MAX, &FleetReader::At, "at OID KNOB VALUE"},
};

// --- lines ---

// Runs a function over the lines of a file, which is the place of faults meanwhile.
void FleetReader::ReadLines(const std::string &path, void (FleetReader::*read)(std::string_view text)) {
    // A pipe may be named on the command line; what a description names is a file.
    bool flWrong = line ? !std::filesystem::is_regular_file(path) : std::filesystem::is_directory(path);
    std::ifstream in(path, std::ios::binary);
    if (!in || flWrong) throw SimFault((line ? Where() + ": " : "") + path + " can't be read");
    std::string outerFile = std::exchange(file, path), text;
    int outerLine = std::exchange(line, 0);
    while (std::getline(in, text)) {
        line++;
        (this->*read)(text);
    }
    file = outerFile;
    line = outerLine;
}

void FleetReader::ReadFile(const std::string &path) {
    ReadLines(path, &FleetReader::ReadLine);
    CloseBlock();
}

void FleetReader::ReadLine(std::string_view text) {
    Words words;
    if (std::string fault = SimSplit(text, &words); !fault.empty()) Fail(fault);
    if (words.empty()) return;
    RunLine(words);
}

void FleetReader::RunLine(const Words &words) {
    if (words[0].flQuoted) Fail("a line begins with a word, not with a text");
    for (const Statement &statement : Statements) {
        if (statement.word == words[0].text) return RunStatement(statement, words);
    }
    if (SimFindKnob(words[0].text) >= 0) return ReadKnobLine(words);
    ValueLine(words);
}

void FleetReader::RunStatement(const Statement &statement, const Words &words) {
    if (flChanging && statement.places != FOR_VALUES)
        Fail(std::string(statement.word) + " can't be said to a printer at work");
    bool flBlock = place == IN_MODEL || place == IN_PRINTER;
    if (statement.places == FOR_VALUES && !flBlock)
        Fail(std::string(statement.word) + " belongs into the block of a model or printer");
    if (words.size() < statement.least || words.size() > statement.most)
        Fail("this should be: " + std::string(statement.usage));
    (this->*statement.read)(words);
}

void FleetReader::ReadKnobLine(const Words &words) {
    if (place == AT_TOP) Fail(words[0].text + " belongs into a block: all, model or printer");
    SimKnobs *knobs = place == IN_ALL ? &all : &block->knobs;
    if (std::string fault = SimReadKnob(words, Resolver(), knobs); !fault.empty()) Fail(fault);
}

// A line of the block stands in front of those that the block began with, and in the place of one for the
// same.
void FleetReader::At(const Words &words) {
    SimAtKnob at = {OidOf(words[1]), KNOB_COUNT, {}};
    int knob = SimFindKnob(words[2].text);
    if (knob < 0 || knob > KNOB_OTHERID || knob == KNOB_FOREIGN)
        Fail(words[2].text + " can't be had for one identifier");
    SimKnobs knobs = {};
    std::string fault = SimReadKnob({words.begin() + 2, words.end()}, Resolver(), &knobs);
    if (!fault.empty()) Fail(fault);
    at.knob = static_cast<SimKnob>(knob);
    at.setting = std::move(knobs[at.knob]);
    std::erase_if(block->at, [&](const auto &old) { return old.knob == at.knob && old.top == at.top; });
    block->at.insert(block->at.begin(), std::move(at));
}

// --- statements of the file ---

std::string FleetReader::Beside(const std::string &name) const {
    return std::filesystem::path(file).parent_path() / name;
}

void FleetReader::Include(const Words &words) {
    CloseBlock();
    if (++depth > INCLUDES_DEEP) Fail("more than 16 descriptions include each other");
    if (++included > INCLUDES_MAX) Fail("more than 1000 descriptions are included");
    ReadFile(Beside(words[1].text));
    depth--;
}

static bool IsName(const std::string &text) {
    auto isWord = [](unsigned char ch) { return isalnum(ch) || ch == '_' || ch == '-'; };
    return isalpha(static_cast<unsigned char>(text[0])) && std::all_of(text.begin(), text.end(), isWord);
}

void FleetReader::Name(const Words &words) {
    const std::string &word = words[1].text;
    for (const Statement &statement : Statements) {
        if (statement.word == word) Fail(word + " is a statement");
    }
    if (SimFindKnob(word) >= 0) Fail(word + " is a knob");
    if (!IsName(word)) Fail("a name has letters, digits, _ and -, and begins with a letter: " + word);
    SimOid oid = OidOf(words[2]);
    if (auto [at, flNew] = fleet->names.emplace(word, oid); !flNew && at->second != oid)
        Fail(word + " is " + SimOidText(at->second) + " already");
}

void FleetReader::Subnet(const Words &words) {
    size_t slash = words[1].text.find('/');
    SimSubnet subnet = {};
    int64_t bits;
    if (slash == std::string::npos || !Address(words[1].text.substr(0, slash), &subnet.address))
        Fail("this should be: subnet ADDRESS/BITS");
    if (!SimParseNumber(words[1].text.substr(slash + 1), 1, 30, &bits))
        Fail("the bits of a subnet are 1 to 30");
    subnet.mask = UINT32_MAX << (32 - bits);
    if (subnet.address & ~subnet.mask) Fail(words[1].text + " has bits behind its mask");
    for (const SimSubnet &other : fleet->subnets) {
        if (other.Broadcast() == subnet.Broadcast())
            Fail("a subnet with this broadcast address stands already");
    }
    fleet->subnets.push_back(subnet);
}

void FleetReader::Seed(const Words &words) {
    int64_t number;
    if (!SimParseNumber(words[1].text, 0, INT64_MAX, &number)) Fail("bad seed: " + words[1].text);
    fleet->seed = static_cast<uint64_t>(number);
}

void FleetReader::Pace(const Words &words) {
    if (!SimParseNumber(words[1].text, 0, 1000000, &fleet->pace))
        Fail("pace is 0 to 1000000 answers a second");
}

void FleetReader::All(const Words &) {
    CloseBlock();
    place = IN_ALL;
}

const SimBlock *FleetReader::ModelOf(const SimWord &word) const {
    auto at = fleet->models.find(word.text);
    if (at == fleet->models.end() || &at->second == block) Fail("no such model above: " + word.text);
    return &at->second;
}

void FleetReader::Model(const Words &words) {
    CloseBlock();
    if (words.size() == 3 || (words.size() == 4 && words[2].text != "like"))
        Fail("this should be: model WORD [like MODEL]");
    const SimBlock *other = words.size() == 4 ? ModelOf(words[3]) : nullptr;
    auto [at, flNew] = fleet->models.try_emplace(words[1].text);
    if (!flNew) Fail("the model " + words[1].text + " stands already");
    place = IN_MODEL;
    block = &at->second;
    if (!other) return;
    block->knobs = other->knobs;
    block->at = other->at;
    block->warm = other->warm;
    for (const SimEntry &inherited : other->entries)
        draft.emplace_hint(draft.end(), inherited.name, inherited);
}

void FleetReader::Printer(const Words &words) {
    CloseBlock();
    size_t at = 2;
    uint32_t first = AddressOf(words[1]), last = first;
    const SimBlock *model = nullptr;
    if (at + 1 < words.size() && words[at].text == "to") last = AddressOf(words[at + 1]), at += 2;
    if (at + 1 < words.size() && words[at].text == "like") model = ModelOf(words[at + 1]), at += 2;
    if (at != words.size()) Fail("this should be: printer ADDRESS [to ADDRESS] [like MODEL]");
    if (last < first) Fail("the last address is below the first");
    if (last - first >= PRINTERS_MAX - fleet->printers.size()) Fail("more than 65536 printers");
    place = IN_PRINTER;
    base = model;
    block = &fleet->blocks.emplace_back();
    owned.emplace_back(block, model);
    Add(first, last, model);
}

void FleetReader::Add(uint32_t first, uint32_t last, const SimBlock *model) {
    for (uint32_t i = 0; i <= last - first; i++) {
        auto [at, flNew] = addresses.emplace(first + i, Where());
        if (!flNew) Fail(SimAddressText(first + i) + " stands in " + at->second + " already");
        fleet->printers.push_back({first + i, i + 1, model, block});
    }
}

void FleetReader::CloseBlock() {
    if (block) {
        block->entries.reserve(draft.size());
        for (auto &[name, value] : draft) block->entries.push_back(std::move(value));
    }
    draft.clear();
    said.clear();
    columns.clear();
    place = AT_TOP;
    block = nullptr;
    base = nullptr;
}

// --- values ---

bool FleetReader::Resolve(const std::string &text, SimOid *oid) const {
    size_t end = std::min(text.find('.'), text.size());
    auto at = fleet->names.find(text.substr(0, end));
    return SimParseOid(at == fleet->names.end() ? text : SimOidText(at->second) + text.substr(end), oid);
}

SimOid FleetReader::OidOf(const SimWord &word) const {
    SimOid oid;
    if (word.flQuoted || !Resolve(word.text, &oid))
        Fail("no statement, knob, name or identifier: " + word.text);
    return oid;
}

bool FleetReader::Address(const std::string &text, uint32_t *address) const {
    if (!SimParseAddress(text, address)) return false;
    if ((*address & options.mapMask) == options.mapFrom)
        *address = options.mapTo | (*address & ~options.mapMask);
    return true;
}

uint32_t FleetReader::AddressOf(const SimWord &word) const {
    uint32_t address;
    if (!Address(word.text, &address)) Fail("no address: " + word.text);
    return address;
}

SimResolver FleetReader::Resolver() const {
    return {[this](const std::string &text, SimOid *oid) { return Resolve(text, oid); },
            [this](const std::string &text, uint32_t *address) { return Address(text, address); }};
}

void FleetReader::Put(const SimOid &name, SimValue value, bool flOnce) {
    if (flOnce && !said.insert(name).second) Fail(SimOidText(name) + " stands in this block already");
    draft[name] = {name, std::move(value)};
}

void FleetReader::ValueLine(const Words &words) {
    SimEntry found = Entry(words, 0);
    if (place != IN_MODEL && place != IN_PRINTER)
        Fail("a value belongs into the block of a model or printer");
    Put(found.name, std::move(found.value));
}

void FleetReader::Warm(const Words &words) {
    SimEntry found = Entry(words, 1);
    if (found.value.flWritable) Fail("what stands while it warms up can't be set");
    auto at = std::lower_bound(block->warm.begin(), block->warm.end(), found.name,
                               [](const SimEntry &other, const SimOid &name) { return other.name < name; });
    if (at != block->warm.end() && at->name == found.name)
        *at = std::move(found);
    else
        block->warm.insert(at, std::move(found));
}

// "OID TYPE VALUE [rw ...]" from word `first` on.
SimEntry FleetReader::Entry(const Words &words, size_t first) const {
    SimOid name = OidOf(words[first]);
    if (words.size() < first + 2)
        Fail("this should be: OID TYPE VALUE [rw [max N] [only N ...] [cut N] [keep]]");
    const TypeRow &type = Type(words[first + 1]);
    bool flNone = type.tag == SIM_NULL || type.word == "uptime";
    size_t at = first + (flNone ? 2 : 3);
    if (words.size() < at) Fail(words[first + 1].text + " wants a value");
    SimValue value = Value(type, words[at - 1]);
    if (at < words.size() && words[at].text != "rw")
        Fail("rw or nothing stands behind a value, not " + words[at].text);
    if (at < words.size() && flNone) Fail("a value of this type can't be set");
    Traits(words, at, words.size(), &value);
    return {std::move(name), std::move(value)};
}

const TypeRow &FleetReader::Type(const SimWord &word) const {
    for (const TypeRow &type : Types) {
        if (type.word == word.text) return type;
    }
    Fail("no such type: " + word.text);
}

SimValue FleetReader::Value(const TypeRow &type, const SimWord &word) const {
    SimValue value;
    value.tag = type.tag;
    value.flUptime = type.word == "uptime";
    if (type.tag == SIM_NULL || value.flUptime) return value;
    if (type.word == "text") return TextValue(word, &value), value;
    if (type.word == "hex") return HexValue(word, &value), value;
    if (type.tag == SIM_IP && word.text.empty() && word.places.size() == 1 &&
        word.places[0].what == SimPlace::ADDRESS_TEXT)
        return value.places = {{0, SimPlace::ADDRESS_BYTES}}, value;
    if (!word.places.empty()) Fail("a place in braces can't stand here");
    SimOid oid;
    uint32_t address;
    if (type.tag == SIM_OBJECT && Resolve(word.text, &oid)) {
        value.bytes = SimOidContent(oid);
    } else if (type.tag == SIM_IP && SimParseAddress(word.text, &address)) {
        SimValue octets;
        octets.places = {{0, SimPlace::ADDRESS_BYTES}};
        value.bytes = SimExpand(octets, address, 0);
    } else if (type.high == 0 || !SimParseNumber(word.text, type.low, type.high, &value.number)) {
        Fail("bad " + std::string(type.word) + ": " + word.text);
    }
    return value;
}

void FleetReader::TextValue(const SimWord &word, SimValue *value) const {
    if (!word.flQuoted) Fail("a text stands in quotes: " + word.text);
    if (word.text.size() > SIM_TEXT_MAX) Fail("a text has at most 60000 bytes");
    value->bytes = word.text;
    value->places = word.places;
}

void FleetReader::HexValue(const SimWord &word, SimValue *value) const {
    size_t at = 0;
    std::string bytes;
    for (size_t i = 0; i <= word.places.size(); i++) {
        size_t end = i < word.places.size() ? word.places[i].at : word.text.size();
        if (!SimParseHex(std::string_view(word.text).substr(at, end - at), &bytes))
            Fail("bad hex: " + word.text);
        value->bytes += bytes;
        at = end;
        if (i == word.places.size()) break;
        bool flAddress = word.places[i].what == SimPlace::ADDRESS_TEXT;
        value->places.push_back({static_cast<uint32_t>(value->bytes.size()),
                                 flAddress ? SimPlace::ADDRESS_BYTES : SimPlace::NUMBER_BYTES});
    }
    if (value->bytes.size() > SIM_TEXT_MAX) Fail("a hex value has at most 60000 bytes");
}

// "rw [max N] [only N ...] [cut N] [keep]" or nothing, from word `at` to ahead of word `end`.
void FleetReader::Traits(const Words &words, size_t at, size_t end, SimValue *value) const {
    value->flWritable = at < end;
    for (at++; at < end; at++) {
        const std::string &word = words[at].text;
        int64_t number;
        if (word == "keep") {
            value->flKeep = true;
        } else if (word != "max" && word != "cut" && word != "only") {
            Fail("max, only, cut or keep can stand here, not " + word);
        } else if (int64_t low = word == "only" ? INT32_MIN : 0;
                   ++at >= end || !SimParseNumber(words[at].text, low, INT32_MAX, &number)) {
            Fail(word + " wants a number");
        } else if (word == "only") {
            value->only = {static_cast<int32_t>(number)};
            while (at + 1 < end && SimParseNumber(words[at + 1].text, INT32_MIN, INT32_MAX, &number))
                value->only.push_back(static_cast<int32_t>(number)), at++;
        } else {
            (word == "max" ? value->max : value->cut) = static_cast<uint32_t>(number);
        }
    }
}

void FleetReader::Remove(const Words &words) {
    SimOid top = OidOf(words[1]);
    bool flFound = false;
    for (auto at = draft.lower_bound(top); at != draft.end() && SimIsBelow(at->first, top);) {
        flFound = flFound || !at->second.flRemoved;
        said.erase(at->first);
        at = draft.erase(at);
    }
    for (const SimEntry &inherited : base ? base->entries : std::vector<SimEntry>()) {
        if (!SimIsBelow(inherited.name, top)) continue;
        draft[inherited.name] = {inherited.name, {}, true};
        flFound = true;
    }
    if (!flFound) Fail("there is nothing at or below " + SimOidText(top));
}

void FleetReader::Writable(const Words &words) {
    SimOid top = OidOf(words[1]);
    bool flFound = false;
    for (const SimEntry &inherited : base ? base->entries : std::vector<SimEntry>()) {
        if (SimIsBelow(inherited.name, top)) draft.emplace(inherited.name, inherited);
    }
    for (auto at = draft.lower_bound(top); at != draft.end() && SimIsBelow(at->first, top); ++at) {
        if (at->second.flRemoved || at->second.value.flUptime) continue;
        Traits(words, 1, words.size(), &at->second.value);
        flFound = true;
    }
    if (!flFound) Fail("there is nothing that can be set at or below " + SimOidText(top));
}

void FleetReader::Table(const Words &words) {
    columns.clear();
    entry = OidOf(words[1]);
    for (size_t at = 2, end; at < words.size(); at = end + 1) {
        for (end = at; end < words.size() && (words[end].text != "," || words[end].flQuoted);) end++;
        int64_t number;
        if (end - at < 2 || !SimParseNumber(words[at].text, 0, UINT32_MAX, &number))
            Fail("a column is: COLUMN TYPE [rw ...]");
        Column &column = columns.emplace_back();
        column.number = static_cast<char32_t>(number);
        column.type = &Type(words[at + 1]);
        if (column.type->tag == SIM_NULL || column.type->word == "uptime")
            Fail("no column can have this type");
        if (at + 2 < end && words[at + 2].text != "rw")
            Fail("rw or nothing stands behind the type of a column");
        Traits(words, at + 2, end, &column.traits);
    }
}

void FleetReader::Row(const Words &words) {
    SimOid index;
    if (columns.empty()) Fail("no table stands above this row");
    // Two arcs ahead make an identifier of it.
    if (!SimParseOid("1.3." + words[1].text, &index)) Fail("bad index: " + words[1].text);
    if (words.size() - 2 != columns.size())
        Fail("this row has " + std::to_string(words.size() - 2) + " values, its table " +
             std::to_string(columns.size()) + " columns");
    for (size_t i = 0; i < columns.size(); i++) {
        const SimWord &word = words[i + 2];
        if (word.text == "-" && !word.flQuoted) continue;
        SimValue value = Value(*columns[i].type, word);
        value.flWritable = columns[i].traits.flWritable;
        value.flKeep = columns[i].traits.flKeep;
        value.max = columns[i].traits.max;
        value.cut = columns[i].traits.cut;
        value.only = columns[i].traits.only;
        SimOid name = entry + columns[i].number + index.substr(2);
        if (name.size() > SIM_ARCS_MAX) Fail("an identifier has at most 128 numbers");
        Put(name, std::move(value));
    }
}

// --- recorded walks ---

void FleetReader::Recording(const Words &words) {
    ReadLines(Beside(words[1].text), &FleetReader::RecordLine);
}

void FleetReader::RecordLine(std::string_view text) {
    if (!text.empty() && text.back() == '\r') text.remove_suffix(1);
    if (text.empty() || text[0] == '#') return;
    size_t bar = text.find('|'), second = bar == text.npos ? bar : text.find('|', bar + 1);
    SimOid name;
    if (second == text.npos) Fail("a line of a recording is OID|TYPE|VALUE");
    if (!SimParseOid(text.substr(0, bar), &name)) Fail("bad identifier: " + std::string(text.substr(0, bar)));
    std::string_view code = text.substr(bar + 1, second - bar - 1);
    if (code == "70") return; // version 1 can't say it
    SimWord word = {std::string(text.substr(second + 1)), {}, true};
    if (code == "64x") {
        SimValue ip;
        ip.tag = SIM_IP;
        HexValue(word, &ip);
        if (ip.bytes.size() != 4) Fail("an address has four bytes: " + word.text);
        return Put(name, std::move(ip), false);
    }
    for (const TypeRow &type : Types) {
        if (type.code == code) return Put(name, Value(type, word), false);
    }
    Fail("no such type in a recording: " + std::string(code));
}

// --- the end ---

SimKnobs FleetReader::ForcedKnobs() const {
    SimKnobs knobs = {};
    for (const std::string &text : options.knobs) {
        Words words;
        std::string fault = SimSplit(text, &words);
        if (fault.empty()) fault = words.empty() ? "no knob" : SimReadKnob(words, Resolver(), &knobs);
        if (!fault.empty()) throw SimFault("-k \"" + text + "\": " + fault);
    }
    return knobs;
}

void FleetReader::Force(const SimBlock *model, const SimKnobs &forced, SimBlock *own) const {
    for (size_t i = 0; i < KNOB_COUNT; i++) {
        if (forced[i].flSet) {
            own->knobs[i] = forced[i];
            own->knobs[i].flForced = true;
        } else if (!own->knobs[i].flSet) {
            bool flModel = model && model->knobs[i].flSet;
            own->knobs[i] = flModel ? model->knobs[i] : all[i].flSet ? all[i] : SimDefaultKnobs()[i];
        }
    }
}

void FleetReader::Finish() {
    SimKnobs forced = ForcedKnobs();
    for (auto &[own, model] : owned) Force(model, forced, own);
    for (const SimSubnet &subnet : fleet->subnets) {
        auto at = addresses.find(subnet.Broadcast());
        if (at != addresses.end())
            throw SimFault(at->second + ": " + SimAddressText(at->first) +
                           " is the broadcast address of a subnet");
    }
    std::sort(fleet->printers.begin(), fleet->printers.end(),
              [](const auto &a, const auto &b) { return a.address < b.address; });
}

// The printer leaves the block that it may share for a copy with the line in it.
size_t FleetReader::Change(std::string_view text, std::set<SimOid> *changed) {
    Words words;
    file = "change";
    line = 1;
    flChanging = true;
    if (std::string fault = SimSplit(text, &words); !fault.empty()) Fail(fault);
    if (words.size() < 2) Fail("this should be: ADDRESS LINE");
    uint32_t address = AddressOf(words[0]);
    auto at = std::lower_bound(
        fleet->printers.begin(), fleet->printers.end(), address,
        [](const SimPlaceOfPrinter &other, uint32_t wanted) { return other.address < wanted; });
    if (at == fleet->printers.end() || at->address != address)
        Fail("no printer has the address " + words[0].text);
    SimBlock copy = *at->own;
    for (SimEntry &old : copy.entries) draft.emplace_hint(draft.end(), old.name, std::move(old));
    copy.entries.clear();
    place = IN_PRINTER;
    base = at->model;
    block = &copy;
    RunLine({words.begin() + 1, words.end()});
    *changed = said;
    CloseBlock();
    at->own = &fleet->blocks.emplace_back(std::move(copy));
    return static_cast<size_t>(at - fleet->printers.begin());
}

size_t SimChangeFleet(SimFleet *fleet, const SimReadOptions &options, std::string_view text,
                      std::set<SimOid> *names) {
    return FleetReader(fleet, options).Change(text, names);
}

std::unique_ptr<SimFleet> SimReadFleet(const std::vector<std::string> &files, const SimReadOptions &options) {
    auto fleet = std::make_unique<SimFleet>();
    FleetReader reader(fleet.get(), options);
    for (const std::string &file : files) reader.ReadFile(file);
    reader.Finish();
    return fleet;
}

// --- look-up ---

static const SimEntry *Behind(const SimBlock *block, SimOidView name, bool flEqual) {
    if (!block) return nullptr;
    const auto &entries = block->entries;
    auto at =
        std::lower_bound(entries.begin(), entries.end(), name, [=](const SimEntry &entry, SimOidView wanted) {
            return flEqual ? entry.name < wanted : entry.name <= wanted;
        });
    return at == entries.end() ? nullptr : &*at;
}

const SimEntry *SimFind(const SimPlaceOfPrinter &printer, SimOidView name) {
    for (const SimBlock *block : {printer.own, printer.model}) {
        const SimEntry *entry = Behind(block, name, true);
        if (entry && entry->name == name) return entry->flRemoved ? nullptr : entry;
    }
    return nullptr;
}

const SimEntry *SimFindWarm(const SimPlaceOfPrinter &printer, SimOidView name) {
    for (const SimBlock *block : {printer.own, printer.model}) {
        if (!block) continue;
        auto at =
            std::lower_bound(block->warm.begin(), block->warm.end(), name,
                             [](const SimEntry &entry, SimOidView other) { return entry.name < other; });
        if (at != block->warm.end() && at->name == name) return &*at;
    }
    return nullptr;
}

const SimEntry *SimFindNext(const SimPlaceOfPrinter &printer, SimOidView name) {
    for (;;) {
        const SimEntry *own = Behind(printer.own, name, false), *below = Behind(printer.model, name, false);
        const SimEntry *next = !below || (own && own->name <= below->name) ? own : below;
        if (!next || !next->flRemoved) return next;
        name = next->name;
    }
}
