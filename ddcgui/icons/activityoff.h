#ifndef DDCGUI_ICON_ACTIVITYOFF_H
#define DDCGUI_ICON_ACTIVITYOFF_H

// A spectrum under an eye, with an empty bar: no activities are generated.
// clang-format off
static const char* const activityoff_xpm[] = {
    "16 16 5 1",
    ". c None",
    "d c #00B300",
    "k c #000000",
    "w c #FFFFFF",
    "b c #0000FF",
    ".....d.....d....",
    ".....d.....d....",
    ".....d....dd....",
    ".....dd.kkkkkk..",
    "....dddkwwwwwwk.",
    "....ddkwwwbbwwwk",
    "....ddkwwbbbbwwk",
    "...dddkwwwbbwwwk",
    ".d.ddddkwwwwwwk.",
    "ddddddddkkkkkkdd",
    "dddddddddddddddd",
    "................",
    "kkkkkkkkkkkkkkkk",
    "k..............k",
    "k..............k",
    "kkkkkkkkkkkkkkkk"
};
// clang-format on

#endif
