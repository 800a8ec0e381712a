// Hosts of queues as users write them.
#include "print/QueHost.h"

#include <gtest/gtest.h>

TEST(SplitQueHost, NameAndPort) {
    const std::pair<const char *, const char *> cases[] = {
        {"printer", "printer|"},
        {"10.0.0.1:9101", "10.0.0.1|9101"},
        {"fe80::1", "[fe80::1]|"},
        {"[fe80::1]", "[fe80::1]|"},
        {"[fe80::1]:9101", "[fe80::1]|9101"},
        {"[fe80::1", "no"},
        {"[fe80::1]9101", "no"},
        {"[fe80::1]:", "no"},
        {"printer:", "no"},
        {":9101", "no"},
        {"", "no"},
    };
    for (const auto &[host, want] : cases) {
        std::string name = "left", port;
        bool flRead = SplitQueHost(host, name, port);
        EXPECT_EQ(flRead ? name + "|" + port : "no", want) << host;
    }
}
