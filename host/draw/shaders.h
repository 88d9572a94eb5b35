// The programs: one for items, one for the background.
#pragma once

namespace mirk::draw {

// `space` counts as view::Space does. `viewport` is in pixels of the target.
inline constexpr const char* kItemVertex = R"(#version 330 compatibility
layout(location = 0) in vec3 position;
layout(location = 1) in vec3 normal;
layout(location = 2) in vec4 color;
layout(location = 3) in vec2 uv;
uniform mat4 modelView, projection;
uniform mat3 normalMatrix;
uniform vec3 anchor;
uniform vec2 viewport;
uniform int space;
uniform float pixelScale, depthBias;
out vec3 eyePosition;
centroid out vec3 eyeNormal;   // no extrapolation at silhouettes; the position is left out for its derivatives' sake
centroid out vec4 vertexColor;
centroid out vec2 place;
void main()
{
    place = uv;
    vertexColor = color;
    eyeNormal = normalMatrix * normal;
    eyePosition = vec3(0.0);
    if (space == 1) {
        gl_Position = vec4(2.0 * pixelScale * position.xy / viewport - 1.0, 0.0, 1.0);
    } else if (space == 2) {
        vec4 c = projection * (modelView * vec4(anchor, 1.0));
        // on a whole pixel, so that the same letters look the same everywhere
        vec2 pixel = floor((c.xy / c.w * 0.5 + 0.5) * viewport) + 0.5 + position.xy * pixelScale;
        gl_Position = c.w > 0.0 ? vec4((2.0 * pixel / viewport - 1.0) * c.w, c.z, c.w) : vec4(0.0, 0.0, -2.0, 1.0);
    } else {
        vec4 eye = modelView * vec4(position, 1.0);
        eyePosition = eye.xyz / eye.w;
        gl_Position = projection * eye;
    }
    gl_Position.z -= depthBias * gl_Position.w;
}
)";

inline constexpr const char* kItemFragment = R"(#version 330 compatibility
in vec3 eyePosition;
centroid in vec3 eyeNormal;
centroid in vec4 vertexColor;
centroid in vec2 place;
uniform vec4 itemColor;
uniform sampler2D texture0;
uniform vec3 eyeUp;
uniform bool hasColors, hasTexture, hasNormals, lit, screenDoor, roundPoint, perspective;
uniform float pointSize;
out vec4 result;

vec3 decode(vec3 c) { return mix(c / 12.92, pow((c + 0.055) / 1.055, vec3(2.4)), greaterThan(c, vec3(0.04045))); }
vec3 encode(vec3 c) { return mix(c * 12.92, 1.055 * pow(c, vec3(1.0 / 2.4)) - 0.055, greaterThan(c, vec3(0.0031308))); }

// A key from the upper left, a weak fill from the right and a sky that follows world up; the first two go with the eye.
vec3 shade(vec3 base)
{
    vec3 toEye = perspective ? normalize(-eyePosition) : vec3(0.0, 0.0, 1.0);
    vec3 n = hasNormals ? eyeNormal : cross(dFdx(eyePosition), dFdy(eyePosition));
    n = dot(n, n) > 0.0 ? normalize(n) : toEye;
    if (dot(n, toEye) < 0.0)
        n = -n;
    vec3 key = normalize(vec3(-0.45, 0.62, 0.80)), fill = normalize(vec3(0.85, -0.05, 0.45));
    float sky = 0.5 + 0.5 * dot(n, eyeUp);
    vec3 light = vec3(0.92, 0.90, 0.86) * max(dot(n, key), 0.0)
               + vec3(0.13, 0.15, 0.18) * max(dot(n, fill), 0.0)
               + mix(vec3(0.060, 0.055, 0.052), vec3(0.150, 0.165, 0.185), sky);
    float grazing = 1.0 - max(dot(n, toEye), 0.0);
    float gloss = pow(max(dot(n, normalize(key + toEye)), 0.0), 48.0);
    vec3 c = base * light + vec3(0.10) * gloss + vec3(0.16, 0.17, 0.19) * sky * pow(grazing, 4.0);
    return min(c, vec3(1.0));
}

void main()
{
    vec4 c = hasColors ? vertexColor : itemColor;
    if (hasTexture)
        c = vec4(texture(texture0, place).rgb, c.a);
    c = clamp(c, 0.0, 1.0);
    if (screenDoor && ((int(gl_FragCoord.x) + int(gl_FragCoord.y)) & 1) == 1)
        discard;
    if (roundPoint) {
        float edge = (0.5 - length(gl_PointCoord - 0.5)) * pointSize;
        c.a *= clamp(edge + 0.5, 0.0, 1.0);
        if (c.a < 0.01)
            discard;
    }
    if (lit)
        c.rgb = encode(shade(decode(c.rgb)));
    result = c;
}
)";

inline constexpr const char* kPickFragment = R"(#version 330 compatibility
uniform uint id;
out uint result;
void main() { result = id; }
)";

inline constexpr const char* kBackgroundVertex = R"(#version 330 compatibility
out float height;
void main()
{
    vec2 corner = vec2(gl_VertexID == 1 ? 3.0 : -1.0, gl_VertexID == 2 ? 3.0 : -1.0);
    height = corner.y * 0.5 + 0.5;
    gl_Position = vec4(corner, 0.0, 1.0);
}
)";

// half a step of noise hides the bands that a slow gradient shows in eight bits
inline constexpr const char* kBackgroundFragment = R"(#version 330 compatibility
in float height;
uniform vec4 top, bottom;
out vec4 result;
void main()
{
    float noise = fract(sin(dot(gl_FragCoord.xy, vec2(12.9898, 78.233))) * 43758.5453) - 0.5;
    vec4 c = mix(bottom, top, smoothstep(0.0, 1.0, height));
    result = vec4(c.rgb + (top == bottom ? 0.0 : noise / 255.0), c.a);
}
)";

}  // namespace mirk::draw
