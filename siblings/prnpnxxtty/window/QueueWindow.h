// The family's queues in a window: the features of one are chosen and stored with it.
#pragma once

// Shows the queues of the database until the user closes the window: the program's status. The features are
// chosen by a run of this program of its own, beside which the window stays. The windows are open.
int ChooseQueue();
