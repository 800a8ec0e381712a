// The filter language of the SNMP package.
#include "SnmpPkg/Filter.h"

struct FilterSign {
    const char *Text;
    int Operator;
};
static constexpr FilterSign PrefixSigns[] = {
    {"!", OP_NOT}, {"GETN", OP_GETN}, {"GET", OP_GET}, {"TBL", OP_TBL}};
static constexpr FilterSign InfixSigns[] = {{"&&", OP_AND}, {"||", OP_OR}, {"IN", OP_IN}, {"=", OP_EQUAL}};

static int FilterDepth(char ch) {
    return ch == '(' ? 1 : ch == ')' ? -1 : 0;
}

// The leftmost sign of a table at depth 0; a blank there ends the scan if blanks end it.
template <size_t N>
static int FindSign(std::string_view text, const FilterSign (&signs)[N], bool flBlankEnds) {
    int depth = 0;
    for (size_t i = 0; i < text.size(); i++) {
        depth += FilterDepth(text[i]);
        if (depth != 0) continue;
        if (flBlankEnds && text[i] == ' ') return OP_NONE;
        for (const FilterSign &sign : signs)
            if (text.substr(i).starts_with(sign.Text)) return sign.Operator;
    }
    return OP_NONE;
}

int GetOperator(std::string_view expression) {
    if (expression.starts_with('(')) expression.remove_prefix(1);
    int prefix = FindSign(expression, PrefixSigns, true);
    return prefix != OP_NONE ? prefix : FindSign(expression, InfixSigns, false);
}

void Term1(std::string_view expression, size_t *position, std::string_view *term) {
    size_t start = expression.starts_with('(') ? 1 : 0;
    size_t i = start;
    int depth = 0;
    bool nested = false;
    for (; i < expression.size(); i++) {
        char ch = expression[i];
        depth += FilterDepth(ch);
        nested = nested || depth > 0;
        if ((depth == 0 || depth == -1) && (ch == ' ' || ch == ')')) break;
    }
    if (nested && i < expression.size()) i++; // the ")" belongs to a term with parentheses of its own
    *term = expression.substr(start, i - start);
    *position = i;
}

// The length of the term that starts with "(" up to the ")" that balances it, or to the end of the text.
static size_t FindBalance(std::string_view text) {
    int depth = 0;
    for (size_t i = 0; i < text.size(); i++) {
        depth += FilterDepth(text[i]);
        if (depth == 0) return i + 1;
    }
    return text.size();
}

void Term2(std::string_view expression, size_t start, std::string_view *term) {
    *term = {};
    if (start >= expression.size()) return;
    if (expression[start] != '(') start = expression.find_first_not_of(' ', start + 1);
    if (start == std::string_view::npos) return;
    std::string_view rest = expression.substr(start);
    *term = rest.substr(0, rest[0] == '(' ? FindBalance(rest) : rest.find(')'));
}

// The variable that a reference names; null for any other term and for a number without a variable.
static const PkgVar *FindTermVar(std::string_view term, const SnmpPackage *package) {
    if (!term.starts_with('$')) return nullptr;
    int number = 0;
    for (size_t i = 1; i < term.size() && term[i] >= '0' && term[i] <= '9'; i++) {
        number = number * 10 + (term[i] - '0');
        if (number >= PKG_VARS) return nullptr;
    }
    return number < package->NumRecVars ? &package->Vars[number] : nullptr;
}

bool TermFilled(std::string_view term, const SnmpPackage *package) {
    const PkgVar *var = FindTermVar(term, package);
    if (!var || var->Status != SUCCESS) return false;
    switch (var->RecType) {
    case VT_EMPTY:
    case VT_UNKNOWN:
    case VT_NOSUCHOBJ:
    case VT_NOSUCHINS:
    case VT_ENDOFMIB: return false;
    default: return true; // every type that has a value
    }
}

bool Within(std::string_view word, std::string_view term, const SnmpPackage *package) {
    const PkgVar *var = FindTermVar(term, package);
    return var != nullptr && std::string_view(var->RecText).find(word) != std::string_view::npos;
}

bool Equal() {
    return true;
}

static bool PassTerm(std::string_view expression, const SnmpPackage *package, int depth);

// The terms of the two-sided operators stand on both sides of a two-character sign.
static bool PassPair(std::string_view expression, int sign, const SnmpPackage *package, int depth) {
    size_t position = 0;
    std::string_view left, right;
    Term1(expression, &position, &left);
    Term2(expression, position + 2, &right);
    if (sign == OP_IN) return Within(left, right, package);
    bool passed = PassTerm(left, package, depth);
    return passed == (sign == OP_AND) ? PassTerm(right, package, depth) : passed;
}

static bool PassTerm(std::string_view expression, const SnmpPackage *package, int depth) {
    if (depth >= FILTER_DEPTH) return false;
    std::string_view term;
    size_t position = 0;
    int sign = GetOperator(expression);
    switch (sign) {
    case OP_NONE: Term1(expression, &position, &term); return TermFilled(term, package);
    case OP_AND:
    case OP_OR:
    case OP_IN: return PassPair(expression, sign, package, depth + 1);
    case OP_NOT: Term2(expression, 2, &term); return !PassTerm(term, package, depth + 1);
    case OP_EQUAL: return Equal();
    default: return false; // GET, GETN and TBL test nothing
    }
}

bool PassFilter(const char *expression, const SnmpPackage *package) {
    return !expression || PassTerm(expression, package, 0);
}
