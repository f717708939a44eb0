#pragma once

#include <QImage>
#include <QWidget>

#include <benchmark/benchmark.h>

namespace Bench {

/*!
    Measures one full repaint of \a widget and its children into an image: what the widget itself
    costs, without the way to the X server.
*/
inline void repaint(benchmark::State &state, QWidget &widget)
{
    widget.ensurePolished();
    QImage canvas(widget.size(), QImage::Format_ARGB32_Premultiplied);
    for (auto round : state) {
        static_cast<void>(round);
        widget.render(&canvas);
    }
}

} // namespace Bench
