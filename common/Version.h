// What all programs of the family call themselves.
#pragma once

#define PRN_FAMILY  "Tarvo"
#define PRN_VERSION "4.50.29"
