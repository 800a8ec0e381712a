// The least that a discovery run can take once the silence is over: every variable asked of every host by a
// bare loop over one socket, one request after the other. Reads addresses from standard input, prints the
// seconds that it took.
#include "SnmpPkg/Encode.h"
#include "SnmpPkg/Pkg.h"

#include <arpa/inet.h>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <sys/socket.h>

int main(int argc, char **argv) {
    PkgPacket requests[PKG_VARS];
    char line[64], answer[2048];
    int count = argc - 1;
    for (int i = 0; i < count && i < PKG_VARS; i++) {
        PkgVar var = {};
        var.Name = argv[i + 1];
        PkgStartPacket(&requests[i]);
        PkgEncodeGetVar(&requests[i], &var);
        PkgEncodePacketProlog(&requests[i], "rdcomm", i + 1, PDU_GET);
    }
    int fd = socket(AF_INET, SOCK_DGRAM, 0);
    std::chrono::duration<double> spent{};
    while (fgets(line, sizeof line, stdin) != nullptr) {
        sockaddr_in to = {};
        to.sin_family = AF_INET;
        to.sin_port = htons(SnmpAgentPort);
        line[strcspn(line, "\n")] = 0;
        inet_aton(line, &to.sin_addr);
        auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < count; i++) {
            const PkgPacket &packet = requests[i];
            sendto(fd, packet.Data + packet.Pos, static_cast<size_t>(packet.Len), 0,
                   reinterpret_cast<sockaddr *>(&to), sizeof to);
            if (recv(fd, answer, sizeof answer, 0) <= 0) return 1;
        }
        spent += std::chrono::steady_clock::now() - start;
    }
    printf("%.6f\n", spent.count());
    return 0;
}
