// Where a queue prints to, as users write it.
#include "print/QueHost.h"

#include <algorithm>

bool SplitQueHost(std::string_view host, std::string &name, std::string &port) {
    size_t colons = static_cast<size_t>(std::count(host.begin(), host.end(), ':'));
    if (host.starts_with("[")) {
        size_t end = host.find(']');
        if (end == host.npos) return false;
        name = host.substr(0, end + 1);
        host.remove_prefix(end + 1);
        if (!host.empty() && host.front() != ':') return false;
        port = host.empty() ? "" : host.substr(1);
        return host.empty() || !port.empty();
    }
    if (colons > 1) {
        name = "[" + std::string(host) + "]";
        return true;
    }
    name = host.substr(0, host.find(':'));
    port = colons ? host.substr(host.find(':') + 1) : "";
    return !name.empty() && (!colons || !port.empty());
}
