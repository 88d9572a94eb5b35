#include <maya/MUuid.h>

#include <cstring>
#include <random>

namespace {

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    c = char(c | 0x20);
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

}  // namespace

MUuid::MUuid(const unsigned char bytes[16]) { std::memcpy(bytes_, bytes, 16); }

MUuid::MUuid(const MString& text)
{
    if (text.length() != 36)
        return;
    unsigned char bytes[16] = {};
    int           digits = 0;
    for (int i = 0; i < 36; ++i) {
        const char c = text.asChar()[i];
        if (i == 8 || i == 13 || i == 18 || i == 23) {
            if (c != '-')
                return;
            continue;
        }
        const int digit = hexDigit(c);
        if (digit < 0)
            return;
        bytes[digits / 2] = static_cast<unsigned char>(bytes[digits / 2] << 4 | digit);
        ++digits;
    }
    std::memcpy(bytes_, bytes, 16);
}

MStatus MUuid::generate()
{
    thread_local std::random_device device;
    for (int i = 0; i < 16; i += 4) {
        const unsigned int word = device();
        std::memcpy(bytes_ + i, &word, 4);
    }
    bytes_[6] = static_cast<unsigned char>((bytes_[6] & 0x0f) | 0x40);  // version 4: random
    bytes_[8] = static_cast<unsigned char>((bytes_[8] & 0x3f) | 0x80);
    return MStatus();
}

bool MUuid::valid() const { return *this != MUuid(); }

MString MUuid::asString() const
{
    static const char digits[] = "0123456789ABCDEF";
    char              text[36];
    char*             out = text;
    for (int i = 0; i < 16; ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10)
            *out++ = '-';
        *out++ = digits[bytes_[i] >> 4];
        *out++ = digits[bytes_[i] & 15];
    }
    return MString(text, 36);
}

MStatus MUuid::get(unsigned char bytes[16]) const
{
    std::memcpy(bytes, bytes_, 16);
    return MStatus();
}

bool MUuid::operator==(const MUuid& other) const { return std::memcmp(bytes_, other.bytes_, 16) == 0; }
