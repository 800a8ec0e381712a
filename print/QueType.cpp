// The types of queues.
#include "print/QueType.h"

#include <iterator>

const char *const PMs[] = {"wp", "wps", "psp"};
static_assert(std::size(PMs) == PM_COUNT);

// ORDER QueueType
static constexpr QueChoice TypeChoices[] = {
    {PM_HOST, CONNECTION_TCP},
    {PM_SERVER, CONNECTION_TCP},
    {PM_HOST, CONNECTION_DEVICE},
    {PM_SERVER_PRINTER, CONNECTION_TCP},
    {PM_SERVER_PRINTER, CONNECTION_DEVICE},
};

static constexpr bool TestTypeChoices() {
    for (int type = 0; type <= QUEUE_SERVER_DEVICE; type++)
        if ((TypeChoices[type].connection == CONNECTION_DEVICE) != IsDeviceType(type)) return false;
    return std::size(TypeChoices) == QUEUE_SERVER_DEVICE + 1;
}
static_assert(TestTypeChoices());

int GetQueueType(int printingModel, int connection) {
    if (printingModel < 0 || printingModel >= PM_COUNT) printingModel = PM_HOST;
    bool device = connection == CONNECTION_DEVICE && printingModel != PM_SERVER;
    int type = QUEUE_PRINTER_HOST;
    while (TypeChoices[type].printingModel != printingModel || IsDeviceType(type) != device) type++;
    return type;
}

QueChoice GetQueChoice(int type) {
    bool known = type >= 0 && type <= QUEUE_SERVER_DEVICE;
    return TypeChoices[known ? type : QUEUE_PRINTER_HOST];
}
