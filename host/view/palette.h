// The host's colours by number, as override colours of objects and drawing code use them.
#pragma once
#include "view/draw_list.h"

namespace mirk::view {

/// Colour 0 to 31, display space. Other numbers give colour 0.
inline Color paletteColor(int index)
{
    static constexpr float table[32][3] = {
        {0.471f, 0.471f, 0.471f}, {0, 0, 0},                {0.251f, 0.251f, 0.251f}, {0.502f, 0.502f, 0.502f},
        {0.608f, 0, 0.157f},      {0, 0.016f, 0.376f},      {0, 0, 1},                {0, 0.275f, 0.098f},
        {0.149f, 0, 0.263f},      {0.784f, 0, 0.784f},      {0.541f, 0.282f, 0.2f},   {0.247f, 0.137f, 0.122f},
        {0.6f, 0.149f, 0},        {1, 0, 0},                {0, 1, 0},                {0, 0.255f, 0.6f},
        {1, 1, 1},                {1, 1, 0},                {0.392f, 0.863f, 1},      {0.263f, 1, 0.639f},
        {1, 0.69f, 0.69f},        {0.894f, 0.675f, 0.475f}, {1, 1, 0.388f},           {0, 0.6f, 0.329f},
        {0.631f, 0.416f, 0.188f}, {0.624f, 0.631f, 0.188f}, {0.408f, 0.631f, 0.188f}, {0.188f, 0.631f, 0.365f},
        {0.188f, 0.631f, 0.631f}, {0.188f, 0.404f, 0.631f}, {0.435f, 0.188f, 0.631f}, {0.631f, 0.188f, 0.416f}};
    const float* c = table[index >= 0 && index < 32 ? index : 0];
    return {c[0], c[1], c[2], 1};
}

}  // namespace mirk::view
