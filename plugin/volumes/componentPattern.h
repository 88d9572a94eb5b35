// Components by index: texts that list them, ranges with steps, and lists of frames. No host header.
#pragma once
#include <string>

#include "volumes/componentMarks.h"

/// Marks the indices of a text: "*" for all, else numbers and ranges `first:last` (inclusive, in either order) between
/// blanks. Numbers past the marks and tokens of another form are passed over.
void markPattern(Marks& marks, const std::string& text);

/// Which indices a range takes.
struct RangeRule
{
    int start = 0;
    int end = -1;     ///< not above 0: how far before the count the range ends; -1 leaves the last one out
    int take = 1;     ///< of each `every` indices so many, at most `every`
    int every = 2;
};
/// Marks a range. A multiple of `every` opens a run of `take` indices. An `end` of the count or more below 0 leaves an
/// empty range.
void markRange(Marks& marks, const RangeRule& rule);

/// True if one of the numbers of the text is the frame. Tokens that are no numbers name none.
bool namesFrame(const std::string& text, double frame);
