// prnpnxxtty: chooses the feature settings of a printer model, at the terminal or on its own.
#include "siblings/prnpnxxtty/FrontEnd.h"

int main(int argc, char **argv) {
    return RunFrontEnd(argc, argv, "prnpnxxtty", FACE_DIALOGUE);
}
