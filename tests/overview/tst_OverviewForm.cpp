#include "overview/OverviewForm.h"
#include "tests/overview/RunStatus.h"
#include "tests/support/PrivateMember.h"
#include "tests/support/ProcessCounters.h"
#include "tests/support/ShimFolder.h"
#include "tests/support/childProcesses.h"
#include "tests/support/waits.h"
#include "ui_OverviewForm.h"

#include <QHeaderView>
#include <QScrollBar>
#include <QTest>
#include <QTimer>

#include <algorithm>

struct ServiceItems : PrivateMember<ServiceItems, QMap<QString, QTreeWidgetItem *>, OverviewForm>
{
};
template struct ExposePrivateMember<ServiceItems, &OverviewForm::serviceItems>;

namespace {

//! What a refresh does to lastPid besides setting it to a number.
constexpr qint64 Unknown = -1;
constexpr qint64 Kept = -2;

//! One state of the system as the tools tell it, and what the page must make of it.
// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): in the order that the tools are asked
struct Situation
{
    const char *name;
    const char *pgrepOutput;
    int pgrepExitCode;
    const char *psOutput;
    int psExitCode;
    qint64 lastPid;
    //! The row's texts, separated by "|"; empty for no row.
    const char *row;
};

const char *const AliceLine = "Corvane            1234 alice       01:02:03  0.5  1.2\n";
const char *const AliceRow = "Corvane|1234|alice|01:02:03|0.5%|1.2%";

const Situation Situations[] = {
        {"nothing runs", "", 1, AliceLine, 0, Unknown, ""},
        {"pgrep is silent", "", 0, AliceLine, 0, Unknown, ""},
        {"one daemon", "1234 Corvane\n", 0, AliceLine, 0, 1234, AliceRow},
        {"another daemon", "77 Corvane\n", 0, "Corvane 77 bob 5-00:00:01 99.9 0.0\n", 0, 77,
         "Corvane|77|bob|5-00:00:01|99.9%|0.0%"},
        // A pipeline ends with the status of its last command.
        {"pgrep fails with good output", "1234 Corvane\n", 3, AliceLine, 0, 1234, AliceRow},
        {"ps fails with good output", "1234 Corvane\n", 0, AliceLine, 1, 1234, AliceRow},
        {"other words around the name", "9 CorvaneX\n8 corvane\n7 xCorvane\n1234 Corvane\n", 0,
         AliceLine, 0, 1234, AliceRow},
        {"only other words", "9 CorvaneX\n8 corvane\n7 xCorvane\n", 0, AliceLine, 0, Unknown, ""},
        {"two daemons", "1234 Corvane\n1235 Corvane\n", 0, "", 1, Kept, ""},
        {"two daemons and ps answers", "1234 Corvane\n1235 Corvane\n", 0, AliceLine, 0, 0,
         AliceRow},
        {"a number of 64 bits", "9223372036854775807 Corvane\n", 0,
         "Corvane 9223372036854775807 a b c d\n", 0, Q_INT64_C(9223372036854775807),
         "Corvane|9223372036854775807|a|b|c%|d%"},
        {"ps is silent", "1234 Corvane\n", 0, "", 0, Kept, ""},
        {"ps tells of another program", "1234 Corvane\n", 0, "bash 1234 alice 01:02:03 0.5 1.2\n",
         0, Kept, ""},
        {"five fields", "55 Corvane\n", 0, "Corvane 55 alice 01:02:03 0.5\n", 0, 55, ""},
        {"seven fields", "56 Corvane\n", 0, "Corvane 56 alice 01:02:03 0.5 1.2 x\n", 0, 56, ""},
        {"two lines", "57 Corvane\n", 0, "Corvane 57 a b c d\nCorvane 58 e f g h\n", 0, 57, ""},
        {"tabs separate nothing", "58 Corvane\n", 0, "Corvane\t58 alice 01:02:03 0.5 1.2\n", 0, 58,
         ""},
        {"tabs count as part of a field", "59 Corvane\n", 0, "Corvane 59 a\tb c 0.5 1.2\n", 0, 59,
         "Corvane|59|a\tb|c|0.5%|1.2%"},
        // The new-line that stands for a field is skipped, and still counts for the place.
        {"a field of white space", "60 Corvane\n", 0, "Corvane 60 \n a b 0.5 Corvane\n", 0, 60,
         "Corvane|60|a|b%|0.5%|Corvane"},
        {"white space in all fields", "61 Corvane\n", 0, "\tCorvane\t 61\r a\v b\f \tc \r1.2\r\n",
         0, 61, "Corvane|61|a|b|c%|1.2%"},
        {"text that isn't ASCII", "62 Corvane\n", 0, "Corvane 62 王小明 01:02 0,5 1,2\n", 0, 62,
         "Corvane|62|王小明|01:02|0,5%|1,2%"},
};

const Situation &named(const char *name)
{
    return *std::find_if(std::begin(Situations), std::end(Situations),
                         [name](const Situation &s) { return qstrcmp(s.name, name) == 0; });
}

} // namespace

class tst_OverviewForm : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void shape();
    void tablesAreSetUp_data();
    void tablesAreSetUp();
    void columnsShareTheWidth_data();
    void columnsShareTheWidth();
    void nodePartIsHidden();
    void situations_data();
    void situations();
    void commands();
    void failedPipelineIsNoAnswer();
    void outputThatReadsAsANumber();
    void timer();
    void syncTagsInfoChangesNothing();
    void rowLeavesNothingBehind();
    void onlyTheFirstRowLeaves();
    void columnCountDecides();
    void execute();

private:
    void arrange(const Situation &situation);
    static void verify(OverviewForm &page, const Situation &situation, qint64 formerPid);

    QScopedPointer<ShimFolder> m_shims;
};

void tst_OverviewForm::init()
{
    m_shims.reset(new ShimFolder);
}

void tst_OverviewForm::cleanup()
{
    m_shims.reset();
}

void tst_OverviewForm::arrange(const Situation &situation)
{
    m_shims->addPrinting(QStringLiteral("pgrep"), situation.pgrepOutput, situation.pgrepExitCode);
    m_shims->addPrinting(QStringLiteral("ps"), situation.psOutput, situation.psExitCode);
}

void tst_OverviewForm::verify(OverviewForm &page, const Situation &situation, qint64 formerPid)
{
    verifyPage(page, situation.lastPid == Kept ? formerPid : situation.lastPid,
               QString::fromUtf8(situation.row));
}

void tst_OverviewForm::shape()
{
    const QMetaObject &meta = OverviewForm::staticMetaObject;
    QByteArrayList methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        QCOMPARE(meta.method(i).methodType(), QMetaMethod::Slot);
        QCOMPARE(meta.method(i).access(), QMetaMethod::Private);
        methods.append(meta.method(i).methodSignature());
    }
    QCOMPARE(methods, (QByteArrayList {"syncOWInfo()", "syncTagsInfo()", "on_kqfwdt_clicked()",
                                       "on_kqzsk_clicked()", "on_xfkqfw_clicked()"}));
    QCOMPARE(meta.propertyCount() - meta.propertyOffset(), 0);
}

void tst_OverviewForm::tablesAreSetUp_data()
{
    QTest::addColumn<QStringList>("headers");

    QTest::newRow("treeWidgetOW") << QStringList {"进程",     "PID",       "启动用户",
                                                  "运行时长", "CPU占用率", "内存占用率"};
    QTest::newRow("treeWidgetTag") << QStringList {"节点名称", "服务类型",   "服务端口",
                                                   "服务状况", "注册接口数", "客户端连接数"};
}

void tst_OverviewForm::tablesAreSetUp()
{
    QFETCH(QStringList, headers);
    arrange(Situations[0]);
    const OverviewForm page;

    const auto *tree = page.findChild<QTreeWidget *>(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(tree);
    QCOMPARE(tree->columnCount(), 6);
    QStringList titles;
    for (int column = 0; column < tree->columnCount(); ++column) {
        titles.append(tree->headerItem()->text(column));
        QCOMPARE(tree->header()->sectionResizeMode(column), QHeaderView::Stretch);
    }
    QCOMPARE(titles, headers);
    QCOMPARE(tree->rootIsDecorated(), false);
    QCOMPARE(tree->frameStyle(), 0);
    QCOMPARE(tree->header()->defaultAlignment(), Qt::Alignment(Qt::AlignCenter));
    QCOMPARE(tree->header()->sectionsMovable(), false);
    QCOMPARE(tree->selectionMode(), QAbstractItemView::NoSelection);
    QCOMPARE(tree->topLevelItemCount(), 0);
}

void tst_OverviewForm::columnsShareTheWidth_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<bool>("isEven");

    QTest::newRow("as large as usual") << 800 << true;
    QTest::newRow("one column needs more than its share") << 400 << false;
}

void tst_OverviewForm::columnsShareTheWidth()
{
    QFETCH(int, width);
    QFETCH(bool, isEven);
    arrange(Situations[2]);
    OverviewForm page;
    page.resize(width, 600);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page, WindowTimeoutMs));
    QCOMPARE(page.width(), width);

    for (int round = 0; round < 2; ++round) {
        const auto *tree = page.findChild<QTreeWidget *>(QStringLiteral("treeWidgetOW"));
        const QHeaderView *header = tree->header();
        const int share = tree->viewport()->width() / header->count();
        QCOMPARE(header->length(), tree->viewport()->width());
        QCOMPARE(tree->horizontalScrollBar()->maximum(), 0);
        for (int column = 0; column < header->count(); ++column) {
            QVERIFY(header->sectionSize(column) >= header->sectionSizeHint(column));
            QVERIFY(!isEven || qAbs(header->sectionSize(column) - share) <= 1);
        }
        refresh(page);
    }
}

void tst_OverviewForm::nodePartIsHidden()
{
    arrange(Situations[2]);
    OverviewForm page;
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page, WindowTimeoutMs));
    refresh(page);

    for (const char *name : {"frameService", "lineService", "labelOWError"})
        QVERIFY2(page.findChild<QWidget *>(QString::fromLatin1(name))->isHidden(), name);
    for (const char *name : {"labelTag", "labelTagError", "treeWidgetTag", "labelNoTag"}) {
        const auto *widget = page.findChild<QWidget *>(QString::fromLatin1(name));
        QVERIFY2(!widget->isHidden(), name);
        QVERIFY2(!widget->isVisible(), name);
    }
}

void tst_OverviewForm::situations_data()
{
    QTest::addColumn<int>("index");

    for (int i = 0; i < int(std::size(Situations)); ++i)
        QTest::newRow(Situations[i].name) << i;
}

void tst_OverviewForm::situations()
{
    QFETCH(int, index);
    const Situation &situation = Situations[index];
    arrange(situation);
    OverviewForm page;
    verify(page, situation, Unknown);

    // Behind a row, and behind none.
    for (const char *name : {"another daemon", "nothing runs"}) {
        arrange(named(name));
        refresh(page);
        const qint64 formerPid = lastPid(page);
        verify(page, named(name), formerPid);
        arrange(situation);
        refresh(page);
        verify(page, situation, formerPid);
    }
}

void tst_OverviewForm::commands()
{
    arrange(Situations[2]);
    // Blanks around the number don't count.
    m_shims->addPrinting(QStringLiteral("awk"), " \t 1234 \n\n");
    OverviewForm page;

    verify(page, Situations[2], Unknown);
    QCOMPARE(m_shims->calls(QStringLiteral("pgrep")), (QList<QStringList> {{"-lf", "Corvane"}}));
    QCOMPARE(m_shims->calls(QStringLiteral("awk")), (QList<QStringList> {{"{print $1}"}}));
    QCOMPARE(m_shims->calls(QStringLiteral("ps")),
             (QList<QStringList> {{"-o", "comm,pid,user,etime,%cpu,%mem", "-p", "1234"}}));
}

void tst_OverviewForm::failedPipelineIsNoAnswer()
{
    arrange(Situations[2]);
    OverviewForm page;
    QCOMPARE(lastPid(page), 1234LL);

    m_shims->addPrinting(QStringLiteral("awk"), "1234\n", 3);
    m_shims->clearCalls();
    refresh(page);

    verify(page, Situations[0], 1234);
    QCOMPARE(m_shims->calls(QStringLiteral("ps")), QList<QStringList>());
}

void tst_OverviewForm::outputThatReadsAsANumber()
{
    arrange(Situations[2]);
    OverviewForm page;

    // What counts is the text that comes out, not the exit code of the pipeline.
    m_shims->addPrinting(QStringLiteral("awk"), "99\n");
    m_shims->addPrinting(QStringLiteral("grep"), "42\n");
    refresh(page);
    QCOMPARE(lastPid(page), 1234LL);

    m_shims->addPrinting(QStringLiteral("grep"), AliceLine, 5);
    refresh(page);
    QCOMPARE(lastPid(page), 99LL);
    QCOMPARE(m_shims->calls(QStringLiteral("grep")).constFirst(), (QStringList {"-w", "Corvane"}));
}

void tst_OverviewForm::timer()
{
    arrange(Situations[0]);
    OverviewForm page;

    const QList<QTimer *> timers =
            page.findChildren<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
    QCOMPARE(timers.size(), 1);
    QCOMPARE(timers.first()->interval(), 3000);
    QVERIFY(timers.first()->isActive());
    QVERIFY(!timers.first()->isSingleShot());

    // Each tick is one refresh.
    m_shims->clearCalls();
    arrange(Situations[2]);
    QTRY_COMPARE_WITH_TIMEOUT(m_shims->calls(QStringLiteral("pgrep")).size(), 1, 10000);
    verify(page, Situations[2], Unknown);
    arrange(Situations[3]);
    QTRY_COMPARE_WITH_TIMEOUT(m_shims->calls(QStringLiteral("pgrep")).size(), 2, 10000);
    verify(page, Situations[3], 1234);
    QCOMPARE(timers.first()->interval(), 3000);
}

void tst_OverviewForm::syncTagsInfoChangesNothing()
{
    arrange(Situations[2]);
    OverviewForm page;
    const int children = page.findChildren<QObject *>().size();
    m_shims->clearCalls();

    for (int i = 0; i < 3; ++i)
        QVERIFY(QMetaObject::invokeMethod(&page, "syncTagsInfo", Qt::DirectConnection));

    verify(page, Situations[2], Unknown);
    QCOMPARE(page.findChildren<QObject *>().size(), children);
    QCOMPARE(page.findChild<QTreeWidget *>(QStringLiteral("treeWidgetTag"))->topLevelItemCount(),
             0);
    QVERIFY(ServiceItems::of(page).isEmpty());
    QCOMPARE(m_shims->calls(QStringLiteral("pgrep")), QList<QStringList>());
}

void tst_OverviewForm::rowLeavesNothingBehind()
{
    arrange(Situations[2]);
    OverviewForm page;
    // The first refreshes fill caches of Qt and of the C library.
    for (int i = 0; i < 20; ++i)
        refresh(page);

    constexpr int Rounds = 200;
    const int descriptors = openDescriptors();
    const int children = childProcesses().size();
    const int objects = page.findChildren<QObject *>().size();
    const qint64 bytes = heapBytesInUse();
    for (int i = 0; i < Rounds; ++i)
        refresh(page);

    QCOMPARE(openDescriptors(), descriptors);
    QCOMPARE(childProcesses().size(), children);
    QCOMPARE(page.findChildren<QObject *>().size(), objects);
    // An item with its texts takes some hundred bytes: 200 of them would show.
    QVERIFY2(heapBytesInUse() - bytes < 10000,
             qPrintable(QString::number(heapBytesInUse() - bytes)));
}

void tst_OverviewForm::onlyTheFirstRowLeaves()
{
    arrange(Situations[2]);
    OverviewForm page;
    auto *tree = page.findChild<QTreeWidget *>(QStringLiteral("treeWidgetOW"));
    auto *second = new QTreeWidgetItem(QStringList {QStringLiteral("second")});
    tree->addTopLevelItem(second);

    refresh(page);

    QCOMPARE(tree->topLevelItemCount(), 2);
    QCOMPARE(tree->topLevelItem(0)->text(1), QStringLiteral("1234"));
    QCOMPARE(tree->topLevelItem(1), second);
}

void tst_OverviewForm::columnCountDecides()
{
    arrange(Situations[2]);
    OverviewForm page;
    page.findChild<QTreeWidget *>(QStringLiteral("treeWidgetOW"))->setColumnCount(7);

    refresh(page);

    QVERIFY(!page.findChild<QLabel *>(QStringLiteral("labelNoService"))->isHidden());
    QCOMPARE(lastPid(page), 1234LL);
}

void tst_OverviewForm::execute()
{
    arrange(Situations[0]);
    OverviewForm page;

    const QList<QVariant> result = page.execute(QStringLiteral("/bin/bash"),
                                                {"-c", "printf 'out'; printf 'err' >&2; exit 7"});
    QCOMPARE(result, (QList<QVariant> {QByteArray("out"), 7}));
    QCOMPARE(result.at(0).type(), QVariant::ByteArray);
    QCOMPARE(result.at(1).type(), QVariant::Int);
    QCOMPARE(page.execute(QStringLiteral("/nonexistent/program"), {}), QList<QVariant>());
}

QTEST_MAIN(tst_OverviewForm)
#include "tst_OverviewForm.moc"
