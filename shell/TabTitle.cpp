#include "shell/TabTitle.h"

#include "shell/MultiProjectsTabStyle.h"
#include "ui_TabTitle.h"

#include <QFont>
#include <QIcon>
#include <QPixmap>
#include <QTabBar>

namespace {
constexpr QSize PictureSize(18, 17);
}

TabTitle::TabTitle(QWidget *parent)
    : QWidget(parent)
    , ui(new Ui_TabTitle)
{
    ui->setupUi(this);

    // The strip of colour has a text that nobody is meant to see or to hear of. An empty name would
    // be none.
    ui->labelSpace->setIndent(ui->labelSpace->maximumWidth());
    ui->labelSpace->setAccessibleName(QStringLiteral(" "));
    ui->label->setAttribute(Qt::WA_MouseTracking);
    ui->label->installEventFilter(this);

    QTabBar *tabBar = ui->tabWidget->tabBar();
    auto *style = new MultiProjectsTabStyle(tabBar, nullptr);
    // setStyle() takes no ownership. As the header's last child the style outlives the tab bar.
    style->setParent(this);
    tabBar->setStyle(style);

    const QFont font;
    ui->tabWidget->setFont(font);
    tabBar->setFont(font);

    ui->tabWidget->addTab(new QWidget(this),
                          QIcon(QStringLiteral(":/client/resources/overview.svg")),
                          QStringLiteral("运行状态"));
    ui->tabWidget->addTab(new QWidget(this),
                          QIcon(QStringLiteral(":/client/resources/settings.svg")),
                          QStringLiteral("服务设置"));

    const qreal ratio = devicePixelRatioF();
    QPixmap picture =
            QPixmap(QStringLiteral(":/client/resources/application.svg"))
                    .scaled(PictureSize * ratio, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    picture.setDevicePixelRatio(ratio);
    ui->labelIcon->setPixmap(picture);

    connect(ui->tabWidget, &QTabWidget::currentChanged, this, &TabTitle::tabIndexChanged);
}

TabTitle::~TabTitle()
{
    delete ui;
}

bool TabTitle::inDragArea(const QPoint &pos) const
{
    // Not mapped to each other: the window's drag rule is made of just these rectangles, each at
    // (0, 0), and counts on the hidden tabs too.
    return rect().contains(pos) && !ui->tabWidget->rect().contains(pos);
}

void TabTitle::showTabWidget(bool show)
{
    ui->tabWidget->setVisible(show);
}
