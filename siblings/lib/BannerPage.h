// The banner page: one PostScript page with the titles of a queue, and who printed what.
#pragma once

#include "siblings/lib/Queue.h"

#include <string>
#include <string_view>

// The page around its lines, each "(TEXT) POINTS Centered\n" from top to bottom; a line of 0 points is left
// out, one that is wider than the page is set smaller.
std::string BannerPage(std::string_view lines);

// The page of one job, with the end-of-job mark behind it: what follows is a job of its own to the printer,
// in whatever language. Texts in UTF-8; a character that the printer's fonts lack shows as "?".
std::string BannerOfJob(const Titles &titles, std::string_view user, std::string_view job,
                        std::string_view title);
