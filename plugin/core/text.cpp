#include "core/text.h"

#include <sstream>

std::vector<std::string> split(const std::string& text, char separator)
{
    std::vector<std::string> fields;
    std::istringstream       stream(text);
    for (std::string field; std::getline(stream, field, separator);)
        fields.push_back(field);
    return fields;
}
