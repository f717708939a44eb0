#include "fancy/FancyCursor.h"

#include <QPoint>
#include <QRect>

namespace {
constexpr int DefaultBorderWidth = 8;

bool isWithin(int value, int first, int last)
{
    return first <= value && value <= last;
}
} // namespace

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): reset() does it
FancyCursor::FancyCursor()
    : m_nBorderWidth(DefaultBorderWidth)
{
    reset();
}

void FancyCursor::reset()
{
    m_bOnEdges = false;
    m_bOnLeftEdge = false;
    m_bOnRightEdge = false;
    m_bOnTopEdge = false;
    m_bOnBottomEdge = false;
    m_bOnTopLeftEdge = false;
    m_bOnBottomLeftEdge = false;
    m_bOnTopRightEdge = false;
    m_bOnBottomRightEdge = false;
}

void FancyCursor::recalculate(const QPoint &pos, const QRect &rect)
{
    const int border = m_nBorderWidth;
    const int rightOut = rect.left() + rect.width();
    const int bottomOut = rect.bottom() + 1;

    m_bOnLeftEdge = isWithin(pos.x(), rect.left(), rect.left() + border);
    m_bOnRightEdge = isWithin(pos.x(), rightOut - border, rightOut);
    m_bOnTopEdge = isWithin(pos.y(), rect.top(), rect.top() + border);
    m_bOnBottomEdge = isWithin(pos.y(), bottomOut - border, bottomOut);

    m_bOnTopLeftEdge = m_bOnTopEdge && m_bOnLeftEdge;
    m_bOnTopRightEdge = m_bOnTopEdge && m_bOnRightEdge;
    m_bOnBottomLeftEdge = m_bOnBottomEdge && m_bOnLeftEdge;
    m_bOnBottomRightEdge = m_bOnBottomEdge && m_bOnRightEdge;

    m_bOnEdges = m_bOnLeftEdge || m_bOnRightEdge || m_bOnTopEdge || m_bOnBottomEdge;
}
