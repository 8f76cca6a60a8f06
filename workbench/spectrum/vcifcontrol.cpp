#include "spectrum/vcifcontrol.h"

#include "spectrum/vcscanwidget_p.h"

namespace glWidgets {

VCScanWidgetWrapper::VCScanWidgetWrapper(QWidget* parent, const char* name) : VCScanWidget(parent, name) {}

VCScanWidgetWrapper::~VCScanWidgetWrapper() {}

bool VCScanWidgetWrapper::SetAudioBandWidthCenter_ValuePath(const QString& path, bool follow)
{
    return VCScanWidgetPrivate::of(this)->channel.bindCenter(path, follow);
}

bool VCScanWidgetWrapper::SetAudioBandWidth_ValuePath(const QString& path)
{
    return VCScanWidgetPrivate::of(this)->channel.bandwidth.Bind(path);
}

VCIFControl::VCIFControl(QWidget* parent, const char* title, bool showTitle, bool waterfall,
                         const QString& settings, bool markers, unsigned axes, bool keyboard)
    : VCScanWidgetWrapper(parent, title)
{
    ScanOptions options;
    options.title = QString::fromUtf8(title);
    options.showTitle = showTitle;
    options.waterfall = waterfall;
    options.settings = settings;
    options.markers = markers;
    options.axes = static_cast<int>(qMin(axes, 100u));
    options.keyboard = keyboard;
    VCScanWidgetPrivate::of(this)->configure(options);
}

VCIFControl::~VCIFControl() {}

bool VCIFControl::SetHalfWidth_ValuePath(const QString& path, bool writable)
{
    ScanAxes& axes = VCScanWidgetPrivate::of(this)->axes;
    axes.halfWidthWritable = writable;
    return axes.halfWidth.Bind(path);
}

}  // namespace glWidgets
