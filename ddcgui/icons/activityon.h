#ifndef DDCGUI_ICON_ACTIVITYON_H
#define DDCGUI_ICON_ACTIVITYON_H

// A spectrum under an eye, with a filled bar: activities are generated.
// clang-format off
static const char* const activityon_xpm[] = {
    "16 16 6 1",
    ". c None",
    "d c #00B300",
    "k c #000000",
    "w c #FFFFFF",
    "b c #0000FF",
    "g c #00FF00",
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
    "kggggggggggggggk",
    "kggggggggggggggk",
    "kkkkkkkkkkkkkkkk"
};
// clang-format on

#endif
