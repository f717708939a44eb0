#include "benchmarks/PanelWindow.h"

#include "benchmarks/Measure.h"
#include "overview/OverviewForm.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QElapsedTimer>
#include <QFont>
#include <QIcon>
#include <QTimer>
#include <QWindow>

namespace Bench {

namespace {

constexpr int FontPointSize = 9;
constexpr int ExposureTimeoutMs = 10000;

} // namespace

void setUpEnvironment()
{
    qputenv("QT_QPA_PLATFORM", "xcb");
    qputenv("QT_XCB_GL_INTEGRATION", "none");
}

void setUpApplication()
{
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/client/resources/application.svg")));
    QFont font;
    font.setPointSize(FontPointSize);
    QApplication::setFont(font);
}

void handleEvents()
{
    while (QAbstractEventDispatcher::instance()->processEvents(QEventLoop::AllEvents)) { }
}

PanelWindow::PanelWindow()
    : m_page(m_container.findChild<OverviewForm *>())
{
    auto *timer = m_page->findChild<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
    if (!timer)
        fail("the run-status page has no timer");
    timer->stop();

    m_container.show();
    QElapsedTimer waited;
    waited.start();
    while (!m_container.windowHandle()->isExposed()) {
        if (waited.hasExpired(ExposureTimeoutMs))
            fail("the window was not exposed");
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, ExposureTimeoutMs);
    }
    handleEvents();
}

void PanelWindow::refresh()
{
    if (!QMetaObject::invokeMethod(m_page, "syncOWInfo", Qt::DirectConnection))
        fail("the run-status page has no refresh");
}

} // namespace Bench
