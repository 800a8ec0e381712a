// Where a queue prints to, as users write it: HOST, HOST:PORT, an IPv6 address, or [ADDRESS]:PORT.
#pragma once

#include <string>
#include <string_view>

// False if it can't be read. An IPv6 address comes in brackets; port stays empty where none is told.
bool SplitQueHost(std::string_view host, std::string &name, std::string &port);
