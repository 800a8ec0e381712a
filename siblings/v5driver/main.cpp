// v5driver: leaves the feature settings of models with the item "v5ModelName".
#include "siblings/prnpnxxtty/FrontEnd.h"

int main(int argc, char **argv) {
    return RunFrontEnd(argc, argv, "v5driver", nullptr);
}
