// The host table: names of hosts by their addresses, from NIS or the hosts file, and the name servers behind
// it.
#pragma once

#include <netdb.h>

// Reads the table anew: the map "hosts" of NIS where ypcat gives one, else the file hosts. Of a line the
// first two words count, an address and its name; the last line of an address wins.
void PrdInitHostTableS();
// The name of an address, or the address itself if nobody knows one, or one that is no name: it goes into
// command lines. The table is read at the first call. Owns: *name.
void PrdGetHostNameS(const char *address, char **name);
// From here on name servers are asked again. They are left alone once one has kept a call waiting in vain.
void ResetNameServers();

enum { NAME_SERVER_PATIENCE = 1 }; // seconds after which a vain look-up was one too many
// Seams for tests: where a file hosts may lie, and the look-up.
extern const char *aHostDirs[2];
extern hostent *(*pGethostbyaddr)(const void *address, socklen_t size, int family);
