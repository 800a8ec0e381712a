// Requests to answers, and what the knobs make of them.
#include "tools/prnsim/SimAgent.h"

#include <algorithm>

// ORDER SimFate
static constexpr const char *FateWords[] = {"sent", "lost", "silent", "community", "refused", "bad"};

static constexpr const char *ErrorWords[] = {"noError",  "tooBig",   "noSuchName",
                                             "badValue", "readOnly", "genErr"};

static constexpr struct {
    SimDraw draw;
    const char *word;
} HitWords[] = {
    {DRAW_DELAY, "+delay"},     {DRAW_DUPLICATE, "+duplicate"}, {DRAW_REORDER, "+reorder"},
    {DRAW_FOREIGN, "+foreign"}, {DRAW_GARBAGE, "+garbage"},     {DRAW_TRUNCATE, "+truncate"},
    {DRAW_LONG, "+long"},       {DRAW_ERROR, "+error"},         {DRAW_OTHERID, "+otherid"},
};

uint32_t SimDrawNumber(uint64_t seed, uint32_t address, uint32_t request, unsigned kind) {
    uint64_t x = seed * 0x9E3779B97F4A7C15 + (uint64_t{address} << 32) + (uint64_t{request} << 8) + kind;
    x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9;
    x = (x ^ (x >> 27)) * 0x94D049BB133111EB;
    return static_cast<uint32_t>((x ^ (x >> 31)) % 1000000);
}

uint32_t SimAgent::Number(const SimPrinter &printer, SimDraw draw) const {
    return SimDrawNumber(fleet.seed, printer.place->address, printer.requests, draw);
}

const SimSetting *SimAgent::KnobAt(const SimBlock *block, SimKnob knob) const {
    if (!block || !flDecoded) return nullptr;
    for (const SimAtKnob &at : block->at) {
        if (at.knob != knob) continue;
        for (size_t i = 0; i < request.count; i++)
            if (SimIsBelow(request.bindings[i].name, at.top)) return &at.setting;
    }
    return nullptr;
}

const SimSetting &SimAgent::Knob(const SimPrinter &printer, SimKnob knob) const {
    const SimSetting &whole = printer.Knob(knob);
    if (whole.flForced) return whole;
    const SimSetting *at = KnobAt(printer.place->own, knob);
    if (!at) at = KnobAt(printer.place->model, knob);
    return at ? *at : whole;
}

bool SimAgent::Draws(const SimPrinter &printer, SimKnob knob, SimDraw draw, SimAnswer *answer) const {
    int64_t chance = Knob(printer, knob).first;
    if (chance == 0 || Number(printer, draw) >= chance) return false;
    answer->hits |= 1u << draw;
    return true;
}

SimAnswer SimAgent::Answer(SimPrinter *printer, std::string_view datagram, bool flBroadcast, SimTime now,
                           SimTime extra) {
    SimAnswer answer = {};
    Settle(printer, now);
    bool flGone = printer->IsGone(now);
    printer->requests++;
    flDecoded = SimDecodeRequest(datagram, &request);
    reset = NO_RESET;
    answer.fate = Judge(*printer, flGone, flBroadcast, &answer);
    if (answer.fate != FATE_SENT) return answer;
    answer.delay = extra + Delay(*printer, flBroadcast, &answer);
    Serve(printer, now, &answer);
    Spoil(*printer, &answer);
    Draws(*printer, KNOB_DUPLICATE, DRAW_DUPLICATE, &answer);
    Draws(*printer, KNOB_FOREIGN, DRAW_FOREIGN, &answer);
    if (flBroadcast && printer->Knob(KNOB_DIES).first == DIES_BROADCAST) printer->flDead = true;
    answer.flReset = reset != NO_RESET;
    if (answer.flReset) Reset(printer, now, answer.delay);
    return answer;
}

// The silence of all kinds, in the order in which a request meets its reasons.
SimFate SimAgent::Judge(const SimPrinter &printer, bool flGone, bool flBroadcast, SimAnswer *answer) {
    if (flGone || (flBroadcast && printer.Knob(KNOB_BROADCAST).first == 0)) return FATE_SILENT;
    if (Draws(printer, KNOB_LOSS, DRAW_LOSS, answer)) return FATE_LOST;
    return flDecoded ? Admit(printer) : FATE_BAD;
}

static bool Holds(const std::vector<std::string> &words, std::string_view word) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

SimFate SimAgent::Admit(const SimPrinter &printer) {
    flWriter = Holds(printer.Knob(KNOB_WRITE).words, request.community);
    if (flWriter) return FATE_SENT;
    if (!Holds(printer.Knob(KNOB_READ).words, request.community)) return FATE_COMMUNITY;
    return request.pdu == SIM_SET && printer.Knob(KNOB_REFUSE).first ? FATE_REFUSED : FATE_SENT;
}

const SimValue *SimAgent::Look(const SimPrinter &printer, SimOidView name) {
    if (printer.flWarming) {
        if (const SimEntry *warm = SimFindWarm(*printer.place, name)) return &warm->value;
    }
    if (!printer.changed.empty()) {
        auto at = printer.changed.find(name);
        if (at != printer.changed.end()) return &at->second;
    }
    const SimEntry *entry = SimFind(*printer.place, name);
    return entry ? &entry->value : nullptr;
}

void SimAgent::Serve(SimPrinter *printer, SimTime now, SimAnswer *answer) {
    status = SIM_NO_ERROR;
    index = 0;
    if (Draws(*printer, KNOB_ERROR, DRAW_ERROR, answer)) {
        status = static_cast<int>(Knob(*printer, KNOB_ERROR).second);
        index = 1;
    } else if (request.pdu == SIM_SET) {
        Write(printer);
    } else {
        Read(*printer);
    }
    bool flOther = Draws(*printer, KNOB_OTHERID, DRAW_OTHERID, answer);
    int32_t id = static_cast<int32_t>(static_cast<uint32_t>(request.id) + (flOther ? 1000 : 0));
    Encode(*printer, now, id);
    answer->bytes = writer.Message();
}

void SimAgent::Read(const SimPrinter &printer) {
    found.clear();
    for (size_t i = 0; i < request.count && status == SIM_NO_ERROR; i++) {
        SimOidView name = request.bindings[i].name;
        if (request.pdu == SIM_GETNEXT) {
            const SimEntry *next = SimFindNext(*printer.place, name);
            name = next ? SimOidView(next->name) : SimOidView();
        }
        const SimValue *value = name.empty() ? nullptr : Look(printer, name);
        if (!value) Fail(SIM_NO_SUCH_NAME, i + 1);
        found.emplace_back(name, value);
    }
}

// The value that a binding would store; false with the status set if it is refused.
bool SimAgent::WriteOne(const SimPrinter &printer, const SimBinding &binding, SimValue *value) {
    size_t at = static_cast<size_t>(&binding - request.bindings.data()) + 1;
    const SimValue *old = Look(printer, binding.name);
    if (!old || !old->flWritable || !flWriter) return Fail(SIM_NO_SUCH_NAME, at), false;
    *value = *old;
    value->places.clear();
    if (binding.tag != old->tag || !SimDecodeValue(binding.tag, binding.content, value))
        return Fail(SIM_BAD_VALUE, at), false;
    bool flText = old->tag == SIM_OCTETS;
    int64_t size = flText ? static_cast<int64_t>(value->bytes.size()) : value->number;
    if (old->max != UINT32_MAX && size > old->max) return Fail(SIM_BAD_VALUE, at), false;
    if (!old->only.empty() && std::find(old->only.begin(), old->only.end(), size) == old->only.end())
        return Fail(SIM_BAD_VALUE, at), false;
    if (flText && value->bytes.size() > old->cut) value->bytes.resize(old->cut);
    return true;
}

void SimAgent::Write(SimPrinter *printer) {
    const SimSetting &rule = printer->Knob(KNOB_RESET);
    auto holds = [](const auto &list, int64_t number) {
        return std::find(list.begin(), list.end(), number) != list.end();
    };
    found.clear();
    wanted.assign(request.count, {});
    for (size_t i = 0; i < request.count; i++) {
        if (!WriteOne(*printer, request.bindings[i], &wanted[i])) return;
    }
    for (size_t i = 0; i < request.count; i++) {
        auto at = printer->changed.insert_or_assign(request.bindings[i].name, std::move(wanted[i])).first;
        found.emplace_back(at->first, &at->second);
        if (at->first != rule.name) continue;
        if (holds(rule.numbers, at->second.number)) reset = POWER_CYCLE;
        if (holds(rule.factory, at->second.number)) reset = FACTORY;
    }
}

void SimAgent::Reset(SimPrinter *printer, SimTime now, SimTime delay) {
    printer->silentFrom = now + printer->Knob(KNOB_RESET_AFTER).first;
    printer->silentUntil = printer->silentFrom + delay + printer->Knob(KNOB_RESET_TIME).first;
    (reset == FACTORY ? printer->flForgetAll : printer->flForget) = true;
}

void SimAgent::Settle(SimPrinter *printer, SimTime now) {
    SimTime warm = now - printer->silentUntil;
    printer->flWarming = printer->silentUntil > 0 && warm >= 0 && warm < printer->Knob(KNOB_WARM_UP).first;
    if (now < printer->silentFrom || (!printer->flForget && !printer->flForgetAll)) return;
    printer->started = printer->silentUntil;
    std::erase_if(printer->changed,
                  [=](const auto &item) { return printer->flForgetAll || !item.second.flKeep; });
    printer->flForget = printer->flForgetAll = false;
}

void SimAgent::EncodeValue(const SimPrinter &printer, const SimValue &value, SimTime now) {
    switch (value.tag) {
    case SIM_INTEGER:
    case SIM_COUNTER:
    case SIM_GAUGE: return writer.Number(value.tag, value.number);
    case SIM_TICKS: {
        int64_t uptime = static_cast<uint32_t>(std::max<SimTime>(now - printer.started, 0) / 10000);
        return writer.Number(value.tag, value.flUptime ? uptime : value.number);
    }
    default: break;
    }
    size_t before = writer.Size();
    if (value.places.empty())
        writer.Bytes(value.bytes);
    else
        writer.Bytes(SimExpand(value, printer.place->address, printer.place->number));
    writer.Header(value.tag, writer.Size() - before);
}

// An answer with an error carries the bindings as they came.
void SimAgent::Encode(const SimPrinter &printer, SimTime now, int32_t id) {
    for (int attempt = 0; attempt < 2; attempt++) {
        writer.Clear();
        for (size_t i = request.count; i-- > 0;) {
            size_t before = writer.Size();
            if (status == SIM_NO_ERROR)
                EncodeValue(printer, *found[i].second, now);
            else
                writer.Bytes(request.bindings[i].whole);
            writer.Name(status == SIM_NO_ERROR ? found[i].first : SimOidView(request.bindings[i].name));
            writer.Header(0x30, writer.Size() - before);
        }
        SimWriteProlog(&writer, request, id, status, index);
        int64_t limit = printer.Knob(KNOB_SIZE).first;
        if (status != SIM_NO_ERROR || (writer.Fits() && static_cast<int64_t>(writer.Size()) <= limit)) return;
        Fail(SIM_TOO_BIG, 0);
    }
}

void SimAgent::Spoil(const SimPrinter &printer, SimAnswer *answer) {
    if (Draws(printer, KNOB_LONG, DRAW_LONG, answer)) {
        spoilt = answer->bytes;
        spoilt.resize(std::max(spoilt.size(), static_cast<size_t>(Knob(printer, KNOB_LONG).second)));
        answer->bytes = spoilt;
    }
    if (Draws(printer, KNOB_TRUNCATE, DRAW_TRUNCATE, answer))
        answer->bytes = answer->bytes.substr(0, Number(printer, DRAW_TRUNCATE_LENGTH) % answer->bytes.size());
    if (Draws(printer, KNOB_GARBAGE, DRAW_GARBAGE, answer)) {
        spoilt.resize(1 + Number(printer, DRAW_GARBAGE_LENGTH) % 200);
        for (size_t i = 0; i < spoilt.size(); i++)
            spoilt[i] = static_cast<char>(Number(printer, static_cast<SimDraw>(32 + i % 200)));
        answer->bytes = spoilt;
    }
}

SimTime SimAgent::Delay(const SimPrinter &printer, bool flBroadcast, SimAnswer *answer) const {
    bool flAlone = flBroadcast && printer.Knob(KNOB_BROADCAST_DELAY).first >= 0;
    const SimSetting &knob = flAlone ? printer.Knob(KNOB_BROADCAST_DELAY) : Knob(printer, KNOB_DELAY);
    SimTime delay = knob.first;
    if (knob.second > knob.first) delay += Number(printer, DRAW_DELAY) * (knob.second - knob.first) / 1000000;
    if (delay > 0) answer->hits |= 1u << DRAW_DELAY;
    if (Draws(printer, KNOB_REORDER, DRAW_REORDER, answer)) delay += Knob(printer, KNOB_REORDER).second;
    return delay;
}

// --- the log ---

static std::string LogCommunity(std::string_view community) {
    static constexpr char Digits[] = "0123456789ABCDEF";
    std::string text;
    for (unsigned char ch : community) {
        if (isalnum(ch) || ch == '.' || ch == '-' || ch == '_')
            text += static_cast<char>(ch);
        else
            ((text += '%') += Digits[ch >> 4]) += Digits[ch & 15];
    }
    return text.empty() ? "-" : text;
}

static std::string LogBinding(const SimBinding &binding, bool flValue) {
    SimValue value;
    std::string text = SimOidText(binding.name);
    if (!flValue) return text;
    bool flSound = SimDecodeValue(binding.tag, binding.content, &value);
    return text + "=" + (flSound ? SimValueText(value, 0, 0) : "damaged");
}

std::string SimAgent::LogFields(const SimPrinter &printer, const SimAnswer &answer, bool flBroadcast) const {
    std::string text = flBroadcast ? "broadcast-" : "", names, values;
    if (!flDecoded) return text + "bad - - - " + FateWords[answer.fate] + " -";
    text += request.pdu == SIM_GET ? "get " : request.pdu == SIM_GETNEXT ? "getnext " : "set ";
    text += LogCommunity(request.community) + " " + std::to_string(request.id) + " ";
    for (size_t i = 0; i < request.count; i++)
        names += (i ? "," : "") + LogBinding(request.bindings[i], request.pdu == SIM_SET);
    text += (names.empty() ? "-" : names) + " " + FateWords[answer.fate];
    if (answer.fate != FATE_SENT) return text + " -";
    for (const auto &hit : HitWords) {
        if (answer.Hit(hit.draw)) text += hit.word;
    }
    if (status != SIM_NO_ERROR) {
        std::string word = status <= SIM_GEN_ERR ? ErrorWords[status] : std::to_string(status);
        return text + " error:" + word + ":" + std::to_string(index);
    }
    for (const auto &[name, value] : found) {
        values += values.empty() ? " " : ",";
        if (request.pdu == SIM_GETNEXT) values += SimOidText(name) + "=";
        values += SimValueText(*value, printer.place->address, printer.place->number);
    }
    return text + (values.empty() ? " -" : values);
}
