#include "app/daemon.h"
#include "overview/OverviewForm.h"
#include "tests/overview/RunStatus.h"
#include "tests/support/AskingTranslator.h"
#include "tests/support/PrivateMember.h"
#include "tests/support/ProcessCounters.h"
#include "tests/support/ShimFolder.h"
#include "tests/support/WebShortcuts.h"
#include "tests/support/childProcesses.h"
#include "tests/support/waits.h"

#include <QDesktopServices>
#include <QFrame>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>
#include <QUrl>

struct ServiceItems : PrivateMember<ServiceItems, QMap<QString, QTreeWidgetItem *>, OverviewForm>
{
};
template struct ExposePrivateMember<ServiceItems, &OverviewForm::serviceItems>;

namespace {

//! What a refresh does to lastPid besides setting it to a number.
constexpr qint64 Unknown = -1;
constexpr qint64 Kept = -2;

const char *const OneDaemon = "1234 Corvane\n";

//! What ps prints: nothing, what it prints for alice, or that and something more.
enum class Line { None, Alice, OneFieldLess, OneFieldMore, Twice, AnotherProgram };

QByteArray lineOf(Line line)
{
    QByteArray alice = aliceLine();
    switch (line) {
    case Line::None:
        return {};
    case Line::Alice:
        return alice;
    case Line::OneFieldLess:
        return alice.left(alice.lastIndexOf(' ')) + '\n';
    case Line::OneFieldMore:
        return alice.trimmed() + " x\n";
    case Line::Twice:
        return alice + alice;
    case Line::AnotherProgram:
        return alice.replace("Corvane", "bash");
    }
    return {};
}

constexpr Qt::Edges AllEdges = Qt::LeftEdge | Qt::TopEdge | Qt::RightEdge | Qt::BottomEdge;

//! One state of the system as the tools tell it, and what the page must make of it.
// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): in the order that the tools are asked
struct Situation
{
    const char *name;
    const char *pgrepOutput;
    int pgrepExitCode;
    Line psOutput;
    int psExitCode;
    qint64 lastPid;
    bool hasRow;
};

const Situation Situations[] = {
        {"nothing runs", "", 1, Line::Alice, 0, Unknown, false},
        {"pgrep is silent", "", 0, Line::Alice, 0, Unknown, false},
        {"one daemon", OneDaemon, 0, Line::Alice, 0, AlicePid, true},
        {"another PID", "77 Corvane\n", 0, Line::Alice, 0, 77, true},
        // A pipeline ends with the status of its last command.
        {"pgrep fails with good output", OneDaemon, 3, Line::Alice, 0, AlicePid, true},
        {"ps fails with good output", OneDaemon, 0, Line::Alice, 1, AlicePid, true},
        {"two daemons", "1234 Corvane\n1235 Corvane\n", 0, Line::None, 1, Kept, false},
        {"two daemons and ps answers", "1234 Corvane\n1235 Corvane\n", 0, Line::Alice, 0, 0, true},
        {"ps is silent", OneDaemon, 0, Line::None, 0, Kept, false},
        {"ps tells of another program", OneDaemon, 0, Line::AnotherProgram, 0, Kept, false},
        {"one field less", OneDaemon, 0, Line::OneFieldLess, 0, AlicePid, false},
        {"one field more", OneDaemon, 0, Line::OneFieldMore, 0, AlicePid, false},
        {"two lines", OneDaemon, 0, Line::Twice, 0, AlicePid, false},
};

//! Three of them that other tests need.
const Situation &NothingRuns = Situations[0];
const Situation &OneRuns = Situations[2];
const Situation &AnotherRuns = Situations[3];

QTreeWidget *processTable(const OverviewForm &page)
{
    return page.findChild<QTreeWidget *>(QStringLiteral("treeWidgetOW"));
}

QStringList titles(const QTreeWidget *tree)
{
    QStringList texts;
    for (int column = 0; column < tree->columnCount(); ++column)
        texts.append(tree->headerItem()->text(column));
    return texts;
}

//! Takes the web addresses that the page opens, in the place of the desktop.
class Desktop : public QObject
{
    Q_OBJECT

public:
    Desktop() { QDesktopServices::setUrlHandler(QStringLiteral("https"), this, "open"); }
    ~Desktop() override { QDesktopServices::unsetUrlHandler(QStringLiteral("https")); }
    Q_DISABLE_COPY_MOVE(Desktop)

    QStringList opened;

public slots:
    void open(const QUrl &url) { opened.append(url.toString(QUrl::FullyEncoded)); }
};

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
    void titlesAreTranslatable();
    void columnsShareTheWidth();
    void linesAreNamedAsTheyAreDrawn();
    void nodePartIsHidden();
    void situations_data();
    void situations();
    void tableIsAsHighAsItsRow();
    void commands();
    void failedPipelineIsNoAnswer();
    void outputThatReadsAsANumber();
    void timer();
    void syncTagsInfoChangesNothing();
    void rowLeavesNothingBehind();
    void onlyTheFirstRowLeaves();
    void columnCountDecides();
    void execute();
    void shortcutsOpenTheirPages();

private:
    void arrange(const Situation &situation);
    static QString expected(const Situation &situation, qint64 formerPid = Unknown);

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
    m_shims->addPrinting(QStringLiteral("ps"), lineOf(situation.psOutput), situation.psExitCode);
}

QString tst_OverviewForm::expected(const Situation &situation, qint64 formerPid)
{
    return expectedState(situation.lastPid == Kept ? formerPid : situation.lastPid,
                         situation.hasRow ? aliceRow() : QString());
}

void tst_OverviewForm::shape()
{
    const QMetaObject &meta = OverviewForm::staticMetaObject;
    QByteArrayList methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        QCOMPARE(meta.method(i).methodType(), QMetaMethod::Slot);
        QCOMPARE(meta.method(i).access(), QMetaMethod::Private);
        // A button's slot is tested with its button.
        if (!meta.method(i).name().startsWith("on_"))
            methods.append(meta.method(i).methodSignature());
    }
    QCOMPARE(methods.join(' '), QByteArray("syncOWInfo() syncTagsInfo()"));
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
    arrange(NothingRuns);
    const OverviewForm page;

    const auto *tree = page.findChild<QTreeWidget *>(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(tree);
    QCOMPARE(titles(tree).join(QLatin1Char(' ')), headers.join(QLatin1Char(' ')));
    for (int column = 0; column < tree->columnCount(); ++column)
        QCOMPARE(tree->header()->sectionResizeMode(column), QHeaderView::Stretch);
    QCOMPARE(tree->rootIsDecorated(), false);
    QCOMPARE(tree->frameStyle(), 0);
    QCOMPARE(tree->header()->defaultAlignment(), Qt::Alignment(Qt::AlignCenter));
    QCOMPARE(tree->header()->sectionsMovable(), false);
    QCOMPARE(tree->selectionMode(), QAbstractItemView::NoSelection);
    QCOMPARE(tree->topLevelItemCount(), 0);
}

void tst_OverviewForm::titlesAreTranslatable()
{
    arrange(NothingRuns);
    const OverviewForm plain;
    AskingTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    const OverviewForm translated;

    for (const char *name : {"treeWidgetOW", "treeWidgetTag"}) {
        const QString table = QString::fromLatin1(name);
        QStringList expected = titles(plain.findChild<QTreeWidget *>(table));
        for (QString &title : expected)
            title = QStringLiteral("OverviewForm|%1|").arg(title);
        QCOMPARE(titles(translated.findChild<QTreeWidget *>(table)), expected);
    }
}

//! From one column that needs more to columns of one width, to one that needs too much, and back.
void tst_OverviewForm::columnsShareTheWidth()
{
    const auto arrangeUser = [this](const QByteArray &user) {
        m_shims->addPrinting(QStringLiteral("ps"), aliceLine().replace("alice", user));
    };
    // More than its share, and less than what the others leave.
    const QByteArray wide(20, 'm');
    arrange(OneRuns);
    arrangeUser(wide);
    OverviewForm page;
    page.resize(800, 600);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page, WindowTimeoutMs));

    const QTreeWidget *tree = processTable(page);
    QHeaderView *header = tree->header();
    const int user = aliceRow().split(QLatin1Char('|')).indexOf(QStringLiteral("alice"));
    const int wideWidth = tree->fontMetrics().horizontalAdvance(QString::fromLatin1(wide));
    const int share = tree->viewport()->width() / header->count();
    QVERIFY(wideWidth > share);
    const auto fillsTheTable = [&] {
        return header->length() == tree->viewport()->width()
               && tree->horizontalScrollBar()->maximum() == 0;
    };
    const auto isEven = [&] {
        for (int column = 0; column < header->count(); ++column) {
            if (qAbs(header->sectionSize(column) - share) > 1)
                return false;
        }
        return true;
    };
    QVERIFY(header->sectionSize(user) > wideWidth);
    QVERIFY(fillsTheTable());

    arrangeUser("alice");
    refresh(page);
    QVERIFY(isEven());
    QVERIFY(fillsTheTable());

    // Wider than the table: cut off, rather than the others pushed out of sight.
    arrangeUser(wide.repeated(8));
    refresh(page);
    QVERIFY(isEven());
    QVERIFY(fillsTheTable());

    arrangeUser(wide);
    refresh(page);
    QVERIFY(header->sectionSize(user) > wideWidth);
    QVERIFY(fillsTheTable());

    // A title needs its width as well.
    arrangeUser("alice");
    tree->headerItem()->setText(user, QString::fromLatin1(wide));
    refresh(page);
    QVERIFY(header->sectionSize(user) >= header->sectionSizeHint(user));
    QVERIFY(header->sectionSize(user) > share);
    QVERIFY(fillsTheTable());
}

void tst_OverviewForm::linesAreNamedAsTheyAreDrawn()
{
    arrange(NothingRuns);
    const OverviewForm page;

    const auto drawn = [](const QWidget &widget, const QString &what) {
        const QRegularExpression declaration(what + QStringLiteral(" ([#\\w]+);"));
        return QColor(declaration.match(widget.styleSheet()).captured(1));
    };
    const auto hasLines = [](const QWidget &widget, const QColor &color, Qt::Edges edges) {
        const QVariant named = widget.property("borderEdges");
        return color.isValid() && widget.property("borderColor").value<QColor>() == color
               && (named.isValid() ? Qt::Edges(named.toInt()) : AllEdges) == edges;
    };
    const QList<QPushButton *> buttons = page.findChildren<QPushButton *>();
    for (const QPushButton *button : buttons) {
        const QColor color = drawn(*button, QStringLiteral("border: 1px solid"));
        QVERIFY2(hasLines(*button, color, AllEdges), qPrintable(button->objectName()));
    }
    for (const char *name : {"labelNoService", "labelNoTag"}) {
        const auto *notice = page.findChild<QLabel *>(QString::fromLatin1(name));
        QVERIFY(notice->styleSheet().contains(QStringLiteral("border-top-width:0px;")));
        const QColor color = drawn(*notice, QStringLiteral("border: 1px solid"));
        QVERIFY2(hasLines(*notice, color, AllEdges & ~Qt::TopEdge), name);
    }
    const QList<QTreeWidget *> tables = page.findChildren<QTreeWidget *>();
    for (const QTreeWidget *table : tables) {
        const QColor color = drawn(*table, QStringLiteral("background-color:"));
        QVERIFY(color.isValid());
        QCOMPARE(table->property("headerColor").value<QColor>(), color);
    }
}

void tst_OverviewForm::nodePartIsHidden()
{
    arrange(OneRuns);
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
    QCOMPARE(pageState(page), expected(situation));

    // After a row, and after none.
    for (const Situation &former : {AnotherRuns, NothingRuns}) {
        arrange(former);
        refresh(page);
        const qint64 formerPid = lastPid(page);
        QCOMPARE(pageState(page), expected(former));
        arrange(situation);
        refresh(page);
        QCOMPARE(pageState(page), expected(situation, formerPid));
    }
}

void tst_OverviewForm::tableIsAsHighAsItsRow()
{
    constexpr int header = 36;
    constexpr int headerAndRow = 76;
    arrange(NothingRuns);
    OverviewForm page;
    const auto *tree = page.findChild<QTreeWidget *>(QStringLiteral("treeWidgetOW"));
    QCOMPARE(tree->minimumHeight(), header);
    QCOMPARE(tree->maximumHeight(), header);

    for (const Situation &situation : Situations) {
        arrange(OneRuns);
        refresh(page);
        QVERIFY2(tree->minimumHeight() == headerAndRow && tree->maximumHeight() == headerAndRow,
                 situation.name);
        arrange(situation);
        refresh(page);
        const int height = situation.hasRow ? headerAndRow : header;
        QVERIFY2(tree->minimumHeight() == height && tree->maximumHeight() == height,
                 situation.name);
    }
}

void tst_OverviewForm::commands()
{
    arrange(OneRuns);
    // Blanks around the number don't count.
    m_shims->addPrinting(QStringLiteral("awk"), " \t 1234 \n\n");
    OverviewForm page;

    QCOMPARE(pageState(page), expected(OneRuns));
    // Both command lines begin with these calls.
    const auto call = [this](const char *tool) {
        const QList<QStringList> calls = m_shims->calls(QString::fromLatin1(tool));
        return calls.size() == 1 ? tool + QLatin1Char(' ') + calls.first().join(QLatin1Char(' '))
                                 : QString();
    };
    const auto firstCommand = [](const QString &commandLine) {
        return commandLine.section(QStringLiteral(" | "), 0, 0);
    };
    QCOMPARE(call("pgrep"), firstCommand(Daemon::probeCommand()));
    QCOMPARE(call("ps"), firstCommand(Daemon::detailCommand(AlicePid)));
}

void tst_OverviewForm::failedPipelineIsNoAnswer()
{
    arrange(OneRuns);
    OverviewForm page;
    QCOMPARE(lastPid(page), AlicePid);

    m_shims->addPrinting(QStringLiteral("awk"), "1234\n", 3);
    m_shims->clearCalls();
    refresh(page);

    QCOMPARE(pageState(page), expected(NothingRuns));
    QCOMPARE(m_shims->calls(QStringLiteral("ps")), QList<QStringList>());
}

void tst_OverviewForm::outputThatReadsAsANumber()
{
    arrange(OneRuns);
    OverviewForm page;

    // What counts is the text that comes out, not the exit code of the pipeline.
    m_shims->addPrinting(QStringLiteral("awk"), "99\n");
    m_shims->addPrinting(QStringLiteral("grep"), "42\n");
    refresh(page);
    QCOMPARE(pageState(page), expectedState(AlicePid, QString()));

    m_shims->addPrinting(QStringLiteral("grep"), aliceLine(), 5);
    refresh(page);
    QCOMPARE(pageState(page), expectedState(99, aliceRow()));
}

void tst_OverviewForm::timer()
{
    arrange(NothingRuns);
    OverviewForm page;

    const QList<QTimer *> timers =
            page.findChildren<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
    QCOMPARE(timers.size(), 1);
    QTimer *timer = timers.first();
    QCOMPARE(timer->interval(), 3000);
    QVERIFY(timer->isActive());
    QVERIFY(!timer->isSingleShot());

    // Each tick is one refresh.
    for (const Situation &situation : {OneRuns, NothingRuns}) {
        m_shims->clearCalls();
        arrange(situation);
        QVERIFY(QMetaObject::invokeMethod(timer, "timeout"));
        QCOMPARE(m_shims->calls(QStringLiteral("pgrep")).size(), 1);
        QCOMPARE(pageState(page), expected(situation));
    }
    QVERIFY(timer->isActive());
}

void tst_OverviewForm::syncTagsInfoChangesNothing()
{
    arrange(OneRuns);
    OverviewForm page;
    const int children = page.findChildren<QObject *>().size();
    m_shims->clearCalls();

    for (int i = 0; i < 3; ++i)
        QVERIFY(QMetaObject::invokeMethod(&page, "syncTagsInfo", Qt::DirectConnection));

    QCOMPARE(pageState(page), expected(OneRuns));
    QCOMPARE(page.findChildren<QObject *>().size(), children);
    QCOMPARE(page.findChild<QTreeWidget *>(QStringLiteral("treeWidgetTag"))->topLevelItemCount(),
             0);
    QVERIFY(ServiceItems::of(page).isEmpty());
    QCOMPARE(m_shims->calls(QStringLiteral("pgrep")), QList<QStringList>());
}

void tst_OverviewForm::rowLeavesNothingBehind()
{
    arrange(OneRuns);
    OverviewForm page;
    // The first refreshes fill caches of Qt and of the C library.
    for (int i = 0; i < 10; ++i)
        refresh(page);

    constexpr int Rounds = 50;
    const int descriptors = openDescriptors();
    const int children = childProcesses().size();
    const int objects = page.findChildren<QObject *>().size();
    const qint64 bytes = heapBytesInUse();
    for (int i = 0; i < Rounds; ++i)
        refresh(page);

    // There was a row to leave something behind.
    QCOMPARE(pageState(page), expected(OneRuns));
    QCOMPARE(openDescriptors(), descriptors);
    QCOMPARE(childProcesses().size(), children);
    QCOMPARE(page.findChildren<QObject *>().size(), objects);
    // An item with its texts takes some hundred bytes.
    QVERIFY2(heapBytesInUse() - bytes < qint64(100) * Rounds,
             qPrintable(QString::number(heapBytesInUse() - bytes)));
}

void tst_OverviewForm::onlyTheFirstRowLeaves()
{
    arrange(OneRuns);
    OverviewForm page;
    QTreeWidget *tree = processTable(page);
    auto *second = new QTreeWidgetItem(QStringList {QStringLiteral("second")});
    tree->addTopLevelItem(second);

    refresh(page);

    QCOMPARE(tree->topLevelItemCount(), 2);
    QCOMPARE(tree->topLevelItem(0)->text(0), QStringLiteral("Corvane"));
    QCOMPARE(tree->topLevelItem(1), second);
}

void tst_OverviewForm::columnCountDecides()
{
    arrange(OneRuns);
    OverviewForm page;
    QTreeWidget *tree = processTable(page);
    const int columns = tree->columnCount();

    for (const int other : {columns - 1, columns + 1}) {
        tree->setColumnCount(other);
        refresh(page);
        QCOMPARE(pageState(page), expectedState(AlicePid, QString()));
    }
    tree->setColumnCount(columns);
    refresh(page);
    QCOMPARE(pageState(page), expected(OneRuns));
}

void tst_OverviewForm::execute()
{
    arrange(NothingRuns);
    OverviewForm page;

    const QList<QVariant> result = page.execute(QStringLiteral("/bin/bash"),
                                                {"-c", "printf 'out'; printf 'err' >&2; exit 7"});
    QCOMPARE(result, (QList<QVariant> {QByteArray("out"), 7}));
    QCOMPARE(result.at(0).type(), QVariant::ByteArray);
    QCOMPARE(result.at(1).type(), QVariant::Int);
    QCOMPARE(page.execute(QStringLiteral("/nonexistent/program"), {}), QList<QVariant>());
}

void tst_OverviewForm::shortcutsOpenTheirPages()
{
    arrange(NothingRuns);
    const OverviewForm page;
    Desktop desktop;
    const QList<QPushButton *> buttons =
            page.findChild<QFrame *>(QStringLiteral("frameWebsite"))->findChildren<QPushButton *>();

    QStringList names;
    for (QPushButton *button : buttons) {
        names.append(button->objectName());
        button->click();
        button->click();
    }

    QStringList expectedNames;
    QStringList expectedAddresses;
    for (const WebShortcut &shortcut : WebShortcuts) {
        expectedNames.append(QString::fromLatin1(shortcut.button));
        for (int click = 0; click < 2; ++click)
            expectedAddresses.append(QString::fromLatin1(shortcut.address));
    }
    QCOMPARE(names.join(QLatin1Char(' ')), expectedNames.join(QLatin1Char(' ')));
    QCOMPARE(desktop.opened.join(QLatin1Char(' ')), expectedAddresses.join(QLatin1Char(' ')));
}

QTEST_MAIN(tst_OverviewForm)
#include "tst_OverviewForm.moc"
