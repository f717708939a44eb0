#include "shell/ServiceContainer.h"

#include "fancy/FancyBar.h"
#include "fancy/FancyTitleBar.h"
#include "overview/OverviewForm.h"
#include "settings/SettingsForm.h"
#include "shell/DeviceLines.h"
#include "shell/TabTitle.h"
#include "shell/pagePalette.h"
#include "ui_ServiceContainer.h"

#include <QWKWidgets/widgetwindowagent.h>

#include <QApplication>
#include <QEvent>
#include <QStyle>
#include <QStyleFactory>

namespace {

constexpr int TitleBarHeight = 32;
constexpr int MediumLightness = 128;
//! Of this grey, black and white have the same contrast.
constexpr int MediumGray = 117;
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
    fitToTheme();
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

void ServiceContainer::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    // Queued: the style sheets below the window follow the new theme, too, and set palettes by it.
    if (event->type() == QEvent::StyleChange || event->type() == QEvent::ApplicationPaletteChange)
        QMetaObject::invokeMethod(this, &ServiceContainer::fitToTheme, Qt::QueuedConnection);
}

//! Keeps the white page readable in the desktop's present theme.
void ServiceContainer::fitToTheme()
{
    fitStyle();
    fitMessageBoxButtons();
    const QList<QWidget *> widgets = ui->stackedWidget->findChildren<QWidget *>();
    // One by one: below a style sheet Qt hands no palette on.
    for (QWidget *widget : widgets) {
        // Message boxes follow the desktop.
        QPalette palette = QApplication::palette(widget);
        if (widget->window() == this) {
            // What a style sheet has chosen stays. The rest counts as chosen, too, so that none of
            // it follows the desktop.
            palette = widget->palette().resolve(pagePalette(*widget));
            palette.resolve(~0U);
        }
        widget->setPalette(palette);
    }
}

/*!
    Some styles write the text of a focused button in the colour of selected text, and few desktops
    care for its contrast. Push buttons of the application get black where that reads better; those
    of the page have a palette of their own, so only message boxes change.
*/
void ServiceContainer::fitMessageBoxButtons()
{
    QPalette palette = QApplication::palette("QPushButton");
    const QColor background = palette.color(QPalette::Active, QPalette::Highlight);
    const QColor text = palette.color(QPalette::Active, QPalette::HighlightedText);
    // A background of medium lightness goes better with black than with white.
    if (qGray(background.rgb()) < MediumGray || text == Qt::black)
        return;
    palette.setColor(QPalette::HighlightedText, Qt::black);
    QApplication::setPalette(palette, "QPushButton");
}

/*!
    Leaves the window in the application's style, or puts it into one of Qt's own where that paints
    dark controls whatever their palette says: on the white page they would be unreadable.
*/
void ServiceContainer::fitStyle()
{
    const QColor background = QApplication::style()->standardPalette().color(QPalette::Window);
    const bool isDark = background.lightness() < MediumLightness;
    if (isDark == bool(lightStyle))
        return;
    QStyle *former = lightStyle;
    lightStyle = isDark ? QStyleFactory::create(QStringLiteral("Fusion")) : nullptr;
    if (lightStyle)
        lightStyle->setParent(this);
    setStyle(lightStyle);
    // A widget with a style sheet of its own takes no style over from its parent.
    const QList<QWidget *> widgets = findChildren<QWidget *>();
    for (QWidget *widget : widgets) {
        if (widget->window() == this && !widget->styleSheet().isEmpty())
            widget->setStyle(lightStyle);
    }
    delete former;
}

void ServiceContainer::onTabIndexChanged(int index)
{
    ui->stackedWidget->setCurrentIndex(index);
}
