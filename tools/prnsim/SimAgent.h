// One printer at work: what becomes of a datagram that reached it. No socket is touched here and no clock
// read, so the same description, seed and requests give the same answers.
#pragma once

#include "tools/prnsim/SimBer.h"
#include "tools/prnsim/SimFleet.h"

// Microseconds since the simulator was ready.
using SimTime = int64_t;

struct SimPrinter {
    const SimPlaceOfPrinter *place;
    uint32_t requests = 0;                                // datagrams that reached it
    bool flDead = false;                                  // by `dies broadcast`
    SimTime started = 0;                                  // 0 is uptime's zero; moved by a reset
    SimTime silentFrom = 0, silentUntil = 0;              // of a reset
    bool flForget = false, flForgetAll = false;           // what was set, at a Settle() once it is silent
    bool flWarming = false;                               // at its last Settle()
    std::map<SimOid, SimValue, std::less<>> changed = {}; // by sets; names that the description has

    const SimKnobs &Knobs() const { return place->own->knobs; }
    const SimSetting &Knob(SimKnob knob) const { return Knobs()[knob]; }
    // Off for ever, or in a reset: nothing of it answers.
    bool IsGone(SimTime now) const {
        int64_t dies = Knob(KNOB_DIES).first;
        return flDead || (dies >= 0 && requests >= dies) || (now >= silentFrom && now < silentUntil);
    }
};

// ORDER SimFate: the words of the log in SimAgent.cpp
enum SimFate { FATE_SENT, FATE_LOST, FATE_SILENT, FATE_COMMUNITY, FATE_REFUSED, FATE_BAD };

// What happens to an answer, by kind of draw; the numbers are part of the documented formula.
enum SimDraw {
    DRAW_LOSS = 1,
    DRAW_DELAY,
    DRAW_DUPLICATE,
    DRAW_REORDER,
    DRAW_FOREIGN,
    DRAW_GARBAGE,
    DRAW_TRUNCATE,
    DRAW_LONG,
    DRAW_ERROR,
    DRAW_OTHERID,
    DRAW_GARBAGE_LENGTH = 16,
    DRAW_TRUNCATE_LENGTH
};

// 0 to 999999, by the formula in doc/prnsim.md.
uint32_t SimDrawNumber(uint64_t seed, uint32_t address, uint32_t request, unsigned kind);

struct SimAnswer {
    SimFate fate;
    std::string_view bytes; // of FATE_SENT; valid until the next request of the same SimAgent
    SimTime delay;          // before it is sent
    unsigned hits;          // 1 << SimDraw of each knob that took part
    bool flReset;           // it begins one
    bool Hit(SimDraw draw) const { return hits >> draw & 1; }
};

// Answers for all printers of a fleet, one request after the other.
class SimAgent {
public:
    explicit SimAgent(const SimFleet &of) : fleet(of) {}

    // `extra` is added to the delay ahead of everything that hangs on it.
    SimAnswer Answer(SimPrinter *printer, std::string_view datagram, bool flBroadcast, SimTime now,
                     SimTime extra);
    // The fields KIND to ANSWER of the log for the request that was answered last.
    std::string LogFields(const SimPrinter &printer, const SimAnswer &answer, bool flBroadcast) const;
    // Does what a reset left to do; Answer() begins with it, others that look at values must.
    static void Settle(SimPrinter *printer, SimTime now);
    // The value of a name as a get of this printer would give it; null without one.
    static const SimValue *Look(const SimPrinter &printer, SimOidView name);

private:
    // The setting that holds for the request: that of an identifier in it before the printer's.
    const SimSetting &Knob(const SimPrinter &printer, SimKnob knob) const;
    const SimSetting *KnobAt(const SimBlock *block, SimKnob knob) const;
    bool Draws(const SimPrinter &printer, SimKnob knob, SimDraw draw, SimAnswer *answer) const;
    uint32_t Number(const SimPrinter &printer, SimDraw draw) const;
    SimFate Judge(const SimPrinter &printer, bool flGone, bool flBroadcast, SimAnswer *answer);
    SimFate Admit(const SimPrinter &printer);
    void Serve(SimPrinter *printer, SimTime now, SimAnswer *answer);
    void Read(const SimPrinter &printer);
    void Write(SimPrinter *printer);
    bool WriteOne(const SimPrinter &printer, const SimBinding &binding, SimValue *value);
    void Fail(SimError error, size_t binding) { status = error, index = binding; }
    void Encode(const SimPrinter &printer, SimTime now, int32_t id);
    void EncodeValue(const SimPrinter &printer, const SimValue &value, SimTime now);
    void Spoil(const SimPrinter &printer, SimAnswer *answer);
    SimTime Delay(const SimPrinter &printer, bool flBroadcast, SimAnswer *answer) const;
    void Reset(SimPrinter *printer, SimTime now, SimTime delay);

    const SimFleet &fleet;
    SimRequest request = {};
    bool flDecoded = false, flWriter = false; // flWriter: the community may set
    int status = 0;
    size_t index = 0;
    std::vector<std::pair<SimOidView, const SimValue *>> found; // one a binding while it is answered
    std::vector<SimValue> wanted;                               // of a set
    enum { NO_RESET, POWER_CYCLE, FACTORY } reset = NO_RESET;
    SimWriter writer;
    std::string spoilt;
};
