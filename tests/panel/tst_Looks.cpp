#include "tests/support/PanelProcess.h"
#include "tests/support/WebShortcuts.h"
#include "tests/support/contrast.h"
#include "tests/support/files.h"
#include "tests/support/pixels.h"

#include <QIcon>
#include <QMap>
#include <QPainter>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QTest>

namespace {

const auto Window = QStringLiteral("ServiceContainer");
const auto Table = QStringLiteral("treeWidgetOW");
const auto HallButton = QStringLiteral("kqfwdt");
const auto RepairButton = QStringLiteral("xfkqfw");
const auto StripIcon = QStringLiteral("labelIcon");

//! The close button, as the table names it, has no object name: its place is this from the window's
//! corner.
const auto Close = QStringLiteral("close");
constexpr QRect ClosePlace(-49, 0, 50, 32);

constexpr QPoint Aside(0, 0);

//! A row of the table of contrasts.
struct Pair
{
    QString what;
    QString widget;
    QString state;
    QRgb color;
    QRgb background;
    double leastContrast;
};

QList<Pair> listedPairs()
{
    const QRegularExpression row(QStringLiteral("^\\| (?<what>[^|]+) \\| `(?<widget>[^`]+)` "
                                                "\\| (?<state>[^|]+) \\| `(?<color>#\\w{6})` "
                                                "\\| `(?<background>#\\w{6})` \\| [\\d.]+ "
                                                "\\| (?<asked>[\\d.]+) \\|"),
                                 QRegularExpression::MultilineOption);
    const QByteArray document = readFile(QStringLiteral(PANEL_CONTRASTS));
    QList<Pair> result;
    auto rows = row.globalMatch(QString::fromUtf8(document));
    while (rows.hasNext()) {
        const QRegularExpressionMatch match = rows.next();
        result.append({match.captured(QStringLiteral("what")),
                       match.captured(QStringLiteral("widget")),
                       match.captured(QStringLiteral("state")),
                       QColor(match.captured(QStringLiteral("color"))).rgb(),
                       QColor(match.captured(QStringLiteral("background"))).rgb(),
                       match.captured(QStringLiteral("asked")).toDouble()});
    }
    return result;
}

QRect placeOf(PanelProcess &panel, const QString &widget)
{
    if (widget == Close)
        return ClosePlace.translated(panel.globalRect(Window).topRight());
    return panel.globalRect(widget);
}

//! Whether \a icon is to be seen anywhere in \a image, pixel by pixel, on its main colour.
bool contains(const QImage &image, const QImage &icon)
{
    QImage wanted(icon.size(), image.format());
    wanted.fill(mainColor(image));
    QPainter(&wanted).drawImage(0, 0, icon);
    for (int y = 0; y <= image.height() - icon.height(); ++y) {
        for (int x = 0; x <= image.width() - icon.width(); ++x) {
            if (image.copy({{x, y}, icon.size()}) == wanted)
                return true;
        }
    }
    return false;
}

} // namespace

/*!
    Contrast and sharpness.
*/
class tst_Looks : public QObject
{
    Q_OBJECT

private slots:
    void listedColorsAreShown();
    void iconsAreSharp();

private:
    //! Looks for the colours that the table lists for \a state. Returns what is wrong with them.
    QString verifyColors(PanelProcess &panel, const QString &state);

    //! The states of the table that no one has looked at.
    QSet<QString> m_unseen;
};

QString tst_Looks::verifyColors(PanelProcess &panel, const QString &state)
{
    m_unseen.remove(state);
    QStringList wrong;
    const QList<Pair> pairs = listedPairs();
    for (const Pair &pair : pairs) {
        if (pair.state != state)
            continue;
        // A window manager may move a new window.
        const auto place = [&] { return placeOf(panel, pair.widget); };
        const QString missing = waitForColors(place, {pair.color, pair.background});
        if (!missing.isEmpty())
            wrong.append(pair.what + QStringLiteral(": ") + missing);
        if (contrast(pair.color, pair.background) < pair.leastContrast)
            wrong.append(pair.what + QStringLiteral(": too little contrast"));
    }
    return wrong.join(QStringLiteral("; "));
}

void tst_Looks::listedColorsAreShown()
{
    const QList<Pair> pairs = listedPairs();
    for (const Pair &pair : pairs)
        m_unseen.insert(pair.state);
    QVERIFY(!m_unseen.isEmpty());
    PanelProcess::moveMouse(Aside);
    const auto release = qScopeGuard([] { PanelProcess::releaseButton(); });

    {
        PanelProcess panel;
        QVERIFY(panel.start());
        QCOMPARE(verifyColors(panel, QStringLiteral("idle")), QString());

        PanelProcess::moveMouse(placeOf(panel, HallButton).center());
        QCOMPARE(verifyColors(panel, QStringLiteral("hovered")), QString());

        PanelProcess::pressButton();
        QCOMPARE(verifyColors(panel, QStringLiteral("pressed")), QString());
        PanelProcess::moveMouse(Aside);
        PanelProcess::releaseButton();

        PanelProcess::moveMouse(placeOf(panel, Close).center());
        QCOMPARE(verifyColors(panel, QStringLiteral("close hovered")), QString());
        PanelProcess::moveMouse(Aside);
    }
    {
        PanelProcess panel;
        panel.placeDaemon();
        QVERIFY(panel.start());
        QTRY_COMPARE(panel.rowTexts(Table).size(), 1);
        QCOMPARE(verifyColors(panel, QStringLiteral("running")), QString());

        panel.click(RepairButton);
        QTRY_VERIFY(panel.messageBox());
        QCOMPARE(verifyColors(panel, QStringLiteral("message box")), QString());
    }
    QCOMPARE(m_unseen, QSet<QString>());
}

void tst_Looks::iconsAreSharp()
{
    constexpr int Ratio = 2;
    PanelProcess panel;
    panel.environment().insert(QStringLiteral("QT_SCALE_FACTOR"), QString::number(Ratio));
    QVERIFY(panel.start());

    QMap<QString, QString> icons = {{RepairButton, QStringLiteral("xf.ico")}};
    for (const WebShortcut &shortcut : WebShortcuts)
        icons.insert(QLatin1String(shortcut.button), QLatin1String(shortcut.icon));
    for (auto icon = icons.cbegin(); icon != icons.cend(); ++icon) {
        QImage button = panel.grab(icon.key()).convertToFormat(QImage::Format_RGB32);
        QCOMPARE(button.size(), panel.property(icon.key(), "size").toSize() * Ratio);
        button.setDevicePixelRatio(1);
        // Of its own pixels, not enlarged from fewer.
        const QIcon file(QStringLiteral(":/client/resources/") + icon.value());
        const QImage picture = file.pixmap(QSize(32, 32) * Ratio).toImage();
        QCOMPARE(picture.size(), QSize(32, 32) * Ratio);
        QVERIFY2(contains(button, picture), qPrintable(icon.key()));
    }
    const auto stripIcon = panel.property(StripIcon, "pixmap").value<QImage>();
    QCOMPARE(stripIcon.size(), QSize(18, 17) * Ratio);
}

QTEST_MAIN(tst_Looks)
#include "tst_Looks.moc"
