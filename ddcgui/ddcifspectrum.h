#ifndef DDCGUI_DDCIFSPECTRUM_H
#define DDCGUI_DDCIFSPECTRUM_H

#include <QString>

#include "guibase/splitter.h"

namespace glWidgets {
class VCIFControl;
}

// The receiver's IF panorama with the channel drawn into it. The host's spectrum control draws,
// scales and takes the operator's hand; this pane makes it and tells it where its values lie.
class DdcIfSpectrum : public Splitter
{
    Q_OBJECT
public:
    // `valuePath` is the receiver's path, `ddcPath` the channel's, both without a trailing "/".
    DdcIfSpectrum(QWidget* parent, const QString& valuePath, const QString& ddcPath);

    // Once, after construction. Values that are missing are found by the control when they come.
    void BindValuePaths();

private:
    Q_DISABLE_COPY(DdcIfSpectrum)

    void CreateIfControl();

    glWidgets::VCIFControl* m_pIfControl;  // child of the pane
    QString m_ValuePath;
    QString m_DdcPath;
};

#endif
