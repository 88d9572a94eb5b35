#pragma once
#include <sstream>
#include <string>
#include <vector>

/// The fields of a text between single separators, as a stream reads them: two separators in a row give an empty field,
/// a separator at the end gives none after it, and an empty text has no field.
inline std::vector<std::string> split(const std::string& text, char separator)
{
    std::vector<std::string> fields;
    std::istringstream       stream(text);
    for (std::string field; std::getline(stream, field, separator);)
        fields.push_back(field);
    return fields;
}
