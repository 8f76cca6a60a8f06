#ifndef DDCGUI_ICON_IFTAPEOFF_H
#define DDCGUI_ICON_IFTAPEOFF_H

// A tape with "IQ" over an empty bar: not recording.
// clang-format off
static const char* const iftapeoff_xpm[] = {
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
    "k..............k",
    "k..............k",
    "kkkkkkkkkkkkkkkk"
};
// clang-format on

#endif
