#ifndef DDCGUI_ICON_IFTAPEON_H
#define DDCGUI_ICON_IFTAPEON_H

// A tape with "IQ" over a filled bar: recording.
// clang-format off
static const char* const iftapeon_xpm[] = {
    "16 16 5 1",
    "k c #000000",
    ". c None",
    "g c #00ff00",
    "r c #ff0000",
    "w c #ffffff",
    "................",
    "..kkk......kkk..",
    ".kkkkk....kkkkk.",
    "kkwwwkk..kkwwwkk",
    "kkwwwkk..kkwwwkk",
    "kkwwwkk..kkwwwkk",
    ".kkkkk....kkkkk.",
    "..kkkkkkkkkkkk..",
    "...rrr...rr.....",
    "....r...r..r....",
    "....r...r..r....",
    "...rrr...rrrr...",
    "kkkkkkkkkkkkkkkk",
    "kggggggggggggggk",
    "kggggggggggggggk",
    "kkkkkkkkkkkkkkkk"
};
// clang-format on

#endif
