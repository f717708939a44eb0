#include <QDir>
#include <QIcon>
#include <QImage>
#include <QImageReader>
#include <QTest>

namespace {

const QString Folder = QStringLiteral(":/client/resources/");
const QStringList Names = {
        QStringLiteral("application.svg"), QStringLiteral("close.svg"),
        QStringLiteral("dt.ico"),          QStringLiteral("icon.png"),
        QStringLiteral("maximize.svg"),    QStringLiteral("minimize.svg"),
        QStringLiteral("overview.svg"),    QStringLiteral("restore.svg"),
        QStringLiteral("settings.svg"),    QStringLiteral("xf.ico"),
        QStringLiteral("zsk.ico"),
};
constexpr QSize IconSize(64, 64);

//! Whether anything of \a image can be seen.
bool showsSomething(const QImage &image)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) != 0)
                return true;
        }
    }
    return false;
}

} // namespace

/*!
    The bundle of pictures: SVG and ICO files come to nothing, without a word, where Qt's plug-ins
    for them are missing.
*/
class tst_resources : public QObject
{
    Q_OBJECT

private slots:
    void holdsTheFilesAndNoOthers();
    void everyPictureLoads_data();
    void everyPictureLoads();
};

void tst_resources::holdsTheFilesAndNoOthers()
{
    QCOMPARE(QDir(Folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name), Names);
    QCOMPARE(QDir(QStringLiteral(":/client")).entryList(),
             QStringList(QStringLiteral("resources")));
}

void tst_resources::everyPictureLoads_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("format");

    for (const QString &name : Names)
        QTest::newRow(qPrintable(name)) << Folder + name << name.section('.', -1).toLatin1();
}

void tst_resources::everyPictureLoads()
{
    QFETCH(QString, path);

    QImageReader reader(path);
    reader.setDecideFormatFromContent(true);
    QTEST(reader.format(), "format");
    const QImage image = reader.read();
    QVERIFY2(!image.isNull(), qPrintable(reader.errorString()));
    QVERIFY(showsSomething(image));

    // The way in which the panel takes them.
    const QImage icon = QIcon(path).pixmap(IconSize).toImage();
    QVERIFY(!icon.isNull());
    QVERIFY(showsSomething(icon));
}

QTEST_MAIN(tst_resources)
#include "tst_resources.moc"
