#ifndef DDCGUI_ICON_AUDIOTAPEOFF_H
#define DDCGUI_ICON_AUDIOTAPEOFF_H

// A tape with "AUD" over an empty bar: not recording.
// clang-format off
static const char* const audiotapeoff_xpm[] = {
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
    "..rr..r..r.rrr..",
    ".r..r.r..r.r..r.",
    ".rrrr.r..r.r..r.",
    ".r..r..rr..rrr..",
    "kkkkkkkkkkkkkkkk",
    "k..............k",
    "k..............k",
    "kkkkkkkkkkkkkkkk"
};
// clang-format on

#endif
