#ifndef HOST_VCIFCONTROL_H
#define HOST_VCIFCONTROL_H

#include "spectrum/vcscanwidget.h"

namespace glWidgets {

// A scan with the channel's passband in it.
class SPECTRUM_EXPORT VCScanWidgetWrapper : public VCScanWidget
{
    Q_OBJECT
public:
    ~VCScanWidgetWrapper();

    // The passband's centre in Hz. `follow` keeps it at the value while that moves.
    bool SetAudioBandWidthCenter_ValuePath(const QString& path, bool follow);

    // The selection whose number is the passband's width in Hz; the edges snap to its items.
    bool SetAudioBandWidth_ValuePath(const QString& path);

protected:
    VCScanWidgetWrapper(QWidget* parent, const char* name);
};

// The IF panorama around a receiver's centre frequency.
class SPECTRUM_EXPORT VCIFControl : public VCScanWidgetWrapper
{
    Q_OBJECT
public:
    // `title` shows above the picture when `showTitle` is set. `waterfall` shows the history below
    // the line. `settings` names the control where its view settings are kept. `markers` offers
    // markers. `axes` is the number of labelled level ticks aimed at. `keyboard` takes the focus.
    VCIFControl(QWidget* parent, const char* title, bool showTitle, bool waterfall, const QString& settings,
                bool markers, unsigned axes, bool keyboard);
    ~VCIFControl();

    // Half of the panorama's width in Hz; `writable` lets zooming write it.
    bool SetHalfWidth_ValuePath(const QString& path, bool writable);
};

}  // namespace glWidgets

#endif
