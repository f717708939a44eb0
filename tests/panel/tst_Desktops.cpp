#include "shell/ServiceContainer.h"
#include "tests/support/PanelProcess.h"
#include "tests/support/ServerWindow.h"
#include "tests/support/WebShortcuts.h"
#include "tests/support/pixels.h"

#include <QGuiApplication>
#include <QRegularExpression>
#include <QScreen>
#include <QTest>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

const auto Window = QStringLiteral("ServiceContainer");
const auto Table = QStringLiteral("treeWidgetOW");
const auto Header = QStringLiteral("treeWidgetOW/QHeaderView");
const auto RepairButton = QStringLiteral("xfkqfw");
const QStringList Buttons = [] {
    QStringList names;
    for (const WebShortcut &shortcut : WebShortcuts)
        names.append(QLatin1String(shortcut.button));
    return names << RepairButton;
}();
const QStringList Titles = {QStringLiteral("OverviewForm/labelOW"),
                            QStringLiteral("OverviewForm/label"),
                            QStringLiteral("OverviewForm/label_2")};
const auto NameLabel = QStringLiteral("TabTitle/label");
const QStringList Separators = {QStringLiteral("OverviewForm/line"),
                                QStringLiteral("OverviewForm/line_3")};

constexpr QSize WindowSize = ServiceContainer::fixedSize();
constexpr double TextContrast = 4.5;
constexpr QRgb RowColor = qRgb(0xe7, 0xec, 0xf7);
constexpr QRgb White = qRgb(255, 255, 255);
constexpr int ShowTimeoutMs = 20000;
//! Right of it there is nothing but text in a button.
constexpr int ButtonTextOnly = 80;
constexpr int CheckBoxWidth = 24;
constexpr int CheckBoxTextWidth = 50;

//! Whether \a program with \a arguments ends with an exit status of 0.
bool succeeds(const QString &program, const QStringList &arguments)
{
    return QProcess::execute(program, arguments) == 0;
}

} // namespace

/*!
    The window at every text scale and device pixel ratio, as the X server shows it.
*/
class tst_Desktops : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void isScaledAndWhole_data();
    void isScaledAndWhole();
    void goesByWhatQtWasTold_data();
    void goesByWhatQtWasTold();
    void fitsTheWorkArea_data();
    void fitsTheWorkArea();
    void fitsOneMonitor_data();
    void fitsOneMonitor();
    void goesByTheDisplayThatItOpensOn_data();
    void goesByTheDisplayThatItOpensOn();
    void childrenKnowNothingOfTheScale();
    void settingsPageIsReadableAndWhole_data();
    void settingsPageIsReadableAndWhole();
    void dragsDontDrift_data();
    void dragsDontDrift();
    void firstClickClosesUnderItsTip_data();
    void firstClickClosesUnderItsTip();

private:
    static bool setTextDpi(const QByteArray &dpi,
                           const QString &display = qEnvironmentVariable("DISPLAY"));
    static bool setWorkArea(const QString &area);
    bool addMonitor(const QString &name, const QString &geometry, const QString &output);
    void setVariable(const QString &setting);
    bool start();
    //! Takes screenshots until two are the same. QTRY_COMPARE would take more to be sure.
    bool waitForStillScreen();
    //! The window's place on the server, in device pixels.
    QRect onServer();
    //! A rectangle in the panel's coordinates as one in the screenshot's.
    QRect onServer(const QRect &rect);
    QImage shown(const QString &address);
    //! The parts of the window that hold one text each, by a name.
    QVector<QPair<QString, QImage>> texts();
    // What is wrong with the screenshot; empty where all is well.
    QString wrongWithTexts();
    QRgb lineColor(const QString &widget, const QByteArray &name);
    QString wrongWithRow();
    QString wrongWithLines();
    void keepScreenshot();

    std::unique_ptr<PanelProcess> m_panel;
    QImage m_screen;
    QStringList m_monitors;
};

void tst_Desktops::init()
{
    m_panel = std::make_unique<PanelProcess>();
    m_panel->placeDaemon();
    PanelProcess::moveMouse(QPoint(0, 0));
}

void tst_Desktops::cleanup()
{
    std::optional<int> status = 0;
    if (m_panel->isRunning()) {
        m_panel->invoke(Window, "close");
        status = m_panel->waitForExit();
    }
    m_panel.reset();
    QVERIFY(setTextDpi({}));
    const QSize screen = QGuiApplication::primaryScreen()->size();
    QVERIFY(setWorkArea(QStringLiteral("0, 0, %1, %2").arg(screen.width()).arg(screen.height())));
    for (const QString &monitor : qAsConst(m_monitors))
        QVERIFY(succeeds(QStringLiteral("xrandr"), {QStringLiteral("--delmonitor"), monitor}));
    m_monitors.clear();
    QCOMPARE(status, std::optional<int>(0));
}

//! Sets the X resource Xft.dpi of \a display, or removes it, after one of another program.
//! Returns whether that went well.
bool tst_Desktops::setTextDpi(const QByteArray &dpi, const QString &display)
{
    QProcess xrdb;
    xrdb.start(QStringLiteral("xrdb"), {QStringLiteral("-display"), display,
                                        QStringLiteral("-load"), QStringLiteral("-nocpp")});
    xrdb.write("other.Xft.dpi:\t288\n" + (dpi.isEmpty() ? dpi : "Xft.dpi:\t" + dpi + '\n'));
    xrdb.closeWriteChannel();
    return xrdb.waitForFinished() && xrdb.exitCode() == 0;
}

//! What the window manager would tell of panels and docks.
bool tst_Desktops::setWorkArea(const QString &area)
{
    const QString property = QStringLiteral("_NET_WORKAREA");
    return succeeds(QStringLiteral("xprop"),
                    {QStringLiteral("-root"), QStringLiteral("-f"), property, QStringLiteral("32c"),
                     QStringLiteral("-set"), property, area});
}

//! Lets the server have a monitor called \a name, primary where that begins with "*".
bool tst_Desktops::addMonitor(const QString &name, const QString &geometry, const QString &output)
{
    m_monitors.append(QString(name).remove(QLatin1Char('*')));
    return succeeds(QStringLiteral("xrandr"),
                    {QStringLiteral("--setmonitor"), name, geometry, output});
}

//! Sets a variable for the panel, as in NAME=value.
void tst_Desktops::setVariable(const QString &setting)
{
    const int end = setting.indexOf(QLatin1Char('='));
    m_panel->environment().insert(setting.left(end), setting.mid(end + 1));
}

//! Starts the panel and waits until all of the row is on the screen.
bool tst_Desktops::start()
{
    if (!m_panel->start())
        return false;
    return QTest::qWaitFor(
            [this] {
                const QImage former = std::exchange(m_screen, screenshot());
                const QPoint corner = onServer(m_panel->globalRect(Table)).bottomLeft();
                return m_panel->rowTexts(Table).size() == 1 && former == m_screen
                       && m_screen.pixel(corner + QPoint(8, -8)) == RowColor;
            },
            ShowTimeoutMs);
}

bool tst_Desktops::waitForStillScreen()
{
    return QTest::qWaitFor(
            [this] {
                const QImage former = std::exchange(m_screen, screenshot());
                return former == m_screen;
            },
            ShowTimeoutMs);
}

QRect tst_Desktops::onServer()
{
    return serverWindow(m_panel->windowId(Window)).geometry;
}

QRect tst_Desktops::onServer(const QRect &rect)
{
    const QRect server = onServer();
    const QPoint origin = m_panel->globalRect(Window).topLeft();
    const double ratio = double(server.width()) / WindowSize.width();
    const QRectF local = QRectF(rect).translated(-origin);
    return QRectF(local.topLeft() * ratio, local.size() * ratio)
            .translated(server.topLeft())
            .toRect();
}

QImage tst_Desktops::shown(const QString &address)
{
    return m_screen.copy(onServer(m_panel->globalRect(address)));
}

QVector<QPair<QString, QImage>> tst_Desktops::texts()
{
    QVector<QPair<QString, QImage>> result;
    for (const QString &title : Titles)
        result.append({title, shown(title)});
    result.append({NameLabel, shown(NameLabel)});
    for (const QString &button : Buttons) {
        const QRect text = m_panel->globalRect(button).adjusted(ButtonTextOnly, 3, -3, -3);
        result.append({button, m_screen.copy(onServer(text))});
    }
    const int headerHeight = m_panel->globalRect(Header).height();
    const PanelProcess::Row row = m_panel->rows(Table).value(0);
    for (const PanelProcess::Cell &cell : row) {
        QRect inner = cell.globalRect.adjusted(3, 3, -3, -3);
        inner.setBottom(std::min(inner.bottom(), m_panel->globalRect(Table).bottom()));
        result.append({cell.text, m_screen.copy(onServer(inner))});
        const QRect title(cell.globalRect.left(), cell.globalRect.top() - headerHeight,
                          cell.globalRect.width(), headerHeight);
        result.append({QStringLiteral("header of ") + cell.text,
                       m_screen.copy(onServer(title.adjusted(3, 3, -3, -3)))});
    }
    return result;
}

//! Each text has contrast, is whole and stands clear of the edges.
QString tst_Desktops::wrongWithTexts()
{
    const auto all = texts();
    const int columns = m_panel->rows(Table).value(0).size();
    if (columns < 2 || all.size() != Titles.size() + 1 + Buttons.size() + 2 * columns)
        return QStringLiteral("%1 texts and %2 columns").arg(all.size()).arg(columns);
    for (const auto &[name, image] : all) {
        const double contrast = greatestContrast(image);
        if (contrast < TextContrast)
            return QStringLiteral("%1 has a contrast of %2").arg(name).arg(contrast);
        const QRect place = ink(image);
        if (place.height() < 6 || place.width() < 3)
            return QStringLiteral("%1 isn't there: %2").arg(name, colorsOf(image));
        // Labels are as wide as their text.
        const int margin = Titles.contains(name) || name == NameLabel ? 0 : 1;
        if (!image.rect().adjusted(0, 1, -margin, -1).contains(place))
            return name + QStringLiteral(" touches an edge");
    }
    return {};
}

//! The colour of \a widget's lines, by the name that the page gives it.
QRgb tst_Desktops::lineColor(const QString &widget, const QByteArray &name)
{
    return m_panel->property(widget, name).value<QColor>().rgb();
}

//! The header and the row reach from edge to edge of the table, and nothing covers them.
QString tst_Desktops::wrongWithRow()
{
    const QImage table = shown(Table);
    const int rowHeight = table.height() - shown(Header).height();
    const QRgb headerColor = lineColor(Table, "headerColor");
    const QVector<QRgb> first = column(table, 4);
    for (const QRgb pixel : first) {
        if (pixel != headerColor && pixel != RowColor && pixel != White)
            return QStringLiteral("the table has a pixel of ") + QColor(pixel).name();
    }
    if (first.count(RowColor) < rowHeight * 9 / 10)
        return QStringLiteral("the row is cut off: ") + colorsOf(table);
    const int right = m_panel->rows(Table).value(0).last().globalRect.right();
    if (right != m_panel->globalRect(Table).right())
        return QStringLiteral("the row ends at %1").arg(right);
    for (const char *container : {"/qt_scrollarea_hcontainer", "/qt_scrollarea_vcontainer"}) {
        if (m_panel->property(Table + QLatin1String(container), "visible").toBool())
            return QLatin1String(container) + QStringLiteral(" is visible");
    }
    return {};
}

//! Separators, borders and gaps are equally thick wherever they stand.
QString tst_Desktops::wrongWithLines()
{
    const double ratio = double(onServer().width()) / WindowSize.width();
    const bool isWhole = qFuzzyCompare(ratio, std::round(ratio));
    const int border = isWhole ? qRound(ratio) : int(std::ceil(ratio + 0.5));

    QVector<QVector<QRgb>> separators;
    for (const QString &separator : Separators) {
        const QImage image = shown(separator);
        for (const int x : {1, image.width() / 2, image.width() - 2}) {
            QVector<QRgb> pixels = column(image, x);
            pixels.removeAll(White);
            separators.append(pixels);
        }
    }
    const QVector<QRgb> separator = separators.first();
    if (separator.isEmpty() || (!isWhole && separator.size() != qRound(ratio)))
        return QStringLiteral("a separator of %1 pixels").arg(separator.size());
    if (separators.count(separator) != separators.size())
        return QStringLiteral("separators differ");

    for (const QString &button : Buttons) {
        const QImage image = shown(button);
        const QRgb color = lineColor(button, "borderColor");
        const QVector<QRgb> across = line(image, image.height() / 4);
        const QVector<QRgb> down = column(image, image.width() / 4);
        for (const auto &pixels : {across, reversed(across), down, reversed(down)}) {
            const int thickness = leadingPixels(pixels, color);
            if (thickness != border || pixels.at(border) != White)
                return QStringLiteral("%1 has a border of %2 pixels").arg(button).arg(thickness);
        }
    }

    // The gaps between the columns, in the header and in the row.
    const QVector<int> expected(m_panel->rows(Table).value(0).size() - 1, qRound(2 * ratio));
    for (const auto &[address, color] : {std::make_pair(Header, lineColor(Table, "headerColor")),
                                         std::make_pair(Table, RowColor)}) {
        const QImage image = shown(address);
        const QVector<QRgb> pixels = line(image, image.height() - 4 * border);
        QVector<int> gaps;
        for (int x = 4; x < pixels.size() - 4; ++x) {
            if (pixels.at(x) == White && pixels.at(x - 1) == color)
                gaps.append(leadingPixels(pixels.mid(x), White));
        }
        if (gaps != expected) {
            QString text;
            QDebug(&text) << "gaps of" << gaps << "pixels in" << address << "not" << expected;
            return text;
        }
    }
    return {};
}

//! Saves the window as it was last seen, for looking at, where scripts/screenshots.sh asks for it.
void tst_Desktops::keepScreenshot()
{
    const QString folder = qEnvironmentVariable("PANEL_TEST_SCREENSHOTS");
    if (folder.isEmpty())
        return;
    const QString name = QString::fromLatin1(QTest::currentDataTag())
                                 .replace(QLatin1Char(' '), QLatin1Char('-'));
    QVERIFY(m_screen.copy(onServer()).save(QStringLiteral("%1/desktop-%2.png").arg(folder, name)));
}

void tst_Desktops::isScaledAndWhole_data()
{
    QTest::addColumn<QByteArray>("dpi");
    QTest::addColumn<QByteArray>("factor");
    QTest::addColumn<QSize>("size");
    const QByteArray none;
    QTest::newRow("nothing chosen") << none << none << WindowSize;
    QTest::newRow("96") << QByteArray("96") << none << WindowSize;
    QTest::newRow("nonsense") << QByteArray("large") << none << WindowSize;
    QTest::newRow("120") << QByteArray("120") << none << WindowSize * 1.25;
    QTest::newRow("144") << QByteArray("144") << none << WindowSize * 1.5;
    QTest::newRow("192") << QByteArray("192") << none << WindowSize * 2;
    QTest::newRow("288") << QByteArray("288") << none << WindowSize * 3;
    for (const double scale : {1.25, 1.5, 1.75, 3.0})
        QTest::addRow("factor %g", scale)
                << none << QByteArray::number(scale) << WindowSize * scale;
}

void tst_Desktops::isScaledAndWhole()
{
    QFETCH(QByteArray, dpi);
    QFETCH(QByteArray, factor);
    QFETCH(QSize, size);
    QVERIFY(setTextDpi(dpi));
    if (!factor.isEmpty())
        setVariable(QLatin1String("QT_SCALE_FACTOR=") + QString::fromLatin1(factor));
    QVERIFY(start());

    QCOMPARE(onServer().size(), size);
    QCOMPARE(m_panel->property(Window, "size").toSize(), WindowSize);
    keepScreenshot();
    QCOMPARE(wrongWithTexts(), QString());
    QCOMPARE(wrongWithRow(), QString());
    QCOMPARE(wrongWithLines(), QString());
}

void tst_Desktops::goesByWhatQtWasTold_data()
{
    QTest::addColumn<QString>("setting");
    QTest::addColumn<QSize>("size");

    const QSize plain = WindowSize;
    const QSize chosen = WindowSize * 1.25;
    QTest::newRow("factor") << "QT_SCALE_FACTOR=1" << plain;
    QTest::newRow("factors") << "QT_SCREEN_SCALE_FACTORS=1.5" << WindowSize * 1.5;
    QTest::newRow("factors by name") << "QT_SCREEN_SCALE_FACTORS=none=2;screen=1;" << plain;
    QTest::newRow("by the monitors") << "QT_AUTO_SCREEN_SCALE_FACTOR=1" << plain;
    QTest::newRow("enabled") << "QT_ENABLE_HIGHDPI_SCALING=1" << plain;
    QTest::newRow("disabled") << "QT_ENABLE_HIGHDPI_SCALING=0" << plain;
    QTest::newRow("former factor") << "QT_DEVICE_PIXEL_RATIO=3" << WindowSize * 3;
    QTest::newRow("former automatic one") << "QT_DEVICE_PIXEL_RATIO=auto" << plain;
    // These choose nothing.
    QTest::newRow("no automatic one") << "QT_AUTO_SCREEN_SCALE_FACTOR=0" << chosen;
    QTest::newRow("empty factor") << "QT_SCALE_FACTOR=" << chosen;
    QTest::newRow("no number") << "QT_SCALE_FACTOR=large" << chosen;
    QTest::newRow("factor 0") << "QT_SCALE_FACTOR=0" << chosen;
    QTest::newRow("empty factors") << "QT_SCREEN_SCALE_FACTORS=;" << chosen;
    QTest::newRow("no truth value") << "QT_ENABLE_HIGHDPI_SCALING=no" << chosen;
    QTest::newRow("fonts") << "QT_FONT_DPI=96" << chosen;
}

void tst_Desktops::goesByWhatQtWasTold()
{
    QFETCH(QString, setting);
    QFETCH(QSize, size);
    QVERIFY(setTextDpi("120"));
    setVariable(setting);
    QVERIFY(start());

    QCOMPARE(onServer().size(), size);
    QCOMPARE(wrongWithRow(), QString());
    QCOMPARE(wrongWithTexts(), QString());
    const auto environment = m_panel->application(QStringLiteral("environment")).toStringList();
    // What takes the chosen scale's place isn't the children's affair.
    const bool isReplaced =
            setting.startsWith(QLatin1String("QT_SCALE_FACTOR")) && size == WindowSize * 1.25;
    QCOMPARE(environment.contains(setting), !isReplaced);
}

void tst_Desktops::fitsTheWorkArea_data()
{
    QTest::addColumn<QByteArray>("dpi");
    QTest::addColumn<QString>("workArea");
    QTest::addColumn<double>("scale");

    const auto area = [](const QSize &size) {
        return QStringLiteral("0, 48, %1, %2").arg(size.width()).arg(size.height());
    };
    // The test's own screen holds a scale of 3, but not of 4.
    QTest::newRow("screen") << QByteArray("384") << QString() << 3.25;
    QTest::newRow("exact") << QByteArray("192") << area(2 * WindowSize) << 2.0;
    QTest::newRow("too low") << QByteArray("192") << area(2 * WindowSize - QSize(0, 1)) << 1.75;
    QTest::newRow("tiny") << QByteArray("192") << area(WindowSize / 2) << 1.0;
}

void tst_Desktops::fitsTheWorkArea()
{
    QFETCH(QByteArray, dpi);
    QFETCH(QString, workArea);
    QFETCH(double, scale);
    QVERIFY(setTextDpi(dpi));
    if (!workArea.isEmpty())
        QVERIFY(setWorkArea(workArea));
    QVERIFY(start());
    QCOMPARE(onServer().size(), WindowSize * scale);
}

void tst_Desktops::fitsOneMonitor_data()
{
    QTest::addColumn<QString>("second");

    QTest::newRow("the primary one") << "*second";
    QTest::newRow("the first where none is primary") << "second";
}

void tst_Desktops::fitsOneMonitor()
{
    QFETCH(const QString, second);
    const bool isPrimary = second.startsWith(QLatin1Char('*'));
    const QString none = QStringLiteral("none");
    const auto geometry = [](const QSize &size, int x) {
        return QStringLiteral("%1/200x%2/150+%3+0").arg(size.width()).arg(size.height()).arg(x);
    };
    const QSize firstSize = WindowSize * 1.25;
    const QSize secondSize = WindowSize * 1.5;
    QVERIFY(addMonitor(QStringLiteral("first"), geometry(firstSize, 0), none));
    QVERIFY(addMonitor(second, geometry(secondSize, firstSize.width()),
                       isPrimary ? QStringLiteral("screen") : none));
    QVERIFY(addMonitor(QStringLiteral("third"), geometry(WindowSize * 2.5, 0), none));
    QVERIFY(setTextDpi("192"));
    QVERIFY(start());
    QCOMPARE(onServer().size(), isPrimary ? secondSize : firstSize);
}

void tst_Desktops::goesByTheDisplayThatItOpensOn_data()
{
    QTest::addColumn<QString>("variable");
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("argument");

    // "%1" is the display's number.
    QTest::newRow("variable") << ":%1" << QString() << QString();
    QTest::newRow("option") << ":9999"
                            << "-display"
                            << ":%1";
    QTest::newRow("option with two hyphens") << ":9999"
                                             << "--display"
                                             << ":%1";
    QTest::newRow("second screen") << ":%1.1" << QString() << QString();
    QTest::newRow("second screen by the option") << ":9999"
                                                 << "-display"
                                                 << ":%1.1";
}

// A server of its own, with two screens and without RANDR. Resources belong to its first screen.
void tst_Desktops::goesByTheDisplayThatItOpensOn()
{
    QFETCH(const QString, variable);
    QFETCH(const QString, option);
    QFETCH(const QString, argument);
    const auto screen = [](const QSize &size) {
        return QStringLiteral("%1x%2x24").arg(size.width()).arg(size.height());
    };
    const QSize firstSize = WindowSize * 1.75;
    const QSize secondSize = WindowSize * 1.5;
    QProcess server;
    server.setReadChannel(QProcess::StandardOutput);
    server.start(QStringLiteral("Xvfb"),
                 {"-displayfd", "1", "-nolisten", "tcp", "-noreset", "-extension", "RANDR",
                  "-screen", "0", screen(firstSize), "-screen", "1", screen(secondSize)});
    QTRY_VERIFY_WITH_TIMEOUT(server.canReadLine(), ShowTimeoutMs);
    const QString number = QString::fromLatin1(server.readLine().trimmed());
    QVERIFY(setTextDpi("168", QLatin1Char(':') + number));

    m_panel->environment().insert(QStringLiteral("DISPLAY"),
                                  QString(variable).replace(QLatin1String("%1"), number));
    QStringList arguments;
    if (!option.isEmpty())
        arguments << option << QString(argument).replace(QLatin1String("%1"), number);
    QVERIFY(m_panel->start(arguments));
    // 168 dots per inch are a scale of 1.75; the second screen holds one of 1.5.
    const bool isSecond = (variable + argument).endsWith(QLatin1String(".1"));
    QCOMPARE(m_panel->grab(Window).size(), isSecond ? secondSize : firstSize);

    m_panel->invoke(Window, "close");
    QCOMPARE(m_panel->waitForExit(), std::optional<int>(0));
    server.terminate();
    QVERIFY(server.waitForFinished());
}

void tst_Desktops::childrenKnowNothingOfTheScale()
{
    QVERIFY(setTextDpi("192"));
    QVERIFY(start());
    QTRY_VERIFY(m_panel->hasDaemonRecord());
    const QStringList known = m_panel->daemonRecord(QStringLiteral("environment"))
                              + m_panel->application(QStringLiteral("environment")).toStringList();
    QVERIFY(known.contains(QStringLiteral("QT_QPA_PLATFORM=xcb")));
    QCOMPARE(known.filter(QRegularExpression(QStringLiteral("^QT_.*(SCALE|DPI)"))), QStringList());
}

void tst_Desktops::settingsPageIsReadableAndWhole_data()
{
    QTest::addColumn<QString>("setting");

    for (const char *factor : {"1", "1.25", "1.5", "1.75", "2", "3"})
        QTest::newRow(factor) << "QT_SCALE_FACTOR=" + QString::fromLatin1(factor);
}

// Its tab is hidden in this build: it is brought to the front from inside.
void tst_Desktops::settingsPageIsReadableAndWhole()
{
    QFETCH(QString, setting);
    setVariable(setting);
    QVERIFY(start());
    QVERIFY(m_panel->setProperty(QStringLiteral("stackedWidget"), "currentIndex", 1));
    QTRY_VERIFY(m_panel->isExposed(QStringLiteral("SettingsForm")));
    QVERIFY(waitForStillScreen());
    keepScreenshot();

    for (const char *name :
         {"label", "label_6", "label_7", "label_8", "label_9", "label_10", "label_16", "cbRpcLog",
          "cbLogLevel", "spinLogDays", "spinRpcTimeout", "spinUpload"}) {
        QRect place = m_panel->globalRect(QStringLiteral("SettingsForm/") + QLatin1String(name));
        if (qstrcmp(name, "cbRpcLog") == 0)
            place = {place.left() + CheckBoxWidth, place.top(), CheckBoxTextWidth, place.height()};
        else if (name[0] != 'l') // without the frame and the arrows
            place.adjust(4, 5, -20, -5);
        const QImage image = m_screen.copy(onServer(place));
        QVERIFY2(greatestContrast(image) >= TextContrast, name);
    }

    const double ratio = double(onServer().width()) / WindowSize.width();
    for (const char *name : {"frame", "frame_2", "frame_3"}) {
        const QImage image = shown(QStringLiteral("SettingsForm/") + QLatin1String(name));
        const QVector<QRgb> across = line(image, image.height() / 2);
        const QVector<QRgb> down = column(image, image.width() / 2);
        for (const auto &pixels : {across, reversed(across), down, reversed(down)}) {
            QVERIFY2(pixels.first() != White, name);
            QCOMPARE(leadingPixels(pixels, pixels.first()), qRound(ratio));
        }
    }
}

void tst_Desktops::dragsDontDrift_data()
{
    QTest::addColumn<QString>("factor");
    for (const char *factor : {"1", "1.25", "1.5", "1.75", "2", "3"})
        QTest::newRow(factor) << QString::fromLatin1(factor);
}

void tst_Desktops::dragsDontDrift()
{
    QFETCH(QString, factor);
    constexpr QPoint Way(61, 37);
    m_panel->environment().insert(QStringLiteral("QT_SCALE_FACTOR"), factor);
    QVERIFY(start());
    const QPoint home = onServer().topLeft();
    const QPoint grip = home + QPoint(400, 12) * factor.toDouble();
    const auto near = [this](const QPoint &place) {
        const QPoint offset = onServer().topLeft() - place;
        return std::abs(offset.x()) <= 1 && std::abs(offset.y()) <= 1;
    };

    for (int drag = 0; drag < 20; ++drag) {
        const QPoint from = drag % 2 ? Way : QPoint();
        const QPoint to = drag % 2 ? QPoint() : Way;
        PanelProcess::moveMouse(grip + from);
        PanelProcess::pressButton();
        PanelProcess::moveMouse(grip + to);
        PanelProcess::releaseButton();
        QTRY_VERIFY(near(home + to));
    }
    QCOMPARE(onServer().topLeft(), home);

    // Not where the pointer is: some servers have it in their screenshots.
    const QPoint corner = onServer().topRight() + QPoint(-46, 4) * factor.toDouble();
    const QPoint pointer = onServer().topRight() + QPoint(-8, 22) * factor.toDouble();
    const QRgb idle = screenshot().pixel(corner);
    PanelProcess::moveMouse(pointer);
    QTRY_VERIFY(screenshot().pixel(corner) != idle);
    PanelProcess::clickAt(pointer);
    QCOMPARE(m_panel->waitForExit(), std::optional<int>(0));
}

void tst_Desktops::firstClickClosesUnderItsTip_data()
{
    dragsDontDrift_data();
}

//! As somebody does who reads the tip before clicking.
void tst_Desktops::firstClickClosesUnderItsTip()
{
    QFETCH(QString, factor);
    m_panel->environment().insert(QStringLiteral("QT_SCALE_FACTOR"), factor);
    QVERIFY(start());
    const auto place = [&](const QPoint &fromTopRight) {
        return onServer().topRight() + fromTopRight * factor.toDouble();
    };
    PanelProcess::moveMouse(place({-40, 1}));
    const QString tip = QStringLiteral("QTipLabel");
    QTRY_VERIFY_WITH_TIMEOUT(m_panel->exists(tip) && m_panel->isExposed(tip), ShowTimeoutMs);

    // Above a scale of 1 Qt puts the tip there.
    const QPoint middle = place({-25, 16});
    if (factor != QStringLiteral("1"))
        QVERIFY(onServer(m_panel->globalRect(tip)).contains(middle));
    PanelProcess::moveMouse(middle);
    PanelProcess::pressButton();
    PanelProcess::releaseButton();
    QCOMPARE(m_panel->waitForExit(), std::optional<int>(0));
}

QTEST_MAIN(tst_Desktops)
#include "tst_Desktops.moc"
