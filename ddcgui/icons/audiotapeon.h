#ifndef DDCGUI_ICON_AUDIOTAPEON_H
#define DDCGUI_ICON_AUDIOTAPEON_H

// A tape with "AUD" over a filled bar: recording.
// clang-format off
static const char* const audiotapeon_xpm[] = {
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
    "kggggggggggggggk",
    "kggggggggggggggk",
    "kkkkkkkkkkkkkkkk"
};
// clang-format on

#endif
