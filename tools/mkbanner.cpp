// Writes the banner page of CUPS queues, for an installation that brings it.
#include "siblings/lib/CupsBanner.h"

#include <cstdio>

int main() {
    bool flWritten = fputs(CupsBannerPage().c_str(), stdout) >= 0;
    return fflush(stdout) == 0 && flWritten ? 0 : 1;
}
