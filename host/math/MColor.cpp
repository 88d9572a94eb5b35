#include <maya/MColor.h>

#include <algorithm>
#include <cmath>
#include <ostream>

const MColor MColor::kOpaqueBlack(0, 0, 0, 1);

namespace {

MColor fromHsv(float h, float s, float v, float a)
{
    h = std::fmod(h, 360.0f);
    if (h < 0)
        h += 360;
    const auto channel = [=](float n) {
        const float k = std::fmod(n + h / 60, 6.0f);
        return v - v * s * std::clamp(std::min(k, 4 - k), 0.0f, 1.0f);
    };
    return {channel(5), channel(3), channel(1), a};
}

void toHsv(const MColor& c, float& h, float& s, float& v)
{
    v = std::max({c.r, c.g, c.b});
    const float range = v - std::min({c.r, c.g, c.b});
    s = v != 0 ? range / v : 0;
    if (range == 0)
        h = 0;
    else if (v == c.r)
        h = 60 * ((c.g - c.b) / range);
    else if (v == c.g)
        h = 60 * (2 + (c.b - c.r) / range);
    else
        h = 60 * (4 + (c.r - c.g) / range);
    if (h < 0)
        h += 360;
}

}  // namespace

MStatus MColor::set(MColorType model, float c0, float c1, float c2, float alpha)
{
    switch (model) {
    case kRGB: *this = MColor(c0, c1, c2, alpha); return MStatus();
    case kHSV: *this = fromHsv(c0, c1, c2, alpha); return MStatus();
    case kCMY: *this = MColor(1 - c0, 1 - c1, 1 - c2, alpha); return MStatus();
    case kCMYK: *this = MColor(1 - c0, 1 - c1, 1 - c2) * (1 - alpha); a = 1; return MStatus();
    }
    return MStatus::kInvalidParameter;
}

MStatus MColor::get(MColorType model, float& c0, float& c1, float& c2, float& alpha) const
{
    const float light = std::max({r, g, b});
    switch (model) {
    case kRGB: c0 = r, c1 = g, c2 = b, alpha = a; return MStatus();
    case kHSV: toHsv(*this, c0, c1, c2); alpha = a; return MStatus();
    case kCMY: c0 = 1 - r, c1 = 1 - g, c2 = 1 - b, alpha = a; return MStatus();
    case kCMYK:
        c0 = c1 = c2 = 0, alpha = 1 - light;
        if (light != 0)
            c0 = 1 - r / light, c1 = 1 - g / light, c2 = 1 - b / light;
        return MStatus();
    }
    return MStatus::kInvalidParameter;
}

MStatus MColor::get(MColorType model, float& c0, float& c1, float& c2) const
{
    float last;
    return get(model, c0, c1, c2, last);
}

MStatus MColor::get(float c[4]) const
{
    c[0] = r, c[1] = g, c[2] = b, c[3] = a;
    return MStatus();
}

std::ostream& operator<<(std::ostream& os, const MColor& c)
{
    return os << '[' << c.r << ", " << c.g << ", " << c.b << ", " << c.a << ']';
}
