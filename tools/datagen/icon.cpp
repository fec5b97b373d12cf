// The program's icon: a cell of the level in perspective, its near side lit,
// on a dark rounded square. Written as SVG, so it scales to every size.
#include "datagen.h"

#include <string>

bool WriteIcon(const std::string& dir)
{
    const std::string svg = R"svg(<?xml version="1.0" encoding="UTF-8"?>
<svg xmlns="http://www.w3.org/2000/svg" width="256" height="256" viewBox="0 0 256 256">
  <defs>
    <linearGradient id="back" x1="0" y1="0" x2="0" y2="1">
      <stop offset="0" stop-color="#1b2633"/>
      <stop offset="1" stop-color="#06090d"/>
    </linearGradient>
    <linearGradient id="wall" x1="0" y1="0" x2="1" y2="1">
      <stop offset="0" stop-color="#9fb4c8"/>
      <stop offset="1" stop-color="#4d6275"/>
    </linearGradient>
  </defs>
  <rect x="8" y="8" width="240" height="240" rx="36" fill="url(#back)"/>
  <polygon points="70,92 186,92 186,208 70,208" fill="url(#wall)" opacity="0.85"/>
  <polygon points="70,92 112,56 228,56 186,92" fill="#6f879c" opacity="0.9"/>
  <polygon points="186,92 228,56 228,172 186,208" fill="#3b4d5e" opacity="0.9"/>
  <g fill="none" stroke="#5ac8ff" stroke-width="5" stroke-linejoin="round">
    <polygon points="70,92 186,92 186,208 70,208"/>
    <polyline points="70,92 112,56 228,56 228,172 186,208"/>
    <line x1="186" y1="92" x2="228" y2="56"/>
  </g>
  <g stroke="#ff5a3c" stroke-width="4">
    <line x1="28" y1="150" x2="128" y2="150"/>
  </g>
  <polygon points="118,138 146,150 118,162 124,150" fill="#ffd04a"/>
</svg>
)svg";
    return WriteFile(dir + "/orvane-builder.svg", std::vector<uint8_t>(svg.begin(), svg.end()));
}
