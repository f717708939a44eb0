#include "tests/support/PanelProcess.h"
#include "tests/support/contrast.h"

#include <QRegularExpression>
#include <QTest>

namespace {

const auto Window = QStringLiteral("ServiceContainer");
const auto Table = QStringLiteral("treeWidgetOW");
const auto Notice = QStringLiteral("labelNoService");
const auto HallButton = QStringLiteral("kqfwdt");

constexpr QRgb TitleBlue = qRgb(0x2b, 0x57, 0x9a);
constexpr QPoint ButtonCorner(3, 3);
constexpr QPoint CloseButtonCorner(-46, 4);

struct Pair
{
    QString what;
    QRgb color;
    QRgb ground;
    QString ratio;
};

//! The rows of the table that lists the contrasts.
QList<Pair> listedPairs()
{
    QFile file(QStringLiteral(PANEL_CONTRASTS));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("can't read %s", qPrintable(file.fileName()));
    const QRegularExpression row(
            QStringLiteral("^\\| ([^|]+) \\| `(#\\w{6})` \\| `(#\\w{6})` \\| ([\\d.]+) \\|"),
            QRegularExpression::MultilineOption);
    QList<Pair> result;
    auto rows = row.globalMatch(QString::fromUtf8(file.readAll()));
    while (rows.hasNext()) {
        const QRegularExpressionMatch match = rows.next();
        result.append({match.captured(1), QColor(match.captured(2)).rgb(),
                       QColor(match.captured(3)).rgb(), match.captured(4)});
    }
    return result;
}

int pixels(const QImage &picture, QRgb color)
{
    int result = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            result += picture.pixel(x, y) == color;
    }
    return result;
}

} // namespace

/*!
    What the eye would find fault with.
*/
class tst_Looks : public QObject
{
    Q_OBJECT

private slots:
    void contrastsAreAsListed_data();
    void contrastsAreAsListed();
    void listedColorsAreShown();
    void stripBesideThePictureIsPlain();
    void pictureIsSharp_data();
    void pictureIsSharp();
    void iconsAreSharp_data();
    void iconsAreSharp();
};

void tst_Looks::contrastsAreAsListed_data()
{
    QTest::addColumn<QRgb>("color");
    QTest::addColumn<QRgb>("ground");
    QTest::addColumn<QString>("ratio");

    const QList<Pair> pairs = listedPairs();
    for (const Pair &pair : pairs)
        QTest::newRow(qPrintable(pair.what)) << pair.color << pair.ground << pair.ratio;
}

void tst_Looks::contrastsAreAsListed()
{
    QFETCH(QRgb, color);
    QFETCH(QRgb, ground);
    QFETCH(QString, ratio);

    QCOMPARE(QString::number(contrast(color, ground), 'f', 2), ratio);
}

void tst_Looks::listedColorsAreShown()
{
    PanelProcess panel;
    QVERIFY(panel.start());
    QTRY_VERIFY(panel.isExposed(Notice));
    QImage shown = panel.grabScreen().copy(panel.globalRect(Window));
    const QList<Pair> pairs = listedPairs();
    const auto missing = [&](const QString &state) {
        QStringList result;
        for (const Pair &pair : pairs) {
            if (pair.what.endsWith(state)
                && !(pixels(shown, pair.color) && pixels(shown, pair.ground)))
                result.append(pair.what);
        }
        return result;
    };
    const auto showsIn = [&](const QPoint &point, QRgb color) {
        return QTest::qWaitFor([&] {
            const QImage screen = panel.grabScreen();
            shown = screen.copy(panel.globalRect(Window));
            return screen.pixel(point) == color;
        });
    };

    QCOMPARE(missing(QStringLiteral("(at rest)")), QStringList());
    const QRect button = panel.globalRect(HallButton);
    PanelProcess::moveMouse(button.center());
    QVERIFY(showsIn(button.topLeft() + ButtonCorner, qRgb(0xe5, 0xf3, 0xff)));
    QCOMPARE(missing(QStringLiteral("(hovered)")), QStringList());
    PanelProcess::pressButton();
    QVERIFY(showsIn(button.topLeft() + ButtonCorner, qRgb(0xcc, 0xe8, 0xff)));
    QCOMPARE(missing(QStringLiteral("(pressed)")), QStringList());

    const QPoint close = panel.globalRect(Window).topRight() + CloseButtonCorner;
    PanelProcess::moveMouse(close);
    PanelProcess::releaseButton();
    QVERIFY(showsIn(close, qRgb(0xff, 0, 0)));
    QCOMPARE(missing(QStringLiteral("(close hovered)")), QStringList());
}

void tst_Looks::stripBesideThePictureIsPlain()
{
    PanelProcess panel;
    QVERIFY(panel.start());
    const QImage strip = panel.grab(QStringLiteral("labelSpace"));
    QCOMPARE(strip.size(), QSize(2, 32));
    QCOMPARE(pixels(strip, TitleBlue), 2 * 32);
}

void tst_Looks::pictureIsSharp_data()
{
    QTest::addColumn<QString>("factor");
    QTest::addColumn<QSize>("size");

    QTest::newRow("1") << "1" << QSize(18, 17);
    QTest::newRow("2") << "2" << QSize(36, 34);
}

void tst_Looks::pictureIsSharp()
{
    QFETCH(QString, factor);
    QFETCH(QSize, size);
    PanelProcess panel;
    panel.environment().insert(QStringLiteral("QT_SCALE_FACTOR"), factor);
    QVERIFY(panel.start());

    const auto picture = panel.property(QStringLiteral("labelIcon"), "pixmap").value<QImage>();
    QCOMPARE(picture.size(), size);
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

    // The icon's half of the button, without the border. Of an icon that is drawn in points each
    // block of pixels has one colour.
    constexpr QRect Icon(4, 4, 48, 72);
    const QImage picture = panel.grab(button);
    QCOMPARE(picture.size(), QSize(160, 80) * Ratio);
    bool isSharp = false;
    for (int y = Icon.top() * Ratio; y < Icon.bottom() * Ratio; y += Ratio) {
        for (int x = Icon.left() * Ratio; x < Icon.right() * Ratio; x += Ratio) {
            const QRgb color = picture.pixel(x, y);
            isSharp = isSharp || picture.pixel(x + 1, y) != color
                      || picture.pixel(x, y + 1) != color || picture.pixel(x + 1, y + 1) != color;
        }
    }
    QVERIFY(isSharp);
}

QTEST_MAIN(tst_Looks)
#include "tst_Looks.moc"
