// The agent's side of SNMP version 1 on the wire: requests in, answers out.
//
// Deliberately a codec of its own and not the manager's: an error that both sides shared would never be seen.
#pragma once

#include "tools/prnsim/SimValue.h"

#include <cstddef>

enum SimPdu : uint8_t { SIM_GET = 0xA0, SIM_GETNEXT = 0xA1, SIM_RESPONSE = 0xA2, SIM_SET = 0xA3 };
enum SimError : uint8_t {
    SIM_NO_ERROR,
    SIM_TOO_BIG,
    SIM_NO_SUCH_NAME,
    SIM_BAD_VALUE,
    SIM_READ_ONLY,
    SIM_GEN_ERR
};

struct SimBinding {
    SimOid name;
    uint8_t tag;              // of the value asked with
    std::string_view content; // lies in the datagram
    std::string_view whole;   // the value with its header, likewise
};

// A request keeps its capacity from one to the next: decoding allocates nothing once it has seen the largest.
struct SimRequest {
    SimPdu pdu;
    std::string_view community; // lies in the datagram
    int32_t id;
    std::vector<SimBinding> bindings; // the first `count` are of this request
    size_t count;
};

// False for everything that an agent must not answer: damaged, not version 1, not a get, get-next or set.
// Bytes behind the message are ignored.
bool SimDecodeRequest(std::string_view datagram, SimRequest *request);
// The value of a set, as content of that tag; false if content and tag don't fit.
bool SimDecodeValue(uint8_t tag, std::string_view content, SimValue *value);

// Writes a message from its end to its start. What is full stays full and Fits() is false.
class SimWriter {
public:
    enum { CAPACITY = 65536 };
    void Clear() { start = CAPACITY, flFull = false; }
    bool Fits() const { return !flFull; }
    size_t Size() const { return CAPACITY - start; }
    std::string_view Message() const { return {buffer + start, Size()}; }

    void Bytes(std::string_view bytes);
    void Header(uint8_t tag, size_t length);
    void Number(uint8_t tag, int64_t number); // shortest two's complement
    void Name(SimOidView oid);

private:
    char buffer[CAPACITY];
    size_t start = CAPACITY;
    bool flFull = false;
};
// All around the bindings, which the writer holds already.
void SimWriteProlog(SimWriter *writer, const SimRequest &request, int32_t id, int status, size_t index);
