#include "tests/support/contrast.h"
#include "tests/support/pixels.h"

#include <QDir>
#include <QIcon>
#include <QImage>
#include <QImageReader>
#include <QMap>
#include <QPainter>
#include <QPixmap>
#include <QTest>

namespace {

constexpr QRgb StripGrey = qRgb(216, 217, 218);
constexpr QRgb HeaderBlue = qRgb(0x2b, 0x57, 0x9a);
constexpr QRgb ActiveTab = qRgb(255, 255, 255);
constexpr QRgb InactiveTab = qRgb(215, 215, 222);
constexpr double LegibleContrast = 3.0;
constexpr QSize HeaderIconSize(18, 17);
//! The buttons' icons are 32 pixels: 40 at a ratio of 1.25, and so on to 96 at 3.
const QVector<int> IcoSizes = {16, 24, 32, 40, 48, 56, 64, 96};

const QString Folder = QStringLiteral(":/client/resources/");

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

//! What an icon shows at a point of its 64 × 64 pixels.
struct Sample
{
    QPoint point;
    QRgb color;
};
using Samples = QVector<Sample>;

constexpr int SampledSide = 64;
constexpr QRgb Nothing = qRgba(0, 0, 0, 0);
constexpr QRgb Black = qRgb(0x26, 0x26, 0x26);
constexpr QRgb White = qRgb(0xe7, 0xec, 0xf7);
constexpr QRgb LightBlue = qRgb(0x00, 0x78, 0xd4);
constexpr QRgb MediumBlue = qRgb(0x00, 0x6a, 0xb1);
constexpr QRgb DarkBlue = HeaderBlue;

const Samples StreamsOnAPlate = {
        {{3, 31}, DarkBlue}, {{15, 21}, DarkBlue}, {{31, 21}, LightBlue}, {{47, 21}, MediumBlue}};

//! Enough of each icon to tell it from every other.
const QMap<QString, Samples> IconSamples = {
        {QStringLiteral("application.svg"), StreamsOnAPlate},
        {QStringLiteral("icon.png"), StreamsOnAPlate},
        // A cross.
        {QStringLiteral("close.svg"),
         {{{18, 18}, Black}, {{46, 18}, Black}, {{32, 32}, Black}, {{32, 18}, Nothing}}},
        // A stroke.
        {QStringLiteral("minimize.svg"),
         {{{17, 34}, Black}, {{47, 34}, Black}, {{32, 14}, Nothing}, {{32, 46}, Nothing}}},
        // A square.
        {QStringLiteral("maximize.svg"),
         {{{14, 14}, Black}, {{50, 50}, Black}, {{14, 32}, Black}, {{32, 32}, Nothing}}},
        // A square before another.
        {QStringLiteral("restore.svg"),
         {{{14, 14}, Nothing}, {{14, 50}, Black}, {{42, 50}, Black}, {{50, 14}, Black}}},
        // A curve in a frame.
        {QStringLiteral("overview.svg"),
         {{{31, 3}, Nothing}, {{5, 21}, DarkBlue}, {{27, 19}, MediumBlue}, {{37, 39}, MediumBlue}}},
        // Three sliders.
        {QStringLiteral("settings.svg"),
         {{{7, 13}, DarkBlue}, {{43, 9}, White}, {{19, 33}, White}, {{39, 53}, White}}},
        // A building with a door.
        {QStringLiteral("dt.ico"),
         {{{31, 5}, DarkBlue}, {{27, 41}, LightBlue}, {{31, 41}, White}, {{21, 41}, Nothing}}},
        // A wrench.
        {QStringLiteral("xf.ico"),
         {{{59, 15}, DarkBlue}, {{37, 23}, White}, {{25, 37}, LightBlue}, {{5, 5}, Nothing}}},
        // An open book.
        {QStringLiteral("zsk.ico"),
         {{{31, 31}, DarkBlue}, {{17, 23}, LightBlue}, {{21, 41}, White}, {{31, 3}, Nothing}}},
};

//! The files of the bundle.
QStringList names()
{
    return QDir(Folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name);
}

//! The first of \a samples that the icon \a name doesn't show; empty where it shows them all.
QString missingSample(const QString &name, const Samples &samples)
{
    const QImage image = QIcon(Folder + name).pixmap(SampledSide, SampledSide).toImage();
    if (image.isNull())
        return QStringLiteral("no picture");
    for (const Sample &sample : samples) {
        const QRgb shown = image.pixel(sample.point);
        if (shown != sample.color) {
            return QStringLiteral("at %1, %2: %3 instead of %4")
                    .arg(sample.point.x())
                    .arg(sample.point.y())
                    .arg(shown, 8, 16)
                    .arg(sample.color, 8, 16);
        }
    }
    return {};
}

//! How much of \a image, 0 to 1, stands out from the background.
double legibleShare(const QImage &image, QRgb background)
{
    const int legible = countPixels(image, [background](QRgb color) {
        return contrast(color, background) >= LegibleContrast;
    });
    return double(legible) / (image.width() * image.height());
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
    void isUnderItsOwnName_data();
    void isUnderItsOwnName();
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
    const QStringList listed = IconSamples.keys();
    QCOMPARE(names().join(QLatin1Char(' ')), listed.join(QLatin1Char(' ')));
    QCOMPARE(QDir(QStringLiteral(":/client")).entryList(),
             QStringList(QStringLiteral("resources")));
}

void tst_Icons::loads_data()
{
    QTest::addColumn<QString>("name");

    const QStringList all = names();
    for (const QString &name : all)
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

    const QStringList all = names();
    for (const QString &name : all) {
        if (name.endsWith(QLatin1String(".ico")))
            QTest::newRow(qPrintable(name)) << name;
    }
}

void tst_Icons::icoHoldsEachSize()
{
    QFETCH(const QString, name);

    QImageReader reader(Folder + name);
    QVector<int> sizes;
    do {
        const QImage image = reader.read();
        QCOMPARE(image.width(), image.height());
        QVERIFY(image.hasAlphaChannel());
        sizes.append(image.width());
    } while (reader.jumpToNextImage());
    QCOMPARE(sizes, IcoSizes);
}

void tst_Icons::isUnderItsOwnName_data()
{
    QTest::addColumn<QString>("name");

    // Of the files that are not listed bundleHoldsTheFilesAndNoOthers() tells.
    const QStringList all = names();
    for (const QString &name : all) {
        if (IconSamples.contains(name))
            QTest::newRow(qPrintable(name)) << name;
    }
}

void tst_Icons::isUnderItsOwnName()
{
    QFETCH(const QString, name);
    const Samples samples = IconSamples.value(name);
    QCOMPARE(missingSample(name, samples), QString());

    // The samples would notice another icon.
    const QStringList application = {QStringLiteral("application.svg"), QStringLiteral("icon.png")};
    const QStringList all = names();
    for (const QString &other : all) {
        const bool isSame =
                other == name || (application.contains(other) && application.contains(name));
        QVERIFY2(missingSample(other, samples).isEmpty() == isSame, qPrintable(other));
    }
}

void tst_Icons::closeGlyphIsLegible_data()
{
    QTest::addColumn<int>("side");

    QTest::newRow("ratio 1") << 16;
    QTest::newRow("ratio 2") << 32;
}

void tst_Icons::closeGlyphIsLegible()
{
    QFETCH(const int, side);

    const QImage image = iconOn(StripGrey, QStringLiteral("close.svg"), side);
    // Both strokes run along the diagonals, from a quarter in.
    for (int i = side / 4; i < side - side / 4; ++i) {
        for (const int x : {i, side - 1 - i}) {
            const double measured = contrast(image.pixel(x, i), StripGrey);
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
