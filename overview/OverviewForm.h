#pragma once

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QWidget>

class QTimer;
class QTreeWidgetItem;
class Ui_OverviewForm;

/*!
    The run-status page: tells whether the daemon runs and shows its process figures, opens the
    maker's two web pages, and repairs a daemon that has died.

    The page asks the system for the daemon once while it is constructed and then periodically for
    as long as it lives. Each time the thread waits for two short shell pipelines. A repair blocks
    the thread, for longer when the daemon doesn't run (see repairWaitSeconds()), and ends with a
    message box; refreshes go on under the box. The page has no signals: what it finds out is what
    it shows.
*/
class OverviewForm : public QWidget
{
    Q_OBJECT

public:
    //! Builds the page, refreshes it once and starts its timer. \a parent is the owner.
    explicit OverviewForm(QWidget *parent = nullptr);
    ~OverviewForm() override;

    /*!
        The same as executeInMain(): runs \a program with \a arguments, and returns its standard
        output and its exit code or an empty list.
    */
    QList<QVariant> execute(const QString &program, const QStringList &arguments);

protected:
    //! Makes Enter press the button that has the focus, as Space does.
    void keyPressEvent(QKeyEvent *event) override;
    //! Fits the columns of the table to its width.
    void showEvent(QShowEvent *event) override;
    //! Draws a ring around the widget that the keyboard has given the focus.
    void paintEvent(QPaintEvent *event) override;

private slots:
    void syncOWInfo();
    void syncTagsInfo();
    // Their names connect them, in setupUi().
    void on_kqfwdt_clicked(); // clazy:exclude=connect-by-name
    void on_kqzsk_clicked(); // clazy:exclude=connect-by-name
    void on_xfkqfw_clicked(); // clazy:exclude=connect-by-name

private:
    void nameLines();

    Ui_OverviewForm *ui;
    QTimer *timer = nullptr;
    qint64 lastPid;
    //! For the rows of the node table, which has no source of data.
    QMap<QString, QTreeWidgetItem *> serviceItems;
};
