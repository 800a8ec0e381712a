// driver: leaves the feature settings of models with the item "v4DriverPluginFilename".
#include "siblings/prnpnxxtty/FrontEnd.h"

int main(int argc, char **argv) {
    return RunFrontEnd(argc, argv, "driver", nullptr);
}
