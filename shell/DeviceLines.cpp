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

//! The background that the style sheet of a table sets for the sections of its header.
QColor sectionColor(const QWidget &table)
{
    static const QRegularExpression section(
            QStringLiteral("QHeaderView::section \\{[^}]*background-color: ([#\\w]+)"));
    return {section.match(table.styleSheet()).captured(1)};
}

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

    int nearest(int pixels) const { return std::max(1, qRound(pixels * m_ratio)); }

    //! Rounded as Qt rounds what it fills, and what it clips a widget to.
    QRect toDevice(const QRect &rect) const { return m_toDevice.mapRect(QRectF(rect)).toRect(); }

    void fill(const QRect &deviceRect, const QColor &color)
    {
        m_painter.fillRect(m_toWidget.mapRect(QRectF(deviceRect)), color);
    }

    //! In device pixels, what covers Qt's own line of 1 pixel, which is off by half a device pixel
    //! at most.
    int covering() const { return int(std::ceil(m_ratio + 0.5)); }

    //! Lines along \a edges, inside of \a widget, \a width device pixels thick.
    void frame(const QWidget &widget, const QColor &color, int width, Qt::Edges edges = AllEdges)
    {
        const QRect outer = toDevice(widget.rect());
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

/*!
    The gaps of 2 pixels between the columns of \a header, and those along \a edges, on \a viewport.
    \a cellColor repairs the edges of cells that Qt blurs; it is invalid where Qt doesn't.
*/
void paintGaps(const QHeaderView &header, QWidget &viewport, Qt::Edges edges,
               const QColor &cellColor)
{
    DevicePainter painter(&viewport);
    const QColor color = viewport.palette().color(QPalette::Base);
    for (int visual = 1; visual < header.count(); ++visual) {
        const int edge = header.sectionViewportPosition(header.logicalIndex(visual));
        QRect gap = painter.toDevice({edge - 1, 0, 2, viewport.height()});
        gap.setWidth(painter.nearest(2));
        if (cellColor.isValid())
            painter.fill(gap.adjusted(-1, 0, 1, 0), cellColor);
        painter.fill(gap, color);
    }
    painter.frame(viewport, color, painter.covering(), edges);
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
    auto *frame = qobject_cast<QFrame *>(widget);
    // Above a ratio of 1 styles centre the frame on the widget's edge, which clips half of it.
    if (frame && isPlainFrame(*frame) && ratio > 1) {
        DevicePainter painter(frame);
        painter.frame(*frame, frame->palette().color(QPalette::Mid), painter.nearest(1));
        return true;
    }
    if (qFuzzyCompare(ratio, std::round(ratio)))
        return QObject::eventFilter(watched, event);

    if (frame && isSeparator(*frame)) {
        paintSeparator(*frame);
        return true;
    }

    // First what the widget paints by itself, then the lines over it.
    m_isForwarding = true;
    QCoreApplication::sendEvent(watched, event);
    m_isForwarding = false;
    if (const auto *header = qobject_cast<QHeaderView *>(widget->parentWidget())) {
        paintGaps(*header, *widget, AllEdges, sectionColor(*header->parentWidget()));
    } else if (const auto *tree = qobject_cast<QTreeView *>(widget->parentWidget())) {
        // The last row reaches the bottom edge.
        paintGaps(*tree->header(), *widget, AllEdges & ~Qt::BottomEdge, QColor());
    } else {
        const Border border = sheetBorder(*widget);
        DevicePainter painter(widget);
        painter.frame(*widget, border.color, painter.covering(), border.edges);
    }
    return true;
}
