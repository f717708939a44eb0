#include <QColor>
#include <QDir>
#include <QFile>
#include <QIcon>
#include <QImage>
#include <QImageReader>
#include <QPainter>
#include <QPixmap>
#include <QTest>
#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>

namespace {

constexpr QRgb StripGrey = qRgb(216, 217, 218);
constexpr QRgb CloseRed = qRgb(255, 0, 0);
constexpr QRgb HeaderBlue = qRgb(0x2b, 0x57, 0x9a);
constexpr QRgb ActiveTab = qRgb(255, 255, 255);
constexpr QRgb InactiveTab = qRgb(215, 215, 222);
constexpr double LegibleContrast = 3.0;
constexpr QSize HeaderPictureSize(18, 17);
constexpr int IcoSizes[] = {16, 24, 32, 48, 64};
constexpr int PictureCount = std::size(IcoSizes);

QString bundled(const QString &name)
{
    return QStringLiteral(":/client/resources/") + name;
}

double linear(int channel)
{
    const double share = channel / 255.0;
    return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
}

double luminance(QRgb colour)
{
    return 0.2126 * linear(qRed(colour)) + 0.7152 * linear(qGreen(colour))
           + 0.0722 * linear(qBlue(colour));
}

// The contrast ratio of two opaque colours, 1 to 21, as accessibility guidelines define it.
double contrast(QRgb one, QRgb other)
{
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

QImage painted(const QPixmap &pixmap, QRgb background)
{
    QImage image(pixmap.size(), QImage::Format_RGB32);
    image.fill(background);
    QPainter(&image).drawPixmap(0, 0, pixmap);
    return image;
}

// How much of the image, 0 to 1, stands out from the background.
double legibleShare(const QImage &image, QRgb background)
{
    int legible = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            legible += contrast(image.pixel(x, y), background) >= LegibleContrast ? 1 : 0;
    }
    return double(legible) / (image.width() * image.height());
}

int greatestDifference(const QImage &one, const QImage &other)
{
    int greatest = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            const QRgb a = one.pixel(x, y);
            const QRgb b = other.pixel(x, y);
            greatest = std::max({greatest, std::abs(qRed(a) - qRed(b)),
                                 std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b))});
        }
    }
    return greatest;
}

} // namespace

class tst_Pictures : public QObject
{
    Q_OBJECT

private slots:
    void bundleHoldsTheElevenFiles();
    void loads_data();
    void loads();
    void icoHoldsEachSize_data();
    void icoHoldsEachSize();
    void iconPicksTheExactPicture_data();
    void iconPicksTheExactPicture();
    void largePictureHasDetailOfItsOwn_data();
    void largePictureHasDetailOfItsOwn();
    void pngShowsTheApplicationPicture();
    void closeGlyphIsLegible_data();
    void closeGlyphIsLegible();
    void windowGlyphIsCrisp_data();
    void windowGlyphIsCrisp();
    void windowGlyphsAreOfOneSize_data();
    void windowGlyphsAreOfOneSize();
    void applicationPictureReadsOnTheBlueField();
    void tabPictureReadsOnItsTab_data();
    void tabPictureReadsOnItsTab();
};

void tst_Pictures::bundleHoldsTheElevenFiles()
{
    const QStringList expected = {QStringLiteral("application.svg"), QStringLiteral("close.svg"),
                                  QStringLiteral("dt.ico"),          QStringLiteral("icon.png"),
                                  QStringLiteral("maximize.svg"),    QStringLiteral("minimize.svg"),
                                  QStringLiteral("overview.svg"),    QStringLiteral("restore.svg"),
                                  QStringLiteral("settings.svg"),    QStringLiteral("xf.ico"),
                                  QStringLiteral("zsk.ico")};
    QCOMPARE(QDir(bundled(QString())).entryList(QDir::Files, QDir::Name), expected);
}

void tst_Pictures::loads_data()
{
    QTest::addColumn<QString>("name");

    const QStringList names = QDir(bundled(QString())).entryList(QDir::Files);
    for (const QString &name : names)
        QTest::newRow(qPrintable(name)) << name;
}

void tst_Pictures::loads()
{
    QFETCH(const QString, name);

    QImageReader reader(bundled(name));
    const QImage image = reader.read();
    QVERIFY2(!image.isNull(), qPrintable(reader.errorString()));

    const QIcon icon(bundled(name));
    QVERIFY(!icon.isNull());
    for (const int side : {16, 32}) {
        const QImage shown = icon.pixmap(side, side).toImage();
        QCOMPARE(shown.size(), QSize(side, side));
        QVERIFY(shown.hasAlphaChannel());
        QImage ground(shown.size(), QImage::Format_RGB32);
        ground.fill(StripGrey);
        QVERIFY(painted(QPixmap::fromImage(shown), StripGrey) != ground);
    }
}

void tst_Pictures::icoHoldsEachSize_data()
{
    QTest::addColumn<QString>("name");

    for (const char *name : {"dt.ico", "zsk.ico", "xf.ico"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void tst_Pictures::icoHoldsEachSize()
{
    QFETCH(const QString, name);

    // An .ico file: 6 bytes with the number of pictures last, then 16 bytes for each picture, in
    // which byte 0 is the width, byte 1 the height and bytes 6 and 7 are the bits of a pixel.
    QFile file(bundled(name));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    constexpr int headerLength = 6;
    constexpr int entryLength = 16;
    QVERIFY(bytes.size() > headerLength + entryLength * PictureCount);
    QCOMPARE(int(qFromLittleEndian<quint16>(bytes.constData() + 4)), PictureCount);

    QImageReader reader(bundled(name));
    QCOMPARE(reader.imageCount(), PictureCount);
    for (int i = 0; i < PictureCount; ++i) {
        const QByteArray entry = bytes.mid(headerLength + entryLength * i, entryLength);
        QCOMPARE(int(static_cast<uchar>(entry[0])), IcoSizes[i]);
        QCOMPARE(int(static_cast<uchar>(entry[1])), IcoSizes[i]);
        QCOMPARE(int(qFromLittleEndian<quint16>(entry.constData() + 6)), 32);

        QVERIFY(reader.jumpToImage(i));
        const QImage image = reader.read();
        QCOMPARE(image.size(), QSize(IcoSizes[i], IcoSizes[i]));
        QVERIFY(image.hasAlphaChannel());
    }
}

void tst_Pictures::iconPicksTheExactPicture_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("index");

    for (const char *name : {"dt.ico", "zsk.ico", "xf.ico"}) {
        for (int i = 0; i < PictureCount; ++i)
            QTest::addRow("%s, %d", name, IcoSizes[i]) << QString::fromLatin1(name) << i;
    }
}

// The buttons' icons are 32 pixels: 64 at ratio 2, 48 at ratio 1.5. None may be scaled.
void tst_Pictures::iconPicksTheExactPicture()
{
    QFETCH(const QString, name);
    QFETCH(const int, index);

    QImageReader reader(bundled(name));
    QVERIFY(reader.jumpToImage(index));
    const QImage picture = reader.read();
    const QSize size(IcoSizes[index], IcoSizes[index]);

    const QPixmap picked = QIcon(bundled(name)).pixmap(size);
    QCOMPARE(picked.size(), size);
    QCOMPARE(painted(picked, StripGrey), painted(QPixmap::fromImage(picture), StripGrey));
}

void tst_Pictures::largePictureHasDetailOfItsOwn_data()
{
    icoHoldsEachSize_data();
}

void tst_Pictures::largePictureHasDetailOfItsOwn()
{
    QFETCH(const QString, name);

    const QIcon icon(bundled(name));
    const QPixmap small = icon.pixmap(32, 32);
    const QPixmap large = icon.pixmap(64, 64);
    for (const Qt::TransformationMode mode : {Qt::FastTransformation, Qt::SmoothTransformation}) {
        const QPixmap blown = small.scaled(large.size(), Qt::KeepAspectRatio, mode);
        QVERIFY(greatestDifference(painted(large, StripGrey), painted(blown, StripGrey)) > 32);
    }
}

void tst_Pictures::pngShowsTheApplicationPicture()
{
    const QPixmap png(bundled(QStringLiteral("icon.png")));
    QCOMPARE(png.size(), QSize(256, 256));

    // Two programs have drawn them: they may differ where an edge is smoothed, so both are taken
    // down to a size at which that no longer shows.
    const QPixmap svg = QIcon(bundled(QStringLiteral("application.svg"))).pixmap(png.size());
    QCOMPARE(svg.size(), png.size());
    const QSize compared(32, 32);
    const auto reduced = [&](const QPixmap &pixmap) {
        return painted(pixmap, StripGrey)
                .scaled(compared, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    };
    const int difference = greatestDifference(reduced(png), reduced(svg));
    QVERIFY2(difference <= 24, qPrintable(QString::number(difference)));
}

void tst_Pictures::closeGlyphIsLegible_data()
{
    QTest::addColumn<QRgb>("background");
    QTest::addColumn<int>("side");

    QTest::newRow("on the strip") << StripGrey << 16;
    QTest::newRow("on the strip, ratio 2") << StripGrey << 32;
    QTest::newRow("on red") << CloseRed << 16;
    QTest::newRow("on red, ratio 2") << CloseRed << 32;
}

void tst_Pictures::closeGlyphIsLegible()
{
    QFETCH(const QRgb, background);
    QFETCH(const int, side);

    const QIcon icon(bundled(QStringLiteral("close.svg")));
    const QImage image = painted(icon.pixmap(side, side), background);
    // Both strokes run along the diagonals, from a quarter in.
    for (int i = side / 4; i < side - side / 4; ++i) {
        for (const int x : {i, side - 1 - i}) {
            const double measured = contrast(image.pixel(x, i), background);
            QVERIFY2(measured >= LegibleContrast,
                     qPrintable(QStringLiteral("%1, %2: %3").arg(x).arg(i).arg(measured)));
        }
    }
}

void tst_Pictures::windowGlyphIsCrisp_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("side");

    for (const char *name : {"minimize.svg", "maximize.svg", "restore.svg"}) {
        for (const int side : {16, 32})
            QTest::addRow("%s, %d", name, side) << QString::fromLatin1(name) << side;
    }
}

void tst_Pictures::windowGlyphIsCrisp()
{
    QFETCH(const QString, name);
    QFETCH(const int, side);

    const QImage image = QIcon(bundled(name)).pixmap(side, side).toImage();
    int drawn = 0;
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const int alpha = qAlpha(image.pixel(x, y));
            QVERIFY2(alpha == 0 || alpha == 255,
                     qPrintable(QStringLiteral("%1, %2: %3").arg(x).arg(y).arg(alpha)));
            drawn += alpha == 0 ? 0 : 1;
        }
    }
    QVERIFY(drawn > 0);
}

void tst_Pictures::windowGlyphsAreOfOneSize_data()
{
    QTest::addColumn<QString>("name");

    for (const char *name : {"close.svg", "minimize.svg", "maximize.svg", "restore.svg"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void tst_Pictures::windowGlyphsAreOfOneSize()
{
    QFETCH(const QString, name);

    const QImage image = QIcon(bundled(name)).pixmap(16, 16).toImage();
    const auto columnIsDrawn = [&](int x) {
        for (int y = 0; y < image.height(); ++y) {
            if (qAlpha(image.pixel(x, y)) > 127)
                return true;
        }
        return false;
    };
    for (int x = 0; x < image.width(); ++x) {
        const bool expected = 3 <= x && x <= 12;
        QVERIFY2(columnIsDrawn(x) == expected, qPrintable(QString::number(x)));
    }
}

void tst_Pictures::applicationPictureReadsOnTheBlueField()
{
    const QPixmap picture =
            QPixmap(bundled(QStringLiteral("application.svg")))
                    .scaled(HeaderPictureSize, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const QImage image = painted(picture, HeaderBlue);
    // A light plate with dark streams on it: most stands out from the field, the streams do not.
    const double share = legibleShare(image, HeaderBlue);
    QVERIFY2(share >= 0.4 && share <= 0.8, qPrintable(QString::number(share)));
    for (const int x : {4, 9, 13})
        QVERIFY(contrast(image.pixel(x, HeaderPictureSize.height() / 2), qRgb(0xe7, 0xec, 0xf7))
                >= LegibleContrast);
}

void tst_Pictures::tabPictureReadsOnItsTab_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QRgb>("background");

    for (const char *name : {"overview.svg", "settings.svg"}) {
        QTest::addRow("%s, active tab", name) << QString::fromLatin1(name) << ActiveTab;
        QTest::addRow("%s, inactive tab", name) << QString::fromLatin1(name) << InactiveTab;
    }
}

void tst_Pictures::tabPictureReadsOnItsTab()
{
    QFETCH(const QString, name);
    QFETCH(const QRgb, background);

    const QImage image = painted(QIcon(bundled(name)).pixmap(16, 16), background);
    const double share = legibleShare(image, background);
    QVERIFY2(share >= 0.2, qPrintable(QString::number(share)));
}

QTEST_MAIN(tst_Pictures)
#include "tst_Pictures.moc"
