#include "spectrum/devicespace.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

DeviceSpace::DeviceSpace(QPainter& painter) : m_painter(painter), m_toDevice(painter.deviceTransform())
{
    m_scale = std::hypot(m_toDevice.m11(), m_toDevice.m12());
    if (!(m_scale > 0))
        m_scale = 1;
    m_painter.save();
    m_painter.setWorldTransform(m_toDevice.inverted() * m_painter.worldTransform());
    m_painter.setRenderHint(QPainter::Antialiasing, false);
}

DeviceSpace::~DeviceSpace()
{
    m_painter.restore();
}

QRect DeviceSpace::pixels(const QRectF& rect) const
{
    const QRectF mapped = m_toDevice.mapRect(rect);
    const int left = static_cast<int>(std::lround(mapped.left()));
    const int top = static_cast<int>(std::lround(mapped.top()));
    return {left, top, static_cast<int>(std::lround(mapped.right())) - left,
            static_cast<int>(std::lround(mapped.bottom())) - top};
}

int DeviceSpace::length(double own) const
{
    return std::max(1, static_cast<int>(std::lround(own * m_scale)));
}

QFont DeviceSpace::font(const QFont& own) const
{
    QFont result = own;
    if (own.pointSizeF() > 0)
        result.setPointSizeF(own.pointSizeF() * m_scale);
    else
        result.setPixelSize(length(own.pixelSize()));
    return result;
}
