#include "tests/support/PanelProcess.h"
#include "tests/support/contrast.h"

#include <QRegularExpression>
#include <QScopeGuard>
#include <QTest>

namespace {

const auto Window = QStringLiteral("ServiceContainer");
const auto HallButton = QStringLiteral("kqfwdt");
const auto RepairButton = QStringLiteral("xfkqfw");

//! The close button, as the list names it, has no object name: its place is this from the window's
//! corner.
const auto Close = QStringLiteral("close");
constexpr QRect ClosePlace(-49, 0, 50, 32);

struct Pair
{
    QString what;
    QString widget; //!< empty where it is not to be looked for
    QString state;
    QRgb color;
    QRgb background;
    QString ratio;
};

//! The rows of the tables that list the contrasts.
QList<Pair> listedPairs()
{
    QFile file(QStringLiteral(PANEL_CONTRASTS));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("can't read %s", qPrintable(file.fileName()));
    const QRegularExpression row(QStringLiteral("^\\| ([^|]+) \\| (?:`([^`]+)` \\| ([^|]+) \\| )?"
                                                "`(#\\w{6})` \\| `(#\\w{6})` \\| ([\\d.]+) \\|"),
                                 QRegularExpression::MultilineOption);
    QList<Pair> result;
    auto rows = row.globalMatch(QString::fromUtf8(file.readAll()));
    while (rows.hasNext()) {
        const QRegularExpressionMatch match = rows.next();
        result.append({match.captured(1), match.captured(2), match.captured(3),
                       QColor(match.captured(4)).rgb(), QColor(match.captured(5)).rgb(),
                       match.captured(6)});
    }
    return result;
}

int pixels(const QImage &image, QRgb color)
{
    int result = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            result += image.pixel(x, y) == color;
    }
    return result;
}

} // namespace

/*!
    Contrast and sharpness.
*/
class tst_Looks : public QObject
{
    Q_OBJECT

private slots:
    void contrastsAreAsListed();
    void listedColorsAreShown_data();
    void listedColorsAreShown();
    void stripIconIsSharp_data();
    void stripIconIsSharp();
    void iconsAreSharp_data();
    void iconsAreSharp();
};

void tst_Looks::contrastsAreAsListed()
{
    const QList<Pair> pairs = listedPairs();
    QCOMPARE(pairs.size(), 25);
    for (const Pair &pair : pairs) {
        const QString ratio = QString::number(contrast(pair.color, pair.background), 'f', 2);
        QVERIFY2(ratio == pair.ratio, qPrintable(pair.what + QLatin1Char(' ') + ratio));
    }
}

void tst_Looks::listedColorsAreShown_data()
{
    QTest::addColumn<bool>("isRunning");
    QTest::addColumn<QString>("hovered");

    QTest::newRow("idle") << false << QString();
    QTest::newRow("hovered") << false << HallButton;
    QTest::newRow("pressed") << false << HallButton;
    QTest::newRow("close hovered") << false << Close;
    QTest::newRow("running") << true << QString();
    QTest::newRow("message box") << true << QString();
}

void tst_Looks::listedColorsAreShown()
{
    QFETCH(bool, isRunning);
    QFETCH(QString, hovered);
    const QString state = QString::fromLatin1(QTest::currentDataTag());
    PanelProcess panel;
    if (isRunning)
        panel.placeDaemon();
    PanelProcess::moveMouse(QPoint(0, 0));
    QVERIFY(panel.start());
    const auto place = [&panel](const QString &widget) {
        return widget == Close ? ClosePlace.translated(panel.globalRect(Window).topRight())
                               : panel.globalRect(widget);
    };

    if (!hovered.isEmpty())
        PanelProcess::moveMouse(place(hovered).center());
    const auto release = qScopeGuard([&] {
        PanelProcess::moveMouse(QPoint(0, 0));
        PanelProcess::releaseButton();
    });
    if (state == QLatin1String("pressed"))
        PanelProcess::pressButton();
    if (state == QLatin1String("message box")) {
        panel.click(RepairButton);
        QTRY_VERIFY(panel.messageBox());
    }

    int found = 0;
    const QList<Pair> pairs = listedPairs();
    for (const Pair &pair : pairs) {
        if (pair.state != state)
            continue;
        const auto isShown = [&] {
            const QImage shown = panel.grabScreen().copy(place(pair.widget));
            return pixels(shown, pair.color) > 0 && pixels(shown, pair.background) > 0;
        };
        QTRY_VERIFY2(isShown(), qPrintable(pair.what));
        ++found;
    }
    QVERIFY(found > 0);
}

void tst_Looks::stripIconIsSharp_data()
{
    QTest::addColumn<QString>("factor");
    QTest::addColumn<QSize>("size");

    QTest::newRow("1") << "1" << QSize(18, 17);
    QTest::newRow("2") << "2" << QSize(36, 34);
}

void tst_Looks::stripIconIsSharp()
{
    QFETCH(QString, factor);
    QFETCH(QSize, size);
    PanelProcess panel;
    panel.environment().insert(QStringLiteral("QT_SCALE_FACTOR"), factor);
    QVERIFY(panel.start());

    const auto icon = panel.property(QStringLiteral("labelIcon"), "pixmap").value<QImage>();
    QCOMPARE(icon.size(), size);
    QCOMPARE(panel.property(QStringLiteral("labelIcon"), "size").toSize(), QSize(20, 32));
}

void tst_Looks::iconsAreSharp_data()
{
    QTest::addColumn<QString>("button");

    for (const char *name : {"kqfwdt", "kqzsk", "xfkqfw"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void tst_Looks::iconsAreSharp()
{
    QFETCH(QString, button);
    constexpr int Ratio = 2;
    PanelProcess panel;
    panel.environment().insert(QStringLiteral("QT_SCALE_FACTOR"), QString::number(Ratio));
    QVERIFY(panel.start());

    // The icon's half of the button, without the border. Of an icon that is drawn without the ratio
    // each block of pixels has one colour.
    constexpr QRect Icon(4, 4, 48, 72);
    const QImage image = panel.grab(button);
    QCOMPARE(image.size(), QSize(160, 80) * Ratio);
    bool isSharp = false;
    for (int y = Icon.top() * Ratio; y < Icon.bottom() * Ratio; y += Ratio) {
        for (int x = Icon.left() * Ratio; x < Icon.right() * Ratio; x += Ratio) {
            const QRgb color = image.pixel(x, y);
            isSharp = isSharp || image.pixel(x + 1, y) != color || image.pixel(x, y + 1) != color
                      || image.pixel(x + 1, y + 1) != color;
        }
    }
    QVERIFY(isSharp);
}

QTEST_MAIN(tst_Looks)
#include "tst_Looks.moc"
