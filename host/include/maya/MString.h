#pragma once
#include <iosfwd>
#include <string>
#include <type_traits>

#include <maya/MStatus.h>

class MStringArray;

/// Text in UTF-8. Positions and length() count bytes; numChars() and the methods that end in W count characters.
/// Numbers become the shortest decimal that reads back as the same double, without a point for whole numbers.
class MString
{
    template <class N>
    using IfNumber = std::enable_if_t<std::is_arithmetic_v<N>, int>;

public:
    MString() noexcept = default;
    MString(const char* text) : text_(text ? text : "") {}
    MString(const char* text, int length);
    MString(const wchar_t* text);
    MString(const wchar_t* text, int length);
    MString(const MString&) = default;
    MString(MString&& other) noexcept : text_(std::move(other.text_)) { other.text_.clear(); }
    MString& operator=(const MString&) = default;
    MString& operator=(MString&& other) noexcept { text_.swap(other.text_); return *this; }
    MString& operator=(const char* text) { set(text); return *this; }
    template <class N, IfNumber<N> = 0>
    MString& operator=(N value) { set(static_cast<double>(value)); return *this; }

    MString& operator+=(const MString& other) { text_ += other.text_; return *this; }
    MString& operator+=(const char* other) { if (other) text_ += other; return *this; }
    template <class N, IfNumber<N> = 0>
    MString& operator+=(N value) { appendNumber(static_cast<double>(value)); return *this; }

    MString operator+(const MString& other) const { return MString(*this) += other; }
    MString operator+(const char* other) const { return MString(*this) += other; }
    template <class N, IfNumber<N> = 0>
    MString operator+(N value) const { return MString(*this) += value; }

    bool operator==(const MString& other) const { return text_ == other.text_; }
    bool operator==(const char* other) const { return other ? text_ == other : text_.empty(); }
    bool operator!=(const MString& other) const { return !(*this == other); }
    bool operator!=(const char* other) const { return !(*this == other); }
    /// By bytes, which is the order of the characters' numbers.
    bool operator<(const MString& other) const { return text_ < other.text_; }

    const char*  asChar() const { return text_.c_str(); }
    const char*  asChar(int& length) const { length = int(text_.size()); return text_.c_str(); }
    const char*  asUTF8() const { return text_.c_str(); }
    const char*  asUTF8(int& length) const { return asChar(length); }
    unsigned int length() const { return static_cast<unsigned int>(text_.size()); }
    unsigned int numChars() const;

    MStatus set(const char* text);
    MStatus set(const char* text, int length);
    MStatus set(double value);
    /// With `precision` digits after the point.
    MStatus set(double value, int precision);
    MStatus setUTF8(const char* text) { return set(text); }
    MStatus setWChar(const wchar_t* text);
    MStatus setWChar(const wchar_t* text, int length);
    void    clear() { text_.clear(); }

    /// Positions of the first and last occurrence, -1 if there is none.
    int index(char c) const;
    int rindex(char c) const;
    int indexW(char c) const;
    int indexW(const MString& text) const;
    int rindexW(char c) const;
    int rindexW(const MString& text) const;

    /// From `start` to `end`, both included; cut at the text's ends.
    MString substring(int start, int end) const;
    MString substringW(int start, int end) const;

    /// Parts between occurrences of `separator`; empty parts are left out. kFailure for an empty text.
    MStatus split(char separator, MStringArray& array) const;
    /// Every occurrence of `from` becomes `to`.
    MStatus substitute(const MString& from, const MString& to);

    MString& toLowerCase();
    MString& toUpperCase();

    /// True if the whole text is a number of that kind.
    bool isShort() const;
    bool isInt() const;
    bool isUnsigned() const;
    bool isFloat() const;
    bool isDouble() const;
    /// The number the text begins with, 0 if it begins with none; limited to the type's range.
    short        asShort() const;
    int          asInt() const;
    unsigned int asUnsigned() const;
    float        asFloat() const;
    double       asDouble() const;

    /// `format` with ^1s to ^10s replaced by the arguments and ^^ by ^.
    MStatus format(const MString& format, const MString& arg1 = MString(), const MString& arg2 = MString(),
                   const MString& arg3 = MString(), const MString& arg4 = MString(), const MString& arg5 = MString(),
                   const MString& arg6 = MString(), const MString& arg7 = MString(), const MString& arg8 = MString(),
                   const MString& arg9 = MString(), const MString& arg10 = MString());

private:
    void appendNumber(double value);

    std::string text_;
};

inline bool    operator==(const char* a, const MString& b) { return b == a; }
inline bool    operator!=(const char* a, const MString& b) { return b != a; }
inline MString operator+(const char* a, const MString& b) { return MString(a) += b; }
template <class N, std::enable_if_t<std::is_arithmetic_v<N>, int> = 0>
MString operator+(N a, const MString& b)
{
    MString text;
    text = a;
    return text += b;
}
std::ostream& operator<<(std::ostream& os, const MString& text);
