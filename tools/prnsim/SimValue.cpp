// Identifiers and values: from text, to text, to content bytes.
#include "tools/prnsim/SimValue.h"

#include <algorithm>
#include <arpa/inet.h>
#include <charconv>

bool SimParseNumber(std::string_view text, int64_t low, int64_t high, int64_t *number) {
    const char *end = text.data() + text.size();
    auto [stop, code] = std::from_chars(text.data(), end, *number);
    return code == std::errc() && stop == end && *number >= low && *number <= high;
}

static bool OidIsValid(SimOidView oid) {
    if (oid.size() < 2 || oid.size() > SIM_ARCS_MAX || oid[0] > 2) return false;
    return oid[0] == 2 ? oid[1] <= UINT32_MAX - 80 : oid[1] < 40;
}

bool SimParseOid(std::string_view text, SimOid *oid) {
    oid->clear();
    for (size_t at = 0; at <= text.size();) {
        size_t end = std::min(text.find('.', at), text.size());
        int64_t arc;
        if (!SimParseNumber(text.substr(at, end - at), 0, UINT32_MAX, &arc)) return false;
        oid->push_back(static_cast<char32_t>(arc));
        at = end + 1;
    }
    return OidIsValid(*oid);
}

std::string SimOidText(SimOidView oid) {
    std::string text;
    for (char32_t arc : oid) {
        if (!text.empty()) text += '.';
        text += std::to_string(static_cast<uint32_t>(arc));
    }
    return text;
}

static void AddArc(std::string *content, uint32_t arc) {
    for (int shift = 28; shift > 0; shift -= 7) {
        if (arc >> shift) *content += static_cast<char>(0x80 | (arc >> shift & 0x7F));
    }
    *content += static_cast<char>(arc & 0x7F);
}

std::string SimOidContent(SimOidView oid) {
    std::string content;
    AddArc(&content, oid[0] * 40 + oid[1]);
    for (char32_t arc : oid.substr(2)) AddArc(&content, arc);
    return content;
}

bool SimOidFromContent(std::string_view content, SimOid *oid) {
    uint64_t arc = 0;
    oid->clear();
    if (content.empty() || content.back() & 0x80) return false;
    for (unsigned char byte : content) {
        arc = arc << 7 | (byte & 0x7F);
        if (arc > UINT32_MAX || oid->size() >= SIM_ARCS_MAX) return false;
        if (byte & 0x80) continue;
        if (oid->empty()) {
            oid->push_back(static_cast<char32_t>(std::min<uint64_t>(arc / 40, 2)));
            arc -= 40 * oid->back();
        }
        oid->push_back(static_cast<char32_t>(arc));
        arc = 0;
    }
    return true;
}

bool SimParseAddress(std::string_view text, uint32_t *address) {
    in_addr in;
    if (inet_pton(AF_INET, std::string(text).c_str(), &in) != 1) return false;
    *address = ntohl(in.s_addr);
    return true;
}

std::string SimAddressText(uint32_t address) {
    in_addr in = {htonl(address)};
    char text[INET_ADDRSTRLEN];
    return inet_ntop(AF_INET, &in, text, sizeof text);
}

static int HexDigit(char ch) {
    if (ch >= '0' && ch <= '9') return ch - '0';
    ch |= 0x20;
    return ch >= 'a' && ch <= 'f' ? ch - 'a' + 10 : -1;
}

bool SimParseHex(std::string_view text, std::string *bytes) {
    bytes->clear();
    for (size_t at = 0; at < text.size(); at++) {
        if (text[at] == ' ' || text[at] == '\t') continue;
        if (at + 1 == text.size()) return false;
        int high = HexDigit(text[at]), low = HexDigit(text[++at]);
        if (high < 0 || low < 0) return false;
        *bytes += static_cast<char>(high << 4 | low);
    }
    return true;
}

static std::string PlaceBytes(SimPlace::What what, uint32_t address, uint32_t number) {
    switch (what) {
    case SimPlace::ADDRESS_TEXT: return SimAddressText(address);
    case SimPlace::NUMBER_TEXT: return std::to_string(number);
    case SimPlace::ADDRESS_BYTES:
        return {static_cast<char>(address >> 24), static_cast<char>(address >> 16),
                static_cast<char>(address >> 8), static_cast<char>(address)};
    case SimPlace::NUMBER_BYTES: return {static_cast<char>(number >> 8), static_cast<char>(number)};
    }
    return "";
}

std::string SimExpand(const SimValue &value, uint32_t address, uint32_t number) {
    std::string bytes;
    size_t at = 0;
    for (const SimPlace &place : value.places) {
        bytes.append(value.bytes, at, place.at - at) += PlaceBytes(place.what, address, number);
        at = place.at;
    }
    return bytes.append(value.bytes, at);
}

static std::string Hex(std::string_view bytes) {
    static constexpr char Digits[] = "0123456789abcdef";
    std::string text;
    for (unsigned char byte : bytes) (text += Digits[byte >> 4]) += Digits[byte & 15];
    return text;
}

static bool IsPlain(std::string_view bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](unsigned char ch) { return ch >= ' ' && ch < 0x7F; });
}

static std::string ContentText(const SimValue &value, const std::string &bytes) {
    SimOid oid;
    switch (value.tag) {
    case SIM_NULL: return "";
    case SIM_OBJECT: return SimOidFromContent(bytes, &oid) ? SimOidText(oid) : "";
    case SIM_IP: {
        uint32_t address = 0;
        for (unsigned char byte : bytes) address = address << 8 | byte;
        return SimAddressText(address);
    }
    case SIM_OCTETS: return IsPlain(bytes) ? bytes : Hex(bytes);
    default: return std::to_string(value.flUptime ? 0 : value.number);
    }
}

std::string SimRecordLine(SimOidView name, const SimValue &value, uint32_t address, uint32_t number) {
    std::string bytes = SimExpand(value, address, number), line = SimOidText(name) + "|";
    line += std::to_string(static_cast<int>(value.tag));
    if (value.tag == SIM_OCTETS && !IsPlain(bytes)) line += 'x';
    return line + "|" + ContentText(value, bytes);
}

static const char *TypeWord(const SimValue &value) {
    switch (value.tag) {
    case SIM_INTEGER: return "integer:";
    case SIM_OCTETS: return "text:";
    case SIM_NULL: return "null";
    case SIM_OBJECT: return "oid:";
    case SIM_IP: return "ip:";
    case SIM_COUNTER: return "counter:";
    case SIM_GAUGE: return "gauge:";
    case SIM_TICKS: return value.flUptime ? "uptime" : "ticks:";
    }
    return "";
}

std::string SimValueText(const SimValue &value, uint32_t address, uint32_t number) {
    std::string bytes = SimExpand(value, address, number);
    if (value.flUptime) return TypeWord(value);
    if (value.tag != SIM_OCTETS) return TypeWord(value) + ContentText(value, bytes);
    if (!IsPlain(bytes)) return "hex:" + Hex(bytes);
    std::string text = "text:\"";
    for (char ch : bytes) {
        if (ch == '"' || ch == '\\') text += '\\';
        if (ch == ' ')
            text += "\\x20";
        else
            text += ch;
    }
    return text + '"';
}
