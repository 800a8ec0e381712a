// The dialogue in a window: a row with its choices for each option of a model.
#pragma once

#include "siblings/prnpnxxtty/FrontEnd.h"

// Shows the options at their present choices until the user applies or cancels. True if the settings were
// applied: they are at the task's target then, and the options at their choices. The windows are open.
bool ChooseFeatures(FeatureTask &task);
