#include "fancy/DevicePixels.h"

#include <QColor>
#include <QPainter>
#include <QRegion>

#include <algorithm>

DevicePixels::DevicePixels(QPainter *painter)
    : m_painter(painter)
    , m_formerTransform(painter->worldTransform())
{
    const QTransform toDevice = painter->deviceTransform();
    if (toDevice.type() > QTransform::TxScale)
        return;
    m_toDevice = toDevice;
    painter->setWorldTransform(toDevice.inverted() * m_formerTransform);
}

DevicePixels::~DevicePixels()
{
    m_painter->setWorldTransform(m_formerTransform);
}

QRect DevicePixels::rect(const QRect &rect) const
{
    return m_toDevice.mapRect(QRectF(rect)).toRect();
}

int DevicePixels::length(int pixels) const
{
    return std::max(1, qRound(pixels * m_toDevice.m11()));
}

void DevicePixels::fillFrame(const QRect &outer, int width, const QColor &color,
                             Qt::Edges edges) const
{
    const auto inset = [=](Qt::Edge edge) { return edges.testFlag(edge) ? width : 0; };
    const QRect inner = outer.adjusted(inset(Qt::LeftEdge), inset(Qt::TopEdge),
                                       -inset(Qt::RightEdge), -inset(Qt::BottomEdge));
    for (const QRect &line : QRegion(outer) - inner)
        m_painter->fillRect(line, color);
}
