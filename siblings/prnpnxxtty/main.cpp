// prnpnxxtty: chooses the feature settings of a printer model, in a window or at the terminal.
#include "siblings/prnpnxxtty/FrontEnd.h"
#include "siblings/prnpnxxtty/window/FeatureWindow.h"
#include "siblings/prnpnxxtty/window/QueueWindow.h"
#include "siblings/prnpnxxtty/window/Window.h"

int main(int argc, char **argv) {
    static constexpr WindowFace face = {OpenWindows, ChooseFeatures, ChooseQueue};
    return RunFrontEnd(argc, argv, "prnpnxxtty", &face);
}
