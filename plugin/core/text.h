#pragma once
#include <string>
#include <vector>

/// The fields of a text between single separators, as a stream reads them: two separators in a row give an empty field,
/// a separator at the end gives none after it, and an empty text has no field.
std::vector<std::string> split(const std::string& text, char separator);
