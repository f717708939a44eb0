#include "fancy/FancyCursor.h"

#include <QPoint>
#include <QRect>
#include <QTest>

#include <array>
#include <cstring>
#include <new>

namespace {
constexpr QRect Window(0, 0, 100, 100);

// The flags in their declared order, on which each row below depends.
enum Flag : quint32 {
    None = 0x000,
    Edges = 0x001,
    Left = 0x002,
    Right = 0x004,
    Top = 0x008,
    Bottom = 0x010,
    TopLeft = 0x020,
    BottomLeft = 0x040,
    TopRight = 0x080,
    BottomRight = 0x100,
    All = 0x1ff
};

quint32 flagsOf(const FancyCursor &cursor)
{
    static_assert(sizeof(FancyCursor) <= sizeof(quint32), "flags and width share one word");
    quint32 word = 0;
    std::memcpy(&word, &cursor, sizeof cursor);
    return word & All;
}
} // namespace

class tst_FancyCursor : public QObject
{
    Q_OBJECT

private slots:
    void startsOnNoEdge();
    void borderIsAtMost15Pixels();
    void finds_data();
    void finds();
    void resetKeepsTheBorder();
};

void tst_FancyCursor::startsOnNoEdge()
{
    // A member that the constructor doesn't set keeps the ones of its memory.
    alignas(FancyCursor) std::array<char, sizeof(FancyCursor)> memory {};
    memory.fill('\xff');
    const auto *cursor = new (memory.data()) FancyCursor;

    QCOMPARE(flagsOf(*cursor), quint32(None));
    QCOMPARE(int(cursor->m_nBorderWidth), 8);
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
    QTest::addColumn<quint32>("flags");

    const auto row = [](const char *name, const QPoint &position, quint32 flags,
                        const QRect &window = Window) {
        QTest::newRow(name) << window << position << (flags == None ? None : flags | Edges);
    };

    row("middle", {50, 50}, None);
    row("left of the window", {-1, 50}, None);
    row("first of the left band", {0, 50}, Left);
    row("last of the left band", {8, 50}, Left);
    row("right of the left band", {9, 50}, None);
    row("left of the right band", {91, 50}, None);
    row("first of the right band", {92, 50}, Right);
    row("last of the right band", {100, 50}, Right);
    row("right of the right band", {101, 50}, None);
    row("above the window", {50, -1}, None);
    row("first of the top band", {50, 0}, Top);
    row("last of the top band", {50, 8}, Top);
    row("below the top band", {50, 9}, None);
    row("above the bottom band", {50, 91}, None);
    row("first of the bottom band", {50, 92}, Bottom);
    row("last of the bottom band", {50, 100}, Bottom);
    row("below the bottom band", {50, 101}, None);
    row("top left", {0, 0}, Left | Top | TopLeft);
    row("top right", {100, 0}, Right | Top | TopRight);
    row("bottom left", {0, 100}, Left | Bottom | BottomLeft);
    row("bottom right", {100, 100}, Right | Bottom | BottomRight);
    row("narrow window", {5, 50}, Left | Right, {0, 0, 10, 100});
    row("flat window", {50, 5}, Top | Bottom, {0, 0, 100, 10});
    row("tiny window", {2, 2}, All, {0, 0, 4, 4});
    row("elsewhere, left", {208, 350}, Left, {200, 300, 100, 100});
    row("elsewhere, bottom", {250, 400}, Bottom, {200, 300, 100, 100});
    row("elsewhere, outside", {250, 401}, None, {200, 300, 100, 100});
    row("negative, right", {-100, -150}, Right, {-200, -200, 100, 100});
    // A band has no ends: what is below the window can still be on its left.
    row("beside the left edge, below", {0, 500}, Left);
}

void tst_FancyCursor::finds()
{
    QFETCH(QRect, window);
    QFETCH(QPoint, position);
    QFETCH(quint32, flags);
    for (const QPoint &before : {QPoint(2, 2), QPoint(50, 50)}) {
        FancyCursor cursor;
        cursor.recalculate(before, QRect(0, 0, 4, 4));

        cursor.recalculate(position, window);

        QCOMPARE(flagsOf(cursor), flags);
    }
}

void tst_FancyCursor::resetKeepsTheBorder()
{
    FancyCursor cursor;
    cursor.m_nBorderWidth = 3;
    cursor.recalculate(QPoint(2, 2), QRect(0, 0, 4, 4));
    QCOMPARE(flagsOf(cursor), quint32(All));

    cursor.reset();

    QCOMPARE(flagsOf(cursor), quint32(None));
    QCOMPARE(int(cursor.m_nBorderWidth), 3);
    cursor.recalculate(QPoint(4, 50), Window);
    QCOMPARE(flagsOf(cursor), quint32(None));
}

QTEST_APPLESS_MAIN(tst_FancyCursor)
#include "tst_FancyCursor.moc"
