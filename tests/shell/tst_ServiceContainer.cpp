#include "fancy/FancyBar.h"
#include "fancy/FancyBar_p.h"
#include "fancy/FancyTitleBar.h"
#include "overview/OverviewForm.h"
#include "settings/SettingsForm.h"
#include "shell/ServiceContainer.h"
#include "shell/TabTitle.h"
#include "tests/support/AskingTranslator.h"
#include "tests/support/LayoutDump.h"
#include "tests/support/PrivateMember.h"
#include "tests/support/ShimFolder.h"
#include "tests/support/waits.h"

#include <QWKWidgets/widgetwindowagent.h>

#include <QBoxLayout>
#include <QMetaMethod>
#include <QStackedWidget>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QToolButton>

#include <algorithm>
#include <memory>

struct BarPrivate : PrivateMember<BarPrivate, FancyBarPrivate *, FancyBar>
{
};
template struct ExposePrivateMember<BarPrivate, &FancyBar::d>;

//! Deletes the title bar of every bar that is being created.
class TitleBarDeleter : public QObject
{
public:
    TitleBarDeleter() { qApp->installEventFilter(this); }
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        // The bar's constructor sets its palette when it has its title bar.
        const auto *bar = qobject_cast<FancyBar *>(watched);
        if (bar && event->type() == QEvent::PaletteChange)
            delete bar->titleBar();
        return false;
    }
};

class tst_ServiceContainer : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void form();
    void titleIsTranslatable();
    void window();
    void strip();
    void header();
    void pages();
    void agent();
    void tabsChooseThePageWhenShown();
    void closeButtonClosesTheWindow();
    void stripIsPaintedInItsColours();
    void stopsWithoutATitleBar();

private:
    bool show();
    QStackedWidget *stack() const;
    QToolButton *closeButton() const;

    std::unique_ptr<ShimFolder> m_shims;
    std::unique_ptr<ServiceContainer> m_window;
};

void tst_ServiceContainer::init()
{
    m_shims = std::make_unique<ShimFolder>();
    m_shims->addPrinting(QStringLiteral("pgrep"), "");
    m_window = std::make_unique<ServiceContainer>();
}

void tst_ServiceContainer::cleanup()
{
    m_window.reset();
    m_shims.reset();
}

//! Whether the window is on the screen then.
bool tst_ServiceContainer::show()
{
    m_window->show();
    return QTest::qWaitForWindowExposed(m_window.get(), WindowTimeoutMs);
}

QStackedWidget *tst_ServiceContainer::stack() const
{
    return m_window->findChild<QStackedWidget *>(QStringLiteral("stackedWidget"));
}

QToolButton *tst_ServiceContainer::closeButton() const
{
    const auto buttons = m_window->findChildren<QToolButton *>();
    const auto found = std::find_if(buttons.begin(), buttons.end(), [](const QToolButton *button) {
        return button->toolTip() == QStringLiteral("关闭");
    });
    return found == buttons.end() ? nullptr : *found;
}

void tst_ServiceContainer::form()
{
    QVERIFY(matchesDump(*m_window, QStringLiteral("shell/ServiceContainer.txt")));
}

void tst_ServiceContainer::titleIsTranslatable()
{
    AskingTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    const ServiceContainer window;
    QCOMPARE(window.windowTitle(),
             QStringLiteral("ServiceContainer|%1|").arg(m_window->windowTitle()));
}

void tst_ServiceContainer::window()
{
    QCOMPARE(m_window->parent(), nullptr);
    QCOMPARE(m_window->windowFlags(), QWidget().windowFlags() | Qt::FramelessWindowHint);
    QWidget parent;
    const ServiceContainer child(&parent);
    QCOMPARE(child.parent(), &parent);
    QCOMPARE(child.windowFlags(), QWidget(&parent).windowFlags() | Qt::FramelessWindowHint);

    const QMetaObject &meta = ServiceContainer::staticMetaObject;
    QCOMPARE(meta.methodCount() - meta.methodOffset(), 1);
    QCOMPARE(meta.method(meta.methodOffset()).methodSignature(),
             QByteArray("onTabIndexChanged(int)"));
    QCOMPARE(meta.method(meta.methodOffset()).methodType(), QMetaMethod::Slot);
}

void tst_ServiceContainer::strip()
{
    auto *bar = m_window->findChild<FancyBar *>();
    QCOMPARE(bar->parent(), m_window.get());
    QCOMPARE(BarPrivate::of(*bar)->m_menuTextColor, QColor(0, 0, 0, 255));
    QCOMPARE(bar->titleBar()->mainWidget(), m_window.get());
}

void tst_ServiceContainer::header()
{
    auto *bar = m_window->findChild<FancyBar *>();
    auto *tab = m_window->findChild<TabTitle *>();
    const QHBoxLayout *area = BarPrivate::of(*bar)->m_titleAdditionalControlArea;
    QCOMPARE(area->count(), 2);
    QVERIFY(area->itemAt(0)->spacerItem());
    QCOMPARE(area->itemAt(0)->sizeHint(), QSize(0, 0));
    QCOMPARE(area->itemAt(1)->widget(), tab);

    QVERIFY(show());
    QCOMPARE(tab->mapTo(m_window.get(), QPoint(0, 0)), QPoint(0, 0));
    const int free = ServiceContainer::fixedSize().width() - closeButton()->width();
    QCOMPARE(tab->size(), QSize(free - 1, 32));
}

void tst_ServiceContainer::pages()
{
    QCOMPARE(stack()->count(), 2);
    QVERIFY(qobject_cast<OverviewForm *>(stack()->widget(0)));
    QVERIFY(qobject_cast<SettingsForm *>(stack()->widget(1)));
    QCOMPARE(stack()->currentIndex(), 0);
}

void tst_ServiceContainer::agent()
{
    const auto agents = m_window->findChildren<QWK::WindowAgentBase *>();
    QCOMPARE(agents.size(), 1);
    QCOMPARE(agents.first()->parent(), m_window.get());
    // It serves this window already.
    QWidget other;
    QVERIFY(!qobject_cast<QWK::WidgetWindowAgent *>(agents.first())->setup(&other));

    // It asks the window, and the window asks its tab header.
    QVERIFY(show());
    const auto *tab = m_window->findChild<TabTitle *>();
    const QPoint onTheHiddenTabs(0, 0);
    const QPoint besideThem(400, 16);
    QVERIFY(!tab->inDragArea(onTheHiddenTabs));
    QVERIFY(!m_window->inTitleBarDraggableArea(onTheHiddenTabs));
    QVERIFY(!emit agents.first()->inTitleBarDraggableArea(onTheHiddenTabs));
    QVERIFY(tab->inDragArea(besideThem));
    QVERIFY(m_window->inTitleBarDraggableArea(besideThem));
    QVERIFY(emit agents.first()->inTitleBarDraggableArea(besideThem));
}

void tst_ServiceContainer::tabsChooseThePageWhenShown()
{
    QVERIFY(show());
    QVERIFY(m_window->findChild<QTabWidget *>()->isHidden());
    m_window->findChild<TabTitle *>()->showTabWidget(true);
    auto *bar = m_window->findChild<QTabBar *>();
    QTRY_VERIFY(bar->isVisible());

    for (const int index : {1, 0, 1}) {
        QTest::mouseClick(bar, Qt::LeftButton, Qt::NoModifier, bar->tabRect(index).center());
        QCOMPARE(stack()->currentIndex(), index);
    }
    m_window->onTabIndexChanged(0);
    QCOMPARE(stack()->currentIndex(), 0);
}

void tst_ServiceContainer::closeButtonClosesTheWindow()
{
    QVERIFY(show());
    QToolButton *close = closeButton();
    QVERIFY(close);
    QVERIFY(close->isVisible());
    QCOMPARE(close->mapTo(m_window.get(), close->rect().topRight()),
             QPoint(ServiceContainer::fixedSize().width() - 1, 0));

    QTest::mouseClick(close, Qt::LeftButton);
    QVERIFY(!m_window->isVisible());
}

void tst_ServiceContainer::stripIsPaintedInItsColours()
{
    QVERIFY(show());
    const QImage image = m_window->grab().toImage();
    QCOMPARE(image.pixelColor(400, 16), QColor(216, 217, 218));
    QCOMPARE(image.pixelColor(760, 4), QColor(216, 217, 218));
    QCOMPARE(image.pixelColor(799, 31), QColor(216, 217, 218));
    QCOMPARE(image.pixelColor(3, 28), QColor(0x2b, 0x57, 0x9a));
    QCOMPARE(image.pixelColor(400, 40), QColor(Qt::white));
    QCOMPARE(image.pixelColor(400, 590), QColor(Qt::white));
}

void tst_ServiceContainer::stopsWithoutATitleBar()
{
    const TitleBarDeleter deleter;
    ServiceContainer window;

    QVERIFY(window.windowFlags() & Qt::FramelessWindowHint);
    QCOMPARE(window.size(), QSize(800, 600));
    QCOMPARE(window.minimumSize(), QSize(0, 0));
    QCOMPARE(window.maximumSize(), QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX));
    QVERIFY(window.findChild<FancyBar *>(QStringLiteral("fancy_titlebar")));
    QCOMPARE(window.layout()->count(), 1);
    QVERIFY(!window.findChild<TabTitle *>());
    QVERIFY(!window.findChild<OverviewForm *>());
    QVERIFY(!window.findChild<SettingsForm *>());
    QVERIFY(!window.findChild<QWK::WindowAgentBase *>());
    // There is no header to drag the window by.
    QVERIFY(!window.inTitleBarDraggableArea(QPoint(400, 16)));
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window, WindowTimeoutMs));
}

QTEST_MAIN(tst_ServiceContainer)
#include "tst_ServiceContainer.moc"
