// BER for an agent: strict about what it takes, shortest forms in what it sends.
#include "tools/prnsim/SimBer.h"

#include <cstring>

// The rest of the datagram that is not read yet.
struct Reader {
    std::string_view rest;

    bool Length(size_t *length) {
        if (rest.empty()) return false;
        unsigned char first = static_cast<unsigned char>(rest[0]);
        size_t count = first & 0x80 ? first & 0x7F : 0;
        if (first == 0x80 || count > 4 || count >= rest.size()) return false;
        *length = count ? 0 : first;
        for (size_t i = 1; i <= count; i++) *length = *length << 8 | static_cast<unsigned char>(rest[i]);
        rest.remove_prefix(1 + count);
        return *length <= rest.size();
    }

    // The next element, whatever it is.
    bool Any(uint8_t *tag, std::string_view *content) {
        size_t length;
        if (rest.empty()) return false;
        *tag = static_cast<uint8_t>(rest[0]);
        rest.remove_prefix(1);
        if (!Length(&length)) return false;
        *content = rest.substr(0, length);
        rest.remove_prefix(length);
        return true;
    }

    bool Element(uint8_t wanted, std::string_view *content) {
        uint8_t tag;
        return Any(&tag, content) && tag == wanted;
    }

    bool Integer(int32_t *number) {
        std::string_view content;
        SimValue value;
        if (!Element(SIM_INTEGER, &content) || !SimDecodeValue(SIM_INTEGER, content, &value)) return false;
        *number = static_cast<int32_t>(value.number);
        return true;
    }
};

static bool DecodeBinding(Reader *reader, SimBinding *binding) {
    std::string_view content, name;
    if (!reader->Element(0x30, &content)) return false;
    Reader inner = {content};
    if (!inner.Element(SIM_OBJECT, &name) || !SimOidFromContent(name, &binding->name)) return false;
    binding->whole = inner.rest;
    return inner.Any(&binding->tag, &binding->content) && inner.rest.empty();
}

static bool DecodeBindings(std::string_view content, SimRequest *request) {
    Reader reader = {content};
    for (request->count = 0; !reader.rest.empty(); request->count++) {
        if (request->count == request->bindings.size()) request->bindings.emplace_back();
        if (!DecodeBinding(&reader, &request->bindings[request->count])) return false;
    }
    return true;
}

bool SimDecodeRequest(std::string_view datagram, SimRequest *request) {
    std::string_view message, pdu, bindings;
    uint8_t kind;
    int32_t version, status, index;
    Reader outer = {datagram};
    if (!outer.Element(0x30, &message)) return false;
    Reader inner = {message};
    if (!inner.Integer(&version) || version != 0 || !inner.Element(SIM_OCTETS, &request->community))
        return false;
    if (!inner.Any(&kind, &pdu) || (kind != SIM_GET && kind != SIM_GETNEXT && kind != SIM_SET)) return false;
    request->pdu = static_cast<SimPdu>(kind);
    Reader body = {pdu};
    return body.Integer(&request->id) && body.Integer(&status) && body.Integer(&index) &&
           body.Element(0x30, &bindings) && DecodeBindings(bindings, request);
}

static bool DecodeNumber(std::string_view content, bool flSigned, int64_t *number) {
    if (content.empty() || content.size() > 5) return false;
    *number = flSigned ? static_cast<signed char>(content[0]) : static_cast<unsigned char>(content[0]);
    for (char byte : content.substr(1)) *number = *number * 256 + static_cast<unsigned char>(byte);
    return flSigned ? *number >= INT32_MIN && *number <= INT32_MAX : *number <= UINT32_MAX;
}

bool SimDecodeValue(uint8_t tag, std::string_view content, SimValue *value) {
    SimOid oid;
    value->tag = static_cast<SimTag>(tag);
    value->bytes = content;
    switch (tag) {
    case SIM_INTEGER: value->bytes.clear(); return DecodeNumber(content, true, &value->number);
    case SIM_COUNTER:
    case SIM_GAUGE:
    case SIM_TICKS: value->bytes.clear(); return DecodeNumber(content, false, &value->number);
    case SIM_OCTETS: return true;
    case SIM_NULL: return content.empty();
    case SIM_OBJECT: return SimOidFromContent(content, &oid);
    case SIM_IP: return content.size() == 4;
    default: return false; // no type of version 1 that a printer holds
    }
}

void SimWriter::Bytes(std::string_view bytes) {
    flFull = flFull || bytes.size() > start;
    if (flFull) return;
    start -= bytes.size();
    memcpy(buffer + start, bytes.data(), bytes.size());
}

void SimWriter::Header(uint8_t tag, size_t length) {
    char header[6];
    size_t at = sizeof header;
    for (size_t rest = length; rest > 0 || at == sizeof header; rest >>= 8)
        header[--at] = static_cast<char>(rest);
    if (length > 127) {
        size_t count = sizeof header - at;
        header[--at] = static_cast<char>(0x80 | count);
    }
    header[--at] = static_cast<char>(tag);
    Bytes({header + at, sizeof header - at});
}

void SimWriter::Number(uint8_t tag, int64_t number) {
    char content[8];
    size_t at = sizeof content;
    do {
        content[--at] = static_cast<char>(number);
        number >>= 8;
    } while (number != static_cast<signed char>(content[at]) >> 7);
    Bytes({content + at, sizeof content - at});
    Header(tag, sizeof content - at);
}

void SimWriter::Name(SimOidView oid) {
    char content[5 * SIM_ARCS_MAX];
    size_t at = sizeof content;
    for (size_t i = oid.size(); i > 1; i--) {
        uint32_t arc = i > 2 ? oid[i - 1] : oid[0] * 40 + oid[1];
        content[--at] = static_cast<char>(arc & 0x7F);
        while (arc >>= 7) content[--at] = static_cast<char>(0x80 | (arc & 0x7F));
    }
    Bytes({content + at, sizeof content - at});
    Header(SIM_OBJECT, sizeof content - at);
}

void SimWriteProlog(SimWriter *writer, const SimRequest &request, int32_t id, int status, size_t index) {
    writer->Header(0x30, writer->Size());
    writer->Number(SIM_INTEGER, static_cast<int64_t>(index));
    writer->Number(SIM_INTEGER, status);
    writer->Number(SIM_INTEGER, id);
    writer->Header(SIM_RESPONSE, writer->Size());
    writer->Bytes(request.community);
    writer->Header(SIM_OCTETS, request.community.size());
    writer->Number(SIM_INTEGER, 0);
    writer->Header(0x30, writer->Size());
}
