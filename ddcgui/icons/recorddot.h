#ifndef DDCGUI_ICON_RECORDDOT_H
#define DDCGUI_ICON_RECORDDOT_H

// A red record dot, rimmed grey at the upper left and white at the lower right.
// clang-format off
static const char* const recorddot_xpm[] = {
    "16 16 4 1",
    "g c #808080",
    ". c None",
    "r c #ff0000",
    "w c #ffffff",
    "................",
    "................",
    ".....ggggg......",
    "...ggrrrrrgg....",
    "...grrrrrrrw....",
    "..grrrrrrrrrw...",
    "..grrrrrrrrrw...",
    "..grrrrrrrrrw...",
    "..grrrrrrrrrw...",
    "..grrrrrrrrrw...",
    "...grrrrrrrw....",
    "...gwrrrrrww....",
    ".....wwwww......",
    "................",
    "................",
    "................"
};
// clang-format on

#endif
