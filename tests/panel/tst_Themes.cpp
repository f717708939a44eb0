#include "tests/overview/RunStatus.h"
#include "tests/support/PanelProcess.h"
#include "tests/support/ShimFolder.h"
#include "tests/support/files.h"
#include "tests/support/pixels.h"

#include <QFile>
#include <QFont>
#include <QPainter>
#include <QSettings>
#include <QTest>

#include <memory>
#include <utility>

namespace {

const auto Window = QStringLiteral("ServiceContainer");
const auto Table = QStringLiteral("treeWidgetOW");
const auto RepairButton = QStringLiteral("xfkqfw");
const auto Tip = QStringLiteral("QTipLabel");
const auto BoxText = QStringLiteral("QMessageBox/qt_msgbox_label");
const auto BoxButton = QStringLiteral("QMessageBox/QPushButton");
const auto BoxIcon = QStringLiteral("QMessageBox/qt_msgboxex_icon_label");

//! From the window's top right corner to a place in the close button.
constexpr QPoint CloseButtonOffset(-25, 16);
constexpr int TimeoutMs = 20000;

//! Waits until \a isThere, and goes on without it too: the comparisons fail then, and this tells
//! why.
template<typename Condition>
void waitFor(const char *what, Condition isThere)
{
    if (!QTest::qWaitFor(isThere, TimeoutMs))
        qWarning("Waited in vain for %s", what);
}

} // namespace

/*!
    The panel looks the same on every desktop: all that it shows is compared, pixel by pixel, with
    what it shows where there is no theme. Only the icon in a message box is the desktop's.
*/
class tst_Themes : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void looksTheSame_data();
    void looksTheSame();
    void staysTheSameWhenTheThemeChanges();

private:
    //! What the panel shows, each the whole screen.
    struct Look
    {
        QImage page;
        QImage tip;
        QImage settings;
        QImage box;
    };

    static QString setTheme(const QByteArray &colorScheme, int wheelScrollLines);
    bool start(const QStringList &arguments = {});
    bool hasLoaded(const QString &plugin) const;
    //! The screen as soon as it doesn't change any more.
    QImage stillScreen();
    //! Shows the page, the close button's tip, the settings page and a message box.
    Look look();

    std::unique_ptr<ShimFolder> m_shims;
    std::unique_ptr<PanelProcess> m_panel;
    Look m_plain;
};

//! Makes \a colorScheme the colours of the desktop, by way of qt5ct, and sets how far its mouse
//! wheel scrolls, by which one can tell that a running program knows. Returns what went wrong.
QString tst_Themes::setTheme(const QByteArray &colorScheme, int wheelScrollLines)
{
    const QString scheme =
            QStringLiteral("/usr/share/qt5ct/colors/%1.conf").arg(QString::fromLatin1(colorScheme));
    if (!QFile::exists(scheme))
        return QStringLiteral("no ") + scheme;
    QSettings settings(qEnvironmentVariable("XDG_CONFIG_HOME")
                               + QStringLiteral("/qt5ct/qt5ct.conf"),
                       QSettings::IniFormat);
    settings.setValue(QStringLiteral("Appearance/color_scheme_path"), scheme);
    settings.setValue(QStringLiteral("Appearance/custom_palette"), true);
    settings.setValue(QStringLiteral("Appearance/style"), QStringLiteral("Windows"));
    settings.setValue(QStringLiteral("Interface/wheel_scroll_lines"), wheelScrollLines);
    // Fonts are the desktop's to choose: here the panel's own.
    QFont font;
    font.setPointSize(9);
    settings.setValue(QStringLiteral("Fonts/general"), font);
    return {};
}

void tst_Themes::initTestCase()
{
    init();
    QVERIFY(start());
    m_plain = look();
    cleanup();
    // The screenshots show something: no two are the same.
    QVERIFY(m_plain.page != m_plain.tip);
    QVERIFY(m_plain.page != m_plain.settings);
    QVERIFY(m_plain.page != m_plain.box);
}

void tst_Themes::init()
{
    QCOMPARE(setTheme("darker", 3), QString());
    // Nothing in the row changes from one start to the next.
    m_shims = std::make_unique<ShimFolder>();
    m_shims->addPrinting(QStringLiteral("pgrep"), QByteArray::number(AlicePid) + " Corvane\n");
    m_shims->addPrinting(QStringLiteral("ps"), aliceLine());
    m_panel = std::make_unique<PanelProcess>();
    // Without icon themes: icons differ in size, too, and with them the box.
    m_panel->environment().insert(QStringLiteral("XDG_DATA_DIRS"), QStringLiteral("/nonexistent"));
    PanelProcess::moveMouse(QPoint(0, 0));
}

void tst_Themes::cleanup()
{
    m_panel.reset();
    m_shims.reset();
}

void tst_Themes::cleanupTestCase()
{
    m_plain = {};
}

bool tst_Themes::start(const QStringList &arguments)
{
    return m_panel->start(arguments)
           && QTest::qWaitFor([this] { return m_panel->rowTexts(Table).size() == 1; }, TimeoutMs)
           && QTest::qWaitFor(
                   [this] { return m_panel->property(Window, "isActiveWindow").toBool(); },
                   TimeoutMs);
}

//! Whether the panel has the file of \a plugin in memory: else Qt has silently done without it.
bool tst_Themes::hasLoaded(const QString &plugin) const
{
    return readFile(QStringLiteral("/proc/%1/maps").arg(m_panel->pid()))
            .contains(QFile::encodeName(QLatin1Char('/') + plugin + QLatin1Char('\n')));
}

QImage tst_Themes::stillScreen()
{
    QImage screen;
    waitFor("a still screen", [&screen] {
        const QImage former = std::exchange(screen, screenshot());
        return former == screen;
    });
    return screen;
}

tst_Themes::Look tst_Themes::look()
{
    Look result;
    result.page = stillScreen();

    PanelProcess::moveMouse(m_panel->globalRect(Window).topRight() + CloseButtonOffset);
    waitFor("the tool tip", [this] { return m_panel->exists(Tip) && m_panel->isExposed(Tip); });
    result.tip = stillScreen();
    PanelProcess::moveMouse(QPoint(0, 0));
    waitFor("the tool tip's end", [this] { return !m_panel->exists(Tip); });

    m_panel->setProperty(QStringLiteral("stackedWidget"), "currentIndex", 1);
    waitFor("the settings page",
            [this] { return m_panel->isExposed(QStringLiteral("SettingsForm")); });
    result.settings = stillScreen();
    m_panel->setProperty(QStringLiteral("stackedWidget"), "currentIndex", 0);
    waitFor("the page as it was", [&result] { return screenshot() == result.page; });

    m_panel->click(RepairButton);
    waitFor("the message box", [this, &result] {
        if (!m_panel->messageBox())
            return false;
        const QRect place = m_panel->globalRect(BoxText);
        const QImage text = screenshot(place);
        return text != result.page.copy(place) && greatestContrast(text) > 4;
    });
    PanelProcess::moveMouse(QPoint(0, 0));
    result.box = stillScreen();
    // What the desktop chooses: the icon, and how it writes "OK".
    QPainter painter(&result.box);
    painter.fillRect(m_panel->globalRect(BoxIcon), Qt::black);
    painter.fillRect(m_panel->globalRect(BoxButton).adjusted(4, 4, -4, -4), Qt::black);
    return result;
}

void tst_Themes::looksTheSame_data()
{
    QTest::addColumn<QStringList>("variables");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("plugin");

    const QStringList none;
    QTest::newRow("dark Adwaita") << QStringList {"QT_STYLE_OVERRIDE=adwaita-dark"} << none
                                  << "adwaita.so";
    QTest::newRow("dark Adwaita, by an argument")
            << none << QStringList {"-style", "adwaita-dark"} << "adwaita.so";
    QTest::newRow("dark qt5ct") << QStringList {"QT_QPA_PLATFORMTHEME=qt5ct"} << none
                                << "libqt5ct.so";
    QTest::newRow("dark GTK 3")
            // GTK never frees all of its own.
            << QStringList {"QT_QPA_PLATFORMTHEME=gtk3", "GTK_THEME=Adwaita:dark",
                            "ASAN_OPTIONS=detect_leaks=0"}
            << none << "libqgtk3.so";
}

void tst_Themes::looksTheSame()
{
    QFETCH(const QStringList, variables);
    QFETCH(const QStringList, arguments);
    QFETCH(const QString, plugin);
    for (const QString &variable : variables) {
        m_panel->environment().insert(variable.section(QLatin1Char('='), 0, 0),
                                      variable.section(QLatin1Char('='), 1));
    }
    QVERIFY(start(arguments));
    QVERIFY2(hasLoaded(plugin), qPrintable(plugin + QStringLiteral(" isn't loaded")));

    const Look shown = look();
    QCOMPARE(differingPixels(shown.page, m_plain.page).boundingRect(), QRect());
    QCOMPARE(differingPixels(shown.tip, m_plain.tip).boundingRect(), QRect());
    QCOMPARE(differingPixels(shown.settings, m_plain.settings).boundingRect(), QRect());
    QCOMPARE(differingPixels(shown.box, m_plain.box).boundingRect(), QRect());
}

void tst_Themes::staysTheSameWhenTheThemeChanges()
{
    QCOMPARE(setTheme("airy", 3), QString());
    m_panel->environment().insert(QStringLiteral("QT_QPA_PLATFORMTHEME"), QStringLiteral("qt5ct"));
    QVERIFY(start());
    QCOMPARE(differingPixels(stillScreen(), m_plain.page).boundingRect(), QRect());

    QCOMPARE(setTheme("darker", 7), QString());
    const auto scrolled = [this] {
        return m_panel->property(QStringLiteral("qApp"), "wheelScrollLines").toInt();
    };
    QTRY_COMPARE_WITH_TIMEOUT(scrolled(), 7, TimeoutMs);

    const Look shown = look();
    QCOMPARE(differingPixels(shown.page, m_plain.page).boundingRect(), QRect());
    QCOMPARE(differingPixels(shown.tip, m_plain.tip).boundingRect(), QRect());
    QCOMPARE(differingPixels(shown.settings, m_plain.settings).boundingRect(), QRect());
    QCOMPARE(differingPixels(shown.box, m_plain.box).boundingRect(), QRect());
}

QTEST_MAIN(tst_Themes)
#include "tst_Themes.moc"
