// The table of knobs and the reader of their values.
#include "tools/prnsim/SimKnobs.h"

#include <charconv>
#include <cmath>

// The values that a knob takes, one letter each; small letters must stand, capitals may.
//   p chance  t, T time  n, N number within low and high  E error status  A address  w one of the words  d of
//   `dies`  q of `raw` and `lpd` c communities  r the reset object and its numbers
struct KnobRow {
    std::string_view word, values;
    int64_t first = 0, second = 0; // if nothing is said; the second one also behind a first that stands alone
    std::string_view words = {};   // of 'w', parted by blanks; the first one is 0
    int64_t low = 0, high = 0;
};

// ORDER SimKnob
static constexpr KnobRow Rows[] = {
    {.word = "loss", .values = "p"},
    {.word = "delay", .values = "tT", .second = -1},
    {.word = "duplicate", .values = "p"},
    {.word = "reorder", .values = "pT", .second = 50000},
    {.word = "foreign", .values = "pA"},
    {.word = "garbage", .values = "p"},
    {.word = "truncate", .values = "p"},
    {.word = "long", .values = "pN", .second = 2000, .low = 64, .high = 60000},
    {.word = "error", .values = "pE", .second = 5},
    {.word = "otherid", .values = "p"},
    {.word = "dies", .values = "d", .first = DIES_NEVER, .low = 0, .high = UINT32_MAX},
    {.word = "broadcast", .values = "w", .first = 1, .words = "off on"},
    {.word = "broadcast-delay", .values = "tT", .first = -1, .second = -1},
    {.word = "refuse", .values = "w", .words = "error silent"},
    {.word = "size", .values = "n", .first = 1400, .low = 64, .high = 60000},
    {.word = "reset-time", .values = "t", .first = 20000000},
    {.word = "reset-after", .values = "t"},
    {.word = "warm-up", .values = "t"},
    {.word = "web", .values = "w", .words = "off on mute deaf"},
    {.word = "raw", .values = "q", .words = "off on"},
    {.word = "lpd", .values = "q", .words = "off on"},
    {.word = "read", .values = "c"},
    {.word = "write", .values = "c"},
    {.word = "reset", .values = "r"},
};
static_assert(std::size(Rows) == KNOB_COUNT);

struct KnobReader {
    const KnobRow &row;
    const std::vector<SimWord> &words;
    const SimResolver &resolver;
    SimSetting *setting;
    size_t at = 1;

    // A decimal number without sign times `unit`, rounded; at most `high`.
    bool Decimal(double unit, double high, int64_t *number) {
        const std::string &text = words[at].text;
        double value;
        auto [stop, code] =
            std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
        if (code != std::errc() || stop != text.data() + text.size() || !(value >= 0 && value <= high))
            return false;
        *number = std::llround(value * unit);
        return true;
    }

    bool Word(std::string_view list, int64_t *number) {
        const std::string &text = words[at].text;
        for (*number = 0; !list.empty() && !words[at].flQuoted; ++*number) {
            size_t end = std::min(list.find(' '), list.size());
            if (list.substr(0, end) == text) return true;
            list.remove_prefix(std::min(end + 1, list.size()));
        }
        return false;
    }

    bool Status(int64_t *number) {
        if (Word("noError tooBig noSuchName badValue readOnly genErr", number) && *number > 0) return true;
        return SimParseNumber(words[at].text, 1, 255, number);
    }

    bool Dies(int64_t *number) {
        if (!Word("never broadcast", number)) return SimParseNumber(words[at].text, 0, UINT32_MAX, number);
        *number = *number ? DIES_BROADCAST : DIES_NEVER;
        return true;
    }

    // "off", "on", or a quoted directory, which is kept as the text with the number 2.
    bool Raw(int64_t *number) {
        if (!words[at].flQuoted) return Word(row.words, number);
        setting->text = words[at].text;
        *number = 2;
        return !setting->text.empty() && words[at].places.empty();
    }

    bool Address(int64_t *number) {
        uint32_t address;
        if (!resolver.address(words[at].text, &address)) return false;
        *number = address;
        return true;
    }

    bool Communities() {
        for (; at < words.size(); at++) setting->words.push_back(words[at].text);
        return true;
    }

    // OID NUMBER ... [factory NUMBER ...]
    bool Reset() {
        std::vector<int64_t> *numbers = &setting->numbers;
        if (!resolver.oid(words[at].text, &setting->name)) return false;
        for (at++; at < words.size(); at++) {
            if (words[at].text == "factory" && numbers == &setting->numbers) {
                numbers = &setting->factory;
            } else if (!SimParseNumber(words[at].text, INT32_MIN, INT32_MAX, &numbers->emplace_back())) {
                return false;
            }
        }
        return !(setting->numbers.empty() && setting->factory.empty());
    }

    bool Value(char letter, int64_t *number) {
        switch (letter) {
        case 'p': return Decimal(10000, 100, number);
        case 't':
        case 'T': return Decimal(1000, 86400000, number);
        case 'n':
        case 'N': return SimParseNumber(words[at].text, row.low, row.high, number);
        case 'E': return Status(number);
        case 'A': return Address(number);
        case 'w': return Word(row.words, number);
        case 'd': return Dies(number);
        case 'q': return Raw(number);
        case 'c': return Communities();
        case 'r': return Reset();
        default: return false; // no such letter in the table
        }
    }
};

int SimFindKnob(const std::string &word) {
    for (int i = 0; i < KNOB_COUNT; i++) {
        if (Rows[i].word == word) return i;
    }
    return -1;
}

static SimSetting DefaultSetting(int knob) {
    SimSetting setting;
    setting.first = Rows[knob].first;
    setting.second = Rows[knob].second;
    return setting;
}

std::string SimReadKnob(const std::vector<SimWord> &words, const SimResolver &resolver, SimKnobs *knobs) {
    int knob = SimFindKnob(words[0].text);
    if (knob < 0) return "no such knob: " + words[0].text;
    SimSetting setting = DefaultSetting(knob);
    KnobReader reader = {Rows[knob], words, resolver, &setting};
    setting.flSet = true;
    for (size_t i = 0; i < Rows[knob].values.size(); i++) {
        char letter = Rows[knob].values[i];
        if (reader.at >= words.size()) {
            if (letter < 'a') break;
            return words[0].text + " wants a value";
        }
        if (!reader.Value(letter, i == 0 ? &setting.first : &setting.second))
            return "bad value of " + words[0].text + ": " + words[std::min(reader.at, words.size() - 1)].text;
        reader.at++;
    }
    if (reader.at < words.size()) return "too much behind " + words[0].text + ": " + words[reader.at].text;
    if (knob == KNOB_FOREIGN && setting.first > 0 && words.size() < 3) return "foreign wants an address";
    bool flDelay = knob == KNOB_DELAY || knob == KNOB_BROADCAST_DELAY;
    if (flDelay && setting.second >= 0 && setting.second < setting.first)
        return "the second time of " + words[0].text + " is below the first";
    (*knobs)[static_cast<size_t>(knob)] = std::move(setting);
    return "";
}

static SimKnobs MakeDefaults() {
    SimKnobs knobs;
    for (int i = 0; i < KNOB_COUNT; i++) knobs[static_cast<size_t>(i)] = DefaultSetting(i);
    knobs[KNOB_READ].words = {"rdcomm"};
    knobs[KNOB_WRITE].words = {"wrcommx"};
    return knobs;
}

const SimKnobs &SimDefaultKnobs() {
    static const SimKnobs Knobs = MakeDefaults();
    return Knobs;
}
