#include "shell/DeviceLines.h"

#include <QCoreApplication>
#include <QEvent>
#include <QFrame>
#include <QHeaderView>
#include <QPainter>
#include <QRegularExpression>
#include <QTreeView>

#include <cmath>

namespace {

bool isSeparator(const QFrame &frame)
{
    return frame.frameShape() == QFrame::HLine || frame.frameShape() == QFrame::VLine;
}

bool isPlainFrame(const QFrame &frame)
{
    return frame.frameShape() == QFrame::StyledPanel && frame.styleSheet().isEmpty()
           && !frame.inherits("QAbstractScrollArea");
}

//! The border of 1 pixel that a style sheet sets, if any.
struct Border
{
    QColor color;
    Qt::Edges edges;
};

constexpr Qt::Edges AllEdges = Qt::LeftEdge | Qt::TopEdge | Qt::RightEdge | Qt::BottomEdge;

Border sheetBorder(const QWidget &widget)
{
    static const QRegularExpression border(QStringLiteral("border: 1px solid ([#\\w]+)"));
    const QString sheet = widget.styleSheet();
    return {QColor(border.match(sheet).captured(1)),
            sheet.contains(QLatin1String("border-top-width:0px")) ? AllEdges & ~Qt::TopEdge
                                                                  : AllEdges};
}

//! Paints rectangles that are given in a widget's coordinates on whole device pixels.

class DevicePainter
{
public:
    explicit DevicePainter(QWidget *widget)
        : m_painter(widget)
        , m_toDevice(m_painter.deviceTransform())
        , m_toWidget(m_toDevice.inverted())
        , m_ratio(widget->devicePixelRatioF())
    {
    }

    //! As many device pixels as Qt makes of \a pixels at most, so that the line covers Qt's own.
    int covering(int pixels) const { return int(std::ceil(pixels * m_ratio)); }
    int nearest(int pixels) const { return std::max(1, qRound(pixels * m_ratio)); }

    //! From the first pixel on whose centre lies in \a rect, where Qt's painting begins too.
    QRect toDevice(const QRect &rect) const
    {
        const QRectF exact = m_toDevice.mapRect(QRectF(rect));
        const auto first = [](qreal edge) { return int(std::ceil(edge - 0.5)); };
        return between(exact, first);
    }

    void fill(const QRect &deviceRect, const QColor &color)
    {
        m_painter.fillRect(m_toWidget.mapRect(QRectF(deviceRect)), color);
    }

    //! Lines of 1 pixel along \a edges, inside of \a widget.
    void frame(const QWidget &widget, const QColor &color, Qt::Edges edges)
    {
        // Rounded as Qt rounds what it clips the widget to.
        const QRect outer = between(m_toDevice.mapRect(QRectF(widget.rect())),
                                    [](qreal edge) { return qRound(edge); });
        const int width = covering(1);
        if (edges.testFlag(Qt::LeftEdge))
            fill({outer.left(), outer.top(), width, outer.height()}, color);
        if (edges.testFlag(Qt::RightEdge))
            fill({outer.right() - width + 1, outer.top(), width, outer.height()}, color);
        if (edges.testFlag(Qt::TopEdge))
            fill({outer.left(), outer.top(), outer.width(), width}, color);
        if (edges.testFlag(Qt::BottomEdge))
            fill({outer.left(), outer.bottom() - width + 1, outer.width(), width}, color);
    }

private:
    template<typename Round>
    static QRect between(const QRectF &exact, Round round)
    {
        return {QPoint(round(exact.left()), round(exact.top())),
                QPoint(round(exact.right()) - 1, round(exact.bottom()) - 1)};
    }

    QPainter m_painter;
    QTransform m_toDevice;
    QTransform m_toWidget;
    qreal m_ratio;
};

void paintSeparator(QFrame &line)
{
    DevicePainter painter(&line);
    QRect rect = painter.toDevice(line.rect());
    const int thickness = painter.nearest(1);
    if (line.frameShape() == QFrame::HLine)
        rect = {rect.left(), rect.center().y(), rect.width(), thickness};
    else
        rect = {rect.center().x(), rect.top(), thickness, rect.height()};
    painter.fill(rect, line.palette().color(QPalette::Dark));
}

//! The gaps of 2 pixels between the columns of \a header, and those along \a edges, on \a viewport.
void paintGaps(const QHeaderView &header, QWidget &viewport, Qt::Edges edges)
{
    DevicePainter painter(&viewport);
    const QColor color = viewport.palette().color(QPalette::Base);
    painter.frame(viewport, color, edges);
    for (int visual = 1; visual < header.count(); ++visual) {
        const int edge = header.sectionViewportPosition(header.logicalIndex(visual));
        QRect gap = painter.toDevice({edge - 1, 0, 2, viewport.height()});
        gap.setWidth(painter.covering(2));
        painter.fill(gap, color);
    }
}

} // namespace

DeviceLines::DeviceLines(QWidget *page)
    : QObject(page)
{
    const QList<QWidget *> widgets = page->findChildren<QWidget *>();
    for (QWidget *widget : widgets) {
        const auto *frame = qobject_cast<QFrame *>(widget);
        const bool isViewport = qobject_cast<QTreeView *>(widget->parentWidget())
                                || qobject_cast<QHeaderView *>(widget->parentWidget());
        if (isViewport || (frame && (isSeparator(*frame) || isPlainFrame(*frame)))
            || sheetBorder(*widget).color.isValid())
            widget->installEventFilter(this);
    }
}

bool DeviceLines::eventFilter(QObject *watched, QEvent *event)
{
    auto *widget = qobject_cast<QWidget *>(watched);
    if (!widget || event->type() != QEvent::Paint || m_isForwarding)
        return QObject::eventFilter(watched, event);
    const qreal ratio = widget->devicePixelRatioF();
    if (qFuzzyCompare(ratio, std::round(ratio)))
        return QObject::eventFilter(watched, event);

    auto *frame = qobject_cast<QFrame *>(widget);
    if (frame && isSeparator(*frame)) {
        paintSeparator(*frame);
        return true;
    }
    if (frame && isPlainFrame(*frame)) {
        DevicePainter(frame).frame(*frame, frame->palette().color(QPalette::Mid), AllEdges);
        return true;
    }

    // First what the widget paints by itself, then the lines over it.
    m_isForwarding = true;
    QCoreApplication::sendEvent(watched, event);
    m_isForwarding = false;
    if (const auto *header = qobject_cast<QHeaderView *>(widget->parentWidget())) {
        paintGaps(*header, *widget, AllEdges);
    } else if (const auto *tree = qobject_cast<QTreeView *>(widget->parentWidget())) {
        // Its last row reaches to the very bottom.
        paintGaps(*tree->header(), *widget, AllEdges & ~Qt::BottomEdge);
    } else {
        const Border border = sheetBorder(*widget);
        DevicePainter(widget).frame(*widget, border.color, border.edges);
    }
    return true;
}
