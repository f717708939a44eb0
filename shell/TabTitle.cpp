#include "shell/TabTitle.h"

#include "shell/MultiProjectsTabStyle.h"
#include "ui_TabTitle.h"

#include <QFont>
#include <QIcon>
#include <QPixmap>
#include <QTabBar>

namespace {
constexpr QSize IconSize(18, 17);
}

TabTitle::TabTitle(QWidget *parent)
    : QWidget(parent)
    , ui(new Ui_TabTitle)
{
    ui->setupUi(this);

    // The accent's placeholder text must be neither visible nor read out; an empty accessible name
    // would fall back to it.
    ui->labelSpace->setIndent(ui->labelSpace->maximumWidth());
    ui->labelSpace->setAccessibleName(QStringLiteral(" "));
    ui->label->setAttribute(Qt::WA_MouseTracking);
    // Without effect as long as the header has no eventFilter() of its own.
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
    QPixmap icon =
            QPixmap(QStringLiteral(":/client/resources/application.svg"))
                    .scaled(IconSize * ratio, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    icon.setDevicePixelRatio(ratio);
    ui->labelIcon->setPixmap(icon);

    connect(ui->tabWidget, &QTabWidget::currentChanged, this, &TabTitle::tabIndexChanged);
}

TabTitle::~TabTitle()
{
    delete ui;
}

bool TabTitle::inDragArea(const QPoint &pos) const
{
    // Both rectangles are at (0, 0): the tab widget's is not mapped to the header, so the part that
    // doesn't drag is the header's top-left corner, also while the tabs are hidden.
    return rect().contains(pos) && !ui->tabWidget->rect().contains(pos);
}

void TabTitle::showTabWidget(bool show)
{
    ui->tabWidget->setVisible(show);
}
