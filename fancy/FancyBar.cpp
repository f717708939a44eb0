#include "fancy/FancyBar.h"

#include "fancy/FancyBar_p.h"
#include "fancy/FancyButton.h"
#include "fancy/FancyTitleBar.h"
#include "fancy/clearWhenDestroyed_p.h"
#include "fancy/popUpBelow_p.h"

#include <QAction>
#include <QHBoxLayout>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <QVBoxLayout>

namespace {
constexpr int MinimumTitleBarHeight = 33;
constexpr int MaximumTitleBarHeight = 47;
constexpr int TitleButtonHeight = 25;
constexpr QMargins MenuRowMargins(1, 0, 0, 0);
constexpr QMargins AppButtonMargins(0, 2, 0, 2);

// Boxes without a parent get one from the layout that they are put into.
template<typename Box>
Box *createBox(const QMargins &margins = QMargins())
{
    auto *box = new Box;
    box->setContentsMargins(margins);
    box->setSpacing(0);
    return box;
}

QWidget *createRow()
{
    auto *row = new QWidget;
    row->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    return row;
}

template<typename Object>
void deleteUnplaced(Object *object)
{
    if (object && !object->parent())
        delete object;
}
} // namespace

// Red shows at once that an owner has set no colour.
QColor FancyBar::s_backgroundColor(255, 0, 0);

FancyBarPrivate::FancyBarPrivate(QObject *parent)
    : QObject(parent)
{
}

// Whatever was placed somewhere belongs to the widget or layout where it stands.
FancyBarPrivate::~FancyBarPrivate()
{
    const QList<FancyButton *> buttons = m_additionalButtons;
    for (FancyButton *button : buttons)
        deleteUnplaced(button);
    deleteUnplaced(m_menuWidget);
    deleteUnplaced(m_titleWidget);
    deleteUnplaced(m_logoLayout);
    // Never placed, so no layout owns it.
    delete m_rightSpacerItem;
}

void FancyBarPrivate::registerWidget(QWidget *window)
{
    m_titleBar = new FancyTitleBar(window);
    clearWhenDestroyed(this, m_titleBar);
    if (!window) {
        connect(this, &QObject::destroyed, m_titleBar,
                [titleBar = m_titleBar] { deleteUnplaced(titleBar); });
    }
    if (!q)
        return;
    m_titleBar->setTitleWidget(q);
    connect(m_titleBar, &FancyTitleBar::windowResizable, q, &FancyBar::maximizationChanged);
    connect(m_titleBar, &FancyTitleBar::windowIconChanged, this,
            &FancyBarPrivate::slotWindowIconChange);
}

void FancyBarPrivate::init()
{
    if (!q)
        return;
    m_logoLayout = createBox<QHBoxLayout>();
    clearWhenDestroyed(this, m_logoLayout);
    createTitleWidget();

    auto *rows = createBox<QVBoxLayout>();
    if (m_titleWidget)
        rows->addWidget(m_titleWidget);
    auto *layout = createBox<QHBoxLayout>();
    layout->addLayout(rows);
    q->setLayout(layout);
}

void FancyBarPrivate::createTitleWidget()
{
    if (!m_titleBar)
        return;
    m_titleWidget = createRow();
    clearWhenDestroyed(this, m_titleWidget);

    m_leftSpacerItem = new QSpacerItem(0, 0, QSizePolicy::Minimum, QSizePolicy::Minimum);
    m_rightSpacerItem = new QSpacerItem(0, 0, QSizePolicy::Expanding, QSizePolicy::Minimum);

    m_titleAdditionalControlArea = new QHBoxLayout;
    m_titleAdditionalControlArea->setContentsMargins(0, 0, 0, 0);
    clearWhenDestroyed(this, m_titleAdditionalControlArea);

    m_systemGroup = m_titleBar->systemGroup();
    clearWhenDestroyed(this, m_systemGroup);

    auto *row = createBox<QHBoxLayout>();
    row->addItem(m_leftSpacerItem);
    row->addLayout(m_titleAdditionalControlArea);
    row->addSpacing(0);
    if (m_systemGroup)
        row->addWidget(m_systemGroup);
    m_titleWidget->setLayout(row);
    // QSpacerItem is no QObject; its layout's destruction tells us that it is gone.
    connect(row, &QObject::destroyed, this, [this] { m_leftSpacerItem = nullptr; });
}

void FancyBarPrivate::createMenuWidget()
{
    if (m_menuWidget)
        return;
    m_menuWidget = createRow();
    m_menuWidget->setVisible(false);
    clearWhenDestroyed(this, m_menuWidget);

    m_menuBarArea = createBox<QHBoxLayout>();
    clearWhenDestroyed(this, m_menuBarArea);
    m_middleSpacerItem = new QSpacerItem(0, 0, QSizePolicy::Expanding, QSizePolicy::Minimum);
    m_menuAdditionalControlArea = createBox<QHBoxLayout>();
    clearWhenDestroyed(this, m_menuAdditionalControlArea);
    m_appButtonLayout = createBox<QHBoxLayout>(AppButtonMargins);
    clearWhenDestroyed(this, m_appButtonLayout);

    auto *row = createBox<QHBoxLayout>(MenuRowMargins);
    row->addLayout(m_appButtonLayout);
    row->addLayout(m_menuBarArea);
    row->addItem(m_middleSpacerItem);
    row->addLayout(m_menuAdditionalControlArea);
    m_menuWidget->setLayout(row);
    connect(row, &QObject::destroyed, this, [this] { m_middleSpacerItem = nullptr; });
}

FancyButton *FancyBarPrivate::createActionButton(QAction *action)
{
    auto *button = new FancyButton(nullptr);
    button->setText(action->text());
    button->setToolTip(action->toolTip());
    button->setIcon(action->icon());
    button->setDefaultAction(action);

    connect(button, &FancyButton::menuTriggered, this, &FancyBarPrivate::menuTriggered);
    connect(button, &FancyButton::clicked, action, &QAction::triggered);
    m_additionalButtons.append(button);
    connect(button, &QObject::destroyed, this,
            [this, button] { m_additionalButtons.removeAll(button); });
    return button;
}

void FancyBarPrivate::showQuickAccessBar(bool on)
{
    if (!m_leftSpacerItem || m_bQuickAccessVisible == on)
        return;
    m_bQuickAccessVisible = on;
    m_leftSpacerItem->changeSize(0, 0, on ? QSizePolicy::Expanding : QSizePolicy::Minimum,
                                 QSizePolicy::Minimum);
    if (m_titleWidget && m_titleWidget->layout())
        m_titleWidget->layout()->invalidate();
}

void FancyBarPrivate::showMenuBar(bool on)
{
    if (m_bMenuBarVisible == on)
        return;
    m_bMenuBarVisible = on;
    if (m_menuBar)
        m_menuBar->setVisible(on);
    if (m_style == FancyBar::WindowStyle || m_style == FancyBar::ClassicStyle)
        showMenuWidget(on);
}

void FancyBarPrivate::showMenuWidget(bool on)
{
    if (!m_menuWidget || m_bMenuWidgetVisible == on)
        return;
    m_bMenuWidgetVisible = on;
    m_menuWidget->setVisible(on);
}

// A hook: the style stays as it is.
void FancyBarPrivate::setFancyStyle(FancyBar::FancyStyle) { }

// A hook: the menu colours are stored and applied nowhere.
void FancyBarPrivate::updateMenuColor() { }

void FancyBarPrivate::aboutToShowMenu()
{
    if (m_menuButton)
        m_menuButton->select(true);
}

void FancyBarPrivate::aboutToHideMenu()
{
    if (m_menuButton)
        m_menuButton->select(false);
}

void FancyBarPrivate::menuTriggered(QMouseEvent *event)
{
    auto *button = qobject_cast<FancyButton *>(sender());
    if (!event || !button || !button->defaultAction() || !button->defaultAction()->menu())
        return;
    QMenu *menu = button->defaultAction()->menu();
    // Each press connects anew, and the connections add up: handlers run once per press so far.
    connect(menu, &QMenu::aboutToShow, this, &FancyBarPrivate::aboutToShowMenu);
    connect(menu, &QMenu::aboutToHide, this, &FancyBarPrivate::aboutToHideMenu);

    m_menuButton = button;
    connect(button, &QObject::destroyed, this, &FancyBarPrivate::forgetMenuButton,
            Qt::UniqueConnection);
    popUpBelow(*button, *menu, *event);
}

void FancyBarPrivate::forgetMenuButton(QObject *gone)
{
    if (gone == m_menuButton)
        m_menuButton = nullptr;
}

// A hook: nothing in the bar shows the window's icon.
void FancyBarPrivate::slotWindowIconChange(QIcon &) { }

FancyBar::FancyBar(QWidget *parent)
    : QWidget(parent)
    , d(new FancyBarPrivate(this))
{
    d->q = this;
    d->registerWidget(parent);
    d->init();
    if (s_backgroundColor.isValid())
        setBackgroundColor(s_backgroundColor);
}

FancyTitleBar *FancyBar::titleBar() const
{
    return d ? d->m_titleBar : nullptr;
}

void FancyBar::setTextColor(const QColor &color)
{
    if (!d)
        return;
    d->m_menuTextColor = color;
    d->updateMenuColor();
}

void FancyBar::setBackgroundColor(const QColor &color)
{
    QPalette colors = palette();
    colors.setBrush(QPalette::All, QPalette::Window, color);
    setPalette(colors);
    setAutoFillBackground(true);
    s_backgroundColor = color;
}

void FancyBar::addAdditionalControl(QWidget *widget, AdditionalControlPosition position,
                                    int spacing)
{
    if (!d || !widget)
        return;
    if (position == TitlePosition && d->m_titleAdditionalControlArea) {
        d->m_titleAdditionalControlArea->addSpacing(spacing);
        d->m_titleAdditionalControlArea->addWidget(widget);
    } else if (position == MenuPosition && d->m_menuAdditionalControlArea) {
        d->m_menuAdditionalControlArea->addWidget(widget);
    }
}

FancyButton *FancyBar::addAdditionalControl(QAction *action, AdditionalControlPosition position,
                                            int spacing)
{
    if (!d || !action)
        return nullptr;
    FancyButton *button = d->createActionButton(action);
    if (position == TitlePosition && d->m_titleAdditionalControlArea)
        button->setFixedHeight(TitleButtonHeight);
    addAdditionalControl(static_cast<QWidget *>(button), position, spacing);
    return button;
}

void FancyBar::setWidgetResizable(bool resizable)
{
    if (d && d->m_titleBar)
        d->m_titleBar->setWidgetResizable(resizable);
}

void FancyBar::setTitleBarHeight(int height)
{
    if (!d || d->m_titleBarHeight == 0)
        return;
    // The default height is not stored: a call with it keeps the height set before.
    if (height >= MinimumTitleBarHeight && height <= MaximumTitleBarHeight)
        d->m_titleBarHeight = height;
    setFixedHeight(d->m_titleBarHeight);
    if (d->m_titleWidget)
        d->m_titleWidget->setFixedHeight(d->m_titleBarHeight);
}

void FancyBar::updateWidgetFlags()
{
    if (d && d->m_titleBar)
        d->m_titleBar->updateWidgetFlags();
}

QSize FancyBar::sizeHint() const
{
    return d ? QSize(width(), d->m_titleBarHeight) : QSize(-1, -1);
}
