#include "tests/support/contrast.h"

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
#include <cstdlib>
#include <iterator>

namespace {

constexpr QRgb StripGrey = qRgb(216, 217, 218);
constexpr QRgb CloseRed = qRgb(255, 0, 0);
constexpr QRgb HeaderBlue = qRgb(0x2b, 0x57, 0x9a);
constexpr QRgb ActiveTab = qRgb(255, 255, 255);
constexpr QRgb InactiveTab = qRgb(215, 215, 222);
constexpr double LegibleContrast = 3.0;
constexpr QSize HeaderIconSize(18, 17);
constexpr int IcoSizes[] = {16, 24, 32, 40, 48, 56, 64, 96};
constexpr int IcoCount = std::size(IcoSizes);

const QString Folder = QStringLiteral(":/client/resources/");
const QStringList Names = {
        QStringLiteral("application.svg"), QStringLiteral("close.svg"),
        QStringLiteral("dt.ico"),          QStringLiteral("icon.png"),
        QStringLiteral("maximize.svg"),    QStringLiteral("minimize.svg"),
        QStringLiteral("overview.svg"),    QStringLiteral("restore.svg"),
        QStringLiteral("settings.svg"),    QStringLiteral("xf.ico"),
        QStringLiteral("zsk.ico"),
};

QImage painted(const QPixmap &pixmap, QRgb background)
{
    QImage image(pixmap.size(), QImage::Format_RGB32);
    image.fill(background);
    QPainter(&image).drawPixmap(0, 0, pixmap);
    return image;
}

QImage iconOn(QRgb background, const QString &name, int side)
{
    return painted(QIcon(Folder + name).pixmap(side, side), background);
}

//! The number of pixels of \a image that \a matches.
template<typename Predicate>
int countPixels(const QImage &image, Predicate matches)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += matches(image.pixel(x, y)) ? 1 : 0;
    }
    return count;
}

//! How much of \a image, 0 to 1, stands out from the background.
double legibleShare(const QImage &image, QRgb background)
{
    const int legible = countPixels(image, [background](QRgb color) {
        return contrast(color, background) >= LegibleContrast;
    });
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

/*!
    The resource bundle and its icons. SVG and ICO files come to nothing, without a word, where Qt's
    plug-ins for them are missing.
*/
class tst_Icons : public QObject
{
    Q_OBJECT

private slots:
    void bundleHoldsTheFilesAndNoOthers();
    void loads_data();
    void loads();
    void icoHoldsEachSize_data();
    void icoHoldsEachSize();
    void largeImageHasDetailOfItsOwn_data();
    void largeImageHasDetailOfItsOwn();
    void pngShowsTheApplicationIcon();
    void closeGlyphIsLegible_data();
    void closeGlyphIsLegible();
    void windowGlyphIsCrisp_data();
    void windowGlyphIsCrisp();
    void windowGlyphsAreOfOneSize_data();
    void windowGlyphsAreOfOneSize();
    void applicationIconReadsOnTheBlueField();
    void tabIconReadsOnItsTab_data();
    void tabIconReadsOnItsTab();
};

void tst_Icons::bundleHoldsTheFilesAndNoOthers()
{
    QCOMPARE(QDir(Folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name), Names);
    QCOMPARE(QDir(QStringLiteral(":/client")).entryList(),
             QStringList(QStringLiteral("resources")));
}

void tst_Icons::loads_data()
{
    QTest::addColumn<QString>("name");

    for (const QString &name : Names)
        QTest::newRow(qPrintable(name)) << name;
}

void tst_Icons::loads()
{
    QFETCH(const QString, name);

    QImageReader reader(Folder + name);
    reader.setDecideFormatFromContent(true);
    QCOMPARE(reader.format(), name.section(QLatin1Char('.'), -1).toLatin1());
    QVERIFY2(!reader.read().isNull(), qPrintable(reader.errorString()));

    for (const int side : {16, 32, 64}) {
        const QImage icon = QIcon(Folder + name).pixmap(side, side).toImage();
        QCOMPARE(icon.size(), QSize(side, side));
        QVERIFY(icon.hasAlphaChannel());
        QVERIFY(countPixels(icon, [](QRgb color) { return qAlpha(color) != 0; }) > 0);
    }
}

void tst_Icons::icoHoldsEachSize_data()
{
    QTest::addColumn<QString>("name");

    for (const char *name : {"dt.ico", "zsk.ico", "xf.ico"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

// The buttons' icons are 32 pixels: 40 at a ratio of 1.25, and so on to 96 at 3.
void tst_Icons::icoHoldsEachSize()
{
    QFETCH(const QString, name);

    // An .ico file: 6 bytes with the number of images last, then 16 bytes for each image, in which
    // byte 0 is the width, byte 1 the height and bytes 6 and 7 are the bits of a pixel.
    QFile file(Folder + name);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    constexpr int headerLength = 6;
    constexpr int entryLength = 16;
    QVERIFY(bytes.size() > headerLength + entryLength * IcoCount);
    QCOMPARE(int(qFromLittleEndian<quint16>(bytes.constData() + 4)), IcoCount);

    QImageReader reader(Folder + name);
    for (int i = 0; i < IcoCount; ++i) {
        const QByteArray entry = bytes.mid(headerLength + entryLength * i, entryLength);
        QCOMPARE(int(static_cast<uchar>(entry[0])), IcoSizes[i]);
        QCOMPARE(int(static_cast<uchar>(entry[1])), IcoSizes[i]);
        QCOMPARE(int(qFromLittleEndian<quint16>(entry.constData() + 6)), 32);

        QVERIFY(reader.jumpToImage(i));
        const QImage image = reader.read();
        QCOMPARE(image.size(), QSize(IcoSizes[i], IcoSizes[i]));
        QVERIFY(image.hasAlphaChannel());
        QCOMPARE(iconOn(StripGrey, name, IcoSizes[i]),
                 painted(QPixmap::fromImage(image), StripGrey));
    }
}

void tst_Icons::largeImageHasDetailOfItsOwn_data()
{
    icoHoldsEachSize_data();
}

void tst_Icons::largeImageHasDetailOfItsOwn()
{
    QFETCH(const QString, name);

    const QImage small = iconOn(StripGrey, name, 32);
    const QImage large = iconOn(StripGrey, name, 64);
    for (const Qt::TransformationMode mode : {Qt::FastTransformation, Qt::SmoothTransformation}) {
        const QImage blown = small.scaled(large.size(), Qt::KeepAspectRatio, mode);
        QVERIFY(greatestDifference(large, blown) > 32);
    }
}

void tst_Icons::pngShowsTheApplicationIcon()
{
    const QPixmap png(Folder + QStringLiteral("icon.png"));
    QCOMPARE(png.size(), QSize(256, 256));

    // Two programs have drawn them: they may differ where an edge is smoothed, so both are taken
    // down to a size at which that no longer shows.
    const auto reduced = [](const QImage &image) {
        return image.scaled(32, 32, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    };
    const QImage svg = iconOn(StripGrey, QStringLiteral("application.svg"), png.width());
    const int difference = greatestDifference(reduced(painted(png, StripGrey)), reduced(svg));
    QVERIFY2(difference <= 24, qPrintable(QString::number(difference)));
}

void tst_Icons::closeGlyphIsLegible_data()
{
    QTest::addColumn<QRgb>("background");
    QTest::addColumn<int>("side");

    QTest::newRow("on the strip") << StripGrey << 16;
    QTest::newRow("on the strip, ratio 2") << StripGrey << 32;
    QTest::newRow("on red") << CloseRed << 16;
    QTest::newRow("on red, ratio 2") << CloseRed << 32;
}

void tst_Icons::closeGlyphIsLegible()
{
    QFETCH(const QRgb, background);
    QFETCH(const int, side);

    const QImage image = iconOn(background, QStringLiteral("close.svg"), side);
    // Both strokes run along the diagonals, from a quarter in.
    for (int i = side / 4; i < side - side / 4; ++i) {
        for (const int x : {i, side - 1 - i}) {
            const double measured = contrast(image.pixel(x, i), background);
            QVERIFY2(measured >= LegibleContrast,
                     qPrintable(QStringLiteral("%1, %2: %3").arg(x).arg(i).arg(measured)));
        }
    }
}

void tst_Icons::windowGlyphIsCrisp_data()
{
    QTest::addColumn<QString>("name");

    for (const char *name : {"minimize.svg", "maximize.svg", "restore.svg"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void tst_Icons::windowGlyphIsCrisp()
{
    QFETCH(const QString, name);

    for (const int side : {16, 32}) {
        const QImage image = QIcon(Folder + name).pixmap(side, side).toImage();
        const auto isCrisp = [](QRgb color) { return qAlpha(color) == 0 || qAlpha(color) == 255; };
        QCOMPARE(countPixels(image, isCrisp), side * side);
    }
}

void tst_Icons::windowGlyphsAreOfOneSize_data()
{
    windowGlyphIsCrisp_data();
    QTest::newRow("close.svg") << QStringLiteral("close.svg");
}

void tst_Icons::windowGlyphsAreOfOneSize()
{
    QFETCH(const QString, name);

    const QImage image = QIcon(Folder + name).pixmap(16, 16).toImage();
    const auto isDrawn = [](QRgb color) { return qAlpha(color) > 127; };
    for (int x = 0; x < image.width(); ++x) {
        const bool hasGlyph = countPixels(image.copy(x, 0, 1, image.height()), isDrawn) > 0;
        QVERIFY2(hasGlyph == (3 <= x && x <= 12), qPrintable(QString::number(x)));
    }
}

void tst_Icons::applicationIconReadsOnTheBlueField()
{
    const QPixmap icon =
            QPixmap(Folder + QStringLiteral("application.svg"))
                    .scaled(HeaderIconSize, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const QImage image = painted(icon, HeaderBlue);
    // A light plate with dark streams on it: most stands out from the field, the streams do not.
    const double share = legibleShare(image, HeaderBlue);
    QVERIFY2(share >= 0.4 && share <= 0.8, qPrintable(QString::number(share)));
    for (const int x : {4, 9, 13})
        QVERIFY(contrast(image.pixel(x, HeaderIconSize.height() / 2), qRgb(0xe7, 0xec, 0xf7))
                >= LegibleContrast);
}

void tst_Icons::tabIconReadsOnItsTab_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QRgb>("background");

    for (const char *name : {"overview.svg", "settings.svg"}) {
        QTest::addRow("%s, active tab", name) << QString::fromLatin1(name) << ActiveTab;
        QTest::addRow("%s, inactive tab", name) << QString::fromLatin1(name) << InactiveTab;
    }
}

void tst_Icons::tabIconReadsOnItsTab()
{
    QFETCH(const QString, name);
    QFETCH(const QRgb, background);

    const double share = legibleShare(iconOn(background, name, 16), background);
    QVERIFY2(share >= 0.2, qPrintable(QString::number(share)));
}

QTEST_MAIN(tst_Icons)
#include "tst_Icons.moc"
