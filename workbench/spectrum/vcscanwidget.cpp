#include "spectrum/vcscanwidget.h"

#include <QEvent>
#include <QHideEvent>
#include <QShowEvent>

#include "spectrum/vcscanwidget_p.h"
#include "spectrum/xaxiswidget.h"

namespace {

constexpr unsigned onlyTrace = 0;

}

// Parts that are made send events while there is no private part yet.
VCScanWidget::VCScanWidget(QWidget* parent, const char* name) : QWidget(parent), d(nullptr)
{
    d = new VCScanWidgetPrivate(this, name);
}

VCScanWidget::~VCScanWidget()
{
    VCScanWidgetPrivate* const parts = d;
    d = nullptr;  // children that leave send events
    delete parts;
}

void VCScanWidget::SetScanbufferIPAddress(const QString& address)
{
    d->stream.setAddress(address);
    d->changed();
}

bool VCScanWidget::SetZStart_ValuePath(unsigned trace, const QString& path)
{
    return trace == onlyTrace && d->axes.levelStart.Bind(path);
}

bool VCScanWidget::SetZStop_ValuePath(unsigned trace, const QString& path)
{
    return trace == onlyTrace && d->axes.levelStop.Bind(path);
}

bool VCScanWidget::SetMapping_ValuePath(const QString& path)
{
    return d->axes.mapping.Bind(path);
}

bool VCScanWidget::SetCenter_ValuePath(const QString& path)
{
    return d->axes.center.Bind(path);
}

bool VCScanWidget::SetFrequency_ValuePath(const QString& path)
{
    return d->channel.frequency.Bind(path);
}

bool VCScanWidget::SetThreshold_ValuePath(unsigned trace, const QString& path)
{
    return trace == onlyTrace && d->channel.threshold.Bind(path);
}

bool VCScanWidget::SetXStart_ValuePath(const QString& path)
{
    return d->axes.start.Bind(path);
}

bool VCScanWidget::SetXStop_ValuePath(const QString& path)
{
    return d->axes.stop.Bind(path);
}

AxisWidget* VCScanWidget::GetXAxis()
{
    return d->xAxis;
}

ColorItemMapAdapter* VCScanWidget::GetColorItemMapAdapter4IF()
{
    return d->channel.colors;
}

bool VCScanWidget::event(QEvent* event)
{
    return (d && d->handleEvent(event)) || QWidget::event(event);
}

// Also what a window does that is minimised and comes back.
void VCScanWidget::showEvent(QShowEvent*)
{
    d->shown();
}

void VCScanWidget::hideEvent(QHideEvent*)
{
    if (d)
        d->hidden();
}
