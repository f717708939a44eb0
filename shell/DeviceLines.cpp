#include "shell/DeviceLines.h"

#include "fancy/DevicePixels.h"

#include <QCoreApplication>
#include <QEvent>
#include <QHeaderView>
#include <QPainter>
#include <QTreeView>

#include <cmath>

namespace {

constexpr const char *BorderColor = "borderColor";
constexpr const char *BorderEdges = "borderEdges";
constexpr const char *HeaderColor = "headerColor";

constexpr Qt::Edges AllEdges = Qt::LeftEdge | Qt::TopEdge | Qt::RightEdge | Qt::BottomEdge;

//! In device pixels, what covers Qt's own line of 1 pixel, which is off by half a device pixel at
//! most.
int coveringWidth(const QWidget &widget)
{
    return int(std::ceil(widget.devicePixelRatioF() + 0.5));
}

void paintBorder(QWidget *widget)
{
    const QVariant edges = widget->property(BorderEdges);
    QPainter painter(widget);
    const DevicePixels pixels(&painter);
    pixels.fillFrame(pixels.rect(widget->rect()), coveringWidth(*widget),
                     widget->property(BorderColor).value<QColor>(),
                     edges.isValid() ? Qt::Edges(edges.toInt()) : AllEdges);
}

/*!
    The gaps between the columns of \a header, and those along \a edges, on \a viewport. \a
   cellColor repairs the edges of cells that Qt blurs; it is invalid where Qt doesn't.
*/
void paintGaps(const QHeaderView &header, QWidget *viewport, Qt::Edges edges,
               const QColor &cellColor)
{
    QPainter painter(viewport);
    const DevicePixels pixels(&painter);
    const QColor color = viewport->palette().color(QPalette::Base);
    for (int visual = 1; visual < header.count(); ++visual) {
        const int edge = header.sectionViewportPosition(header.logicalIndex(visual));
        QRect gap = pixels.rect({edge - 1, 0, 2, viewport->height()});
        gap.setWidth(pixels.length(2));
        if (cellColor.isValid())
            painter.fillRect(gap.adjusted(-1, 0, 1, 0), cellColor);
        painter.fillRect(gap, color);
    }
    pixels.fillFrame(pixels.rect(viewport->rect()), coveringWidth(*viewport), color, edges);
}

} // namespace

DeviceLines::DeviceLines(QWidget *page)
    : QObject(page)
{
    const QList<QWidget *> widgets = page->findChildren<QWidget *>();
    for (QWidget *widget : widgets) {
        if (widget->property(BorderColor).isValid())
            widget->installEventFilter(this);
        const auto *tree = qobject_cast<QTreeView *>(widget);
        if (tree && tree->property(HeaderColor).isValid()) {
            tree->viewport()->installEventFilter(this);
            tree->header()->viewport()->installEventFilter(this);
        }
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

    // First what the widget paints by itself, then the lines over it.
    m_isForwarding = true;
    QCoreApplication::sendEvent(watched, event);
    m_isForwarding = false;
    if (const auto *header = qobject_cast<QHeaderView *>(widget->parentWidget())) {
        const QVariant color = header->parentWidget()->property(HeaderColor);
        paintGaps(*header, widget, AllEdges, color.value<QColor>());
    } else if (const auto *tree = qobject_cast<QTreeView *>(widget->parentWidget())) {
        // The last row reaches the bottom edge.
        paintGaps(*tree->header(), widget, AllEdges & ~Qt::BottomEdge, QColor());
    } else {
        paintBorder(widget);
    }
    return true;
}
