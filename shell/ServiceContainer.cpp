#include "shell/ServiceContainer.h"

#include "fancy/FancyBar.h"
#include "fancy/FancyTitleBar.h"
#include "overview/OverviewForm.h"
#include "settings/SettingsForm.h"
#include "shell/DeviceLines.h"
#include "shell/TabTitle.h"
#include "ui_ServiceContainer.h"

#include <QWKWidgets/widgetwindowagent.h>

namespace {

constexpr int TitleBarHeight = 32;
constexpr QRgb TitleBarGrey = qRgb(216, 217, 218);

} // namespace

ServiceContainer::ServiceContainer(QWidget *parent)
    : QWidget(parent)
    , ui(new Ui_ServiceContainer)
{
    // Added to the flags, not set in their place.
    setWindowFlags(windowFlags() | Qt::FramelessWindowHint);
    ui->setupUi(this);

    bar = new FancyBar(this);
    bar->setObjectName(QStringLiteral("fancy_titlebar"));
    bar->setTitleBarHeight(TitleBarHeight);
    FancyTitleBar *titleBar = bar->titleBar();
    // Without a title bar the window stays empty.
    if (!titleBar)
        return;

    tab = new TabTitle(this);
    bar->addAdditionalControl(tab, FancyBar::TitlePosition, 0);
    ui->verticalLayout->insertWidget(0, bar);
    bar->setTextColor(QColor(0, 0, 0));
    bar->setBackgroundColor(QColor(TitleBarGrey));

    auto *agent = new QWK::WidgetWindowAgent(this);
    agent->setup(this);
    // The signal asks, and what the getter returns is the answer.
    connect(agent, // clazy:exclude=const-signal-or-slot
            &QWK::WindowAgentBase::inTitleBarDraggableArea, this,
            &ServiceContainer::inTitleBarDraggableArea);

    setFixedSize(fixedSize());

    ui->stackedWidget->addWidget(new OverviewForm(ui->stackedWidget));
    ui->stackedWidget->addWidget(new SettingsForm(ui->stackedWidget));
    new DeviceLines(ui->stackedWidget);

    connect(tab, &TabTitle::tabIndexChanged, this, &ServiceContainer::onTabIndexChanged);
    connect(titleBar, &FancyTitleBar::closeClicked, this, &QWidget::close);

    // Nothing shows the tabs again: this build keeps the settings page out of reach.
    tab->showTabWidget(false);
}

ServiceContainer::~ServiceContainer()
{
    delete ui;
}

bool ServiceContainer::inTitleBarDraggableArea(const QPoint &pos) const
{
    return tab && tab->inDragArea(pos);
}

void ServiceContainer::onTabIndexChanged(int index)
{
    ui->stackedWidget->setCurrentIndex(index);
}
