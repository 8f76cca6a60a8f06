#include "tests/ddcgui/spectrumdouble.h"

#include <QResizeEvent>

#include "spectrum/coloritemmapadapter.h"
#include "spectrum/vcifcontrol.h"
#include "spectrum/xaxiswidget.h"

namespace {

QString text(bool on)
{
    return on ? QStringLiteral("true") : QStringLiteral("false");
}

bool note(const QString& operation, const QStringList& arguments)
{
    SpectrumDouble::notes().calls.append(operation + '(' + arguments.join(", ") + ')');
    return SpectrumDouble::notes().answer;
}

}  // namespace

namespace SpectrumDouble {

Notes& notes()
{
    static Notes instance;
    return instance;
}

void clear()
{
    notes() = Notes();
}

}  // namespace SpectrumDouble

class ColorItemMapAdapterPrivate
{
public:
    static ColorItemMapAdapter* create() { return new ColorItemMapAdapter; }
    static void destroy(ColorItemMapAdapter* adapter) { delete adapter; }
};

ColorItemMapAdapter::ColorItemMapAdapter() : d(nullptr) {}
ColorItemMapAdapter::~ColorItemMapAdapter() = default;
bool ColorItemMapAdapter::SetDemodulation_ValuePath(unsigned item, const QString& path)
{
    return note("ColorItemMapAdapter::SetDemodulation_ValuePath", {QString::number(item), path});
}

class VCScanWidgetPrivate
{
public:
    AxisWidget* axis = nullptr;
    ColorItemMapAdapter* colors = nullptr;
};

VCScanWidget::VCScanWidget(QWidget* parent, const char* name) : QWidget(parent), d(new VCScanWidgetPrivate)
{
    setObjectName(QString::fromLatin1(name));
    d->axis = new XAxisWidget(this);
    d->colors = ColorItemMapAdapterPrivate::create();
}
VCScanWidget::~VCScanWidget()
{
    ColorItemMapAdapterPrivate::destroy(d->colors);
    delete d;
}
void VCScanWidget::SetScanbufferIPAddress(const QString& address)
{
    note("VCScanWidget::SetScanbufferIPAddress", {address});
}
bool VCScanWidget::SetZStart_ValuePath(unsigned trace, const QString& path)
{
    return note("VCScanWidget::SetZStart_ValuePath", {QString::number(trace), path});
}
bool VCScanWidget::SetZStop_ValuePath(unsigned trace, const QString& path)
{
    return note("VCScanWidget::SetZStop_ValuePath", {QString::number(trace), path});
}
bool VCScanWidget::SetMapping_ValuePath(const QString& path)
{
    return note("VCScanWidget::SetMapping_ValuePath", {path});
}
bool VCScanWidget::SetCenter_ValuePath(const QString& path)
{
    return note("VCScanWidget::SetCenter_ValuePath", {path});
}
bool VCScanWidget::SetFrequency_ValuePath(const QString& path)
{
    return note("VCScanWidget::SetFrequency_ValuePath", {path});
}
bool VCScanWidget::SetThreshold_ValuePath(unsigned trace, const QString& path)
{
    return note("VCScanWidget::SetThreshold_ValuePath", {QString::number(trace), path});
}
bool VCScanWidget::SetXStart_ValuePath(const QString& path)
{
    return note("VCScanWidget::SetXStart_ValuePath", {path});
}
bool VCScanWidget::SetXStop_ValuePath(const QString& path)
{
    return note("VCScanWidget::SetXStop_ValuePath", {path});
}
AxisWidget* VCScanWidget::GetXAxis()
{
    return d->axis;
}
ColorItemMapAdapter* VCScanWidget::GetColorItemMapAdapter4IF()
{
    return d->colors;
}
bool VCScanWidget::event(QEvent* event)
{
    return QWidget::event(event);
}
void VCScanWidget::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
}
void VCScanWidget::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
}

namespace glWidgets {

VCScanWidgetWrapper::VCScanWidgetWrapper(QWidget* parent, const char* name) : VCScanWidget(parent, name) {}
VCScanWidgetWrapper::~VCScanWidgetWrapper() = default;
bool VCScanWidgetWrapper::SetAudioBandWidthCenter_ValuePath(const QString& path, bool follow)
{
    return note("VCScanWidgetWrapper::SetAudioBandWidthCenter_ValuePath", {path, text(follow)});
}
bool VCScanWidgetWrapper::SetAudioBandWidth_ValuePath(const QString& path)
{
    return note("VCScanWidgetWrapper::SetAudioBandWidth_ValuePath", {path});
}

VCIFControl::VCIFControl(QWidget* parent, const char* title, bool showTitle, bool waterfall,
                         const QString& settings, bool markers, unsigned axes, bool keyboard)
    : VCScanWidgetWrapper(parent, title)
{
    SpectrumDouble::notes().constructions.append(
        {parent, QString::fromLatin1(title), showTitle, waterfall, settings, markers, axes, keyboard});
}
VCIFControl::~VCIFControl() = default;
bool VCIFControl::SetHalfWidth_ValuePath(const QString& path, bool writable)
{
    return note("VCIFControl::SetHalfWidth_ValuePath", {path, text(writable)});
}

}  // namespace glWidgets

AxisWidget::AxisWidget(QWidget* parent) : QWidget(parent) {}
AxisWidget::~AxisWidget() = default;

XAxisWidget::XAxisWidget(QWidget* parent) : AxisWidget(parent), d(nullptr) {}
XAxisWidget::~XAxisWidget() = default;
void XAxisWidget::ApplyLeftRightButtons(bool apply)
{
    note("XAxisWidget::ApplyLeftRightButtons", {text(apply)});
}
QSize XAxisWidget::sizeHint() const
{
    return QWidget::sizeHint();
}
void XAxisWidget::paintEvent(QPaintEvent* event)
{
    QWidget::paintEvent(event);
}
void XAxisWidget::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
}
void XAxisWidget::mousePressEvent(QMouseEvent* event)
{
    QWidget::mousePressEvent(event);
}
void XAxisWidget::mouseMoveEvent(QMouseEvent* event)
{
    QWidget::mouseMoveEvent(event);
}
void XAxisWidget::mouseReleaseEvent(QMouseEvent* event)
{
    QWidget::mouseReleaseEvent(event);
}
void XAxisWidget::mouseDoubleClickEvent(QMouseEvent* event)
{
    QWidget::mouseDoubleClickEvent(event);
}
void XAxisWidget::wheelEvent(QWheelEvent* event)
{
    QWidget::wheelEvent(event);
}
