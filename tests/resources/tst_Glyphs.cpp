#include <QDirIterator>
#include <QFile>
#include <QFont>
#include <QGlyphRun>
#include <QRegularExpression>
#include <QTest>
#include <QTextLayout>

namespace {

//! The modules whose texts a user may read.
const QStringList Modules = {QStringLiteral("app"), QStringLiteral("fancy"),
                             QStringLiteral("overview"), QStringLiteral("settings"),
                             QStringLiteral("shell")};

//! No font has a glyph for it, now or ever.
constexpr char32_t Noncharacter = 0x10FFFE;

//! The characters of \a text for which no font at hand has a glyph.
QString missingGlyphs(const QString &text, const QFont &font)
{
    QString missing;
    const QVector<uint> characters = text.toUcs4();
    for (const uint character : characters) {
        const QString one = QString::fromUcs4(&character, 1);
        QTextLayout layout(one, font);
        layout.beginLayout();
        layout.createLine();
        layout.endLayout();
        const QList<QGlyphRun> runs = layout.glyphRuns();
        bool isDrawn = !runs.isEmpty();
        for (const QGlyphRun &run : runs)
            isDrawn = isDrawn && !run.glyphIndexes().contains(0);
        if (!isDrawn)
            missing += one;
    }
    return missing;
}

//! Every Chinese text in the code and the forms of the panel.
QStringList chineseTexts()
{
    const QRegularExpression text(
            QStringLiteral("[\\p{Han}\\x{3000}-\\x{303F}\\x{FF00}-\\x{FFEF}]+"));
    QStringList result;
    for (const QString &module : Modules) {
        QDirIterator files(QStringLiteral(PANEL_SOURCES) + QLatin1Char('/') + module,
                           {QStringLiteral("*.cpp"), QStringLiteral("*.h"), QStringLiteral("*.ui")},
                           QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            QFile file(files.next());
            if (!file.open(QIODevice::ReadOnly))
                qFatal("can't read %s", qPrintable(file.fileName()));
            auto matches = text.globalMatch(QString::fromUtf8(file.readAll()));
            while (matches.hasNext())
                result.append(matches.next().captured());
        }
    }
    result.removeDuplicates();
    return result;
}

} // namespace

//! Whether the fonts of this machine, as the scripts set it up, can show the panel's texts.
class tst_Glyphs : public QObject
{
    Q_OBJECT

private slots:
    void noticesAMissingGlyph();
    void textsHaveGlyphs_data();
    void textsHaveGlyphs();
};

void tst_Glyphs::noticesAMissingGlyph()
{
    const uint none = Noncharacter;
    QCOMPARE(missingGlyphs(QStringLiteral("a") + QString::fromUcs4(&none, 1), QFont()),
             QString::fromUcs4(&none, 1));
}

void tst_Glyphs::textsHaveGlyphs_data()
{
    QTest::addColumn<int>("pixels");
    QTest::addColumn<QFont::Weight>("weight");

    QTest::newRow("note") << 10 << QFont::Normal;
    QTest::newRow("text") << 12 << QFont::Normal;
    QTest::newRow("notice") << 12 << QFont::Bold;
    QTest::newRow("button") << 14 << QFont::Normal;
    QTest::newRow("title") << 14 << QFont::Bold;
}

void tst_Glyphs::textsHaveGlyphs()
{
    QFETCH(int, pixels);
    QFETCH(QFont::Weight, weight);
    QFont font;
    font.setPixelSize(pixels);
    font.setWeight(weight);

    const QStringList texts = chineseTexts();
    for (const char *known :
         {"朔川统一服务", "统一服务未启动", "RPC日志输出频繁，会占用较大的硬盘空间"})
        QVERIFY2(texts.join(QChar::Space)
                         .contains(QString::fromUtf8(known).remove(QStringLiteral("RPC"))),
                 known);
    for (const QString &text : texts)
        QCOMPARE(missingGlyphs(text, font), QString());
}

QTEST_MAIN(tst_Glyphs)
#include "tst_Glyphs.moc"
