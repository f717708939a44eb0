#include "shell/MultiProjectsTabStyle.h"
#include "shell/TabTitle.h"
#include "tests/support/AskingTranslator.h"
#include "tests/support/LayoutDump.h"
#include "tests/support/pixels.h"
#include "tests/support/waits.h"

#include <QBoxLayout>
#include <QIcon>
#include <QImage>
#include <QLabel>
#include <QMetaMethod>
#include <QPainter>
#include <QPixmap>
#include <QSignalSpy>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>

namespace {

const QColor BlueField(0x2b, 0x57, 0x9a);

QString resource(const char *name)
{
    return QStringLiteral(":/client/resources/") + QLatin1String(name);
}

//! The header with the members that its form gave it, found by their names.
struct Header
{
    TabTitle title;
    QLabel *labelIcon = title.findChild<QLabel *>(QStringLiteral("labelIcon"));
    QLabel *label = title.findChild<QLabel *>(QStringLiteral("label"));
    QTabWidget *tabWidget = title.findChild<QTabWidget *>(QStringLiteral("tabWidget"));

    //! Whether the header is on the screen then, as wide as in the window.
    bool present()
    {
        title.resize(800, 32);
        title.show();
        return QTest::qWaitForWindowExposed(&title, WindowTimeoutMs);
    }
    //! By its property: QLabel's own calls for it differ between Qt 5.14 and 5.15.
    QPixmap iconPixmap() const { return labelIcon->property("pixmap").value<QPixmap>(); }
};

//! Records whose events it is asked to filter.
class FilteringTitle : public TabTitle
{
public:
    QVector<QPair<QObject *, QEvent::Type>> filtered;

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        filtered.append({watched, event->type()});
        return TabTitle::eventFilter(watched, event);
    }
};

} // namespace

class tst_TabTitle : public QObject
{
    Q_OBJECT

private slots:
    void form();
    void takesItsParent();
    void translatesItsTexts();
    void filtersTheLabel();
    void declaresOneSignal();
    void iconLabel();
    void tabs();
    void style();
    void dragArea_data();
    void dragArea();
    void dragAreaCountsOnTheHiddenTabs();
    void emitsTabIndexChangedOnce();
    void paintsTheBlueField();
    void paintsTheTabs();
};

void tst_TabTitle::form()
{
    const TabTitle header;
    QVERIFY(matchesDump(header, QStringLiteral("shell/TabTitle.txt")));
}

void tst_TabTitle::takesItsParent()
{
    QWidget parent;
    const TabTitle header(&parent);
    QCOMPARE(header.parentWidget(), &parent);
}

void tst_TabTitle::translatesItsTexts()
{
    const Header untranslated;
    QStringList expected = formTexts(untranslated.title);
    for (QString &text : expected) {
        if (!text.isEmpty())
            text = QStringLiteral("TabTitle|%1|").arg(text);
    }
    AskingTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    const Header header;

    QCOMPARE(formTexts(header.title), expected);
    // But for the tabs.
    for (int i = 0; i < header.tabWidget->count(); ++i)
        QCOMPARE(header.tabWidget->tabText(i), untranslated.tabWidget->tabText(i));
}

void tst_TabTitle::filtersTheLabel()
{
    FilteringTitle title;
    auto *label = title.findChild<QLabel *>(QStringLiteral("label"));
    title.filtered.clear();

    QEvent event(QEvent::User);
    QCoreApplication::sendEvent(label, &event);

    const QVector<QPair<QObject *, QEvent::Type>> once {{label, QEvent::User}};
    QCOMPARE(title.filtered, once);
}

void tst_TabTitle::declaresOneSignal()
{
    const QMetaObject &meta = TabTitle::staticMetaObject;
    QCOMPARE(meta.methodCount() - meta.methodOffset(), 1);
    const QMetaMethod method = meta.method(meta.methodOffset());
    QCOMPARE(method.methodSignature(), QByteArray("tabIndexChanged(int)"));
    QCOMPARE(method.methodType(), QMetaMethod::Signal);
}

void tst_TabTitle::iconLabel()
{
    Header header;
    // Runs at the density that QT_SCALE_FACTOR sets.
    const qreal ratio = qEnvironmentVariableIsSet("QT_SCALE_FACTOR")
                                ? qgetenv("QT_SCALE_FACTOR").toDouble()
                                : 1.0;
    const QSize size = QSize(18, 17) * ratio;
    const QPixmap original(resource("application.svg"));
    QVERIFY(!original.isNull());
    QPixmap expected = original.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    expected.setDevicePixelRatio(ratio);
    QCOMPARE(header.iconPixmap().size(), size);
    QCOMPARE(header.iconPixmap().devicePixelRatio(), ratio);
    QCOMPARE(header.iconPixmap().toImage(), expected.toImage());
}

void tst_TabTitle::tabs()
{
    Header header;
    const QVector<QPair<QString, const char *>> tabs = {
            {QStringLiteral("运行状态"), "overview.svg"},
            {QStringLiteral("服务设置"), "settings.svg"},
    };
    QCOMPARE(header.tabWidget->count(), tabs.size());
    for (int i = 0; i < tabs.size(); ++i) {
        const auto &[text, iconName] = tabs.at(i);
        QCOMPARE(header.tabWidget->tabText(i), text);
        const QImage icon = header.tabWidget->tabIcon(i).pixmap(64).toImage();
        QVERIFY(!icon.isNull());
        QCOMPARE(icon, QIcon(resource(iconName)).pixmap(64).toImage());

        const QWidget *page = header.tabWidget->widget(i);
        QCOMPARE(page->metaObject(), &QWidget::staticMetaObject);
        QVERIFY(page->children().isEmpty());
    }
    QCOMPARE(header.tabWidget->font(), QFont());
    QCOMPARE(header.tabWidget->tabBar()->font(), QFont());
}

void tst_TabTitle::style()
{
    Header header;
    const auto styles = header.title.findChildren<MultiProjectsTabStyle *>();
    QCOMPARE(styles.size(), 1);
    // The header owns the style, and the tab bar goes first.
    QCOMPARE(styles.first()->parent(), &header.title);
    const QObjectList children = header.title.children();
    QVERIFY(children.indexOf(styles.first()) > children.indexOf(header.tabWidget));

    // The style measures the tabs, beneath the style sheet of the tab widget.
    QVERIFY(header.present());
    const QSize size(styles.first()->adjustItemSize(), 32);
    for (int i = 0; i < header.tabWidget->count(); ++i)
        QCOMPARE(header.tabWidget->tabBar()->tabRect(i).size(), size);
}

void tst_TabTitle::dragArea_data()
{
    QTest::addColumn<QPoint>("pos");
    QTest::addColumn<bool>("expected");

    // A header of 500 × 40 whose tab widget has been made 200 × 30.
    QTest::newRow("origin") << QPoint(0, 0) << false;
    QTest::newRow("tabs' right border") << QPoint(199, 10) << false;
    QTest::newRow("beyond it") << QPoint(200, 10) << true;
    QTest::newRow("tabs' bottom border") << QPoint(100, 29) << false;
    QTest::newRow("beneath it") << QPoint(100, 30) << true;
    QTest::newRow("top right corner") << QPoint(499, 0) << true;
    QTest::newRow("bottom left corner") << QPoint(0, 39) << true;
    QTest::newRow("right of the header") << QPoint(500, 10) << false;
    QTest::newRow("below the header") << QPoint(300, 40) << false;
    QTest::newRow("left of the header") << QPoint(-1, 35) << false;
    QTest::newRow("above the header") << QPoint(300, -1) << false;
    // Where the tab widget stands doesn't count.
    QTest::newRow("on the tab widget itself") << QPoint(310, 10) << true;
}

void tst_TabTitle::dragArea()
{
    QFETCH(const QPoint, pos);
    Header header;
    header.title.layout()->setEnabled(false);
    header.title.resize(500, 40);
    header.tabWidget->setGeometry(300, 5, 200, 30);
    header.title.move(7, 9);
    QTEST(header.title.inDragArea(pos), "expected");

    header.title.showTabWidget(false);
    QTEST(header.title.inDragArea(pos), "expected");
}

void tst_TabTitle::dragAreaCountsOnTheHiddenTabs()
{
    // Never laid out, the hidden tab widget keeps Qt's initial size of child widgets.
    Header header;
    header.title.showTabWidget(false);
    QVERIFY(header.present());
    QVERIFY(header.tabWidget->isHidden());
    QVERIFY(!header.title.inDragArea(QPoint(99, 29)));
    QVERIFY(header.title.inDragArea(QPoint(100, 29)));
    QVERIFY(header.title.inDragArea(QPoint(99, 30)));

    header.title.showTabWidget(true);
    QVERIFY(header.tabWidget->isVisible());
    QTRY_VERIFY(!header.title.inDragArea(QPoint(100, 29)));
}

void tst_TabTitle::emitsTabIndexChangedOnce()
{
    Header header;
    QVERIFY(header.present());
    QSignalSpy spy(&header.title, &TabTitle::tabIndexChanged);
    QTabBar *bar = header.tabWidget->tabBar();
    for (const int index : {0, 1, 1, 0})
        QTest::mouseClick(bar, Qt::LeftButton, Qt::NoModifier, bar->tabRect(index).center());
    QCOMPARE(spy, QList<QVariantList>({{1}, {0}}));
}

void tst_TabTitle::paintsTheBlueField()
{
    Header header;
    header.title.showTabWidget(false);
    QVERIFY(header.present());
    const QImage image = header.title.grab().toImage().convertToFormat(QImage::Format_RGB32);

    // The accent, whose text doesn't show, and the icon at the left of its field.
    QImage expected(22, 32, QImage::Format_RGB32);
    expected.fill(BlueField);
    QPainter(&expected).drawPixmap(2, 8, header.iconPixmap());
    QCOMPARE(image.copy(0, 0, 22, 32), expected);

    // White text on blue.
    const QRect name = header.label->geometry();
    QCOMPARE(name.topLeft(), QPoint(22, 0));
    const QImage field = image.copy(name);
    QCOMPARE(field.pixelColor(name.width() - 1, 0), BlueField);
    QCOMPARE(field.pixelColor(0, 31), BlueField);
    QVERIFY(countPixels(field, qRgb(255, 255, 255)) > 0);
    QVERIFY(image.pixelColor(name.right() + 1, 16) != BlueField);
}

void tst_TabTitle::paintsTheTabs()
{
    Header header;
    QVERIFY(header.present());
    QTabBar *bar = header.tabWidget->tabBar();
    const auto colorAt = [&](const QPoint &pos) { return bar->grab().toImage().pixelColor(pos); };
    const QPoint inside = bar->tabRect(1).topLeft() + QPoint(40, 5);
    const QPoint rim = bar->tabRect(1).topLeft() + QPoint(40, 3);
    QCOMPARE(colorAt(bar->tabRect(0).topLeft()), QColor(255, 255, 255));
    QCOMPARE(colorAt(inside), QColor(215, 215, 222));

    QTest::mouseMove(bar, bar->tabRect(1).center());
    QTRY_COMPARE(colorAt(inside), QColor(246, 247, 249));
    // The rim shows what lies beneath the tab bar.
    QCOMPARE(colorAt(rim), bar->palette().color(QPalette::Window));
    QTest::mouseMove(bar, bar->tabRect(0).center());
    QTRY_COMPARE(colorAt(inside), QColor(215, 215, 222));
    QCOMPARE(colorAt(bar->tabRect(0).topLeft()), QColor(255, 255, 255));
}

QTEST_MAIN(tst_TabTitle)
#include "tst_TabTitle.moc"
