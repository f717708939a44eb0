#include "fancy/FancyCursor.h"

#include <QPoint>
#include <QRect>
#include <QStringList>
#include <QTest>

#include <cstring>

namespace {
constexpr QRect Window(0, 0, 100, 100);

QStringList flagsOf(const FancyCursor &cursor)
{
    QStringList names;
    const auto add = [&names](bool flag, const char *name) {
        if (flag)
            names << QString::fromLatin1(name);
    };
    add(cursor.m_bOnEdges, "edges");
    add(cursor.m_bOnLeftEdge, "left");
    add(cursor.m_bOnRightEdge, "right");
    add(cursor.m_bOnTopEdge, "top");
    add(cursor.m_bOnBottomEdge, "bottom");
    add(cursor.m_bOnTopLeftEdge, "topLeft");
    add(cursor.m_bOnBottomLeftEdge, "bottomLeft");
    add(cursor.m_bOnTopRightEdge, "topRight");
    add(cursor.m_bOnBottomRightEdge, "bottomRight");
    return names;
}
} // namespace

class tst_FancyCursor : public QObject
{
    Q_OBJECT

private slots:
    void startsOnNoEdge();
    void packsItsFlagsInOrder();
    void borderIsAtMost15Pixels();
    void finds_data();
    void finds();
    void forgetsThePreviousPosition();
    void resetKeepsTheBorder();
};

void tst_FancyCursor::startsOnNoEdge()
{
    const FancyCursor cursor;

    QCOMPARE(flagsOf(cursor), QStringList());
    QCOMPARE(int(cursor.m_nBorderWidth), 8);
}

void tst_FancyCursor::packsItsFlagsInOrder()
{
    static_assert(sizeof(FancyCursor) <= 4, "the flags and the width share one word");
    FancyCursor cursor;
    cursor.m_nBorderWidth = 0;
    const auto bits = [&cursor] {
        quint32 value = 0;
        std::memcpy(&value, &cursor, sizeof cursor);
        return value & 0x1ffU;
    };

    QCOMPARE(bits(), 0x000U);
    cursor.m_bOnEdges = true;
    QCOMPARE(bits(), 0x001U);
    cursor.m_bOnLeftEdge = true;
    QCOMPARE(bits(), 0x003U);
    cursor.m_bOnRightEdge = true;
    QCOMPARE(bits(), 0x007U);
    cursor.m_bOnTopEdge = true;
    QCOMPARE(bits(), 0x00fU);
    cursor.m_bOnBottomEdge = true;
    QCOMPARE(bits(), 0x01fU);
    cursor.m_bOnTopLeftEdge = true;
    QCOMPARE(bits(), 0x03fU);
    cursor.m_bOnBottomLeftEdge = true;
    QCOMPARE(bits(), 0x07fU);
    cursor.m_bOnTopRightEdge = true;
    QCOMPARE(bits(), 0x0ffU);
    cursor.m_bOnBottomRightEdge = true;
    QCOMPARE(bits(), 0x1ffU);
}

void tst_FancyCursor::borderIsAtMost15Pixels()
{
    FancyCursor cursor;
    cursor.m_nBorderWidth = 15;
    QCOMPARE(int(cursor.m_nBorderWidth), 15);

    // One more doesn't fit: the width is a signed number of five bits.
    ++cursor.m_nBorderWidth;
    QCOMPARE(int(cursor.m_nBorderWidth), -16);
}

void tst_FancyCursor::finds_data()
{
    QTest::addColumn<QRect>("window");
    QTest::addColumn<QPoint>("position");
    QTest::addColumn<QStringList>("flags");

    const QStringList none;
    const QStringList left {"edges", "left"};
    const QStringList right {"edges", "right"};
    const QStringList top {"edges", "top"};
    const QStringList bottom {"edges", "bottom"};
    const auto row = [](const char *name, const QPoint &position, const QStringList &flags,
                        const QRect &window = Window) {
        QTest::newRow(name) << window << position << flags;
    };

    row("middle", QPoint(50, 50), none);
    row("left of the window", QPoint(-1, 50), none);
    row("first of the left band", QPoint(0, 50), left);
    row("last of the left band", QPoint(8, 50), left);
    row("right of the left band", QPoint(9, 50), none);
    row("left of the right band", QPoint(91, 50), none);
    row("first of the right band", QPoint(92, 50), right);
    row("last pixel of the window", QPoint(99, 50), right);
    row("last of the right band", QPoint(100, 50), right);
    row("right of the right band", QPoint(101, 50), none);
    row("above the window", QPoint(50, -1), none);
    row("first of the top band", QPoint(50, 0), top);
    row("last of the top band", QPoint(50, 8), top);
    row("below the top band", QPoint(50, 9), none);
    row("above the bottom band", QPoint(50, 91), none);
    row("first of the bottom band", QPoint(50, 92), bottom);
    row("last of the bottom band", QPoint(50, 100), bottom);
    row("below the bottom band", QPoint(50, 101), none);
    row("top left", QPoint(0, 0), {"edges", "left", "top", "topLeft"});
    row("top right", QPoint(100, 0), {"edges", "right", "top", "topRight"});
    row("bottom left", QPoint(0, 100), {"edges", "left", "bottom", "bottomLeft"});
    row("bottom right", QPoint(100, 100), {"edges", "right", "bottom", "bottomRight"});
    row("narrow window", QPoint(5, 50), {"edges", "left", "right"}, QRect(0, 0, 10, 100));
    row("flat window", QPoint(50, 5), {"edges", "top", "bottom"}, QRect(0, 0, 100, 10));
    row("tiny window", QPoint(2, 2),
        {"edges", "left", "right", "top", "bottom", "topLeft", "bottomLeft", "topRight",
         "bottomRight"},
        QRect(0, 0, 4, 4));
    row("elsewhere, left", QPoint(208, 350), left, QRect(200, 300, 100, 100));
    row("elsewhere, bottom", QPoint(250, 400), bottom, QRect(200, 300, 100, 100));
    row("elsewhere, outside", QPoint(250, 401), none, QRect(200, 300, 100, 100));
    row("negative, right", QPoint(-100, -150), right, QRect(-200, -200, 100, 100));
    // The bands know no other direction: beside the left band's height is still on it.
    row("beside the left edge, below", QPoint(0, 500), left);
}

void tst_FancyCursor::finds()
{
    QFETCH(QRect, window);
    QFETCH(QPoint, position);
    QFETCH(QStringList, flags);
    FancyCursor cursor;

    cursor.recalculate(position, window);

    QCOMPARE(flagsOf(cursor), flags);
}

void tst_FancyCursor::forgetsThePreviousPosition()
{
    FancyCursor cursor;
    cursor.recalculate(QPoint(0, 0), Window);

    cursor.recalculate(QPoint(50, 50), Window);

    QCOMPARE(flagsOf(cursor), QStringList());
}

void tst_FancyCursor::resetKeepsTheBorder()
{
    FancyCursor cursor;
    cursor.m_nBorderWidth = 3;
    cursor.recalculate(QPoint(2, 2), QRect(0, 0, 4, 4));
    QCOMPARE(flagsOf(cursor).size(), 9);

    cursor.reset();

    QCOMPARE(flagsOf(cursor), QStringList());
    QCOMPARE(int(cursor.m_nBorderWidth), 3);
    cursor.recalculate(QPoint(4, 50), Window);
    QCOMPARE(flagsOf(cursor), QStringList());
}

QTEST_APPLESS_MAIN(tst_FancyCursor)
#include "tst_FancyCursor.moc"
