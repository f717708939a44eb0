#include "fancy/FancyScreen.h"

#include <QApplication>
#include <QScreen>

namespace {
constexpr QPoint NormalOffset(100, 100);

QRect normalRectIn(const QRect &desktop)
{
    return {desktop.topLeft() + NormalOffset,
            QSize(desktop.width() * 2 / 3, desktop.height() * 2 / 3)};
}
} // namespace

FancyScreen::FancyScreen()
{
    const QList<QScreen *> screens = QGuiApplication::screens();
    for (const QScreen *screen : screens) {
        // Not geometry(): a window is placed on the whole virtual desktop.
        if (screen)
            m_screenRects.append(screen->virtualGeometry());
    }
}

int FancyScreen::currentScreen(int x) const
{
    for (int i = 0; i < m_screenRects.size(); ++i) {
        if (x <= m_screenRects.at(i).right() + 1)
            return i;
    }
    return 0;
}

QRect FancyScreen::screenRect(int index) const
{
    if (m_screenRects.isEmpty())
        return {};
    const bool exists = index >= 0 && index < m_screenRects.size();
    return m_screenRects.at(exists ? index : 0);
}

QRect FancyScreen::normalRect()
{
    // Only a QApplication has a desktop widget.
    const bool hasDesktop = qobject_cast<QApplication *>(QCoreApplication::instance());
    const QScreen *screen = QGuiApplication::primaryScreen();
    return hasDesktop && screen ? normalRectIn(screen->virtualGeometry()) : QRect();
}
