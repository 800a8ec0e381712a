// The filter language: one expression decides, once a host has been read, whether its caller is told.
//
//     expression  "(" body ")"
//     body        "$" number                      the variable was filled
//               | expression " && " expression
//               | expression " || " expression
//               | word " IN $" number             the variable's text contains the word, case counts
//               | "!" expression
//
// Numbers count the variables from 0 in the order of the set-up. The leftmost operator at the outer level
// splits the expression, parentheses are the only grouping. Nothing is kept between calls: the text is read
// anew for each host. What breaks the grammar gives some answer, never a fault; a number without a variable
// is false.
#pragma once

#include "SnmpPkg/Pkg.h"

#include <string_view>

enum { // operators
    OP_NONE = 0,
    OP_AND = 1,
    OP_OR = 2,
    OP_IN = 3,
    OP_NOT = 4,
    OP_EQUAL = 5, // the last four are recognised and test nothing
    OP_GET = 6,
    OP_GETN = 7,
    OP_TBL = 8,
};
enum { FILTER_DEPTH = 64 }; // nesting beyond which an expression is false

bool PassFilter(const char *expression, const SnmpPackage *package); // a null expression is true

int GetOperator(std::string_view expression);
// The left term, and the position right behind it: for "(($5) && ($3))" the term is "($5)" and the
// position 5.
void Term1(std::string_view expression, size_t *position, std::string_view *term);
// The right term. A "(" at start opens it; any other character there, the operator's second, is passed over.
void Term2(std::string_view expression, size_t start, std::string_view *term);
bool TermFilled(std::string_view term, const SnmpPackage *package);
bool Within(std::string_view word, std::string_view term, const SnmpPackage *package);
bool Equal(); // always true
