#include "overview/OverviewForm.h"

#include "app/daemon.h"
#include "app/executeInMain.h"
#include "overview/repairWait.h"
#include "ui_OverviewForm.h"

#include <QApplication>
#include <QDateTime>
#include <QDebug>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMessageBox>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QThread>
#include <QTimer>
#include <QTreeWidget>
#include <QUrl>
#include <QVector>

#include <algorithm>
#include <numeric>

namespace {

constexpr int RefreshIntervalMs = 3000;

constexpr int HeaderHeight = 36;
constexpr int HeaderAndRowHeight = 76;
//! Left and right of a cell's text together, in pixels: its own margins and those of the style.
constexpr int CellMargins = 10;

//! As in the style sheets of the form, for nameLines().
constexpr QRgb AccentColor = qRgb(0x00, 0x78, 0xd4);
constexpr QRgb NoticeBorderColor = qRgb(0x80, 0x80, 0x80);

//! A page that a button opens. Its host comes from the configure step.
struct WebPage
{
    const char *host;
    const char *path; //!< with the fragment
};

constexpr WebPage ServiceHall = {PANEL_SERVICE_HALL_HOST, "/#/software-selfHelp"};
constexpr WebPage KnowledgeBase = {PANEL_KNOWLEDGE_BASE_HOST, "/kqwiki/fullTextSearch.xhtml"};

constexpr unsigned long NoRepairPauseMs = 2000;
constexpr unsigned long MsPerSecond = 1000;

//! Shows the wait cursor over the whole application while it lives.
class WaitCursor
{
public:
    WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
    Q_DISABLE_COPY_MOVE(WaitCursor)
};

//! Runs \a commandLine in the shell, as the page runs everything.
QList<QVariant> run(OverviewForm &page, const QString &commandLine)
{
    return page.execute(Daemon::shell(), Daemon::shellArguments(commandLine));
}

void open(const WebPage &page)
{
    const QString address =
            QStringLiteral("https://") + QLatin1String(page.host) + QLatin1String(page.path);
    QDesktopServices::openUrl(QUrl(address, QUrl::TolerantMode));
}

void setUpTable(QTreeWidget *tree, const QStringList &headers)
{
    tree->setRootIsDecorated(false);
    tree->setColumnCount(headers.size());
    tree->setHeaderLabels(headers);
    tree->setFrameStyle(0);
    tree->header()->setDefaultAlignment(Qt::AlignCenter);
    tree->header()->setSectionsMovable(false);
    tree->header()->setSectionResizeMode(QHeaderView::Stretch);
    // Else Qt gives the last section a width of its own where the page changes size.
    tree->header()->setStretchLastSection(false);
    tree->setSelectionMode(QAbstractItemView::NoSelection);
}

/*!
    Gives each column of \a tree the same width, or, where one needs more than that and all fit
    nonetheless, that column what it needs.
*/
void fitColumns(QTreeWidget *tree)
{
    QHeaderView *header = tree->header();
    const QTreeWidgetItem *row = tree->topLevelItem(0);
    const int count = tree->columnCount();
    const int available = tree->viewport()->width();
    QVector<int> needed;
    for (int column = 0; column < count; ++column) {
        const QString text = row ? row->text(column) : QString();
        needed.append(std::max(header->sectionSizeHint(column),
                               tree->fontMetrics().horizontalAdvance(text) + CellMargins));
    }
    const bool allFit = std::accumulate(needed.begin(), needed.end(), 0) <= available;
    for (int column = 0; column < count; ++column) {
        const bool needsMore = allFit && needed.at(column) > available / count;
        const auto mode = needsMore ? QHeaderView::Fixed : QHeaderView::Stretch;
        if (header->sectionResizeMode(column) != mode)
            header->setSectionResizeMode(column, mode);
        if (needsMore)
            header->resizeSection(column, needed.at(column));
    }
}

/*!
    Does the layout that \a tree owes after a change of its rows. Left to the event loop, it has the
    header painted twice: the header finds out only while it paints that its sections are due too.
*/
void layOutAtOnce(QTreeWidget *tree)
{
    if (!tree->isVisible())
        return;
    fitColumns(tree);
    tree->doItemsLayout();
    // Asking for the length is what makes the header lay out its sections.
    static_cast<void>(tree->header()->length());
}

} // namespace

OverviewForm::OverviewForm(QWidget *parent)
    : QWidget(parent)
    , ui(new Ui_OverviewForm)
    , lastPid(Daemon::UnknownPid)
{
    ui->setupUi(this);

    QStringList titles;
    for (const Daemon::Figure &figure : Daemon::Figures)
        titles.append(tr(figure.title));
    setUpTable(ui->treeWidgetOW, titles);
    ui->labelNoService->hide();
    ui->labelOWError->hide();

    // Nothing fills this table: its frame stays hidden.
    setUpTable(ui->treeWidgetTag, {tr("节点名称"), tr("服务类型"), tr("服务端口"), tr("服务状况"),
                                   tr("注册接口数"), tr("客户端连接数")});
    ui->frameService->hide();
    ui->lineService->hide();

    // Assistive tools know a table by its title, and a button without the blank beside its icon.
    ui->treeWidgetOW->setAccessibleName(ui->labelOW->text());
    ui->treeWidgetTag->setAccessibleName(ui->labelTag->text());
    const QList<QPushButton *> buttons = findChildren<QPushButton *>();
    for (QPushButton *button : buttons)
        button->setAccessibleName(button->text().trimmed());
    nameLines();
    connect(qGuiApp, &QGuiApplication::focusObjectChanged, this, QOverload<>::of(&QWidget::update));

    syncOWInfo();
    syncTagsInfo();

    timer = new QTimer(this);
    timer->start(RefreshIntervalMs);
    connect(timer, &QTimer::timeout, this, &OverviewForm::syncOWInfo);
}

OverviewForm::~OverviewForm()
{
    delete ui;
}

/*!
    Tells which lines the style sheets draw: no program can ask them, and whoever keeps the lines
    whole on dense screens has to know.
*/
void OverviewForm::nameLines()
{
    constexpr const char *borderColor = "borderColor";
    const QList<QPushButton *> buttons = findChildren<QPushButton *>();
    for (QPushButton *button : buttons)
        button->setProperty(borderColor, QColor(AccentColor));
    for (QLabel *notice : {ui->labelNoService, ui->labelNoTag}) {
        notice->setProperty(borderColor, QColor(NoticeBorderColor));
        notice->setProperty("borderEdges", int(Qt::LeftEdge | Qt::RightEdge | Qt::BottomEdge));
    }
    for (QTreeWidget *table : {ui->treeWidgetOW, ui->treeWidgetTag})
        table->setProperty("headerColor", QColor(AccentColor));
}

QList<QVariant> OverviewForm::execute(const QString &program, const QStringList &arguments)
{
    return executeInMain(program, arguments);
}

void OverviewForm::syncOWInfo()
{
    QStringList row;

    const QList<QVariant> probe = run(*this, Daemon::probeCommand());
    if (!Daemon::daemonFound(probe)) {
        lastPid = Daemon::UnknownPid;
    } else {
        const qint64 pid = Daemon::pidOrZero(probe);
        const QList<QVariant> detail = run(*this, Daemon::detailCommand(pid));
        const QString text = Daemon::outputText(detail);
        // first() is the output, not the exit code, and text converts to 0: any output passes but
        // a number other than 0. Where the test fails, lastPid keeps its value.
        if (!text.isEmpty() && detail.first().toInt() == 0) {
            lastPid = pid;
            row = Daemon::figureTexts(text);
        }
    }

    QTreeWidget *tree = ui->treeWidgetOW;
    // There is never more than this one row.
    delete tree->takeTopLevelItem(0);

    if (row.size() != tree->columnCount()) {
        ui->labelNoService->show();
        tree->setFixedHeight(HeaderHeight);
        return;
    }

    ui->labelNoService->hide();
    tree->setFixedHeight(HeaderAndRowHeight);
    auto *item = new QTreeWidgetItem(row);
    for (int column = 0; column < row.size(); ++column)
        item->setTextAlignment(column, Qt::AlignCenter);
    tree->insertTopLevelItem(0, item);
    layOutAtOnce(tree);
}

void OverviewForm::syncTagsInfo()
{
    // There is no source of node data.
}

void OverviewForm::on_kqfwdt_clicked()
{
    open(ServiceHall);
}

void OverviewForm::on_kqzsk_clicked()
{
    open(KnowledgeBase);
}

void OverviewForm::on_xfkqfw_clicked()
{
    const QString title = tr("修复朔川服务");

    if (lastPid > 0) {
        {
            const WaitCursor cursor;
            QThread::msleep(NoRepairPauseMs);
        }
        QMessageBox::information(this, title, tr("统一服务运行正常，无需修复。"), QMessageBox::Ok,
                                 QMessageBox::NoButton);
        return;
    }

    {
        const WaitCursor cursor;
        // Neither the outcome of the start nor the number that it gives counts: the probe below
        // tells. An executable that is missing is tried all the same.
        Daemon::launch(Daemon::LaunchRule::Always);
        const int seconds = repairWaitSeconds(quint32(QDateTime::currentMSecsSinceEpoch()));
        qInfo() << seconds;
        QThread::msleep(quint32(seconds) * MsPerSecond);
    }

    // Unlike start-up, any answer counts, however many daemons it tells of. The row and lastPid are
    // left to the next tick of the timer.
    if (Daemon::daemonFound(run(*this, Daemon::probeCommand()))) {
        QMessageBox::information(this, title, tr("朔川服务修复成功！"), QMessageBox::Ok,
                                 QMessageBox::NoButton);
    } else {
        QMessageBox::warning(this, title, tr("尝试修复失败：请重启电脑后再试或联系朔川客服人员！"),
                             QMessageBox::Ok, QMessageBox::NoButton);
    }
}

void OverviewForm::keyPressEvent(QKeyEvent *event)
{
    const bool isEnter = (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
                         && (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    // Qt's buttons answer Enter in dialogs only; elsewhere it comes up to their page.
    auto *button = qobject_cast<QPushButton *>(focusWidget());
    if (isEnter && button && button->hasFocus()) {
        // A key that is held down is one press, as with Space.
        if (!event->isAutoRepeat())
            button->click();
        return;
    }
    QWidget::keyPressEvent(event);
}

void OverviewForm::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    // Only now the table has its width.
    fitColumns(ui->treeWidgetOW);
}

void OverviewForm::paintEvent(QPaintEvent *event)
{
    QWidget::paintEvent(event);

    const QWidget *focused = focusWidget();
    if (!focused || !focused->hasFocus() || !window()->testAttribute(Qt::WA_KeyboardFocusChange))
        return;
    // Around the widget: its style sheet leaves little inside that could show the focus.
    QStyleOptionFocusRect option;
    option.initFrom(this);
    option.rect = QRect(focused->mapTo(this, QPoint()), focused->size());
    QPainter painter(this);
    // Not the page's style: that of a style sheet draws no focus rectangle.
    QApplication::style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
}
