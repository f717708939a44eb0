#include "shell/MultiProjectsTabStyle.h"
#include "shell/TabTitle.h"
#include "ui_TabTitle.h"

#include <QHBoxLayout>
#include <QIcon>
#include <QImage>
#include <QLabel>
#include <QMetaMethod>
#include <QPainter>
#include <QPixmap>
#include <QPointer>
#include <QSignalSpy>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QTranslator>

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
    QLabel *labelSpace = title.findChild<QLabel *>(QStringLiteral("labelSpace"));
    QLabel *labelIcon = title.findChild<QLabel *>(QStringLiteral("labelIcon"));
    QLabel *label = title.findChild<QLabel *>(QStringLiteral("label"));
    QTabWidget *tabWidget = title.findChild<QTabWidget *>(QStringLiteral("tabWidget"));

    void present()
    {
        title.show();
        QVERIFY(QTest::qWaitForWindowExposed(&title));
    }
    //! By its property: QLabel's own calls for it differ between Qt 5.14 and 5.15.
    QPixmap iconPixmap() const { return labelIcon->property("pixmap").value<QPixmap>(); }
    QImage grab() { return title.grab().toImage(); }
};

//! Marks each text that it is asked for with its context.
class MarkingTranslator : public QTranslator
{
public:
    bool isEmpty() const override { return false; }
    QString translate(const char *context, const char *sourceText, const char * /*disambiguation*/,
                      int /*n*/) const override
    {
        return QLatin1String(context) + QLatin1Char('/') + QString::fromUtf8(sourceText);
    }
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
    void header();
    void formKeepsAName();
    void formTexts();
    void translatesItsTexts();
    void filtersTheLabel();
    void declaresOneSignal();
    void layout();
    void labels_data();
    void labels();
    void iconLabel();
    void tabs();
    void style();
    void fonts();
    void showsAndHidesTheTabs();
    void dragArea_data();
    void dragArea();
    void dragAreaCountsOnTheHiddenTabs();
    void emitsTabIndexChangedOnce();
    void followsAClick();
    void paintsTheBlueField();
    void paintsTheTabs();
    void paintsAHoveredTab();
    void leavesNothingBehind();
};

void tst_TabTitle::header()
{
    Header header;
    QCOMPARE(header.title.objectName(), QStringLiteral("TabTitle"));
    QCOMPARE(header.title.size(), QSize(400, 32));
    QCOMPARE(header.title.windowTitle(), QStringLiteral("Form"));
    QCOMPARE(header.title.styleSheet(),
             QStringLiteral(".QWidget{background-color:rgb(216,217,218);}"));
    QVERIFY(!header.title.parent());

    QWidget parent;
    QCOMPARE((new TabTitle(&parent))->parentWidget(), &parent);
}

void tst_TabTitle::formKeepsAName()
{
    QWidget widget;
    widget.setObjectName(QStringLiteral("before"));
    Ui_TabTitle ui {};
    ui.setupUi(&widget);
    QCOMPARE(widget.objectName(), QStringLiteral("before"));
    // The tabs are the class's own, not the form's.
    QCOMPARE(ui.tabWidget->count(), 0);
    QCOMPARE(ui.tabWidget->currentIndex(), -1);
}

void tst_TabTitle::formTexts()
{
    Header header;
    QCOMPARE(header.labelSpace->text(), QStringLiteral("TextLabel"));
    QCOMPARE(header.labelIcon->text(), QString());
    QCOMPARE(header.label->text(), QStringLiteral("朔川统一服务"));
    QVERIFY(header.label->testAttribute(Qt::WA_MouseTracking));
}

void tst_TabTitle::translatesItsTexts()
{
    MarkingTranslator translator;
    QCoreApplication::installTranslator(&translator);
    Header header;
    QCoreApplication::removeTranslator(&translator);

    QCOMPARE(header.title.windowTitle(), QStringLiteral("TabTitle/Form"));
    QCOMPARE(header.labelSpace->text(), QStringLiteral("TabTitle/TextLabel"));
    QCOMPARE(header.label->text(), QStringLiteral("TabTitle/朔川统一服务"));
    QCOMPARE(header.labelIcon->text(), QString());
    QCOMPARE(header.tabWidget->tabText(0), QStringLiteral("运行状态"));
    QCOMPARE(header.tabWidget->tabText(1), QStringLiteral("服务设置"));
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
    QCOMPARE(meta.className(), "TabTitle");
    QCOMPARE(meta.methodCount() - meta.methodOffset(), 1);
    const QMetaMethod method = meta.method(meta.methodOffset());
    QCOMPARE(method.methodSignature(), QByteArray("tabIndexChanged(int)"));
    QCOMPARE(method.methodType(), QMetaMethod::Signal);
    QCOMPARE(meta.propertyCount(), meta.propertyOffset());
}

void tst_TabTitle::layout()
{
    Header header;
    auto *layout = qobject_cast<QHBoxLayout *>(header.title.layout());
    QVERIFY(layout);
    QCOMPARE(layout->objectName(), QStringLiteral("horizontalLayout"));
    QCOMPARE(layout->spacing(), 0);
    QCOMPARE(layout->contentsMargins(), QMargins(0, 0, 0, 0));

    QCOMPARE(layout->count(), 5);
    const QList<QWidget *> widgets = {header.labelSpace, header.labelIcon, header.label,
                                      header.tabWidget};
    for (int i = 0; i < layout->count(); ++i) {
        QCOMPARE(layout->itemAt(i)->widget(), widgets.value(i));
        QCOMPARE(layout->stretch(i), 0);
        QCOMPARE(layout->itemAt(i)->alignment(), Qt::Alignment());
    }
    const QSpacerItem *spacer = layout->itemAt(4)->spacerItem();
    QVERIFY(spacer);
    QCOMPARE(spacer->sizeHint(), QSize(40, 20));
    QCOMPARE(spacer->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
    QCOMPARE(spacer->sizePolicy().verticalPolicy(), QSizePolicy::Minimum);
}

void tst_TabTitle::labels_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QSize>("minimum");
    QTest::addColumn<QSize>("maximum");
    QTest::addColumn<QString>("styleSheet");
    constexpr int Unlimited = 16777215;

    const QString blue = QStringLiteral("background:#2b579a;");
    QTest::newRow("labelSpace") << "labelSpace" << QSize(2, 0) << QSize(2, Unlimited) << blue;
    QTest::newRow("labelIcon") << "labelIcon" << QSize(20, 32) << QSize(20, 32) << blue;
    QTest::newRow("label") << "label" << QSize(100, 0) << QSize(Unlimited, Unlimited)
                           << "QLabel {\ncolor:#ffffff; background:#2b579a;\nfont:bold 14px;\n}";
    QTest::newRow("tabWidget") << "tabWidget" << QSize(0, 0) << QSize(Unlimited, Unlimited)
                               << "QTabWidget::pane\n{\n\tborder: none;\n}";
}

void tst_TabTitle::labels()
{
    QFETCH(const QString, name);
    TabTitle title;
    const auto *widget = title.findChild<QWidget *>(name);
    QVERIFY(widget);
    QTEST(widget->minimumSize(), "minimum");
    QTEST(widget->maximumSize(), "maximum");
    QTEST(widget->styleSheet(), "styleSheet");
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
    QCOMPARE(header.tabWidget->count(), 2);
    QCOMPARE(header.tabWidget->currentIndex(), 0);
    QCOMPARE(header.tabWidget->tabText(0), QStringLiteral("运行状态"));
    QCOMPARE(header.tabWidget->tabText(1), QStringLiteral("服务设置"));
    const char *const icons[] = {"overview.svg", "settings.svg"};
    for (int i = 0; i < 2; ++i) {
        const QImage icon = header.tabWidget->tabIcon(i).pixmap(64).toImage();
        QVERIFY(!icon.isNull());
        QCOMPARE(icon, QIcon(resource(icons[i])).pixmap(64).toImage());

        const QWidget *page = header.tabWidget->widget(i);
        QCOMPARE(page->metaObject(), &QWidget::staticMetaObject);
        QVERIFY(page->children().isEmpty());
    }
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
    header.title.resize(800, 32);
    header.present();
    for (int i = 0; i < 2; ++i)
        QCOMPARE(header.tabWidget->tabBar()->tabRect(i).size(),
                 QSize(styles.first()->adjustItemSize(), 32));
}

void tst_TabTitle::fonts()
{
    Header header;
    QCOMPARE(header.tabWidget->font(), QFont());
    QCOMPARE(header.tabWidget->tabBar()->font(), QFont());
}

void tst_TabTitle::showsAndHidesTheTabs()
{
    Header header;
    header.title.resize(800, 32);
    header.present();
    QVERIFY(header.tabWidget->isVisible());
    header.title.showTabWidget(false);
    QVERIFY(header.tabWidget->isHidden());
    header.title.showTabWidget(true);
    QVERIFY(header.tabWidget->isVisible());
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
    QTest::newRow("tabs' corner") << QPoint(199, 29) << false;
    QTest::newRow("beyond the corner") << QPoint(200, 30) << true;
    QTest::newRow("top right corner") << QPoint(499, 0) << true;
    QTest::newRow("bottom right corner") << QPoint(499, 39) << true;
    QTest::newRow("bottom left corner") << QPoint(0, 39) << true;
    QTest::newRow("right of the header") << QPoint(500, 10) << false;
    QTest::newRow("below the header") << QPoint(300, 40) << false;
    QTest::newRow("left of the header") << QPoint(-1, 35) << false;
    QTest::newRow("above the header") << QPoint(300, -1) << false;
    QTest::newRow("far away") << QPoint(4000, -3000) << false;
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
    // Never laid out, the hidden tab widget keeps the size that child widgets are born with.
    Header header;
    header.title.showTabWidget(false);
    header.title.resize(800, 32);
    header.present();
    QVERIFY(header.tabWidget->isHidden());
    QVERIFY(!header.title.inDragArea(QPoint(99, 29)));
    QVERIFY(header.title.inDragArea(QPoint(100, 29)));
    QVERIFY(header.title.inDragArea(QPoint(99, 30)));
    QVERIFY(header.title.inDragArea(QPoint(799, 0)));
}

void tst_TabTitle::emitsTabIndexChangedOnce()
{
    Header header;
    QSignalSpy spy(&header.title, &TabTitle::tabIndexChanged);
    header.tabWidget->setCurrentIndex(0);
    QCOMPARE(spy.size(), 0);
    header.tabWidget->setCurrentIndex(1);
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.at(0).at(0).toInt(), 1);
    header.tabWidget->setCurrentIndex(1);
    QCOMPARE(spy.size(), 1);
    header.tabWidget->setCurrentIndex(0);
    QCOMPARE(spy.size(), 2);
    QCOMPARE(spy.at(1).at(0).toInt(), 0);
}

void tst_TabTitle::followsAClick()
{
    Header header;
    header.title.resize(800, 32);
    header.present();
    QSignalSpy spy(&header.title, &TabTitle::tabIndexChanged);
    QTabBar *bar = header.tabWidget->tabBar();
    QTest::mouseClick(bar, Qt::LeftButton, Qt::NoModifier, bar->tabRect(1).center());
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.at(0).at(0).toInt(), 1);
    QTest::mouseClick(bar, Qt::LeftButton, Qt::NoModifier, bar->tabRect(0).center());
    QCOMPARE(spy.size(), 2);
}

void tst_TabTitle::paintsTheBlueField()
{
    Header header;
    header.title.showTabWidget(false);
    header.title.resize(800, 32);
    header.present();
    const QImage image = header.grab();

    QCOMPARE(header.labelSpace->geometry(), QRect(0, 0, 2, 32));
    QCOMPARE(header.labelIcon->geometry(), QRect(2, 0, 20, 32));
    QCOMPARE(header.label->geometry().topLeft(), QPoint(22, 0));
    QVERIFY(header.label->width() >= 100);
    QCOMPARE(header.label->font().pixelSize(), 14);
    QVERIFY(header.label->font().bold());

    // The accent, but for the rows in which its text begins.
    for (int y = 0; y < 32; ++y) {
        if (y > 8 && y < 24)
            continue;
        QCOMPARE(image.pixelColor(0, y), BlueField);
        QCOMPARE(image.pixelColor(1, y), BlueField);
    }
    // The icon stands at the left of its field, between rows 8 and 24.
    QImage expected(20, 32, QImage::Format_RGB32);
    expected.fill(BlueField);
    {
        QPainter painter(&expected);
        painter.drawPixmap(0, 8, header.iconPixmap());
    }
    QCOMPARE(image.copy(2, 0, 20, 32).convertToFormat(QImage::Format_RGB32), expected);

    // White text on blue.
    bool hasWhite = false;
    for (int x = 22; x < header.label->geometry().right(); ++x) {
        QCOMPARE(image.pixelColor(x, 0), BlueField);
        QCOMPARE(image.pixelColor(x, 31), BlueField);
        for (int y = 0; y < 32; ++y)
            hasWhite = hasWhite || image.pixelColor(x, y) == QColor(Qt::white);
    }
    QVERIFY(hasWhite);
    QVERIFY(image.pixelColor(header.label->geometry().right() + 1, 16) != BlueField);
}

void tst_TabTitle::paintsTheTabs()
{
    Header header;
    header.title.resize(800, 32);
    header.present();
    QTabBar *bar = header.tabWidget->tabBar();
    const QImage image = bar->grab().toImage();
    const auto cornersAre = [&](int index, const QColor &color) {
        const QRect tab = bar->tabRect(index);
        for (const QPoint &corner :
             {tab.topLeft(), tab.topRight(), tab.bottomLeft(), tab.bottomRight()})
            QCOMPARE(image.pixelColor(corner), color);
    };
    cornersAre(0, QColor(255, 255, 255));
    cornersAre(1, QColor(215, 215, 222));

    // The icons, 8 pixels from the left and 8 from the top.
    QCOMPARE(bar->iconSize(), QSize(16, 16));
    for (int i = 0; i < 2; ++i) {
        QImage expected(16, 16, QImage::Format_RGB32);
        expected.fill(i == 0 ? QColor(255, 255, 255) : QColor(215, 215, 222));
        {
            QPainter painter(&expected);
            painter.drawPixmap(0, 0, bar->tabIcon(i).pixmap(16, 16));
        }
        QCOMPARE(image.copy(QRect(bar->tabRect(i).topLeft() + QPoint(8, 8), QSize(16, 16)))
                         .convertToFormat(QImage::Format_RGB32),
                 expected);
    }
}

void tst_TabTitle::paintsAHoveredTab()
{
    Header header;
    header.title.resize(800, 32);
    header.present();
    QTabBar *bar = header.tabWidget->tabBar();
    const QPoint inside = bar->tabRect(1).topLeft() + QPoint(40, 5);
    const QPoint rim = bar->tabRect(1).topLeft() + QPoint(40, 3);
    const auto colorAt = [&](const QPoint &pos) { return bar->grab().toImage().pixelColor(pos); };
    QCOMPARE(colorAt(inside), QColor(215, 215, 222));

    QTest::mouseMove(bar, bar->tabRect(1).center());
    QTRY_COMPARE(colorAt(inside), QColor(246, 247, 249));
    // The rim shows what lies beneath the tab bar.
    QCOMPARE(colorAt(rim), bar->palette().color(QPalette::Window));
    QTest::mouseMove(bar, bar->tabRect(0).center());
    QTRY_COMPARE(colorAt(inside), QColor(215, 215, 222));
    QCOMPARE(colorAt(bar->tabRect(0).topLeft()), QColor(255, 255, 255));
}

void tst_TabTitle::leavesNothingBehind()
{
    QPointer<MultiProjectsTabStyle> style;
    QPointer<QTabBar> bar;
    {
        Header header;
        header.present();
        style = header.title.findChild<MultiProjectsTabStyle *>();
        bar = header.tabWidget->tabBar();
        QVERIFY(style);
    }
    QVERIFY(!style);
    QVERIFY(!bar);
}

QTEST_MAIN(tst_TabTitle)
#include "tst_TabTitle.moc"
