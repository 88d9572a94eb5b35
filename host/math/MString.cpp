#include <maya/MString.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <limits>
#include <ostream>

#include <maya/MStringArray.h>

#include "math/number_text.h"

namespace {

bool isHead(char c) { return (static_cast<unsigned char>(c) & 0xc0) != 0x80; }

/// The byte at which character `n` begins; the length for the one past the end.
size_t byteOf(const std::string& text, size_t n)
{
    for (size_t i = 0; i < text.size(); ++i)
        if (isHead(text[i]) && n-- == 0)
            return i;
    return text.size();
}

int charAt(const std::string& text, size_t byte)
{
    if (byte == std::string::npos)
        return -1;
    return int(std::count_if(text.begin(), text.begin() + std::ptrdiff_t(byte), isHead));
}

int position(size_t byte) { return byte == std::string::npos ? -1 : int(byte); }

void appendUtf8(std::string& out, char32_t c)
{
    if (c > 0x10ffff || (c >= 0xd800 && c < 0xe000))
        c = 0xfffd;
    if (c < 0x80) {
        out += char(c);
    } else if (c < 0x800) {
        out += char(0xc0 | c >> 6);
        out += char(0x80 | (c & 0x3f));
    } else if (c < 0x10000) {
        out += char(0xe0 | c >> 12);
        out += char(0x80 | (c >> 6 & 0x3f));
        out += char(0x80 | (c & 0x3f));
    } else {
        out += char(0xf0 | c >> 18);
        out += char(0x80 | (c >> 12 & 0x3f));
        out += char(0x80 | (c >> 6 & 0x3f));
        out += char(0x80 | (c & 0x3f));
    }
}

const char* skipSpace(const char* p, const char* end)
{
    while (p != end && (*p == ' ' || (*p >= '\t' && *p <= '\r')))
        ++p;
    return p;
}

/// Reads the number that `text` begins with, limited to N's range. `end` is set to what follows; to the text's begin
/// if there is no number. `fits` tells if it is in range.
template <class N>
N leading(const std::string& text, const char*& end, bool& fits)
{
    const char* const last  = text.data() + text.size();
    const char*       first = skipSpace(text.data(), last);
    if (last - first > 1 && *first == '+' && first[1] != '-')
        ++first;
    N          value{};
    const auto result = std::from_chars(first, last, value);
    fits = result.ec != std::errc::result_out_of_range;
    end  = result.ec == std::errc::invalid_argument ? text.data() : result.ptr;
    if (!fits) {
        if constexpr (std::is_floating_point_v<N>)
            return N(std::strtod(std::string(first, result.ptr).c_str(), nullptr));  // zero or infinity
        else
            value = *first == '-' ? std::numeric_limits<N>::min() : std::numeric_limits<N>::max();
    }
    return value;
}

template <class N>
N leading(const std::string& text)
{
    const char* end;
    bool        fits;
    return leading<N>(text, end, fits);
}

template <class N>
bool isWhole(const std::string& text)
{
    const char* end;
    bool        fits;
    leading<N>(text, end, fits);
    return fits && end != text.data() && skipSpace(end, text.data() + text.size()) == text.data() + text.size();
}

std::string part(const std::string& text, size_t begin, size_t end)
{
    return begin < end ? text.substr(begin, end - begin) : std::string();
}

}  // namespace

MString::MString(const char* text, int length) { set(text, length); }
MString::MString(const wchar_t* text) { setWChar(text); }
MString::MString(const wchar_t* text, int length) { setWChar(text, length); }

unsigned int MString::numChars() const { return unsigned(std::count_if(text_.begin(), text_.end(), isHead)); }

MStatus MString::set(const char* text)
{
    text_ = std::string(text ? text : "");  // `text` may lie in this string
    return MStatus();
}

MStatus MString::set(const char* text, int length)
{
    if (length < 0 || (!text && length > 0))
        return MStatus::kInvalidParameter;
    text_ = text ? std::string(text, size_t(length)) : std::string();
    return MStatus();
}

MStatus MString::set(double value)
{
    text_ = mirk::numberText(value);
    return MStatus();
}

MStatus MString::set(double value, int precision)
{
    if (precision < 0 || precision > 300)
        return MStatus::kInvalidParameter;
    char       text[1024];
    const auto result = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, precision);
    text_.assign(text, result.ptr);
    return MStatus();
}

MStatus MString::setWChar(const wchar_t* text)
{
    size_t length = 0;
    while (text && text[length])
        ++length;
    return setWChar(text, int(length));
}

MStatus MString::setWChar(const wchar_t* text, int length)
{
    if (length < 0 || (!text && length > 0))
        return MStatus::kInvalidParameter;
    text_.clear();
    for (int i = 0; i < length; ++i)
        appendUtf8(text_, char32_t(text[i]));
    return MStatus();
}

void MString::appendNumber(double value) { text_ += mirk::numberText(value); }

int MString::index(char c) const { return position(text_.find(c)); }
int MString::rindex(char c) const { return position(text_.rfind(c)); }
int MString::indexW(char c) const { return charAt(text_, text_.find(c)); }
int MString::indexW(const MString& text) const { return charAt(text_, text_.find(text.text_)); }
int MString::rindexW(char c) const { return charAt(text_, text_.rfind(c)); }
int MString::rindexW(const MString& text) const { return charAt(text_, text_.rfind(text.text_)); }

MString MString::substring(int start, int end) const
{
    MString out;
    if (end >= 0)
        out.text_ = part(text_, size_t(std::max(start, 0)), std::min(size_t(end) + 1, text_.size()));
    return out;
}

MString MString::substringW(int start, int end) const
{
    MString out;
    if (end >= 0)
        out.text_ = part(text_, byteOf(text_, size_t(std::max(start, 0))), byteOf(text_, size_t(end) + 1));
    return out;
}

MStatus MString::split(char separator, MStringArray& array) const
{
    const std::string text = text_;  // this string may be in the array
    array.clear();
    if (text.empty())
        return MStatus::kFailure;
    for (size_t begin = 0; begin < text.size();) {
        const size_t end = std::min(text.find(separator, begin), text.size());
        if (end > begin)
            array.append(MString(text.data() + begin, int(end - begin)));
        begin = end + 1;
    }
    return MStatus();
}

MStatus MString::substitute(const MString& from, const MString& to)
{
    if (from.text_.empty())
        return MStatus::kInvalidParameter;
    std::string out;
    size_t      begin = 0;
    for (size_t at; (at = text_.find(from.text_, begin)) != std::string::npos; begin = at + from.text_.size())
        out.append(text_, begin, at - begin).append(to.text_);
    out.append(text_, begin);
    text_ = std::move(out);
    return MStatus();
}

MString& MString::toLowerCase()
{
    for (char& c : text_)
        if (c >= 'A' && c <= 'Z')
            c = char(c - 'A' + 'a');
    return *this;
}

MString& MString::toUpperCase()
{
    for (char& c : text_)
        if (c >= 'a' && c <= 'z')
            c = char(c - 'a' + 'A');
    return *this;
}

bool MString::isShort() const { return isWhole<short>(text_); }
bool MString::isInt() const { return isWhole<int>(text_); }
bool MString::isUnsigned() const { return isWhole<unsigned int>(text_); }
bool MString::isFloat() const { return isWhole<float>(text_); }
bool MString::isDouble() const { return isWhole<double>(text_); }

short        MString::asShort() const { return leading<short>(text_); }
int          MString::asInt() const { return leading<int>(text_); }
unsigned int MString::asUnsigned() const { return leading<unsigned int>(text_); }
float        MString::asFloat() const { return leading<float>(text_); }
double       MString::asDouble() const { return leading<double>(text_); }

MStatus MString::format(const MString& format, const MString& arg1, const MString& arg2, const MString& arg3,
                        const MString& arg4, const MString& arg5, const MString& arg6, const MString& arg7,
                        const MString& arg8, const MString& arg9, const MString& arg10)
{
    const MString* const args[] = {&arg1, &arg2, &arg3, &arg4, &arg5, &arg6, &arg7, &arg8, &arg9, &arg10};
    const std::string&   f = format.text_;
    std::string          out;
    for (size_t i = 0; i < f.size(); ++i) {
        if (f[i] != '^' || i + 1 == f.size()) {
            out += f[i];
            continue;
        }
        if (f[i + 1] == '^') {
            out += f[++i];
            continue;
        }
        int        n = 0;
        const auto end = std::from_chars(f.data() + i + 1, f.data() + f.size(), n).ptr;
        if (n < 1 || n > 10 || end == f.data() + f.size() || *end != 's') {
            out += f[i];
            continue;
        }
        out += args[n - 1]->text_;
        i = size_t(end - f.data());
    }
    text_ = std::move(out);
    return MStatus();
}

std::ostream& operator<<(std::ostream& os, const MString& text) { return os.write(text.asChar(), text.length()); }
