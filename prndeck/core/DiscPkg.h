// The discovery: asks the network for printers and fills the table of them (PrdDisc.h).
#pragma once

// What a discovery needs of earlier runs: both lists of where to look, and the browser. The first run finds
// the subnets on this host's interfaces and stores them; later ones add those that are new.
void InitPkgDisc();
// Fills the table anew. Blocks as long as the network takes; nobody may look at an entry meanwhile. Nothing
// is told: who does not answer is not in the table.
void DoPkgDiscovery();
