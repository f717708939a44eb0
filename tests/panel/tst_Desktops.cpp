#include "tests/support/PanelProcess.h"
#include "tests/support/ServerWindow.h"
#include "tests/support/contrast.h"

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
const QStringList Buttons = {QStringLiteral("kqfwdt"), QStringLiteral("kqzsk"), RepairButton};
const QStringList Titles = {QStringLiteral("OverviewForm/labelOW"),
                            QStringLiteral("OverviewForm/label"),
                            QStringLiteral("OverviewForm/label_2")};
const auto NameLabel = QStringLiteral("TabTitle/label");
const QStringList Separators = {QStringLiteral("OverviewForm/line"),
                                QStringLiteral("OverviewForm/line_3")};

constexpr QSize WindowSize(800, 600);
constexpr double TextContrast = 4.5;
constexpr QRgb RowColor = qRgb(0xe7, 0xec, 0xf7);
constexpr QRgb HeaderColor = qRgb(0x00, 0x78, 0xd4);
constexpr QRgb BorderColor = HeaderColor;
constexpr QRgb White = qRgb(255, 255, 255);
constexpr QRgb CloseHoverColor = qRgb(255, 0, 0);
constexpr int MediumLightness = 128;
constexpr int BoxTimeoutMs = 20000;
constexpr int ShowTimeoutMs = 20000;
//! Right of it there is nothing but text in a button.
constexpr int ButtonTextOnly = 80;
constexpr int CheckBoxWidth = 24;
constexpr int CheckBoxTextWidth = 50;

QImage screenshot()
{
    return QGuiApplication::primaryScreen()->grabWindow(0).toImage().convertToFormat(
            QImage::Format_RGB32);
}

QRgb mainColor(const QImage &image)
{
    QHash<QRgb, int> counts;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            ++counts[image.pixel(x, y)];
    }
    return std::max_element(counts.cbegin(), counts.cend()).key();
}

//! The smallest rectangle around all that stands out of the main colour.
QRect ink(const QImage &image)
{
    const QRgb background = mainColor(image);
    QRect result;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (contrast(image.pixel(x, y), background) > 2)
                result |= QRect(x, y, 1, 1);
        }
    }
    return result;
}

double textContrast(const QImage &image)
{
    const QRgb background = mainColor(image);
    double result = 1;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            result = std::max(result, contrast(image.pixel(x, y), background));
    }
    return result;
}

//! How many of \a pixels from the first on have \a color.
int run(const QVector<QRgb> &pixels, QRgb color)
{
    const auto end = std::find_if(pixels.begin(), pixels.end(),
                                  [color](QRgb pixel) { return pixel != color; });
    return int(end - pixels.begin());
}

QVector<QRgb> column(const QImage &image, int x)
{
    QVector<QRgb> result;
    for (int y = 0; y < image.height(); ++y)
        result.append(image.pixel(x, y));
    return result;
}

QVector<QRgb> line(const QImage &image, int y)
{
    QVector<QRgb> result;
    for (int x = 0; x < image.width(); ++x)
        result.append(image.pixel(x, y));
    return result;
}

QVector<QRgb> reversed(QVector<QRgb> pixels)
{
    std::reverse(pixels.begin(), pixels.end());
    return pixels;
}

} // namespace

/*!
    The window on the desktops that people have: every text scale, device pixel ratio and theme, as
    the X server shows it.
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
    void fitsThePrimaryMonitor();
    void childrenKnowNothingOfTheScale();
    void isReadableInEveryTheme_data();
    void isReadableInEveryTheme();
    void staysReadableWhenTheThemeChanges();
    void settingsPageIsReadableAndWhole_data();
    void settingsPageIsReadableAndWhole();
    void dragsDontDrift_data();
    void dragsDontDrift();

private:
    void setTextDpi(const QByteArray &dpi);
    static void setWorkArea(const QString &area);
    void setVariable(const QString &setting);
    void setQt5ct(const QByteArray &scheme);
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
    void checkTexts();
    void checkRow();
    void checkLines();
    void openBox();
    void checkBox();
    void keepScreenshot();

    std::unique_ptr<PanelProcess> m_panel;
    QImage m_screen;
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
    setTextDpi({});
    QCOMPARE(status, std::optional<int>(0));
}

//! Sets the X resource Xft.dpi, or removes it, behind one of another program.
void tst_Desktops::setTextDpi(const QByteArray &dpi)
{
    QProcess xrdb;
    xrdb.start(QStringLiteral("xrdb"), {QStringLiteral("-load"), QStringLiteral("-nocpp")});
    xrdb.write("other.Xft.dpi:\t288\n" + (dpi.isEmpty() ? dpi : "Xft.dpi:\t" + dpi + '\n'));
    xrdb.closeWriteChannel();
    QVERIFY(xrdb.waitForFinished());
    QCOMPARE(xrdb.exitCode(), 0);
}

//! What the window manager would tell of panels and docks.
void tst_Desktops::setWorkArea(const QString &area)
{
    const QString property = QStringLiteral("_NET_WORKAREA");
    QCOMPARE(QProcess::execute(QStringLiteral("xprop"),
                               {QStringLiteral("-root"), QStringLiteral("-f"), property,
                                QStringLiteral("32c"), QStringLiteral("-set"), property, area}),
             0);
}

//! Sets a variable for the panel, as in NAME=value.
void tst_Desktops::setVariable(const QString &setting)
{
    const int end = setting.indexOf(QLatin1Char('='));
    m_panel->environment().insert(setting.left(end), setting.mid(end + 1));
}

//! Makes \a scheme the colours of the desktop, by way of qt5ct.
void tst_Desktops::setQt5ct(const QByteArray &scheme)
{
    const QString folder = qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/qt5ct");
    QVERIFY(QDir().mkpath(folder));
    // A new file, as qt5ct itself saves: it is the folder that is watched.
    QFile file(folder + QStringLiteral("/qt5ct.conf"));
    file.remove();
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[Appearance]\ncolor_scheme_path=/usr/share/qt5ct/colors/" + scheme
               + ".conf\ncustom_palette=true\nstyle=Fusion\n");
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

void tst_Desktops::checkTexts()
{
    const auto all = texts();
    QCOMPARE(all.size(), 19);
    for (const auto &[name, image] : all) {
        QVERIFY2(textContrast(image) >= TextContrast,
                 qPrintable(QStringLiteral("%1: %2").arg(name).arg(textContrast(image))));
        // Nothing of it touches the edge, and there is something.
        const QRect place = ink(image);
        QVERIFY2(place.height() >= 6 && place.width() >= 3, qPrintable(name));
        // Labels are as wide as their text.
        const int margin = Titles.contains(name) || name == NameLabel ? 0 : 1;
        QVERIFY2(image.rect().adjusted(0, 1, -margin, -1).contains(place), qPrintable(name));
    }
}

//! The header and the row reach from edge to edge of the table, and nothing covers them.
void tst_Desktops::checkRow()
{
    const QImage table = shown(Table);
    const int headerHeight = shown(Header).height();
    const QVector<QRgb> first = column(table, 4);
    QCOMPARE(std::count(first.begin(), first.end(), HeaderColor)
                     + std::count(first.begin(), first.end(), RowColor)
                     + std::count(first.begin(), first.end(), White),
             first.size());
    const int rowHeight = table.height() - headerHeight;
    QVERIFY(std::count(first.begin(), first.end(), RowColor) >= rowHeight * 9 / 10);
    QCOMPARE(m_panel->rows(Table).value(0).last().globalRect.right(),
             m_panel->globalRect(Table).right());
    for (const char *container : {"/qt_scrollarea_hcontainer", "/qt_scrollarea_vcontainer"})
        QVERIFY2(!m_panel->property(Table + QLatin1String(container), "visible").toBool(),
                 container);
}

void tst_Desktops::checkLines()
{
    const double ratio = double(onServer().width()) / WindowSize.width();
    const bool isWhole = qFuzzyCompare(ratio, std::round(ratio));
    const int border = isWhole ? qRound(ratio) : int(std::ceil(ratio + 0.5));

    QVector<QVector<QRgb>> separators;
    for (const QString &separator : Separators) {
        const QImage image = shown(separator);
        for (const int x : {1, image.width() / 2, image.width() - 2}) {
            QVector<QRgb> pixels = column(image, x);
            pixels.erase(std::remove(pixels.begin(), pixels.end(), White), pixels.end());
            separators.append(pixels);
        }
    }
    QVERIFY(!separators.first().isEmpty());
    if (!isWhole)
        QCOMPARE(separators.first().size(), qRound(ratio));
    for (const auto &separator : qAsConst(separators))
        QCOMPARE(separator, separators.first());

    for (const QString &button : Buttons) {
        const QImage image = shown(button);
        const QVector<QRgb> across = line(image, image.height() / 4);
        const QVector<QRgb> down = column(image, image.width() / 4);
        for (const auto &pixels : {across, reversed(across), down, reversed(down)}) {
            QCOMPARE(run(pixels, BorderColor), border);
            QCOMPARE(pixels.at(border), White);
        }
    }

    // The gaps between the columns, in the header and in the row.
    const int gap = qRound(2 * ratio);
    for (const auto &[address, color] :
         {std::make_pair(Header, HeaderColor), std::make_pair(Table, RowColor)}) {
        const QImage image = shown(address);
        const QVector<QRgb> pixels = line(image, image.height() - 4 * border);
        QStringList gaps;
        for (int x = 4; x < pixels.size() - 4; ++x) {
            if (pixels.at(x) == White && pixels.at(x - 1) == color)
                gaps.append(QString::number(run(pixels.mid(x), White)));
        }
        const QString expected = QString::number(gap);
        QCOMPARE(gaps, QStringList({expected, expected, expected, expected, expected}));
    }
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

//! Has the panel tell that nothing needs repair.
void tst_Desktops::openBox()
{
    PanelProcess::clickAt(onServer(m_panel->globalRect(RepairButton)).center());
    QTRY_VERIFY_WITH_TIMEOUT(m_panel->messageBox(), BoxTimeoutMs);
}

//! Judges the box and closes it.
void tst_Desktops::checkBox()
{
    for (const QString &part : {QStringLiteral("QMessageBox/qt_msgbox_label"),
                                QStringLiteral("QMessageBox/QPushButton")}) {
        const auto shownContrast = [&] {
            m_screen = screenshot();
            const QImage image = shown(part);
            return textContrast(image.copy(image.rect().adjusted(6, 6, -6, -6)));
        };
        QTRY_VERIFY2(shownContrast() >= TextContrast, qPrintable(part));
    }
    keepScreenshot();
    PanelProcess::pressKeys("Return");
    QTRY_VERIFY(!m_panel->messageBox());
}

void tst_Desktops::isScaledAndWhole_data()
{
    QTest::addColumn<QByteArray>("dpi");
    QTest::addColumn<QByteArray>("factor");
    QTest::addColumn<QSize>("size");
    const QByteArray none;
    QTest::newRow("no wish") << none << none << QSize(800, 600);
    QTest::newRow("96") << QByteArray("96") << none << QSize(800, 600);
    QTest::newRow("nonsense") << QByteArray("large") << none << QSize(800, 600);
    QTest::newRow("120") << QByteArray("120") << none << QSize(1000, 750);
    QTest::newRow("144") << QByteArray("144") << none << QSize(1200, 900);
    QTest::newRow("192") << QByteArray("192") << none << QSize(1600, 1200);
    QTest::newRow("288") << QByteArray("288") << none << QSize(2400, 1800);
    for (const double scale : {1.25, 1.5, 1.75, 3.0})
        QTest::addRow("factor %g", scale)
                << none << QByteArray::number(scale) << WindowSize * scale;
}

void tst_Desktops::isScaledAndWhole()
{
    QFETCH(QByteArray, dpi);
    QFETCH(QByteArray, factor);
    QFETCH(QSize, size);
    setTextDpi(dpi);
    if (!factor.isEmpty())
        setVariable(QLatin1String("QT_SCALE_FACTOR=") + QString::fromLatin1(factor));
    QVERIFY(start());

    QCOMPARE(onServer().size(), size);
    QCOMPARE(m_panel->property(Window, "size").toSize(), WindowSize);
    keepScreenshot();
    checkTexts();
    checkRow();
    checkLines();
}

void tst_Desktops::goesByWhatQtWasTold_data()
{
    QTest::addColumn<QString>("setting");
    QTest::addColumn<QSize>("size");

    QTest::newRow("factor") << "QT_SCALE_FACTOR=1" << QSize(800, 600);
    QTest::newRow("screens") << "QT_SCREEN_SCALE_FACTORS=1.5" << QSize(1200, 900);
    QTest::newRow("off") << "QT_AUTO_SCREEN_SCALE_FACTOR=0" << QSize(800, 600);
    QTest::newRow("disabled") << "QT_ENABLE_HIGHDPI_SCALING=0" << QSize(800, 600);
    QTest::newRow("nothing") << "QT_SCALE_FACTOR=" << QSize(1600, 1200);
    QTest::newRow("fonts") << "QT_FONT_DPI=96" << QSize(1600, 1200);
}

void tst_Desktops::goesByWhatQtWasTold()
{
    QFETCH(QString, setting);
    QFETCH(QSize, size);
    setTextDpi("192");
    setVariable(setting);
    QVERIFY(start());

    QCOMPARE(onServer().size(), size);
    checkRow();
    checkTexts();
    const auto environment = m_panel->application(QStringLiteral("environment")).toStringList();
    QVERIFY(environment.contains(setting) || setting.endsWith(QLatin1Char('=')));
}

void tst_Desktops::fitsTheWorkArea_data()
{
    QTest::addColumn<QByteArray>("dpi");
    QTest::addColumn<QString>("workArea");
    QTest::addColumn<double>("scale");

    // The test's own screen holds a scale of 3, but not of 4.
    QTest::newRow("screen") << QByteArray("384") << QString() << 3.25;
    QTest::newRow("exact") << QByteArray("192") << QStringLiteral("0, 48, 1600, 1200") << 2.0;
    QTest::newRow("too low") << QByteArray("192") << QStringLiteral("0, 48, 1920, 1199") << 1.75;
    QTest::newRow("tiny") << QByteArray("192") << QStringLiteral("0, 0, 640, 480") << 1.0;
}

void tst_Desktops::fitsTheWorkArea()
{
    QFETCH(QByteArray, dpi);
    QFETCH(QString, workArea);
    QFETCH(double, scale);
    setTextDpi(dpi);
    if (!workArea.isEmpty())
        setWorkArea(workArea);
    QVERIFY(start());
    QCOMPARE(onServer().size(), WindowSize * scale);
    const QSize screen = QGuiApplication::primaryScreen()->size();
    setWorkArea(QStringLiteral("0, 0, %1, %2").arg(screen.width()).arg(screen.height()));
}

void tst_Desktops::fitsThePrimaryMonitor()
{
    const auto xrandr = [](const QString &arguments) {
        QCOMPARE(QProcess::execute(QStringLiteral("xrandr"), arguments.split(QLatin1Char(' '))), 0);
    };
    xrandr(QStringLiteral("--setmonitor first 800/200x600/150+0+0 none"));
    xrandr(QStringLiteral("--setmonitor *second 1200/300x900/200+800+0 screen"));
    xrandr(QStringLiteral("--setmonitor third 2000/500x1500/400+0+0 none"));
    setTextDpi("192");
    const bool isShown = start();
    for (const char *name : {"first", "second", "third"})
        xrandr(QStringLiteral("--delmonitor ") + QLatin1String(name));
    QVERIFY(isShown);
    QCOMPARE(onServer().size(), QSize(1200, 900));
}

void tst_Desktops::childrenKnowNothingOfTheScale()
{
    setTextDpi("192");
    QVERIFY(start());
    QTRY_VERIFY(m_panel->hasDaemonRecord());
    const QStringList known = m_panel->daemonRecord(QStringLiteral("environment"))
                              + m_panel->application(QStringLiteral("environment")).toStringList();
    QVERIFY(known.contains(QStringLiteral("QT_QPA_PLATFORM=xcb")));
    QCOMPARE(known.filter(QRegularExpression(QStringLiteral("^QT_.*(SCALE|DPI)"))), QStringList());
}

void tst_Desktops::isReadableInEveryTheme_data()
{
    QTest::addColumn<QByteArray>("dpi");
    QTest::addColumn<QString>("setting");

    for (const char *dpi : {"96", "192"}) {
        const auto add = [dpi](const char *name, const char *setting) {
            QTest::addRow("%s at %s", name, dpi) << QByteArray(dpi) << QString::fromLatin1(setting);
        };
        add("Fusion", "QT_STYLE_OVERRIDE=Fusion");
        add("Windows", "QT_STYLE_OVERRIDE=Windows");
        add("Breeze", "QT_STYLE_OVERRIDE=breeze");
        add("adwaita-dark", "QT_STYLE_OVERRIDE=adwaita-dark");
        add("dark qt5ct", "QT_QPA_PLATFORMTHEME=qt5ct");
        add("dark gtk3", "QT_QPA_PLATFORMTHEME=gtk3");
    }
}

void tst_Desktops::isReadableInEveryTheme()
{
    QFETCH(QByteArray, dpi);
    QFETCH(QString, setting);
    setTextDpi(dpi);
    setQt5ct("darker");
    setVariable(setting);
    setVariable(QStringLiteral("GTK_THEME=Adwaita:dark"));
    // GTK never frees all of its own.
    if (setting.endsWith(QLatin1String("gtk3")))
        setVariable(QStringLiteral("ASAN_OPTIONS=detect_leaks=0"));
    QVERIFY(start());

    QCOMPARE(onServer().width(), dpi == "192" ? 1600 : 800);
    checkTexts();
    checkRow();

    openBox();
    checkBox();
}

void tst_Desktops::staysReadableWhenTheThemeChanges()
{
    setQt5ct("airy");
    setVariable(QStringLiteral("QT_QPA_PLATFORMTHEME=qt5ct"));
    QVERIFY(start());
    openBox();
    const auto boxText = [this] {
        const QVariant palette = m_panel->property(QStringLiteral("QMessageBox"), "palette");
        return palette.value<QPalette>().windowText().color().lightness();
    };
    QVERIFY(boxText() < MediumLightness);

    setQt5ct("darker");
    QTRY_VERIFY_WITH_TIMEOUT(boxText() > MediumLightness, BoxTimeoutMs);
    checkBox();
    QVERIFY(waitForStillScreen());
    checkTexts();
    checkRow();
}

void tst_Desktops::settingsPageIsReadableAndWhole_data()
{
    QTest::addColumn<QString>("setting");

    QTest::newRow("light") << "QT_STYLE_OVERRIDE=Fusion";
    QTest::newRow("adwaita-dark") << "QT_STYLE_OVERRIDE=adwaita-dark";
    QTest::newRow("dark qt5ct") << "QT_QPA_PLATFORMTHEME=qt5ct";
    for (const char *factor : {"1.25", "1.5", "1.75", "2", "3"})
        QTest::newRow(factor) << "QT_SCALE_FACTOR=" + QString::fromLatin1(factor);
}

// Its tab is hidden in this build: it is brought to the front from inside.
void tst_Desktops::settingsPageIsReadableAndWhole()
{
    QFETCH(QString, setting);
    setQt5ct("darker");
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
        QVERIFY2(textContrast(image) >= TextContrast, name);
    }

    const double ratio = double(onServer().width()) / WindowSize.width();
    for (const char *name : {"frame", "frame_2", "frame_3"}) {
        const QImage image = shown(QStringLiteral("SettingsForm/") + QLatin1String(name));
        const QVector<QRgb> across = line(image, image.height() / 2);
        const QVector<QRgb> down = column(image, image.width() / 2);
        for (const auto &pixels : {across, reversed(across), down, reversed(down)}) {
            QVERIFY2(pixels.first() != White, name);
            QCOMPARE(run(pixels, pixels.first()), qRound(ratio));
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

    const QPoint corner = onServer().topRight() + QPoint(-46, 4) * factor.toDouble();
    PanelProcess::moveMouse(corner);
    QTRY_COMPARE(screenshot().pixel(corner), CloseHoverColor);
    PanelProcess::clickAt(corner);
    QCOMPARE(m_panel->waitForExit(), std::optional<int>(0));
}

QTEST_MAIN(tst_Desktops)
#include "tst_Desktops.moc"
