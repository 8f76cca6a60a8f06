#ifndef HOST_VCSCANWIDGET_H
#define HOST_VCSCANWIDGET_H

#include <QtCore/QString>
#include <QtCore/QtGlobal>
#if QT_VERSION < 0x050000
#include <QtGui/QWidget>
#else
#include <QtWidgets/QWidget>
#endif

#include "spectrum/spectrum_global.h"

class AxisWidget;
class ColorItemMapAdapter;
class VCScanWidgetPrivate;

// A live scan: spectrum line above, waterfall below, axes beside. The trace comes over the scan
// buffer's stream; ranges, markers and the channel are bound to values. Every setter with a path
// answers whether the tree has a fitting value there; the binding finds it later when it comes.
class SPECTRUM_EXPORT VCScanWidget : public QWidget
{
    Q_OBJECT
public:
    ~VCScanWidget();

    // "HOST:PORT" of the scan buffer; a bare host means the default port. Connects while the
    // widget is shown, and again after a loss.
    void SetScanbufferIPAddress(const QString& address);

    // The level range in dBµV of trace `trace`; 0 is the only one.
    bool SetZStart_ValuePath(unsigned trace, const QString& path);
    bool SetZStop_ValuePath(unsigned trace, const QString& path);

    bool SetMapping_ValuePath(const QString& path);    // selection: how bins map to the axis
    bool SetCenter_ValuePath(const QString& path);     // the receiver's centre frequency, Hz
    bool SetFrequency_ValuePath(const QString& path);  // the channel's frequency, Hz; a click writes it

    // The threshold line of trace `trace`: a level in dBµV in the channel's bandwidth.
    bool SetThreshold_ValuePath(unsigned trace, const QString& path);

    bool SetXStart_ValuePath(const QString& path);  // left end of the frequency axis, Hz
    bool SetXStop_ValuePath(const QString& path);   // right end

    AxisWidget* GetXAxis();                            // an XAxisWidget; owned by this
    ColorItemMapAdapter* GetColorItemMapAdapter4IF();  // owned by this

protected:
    explicit VCScanWidget(QWidget* parent, const char* name);
    bool event(QEvent* event);
    void showEvent(QShowEvent* event);
    void hideEvent(QHideEvent* event);

    VCScanWidgetPrivate* d;

private:
    Q_DISABLE_COPY(VCScanWidget)
    friend class VCScanWidgetPrivate;
};

#endif
