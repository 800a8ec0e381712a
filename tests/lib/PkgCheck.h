// A packet as received, and the invariant of a package that something was read into, for tests and fuzz
// targets.
#pragma once

#include "SnmpPkg/Decode.h"
#include "SnmpPkg/Pkg.h"

#include <algorithm>
#include <cstring>
#include <string>

inline PkgPacket Received(const std::string &bytes) {
    PkgPacket packet = {};
    packet.Len = static_cast<int32_t>(std::min<size_t>(bytes.size(), PKG_DATA_SIZE));
    memcpy(packet.Data, bytes.data(), static_cast<size_t>(packet.Len));
    return packet;
}

// Reads a datagram into the package as the engine does it; false if it holds no bindings.
inline bool ReadDatagram(SnmpPackage *package, const std::string &bytes) {
    PkgPacket packet = Received(bytes);
    PkgProlog prolog;
    PkgPrologText text;
    if (!PkgReadProlog(&packet, &prolog, &text)) return false;
    DecodeVariables(&packet, package, prolog.Version);
    return true;
}

// Null, or what is wrong: every text lies in the record and ends there, and the fill marks are in range.
inline const char *PkgCheck(const SnmpPackage &package) {
    const char *begin = reinterpret_cast<const char *>(&package);
    const char *end = begin + sizeof package;
    auto inside = [&](const char *text) {
        return text >= begin && text < end && memchr(text, 0, static_cast<size_t>(end - text)) != nullptr;
    };
    if (package.NumRecVars < package.NumVars || package.NumRecVars > PKG_VARS) return "number of variables";
    if (package.RecNameUsed > PKG_NAMES_SIZE || package.RecValueUsed > PKG_VALUES_SIZE) return "fill marks";
    for (int i = 0; i < package.NumRecVars; i++) {
        const PkgVar &var = package.Vars[i];
        if (!inside(var.Name) || !inside(var.RecText)) return "texts";
        if (var.Status != SUCCESS || var.RecData == nullptr) continue;
        if (!inside(var.RecData)) return "bytes";
        if (var.RecType != VT_BITSTRING && !inside(var.RecData + var.RecValue)) return "end of the bytes";
    }
    return nullptr;
}
