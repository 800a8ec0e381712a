// Texts of users, who type in UTF-8 or in a single-byte locale, as UTF-8.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// The text as schedulers and banner pages take it: UTF-8, a blank for each control character, cut between
// characters at limit bytes. A byte that is no UTF-8 counts as Latin 1.
std::string CleanUtf8(std::string_view text, size_t limit);
