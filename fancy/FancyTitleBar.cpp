#include "fancy/FancyTitleBar.h"

#include "fancy/FancyButton.h"
#include "fancy/FancyTitleBar_p.h"
#include "fancy/clearWhenDestroyed_p.h"
#include "fancy/popUpBelow_p.h"

#include <QAction>
#include <QEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QMenu>
#include <QMouseEvent>

namespace {
constexpr QSize ButtonSize(50, 32);
constexpr QSize SeparatorSize(1, 20);
constexpr QColor CommandColor(215, 226, 243);
constexpr QColor CloseColor(255, 0, 0);
const char *const MaximizeProperty = "maximizeProperty";

constexpr int Light = 0;
constexpr int Dark = 1;

QIcon commandIcon(const char *command)
{
    return QIcon(QStringLiteral(":/client/resources/%1.svg").arg(QLatin1String(command)));
}
} // namespace

FancyTitleBarPrivate::FancyTitleBarPrivate()
{
    // Both variants come from the same files; the icon setters are for other looks.
    for (const int variant : {Light, Dark}) {
        m_closeIcon[variant] = commandIcon("close");
        m_minimizeIcon[variant] = commandIcon("minimize");
        m_maximizeIcon[variant] = commandIcon("maximize");
        m_normalIcon[variant] = commandIcon("restore");
    }
}

void FancyTitleBarPrivate::installWidget(QWidget *widget)
{
    if (!widget)
        return;
    m_mainWidget = widget;
    clearWhenDestroyed(this, m_mainWidget);
    m_windowFlags = widget->windowFlags();
    widget->setAttribute(Qt::WA_MouseTracking);
    widget->setAttribute(Qt::WA_Hover);
}

void FancyTitleBarPrivate::init()
{
    if (!m_mainWidget)
        return;

    m_minimizeButton = createButton(m_minimizeIcon[Dark], tr("最小化"), CommandColor);
    m_minimizeButton->setVisible(false);
    clearWhenDestroyed(this, m_minimizeButton);

    m_maximizeButton = createButton(m_maximizeIcon[Dark], tr("最大化"), CommandColor);
    m_maximizeButton->setVisible(false);
    clearWhenDestroyed(this, m_maximizeButton);

    m_closeButton = createButton(m_closeIcon[Dark], tr("关闭"), CloseColor);
    clearWhenDestroyed(this, m_closeButton);

    m_menu = new QMenu(m_mainWidget);
    clearWhenDestroyed(this, m_menu);
    createActions();

    createSystemGroup();
    clearWhenDestroyed(this, m_systemGroup);

    setIconDark(true);
}

FancyButton *FancyTitleBarPrivate::createButton(const QIcon &icon, const QString &toolTip,
                                                const QColor &color)
{
    auto *button = new FancyButton(m_mainWidget);
    // Before the first tooltip: the filter makes the button's accessible name of it.
    button->installEventFilter(this);
    button->setIcon(icon);
    button->setToolTip(toolTip);
    connect(button, &FancyButton::clicked, this, &FancyTitleBarPrivate::slotSysButtonClicked);
    button->setHoverColor(color);
    button->setPressColor(color);
    button->setFixedSize(ButtonSize);
    button->setHasBorder(false);
    return button;
}

void FancyTitleBarPrivate::createActions()
{
    m_maximizeAction = new QAction(m_maximizeIcon[Dark], tr("最大化"), this);
    m_minimizeAction = new QAction(m_minimizeIcon[Dark], tr("最小化"), this);
    m_restoreAction = new QAction(m_normalIcon[Dark], tr("还原"), this);
    m_closeAction = new QAction(m_closeIcon[Dark], tr("关闭"), this);
    m_closeAction->setShortcut(QKeySequence(QStringLiteral("Alt+F4")));

    // A command is a click on its button, so restoring clicks the maximize button.
    connect(m_maximizeAction, &QAction::triggered, m_maximizeButton, &FancyButton::clicked);
    connect(m_minimizeAction, &QAction::triggered, m_minimizeButton, &FancyButton::clicked);
    connect(m_restoreAction, &QAction::triggered, m_maximizeButton, &FancyButton::clicked);
    connect(m_closeAction, &QAction::triggered, m_closeButton, &FancyButton::clicked);

    m_menu->addAction(m_restoreAction);
    m_menu->addAction(m_minimizeAction);
    m_menu->addAction(m_maximizeAction);
    m_menu->addSeparator();
    m_menu->addAction(m_closeAction);
}

void FancyTitleBarPrivate::createSystemGroup()
{
    m_systemGroup = new QWidget(m_mainWidget);

    auto *separator = new QFrame(m_mainWidget);
    separator->setFrameShape(QFrame::VLine);
    separator->setLineWidth(1);
    separator->setStyleSheet(QStringLiteral("QFrame{color:rgb(214, 216, 221)}"));
    separator->setFixedSize(SeparatorSize);

    auto *row = new QHBoxLayout(m_systemGroup);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(separator);
    row->addWidget(m_minimizeButton);
    row->addWidget(m_maximizeButton);
    row->addWidget(m_closeButton);
}

void FancyTitleBarPrivate::setWidgetResizable(bool resizable)
{
    m_bWidgetResizable = resizable;
}

void FancyTitleBarPrivate::setWidgetMovable(bool movable)
{
    m_bWidgetMovable = movable;
}

void FancyTitleBarPrivate::setWidgetMaximizable(bool maximizable)
{
    m_bWidgetMaximizable = maximizable;
}

void FancyTitleBarPrivate::updateWindowButtons()
{
    if (!m_minimizeButton || !m_maximizeButton || !m_maximizeAction || !m_minimizeAction
        || !m_restoreAction)
        return;
    const bool maximizable = m_windowFlags.testFlag(Qt::WindowMaximizeButtonHint);
    const bool minimizable = m_windowFlags.testFlag(Qt::WindowMinimizeButtonHint);

    m_maximizeButton->setVisible(maximizable);
    m_minimizeButton->setVisible(minimizable);
    m_maximizeAction->setEnabled(maximizable);
    m_minimizeAction->setEnabled(minimizable);
    m_restoreAction->setEnabled(false);
    m_bWidgetMaximizable = maximizable;
}

void FancyTitleBarPrivate::setIconDark(bool dark)
{
    if (!m_minimizeButton || !m_maximizeButton || !m_closeButton)
        return;
    m_bDarkIcon = dark;
    const int variant = dark ? Dark : Light;
    const bool maximized = m_mainWidget && m_mainWidget->isMaximized();
    m_minimizeButton->setIcon(m_minimizeIcon[variant]);
    m_closeButton->setIcon(m_closeIcon[variant]);
    m_maximizeButton->setIcon(maximized ? m_normalIcon[variant] : m_maximizeIcon[variant]);
}

void FancyTitleBarPrivate::maximize()
{
    if (m_mainWidget)
        m_mainWidget->showMaximized();
}

void FancyTitleBarPrivate::restore()
{
    if (m_mainWidget)
        m_mainWidget->showNormal();
}

void FancyTitleBarPrivate::minmize()
{
    if (m_mainWidget)
        m_mainWidget->showMinimized();
}

void FancyTitleBarPrivate::windowStateChange(QObject *)
{
    if (!m_maximizeButton || !m_maximizeAction || !m_restoreAction || !m_mainWidget)
        return;
    const int variant = m_bDarkIcon ? Dark : Light;
    const bool maximized = m_mainWidget->isMaximized();
    const bool maximizable = m_windowFlags.testFlag(Qt::WindowMaximizeButtonHint);

    // Each branch keeps its order of tooltip and property: event filters see both changes.
    if (maximized) {
        m_maximizeButton->setToolTip(tr("还原"));
        m_maximizeButton->setProperty(MaximizeProperty, QStringLiteral("restore"));
    } else {
        m_maximizeButton->setProperty(MaximizeProperty, QStringLiteral("maximize"));
        m_maximizeButton->setToolTip(tr("最大化"));
    }
    m_maximizeButton->setIcon(maximized ? m_normalIcon[variant] : m_maximizeIcon[variant]);
    m_maximizeAction->setEnabled(maximizable && !maximized);
    m_restoreAction->setEnabled(maximizable && maximized);
}

void FancyTitleBarPrivate::restoreWidget(QWidget *widget)
{
    if (!widget || !q)
        return;
    widget->showNormal();
    emit q->windowResizable(true);
}

void FancyTitleBarPrivate::maximizeWidget(QWidget *widget)
{
    if (!widget || !q)
        return;
    widget->showMaximized();
    emit q->windowResizable(false);
}

// The buttons show icons only: assistive tools know them by their tooltips.
bool FancyTitleBarPrivate::eventFilter(QObject *watched, QEvent *event)
{
    auto *button = qobject_cast<FancyButton *>(watched);
    if (button && event->type() == QEvent::ToolTipChange)
        button->setAccessibleName(button->toolTip());
    return QObject::eventFilter(watched, event);
}

void FancyTitleBarPrivate::slotSysButtonClicked()
{
    const auto *button = qobject_cast<FancyButton *>(sender());
    if (!m_mainWidget || !button)
        return;
    if (button == m_minimizeButton) {
        minmize();
    } else if (button == m_maximizeButton) {
        if (m_mainWidget->isMaximized())
            restore();
        else
            maximize();
    } else if (button == m_closeButton && q) {
        emit q->closeClicked();
    }
}

void FancyTitleBarPrivate::systemMenuTriggered(QMouseEvent *event)
{
    const auto *button = qobject_cast<FancyButton *>(sender());
    if (!m_menu || !event || !button)
        return;
    popUpBelow(*button, *m_menu, *event);
}

void FancyTitleBarPrivate::forgetTitleWidget(QObject *gone)
{
    if (gone == m_titleWidget)
        m_titleWidget = nullptr;
}

FancyTitleBar::FancyTitleBar(QWidget *parent)
    : QObject(parent)
    , d(new FancyTitleBarPrivate)
{
    if (!parent)
        return;
    d->q = this;
    d->installWidget(parent);
    d->init();
    parent->installEventFilter(this);
}

FancyTitleBar::~FancyTitleBar()
{
    delete d;
}

void FancyTitleBar::setTitleWidget(QWidget *widget)
{
    if (!d)
        return;
    const auto forget = &FancyTitleBarPrivate::forgetTitleWidget;
    if (d->m_titleWidget)
        disconnect(d->m_titleWidget, &QObject::destroyed, d, forget);
    d->m_titleWidget = widget;
    if (widget)
        connect(widget, &QObject::destroyed, d, forget);
}

QWidget *FancyTitleBar::mainWidget() const
{
    return d ? d->m_mainWidget : nullptr;
}

QWidget *FancyTitleBar::systemGroup() const
{
    return d ? d->m_systemGroup : nullptr;
}

void FancyTitleBar::setCloseIcon(QIcon &icon)
{
    if (d && d->m_closeButton)
        d->m_closeButton->setIcon(icon);
}

void FancyTitleBar::setMinimizeIcon(QIcon &icon)
{
    if (d && d->m_minimizeButton)
        d->m_minimizeButton->setIcon(icon);
}

void FancyTitleBar::setMaximizeIcon(QIcon &icon)
{
    if (d && d->m_maximizeButton)
        d->m_maximizeButton->setIcon(icon);
}

// Unlike the three setters above it stores the icon, which the next state change shows.
void FancyTitleBar::setNormalIcon(QIcon &icon)
{
    if (!d || !d->m_mainWidget)
        return;
    d->m_normalIcon[Light] = icon;
    if (!d->m_mainWidget->isMaximized() && d->m_maximizeButton)
        d->m_maximizeButton->setIcon(icon);
}

// Changes no icon: the private operation of the same name does.
void FancyTitleBar::setIconDark(bool dark)
{
    if (d)
        d->m_bDarkIcon = dark;
}

void FancyTitleBar::setWidgetResizable(bool resizable)
{
    if (d)
        d->setWidgetResizable(resizable);
}

void FancyTitleBar::setWidgetMovable(bool movable)
{
    if (d)
        d->setWidgetMovable(movable);
}

void FancyTitleBar::setWidgetMaximizable(bool maximizable)
{
    if (d)
        d->setWidgetMaximizable(maximizable);
}

void FancyTitleBar::updateWidgetFlags()
{
    if (!d || !d->m_mainWidget)
        return;
    d->m_windowFlags = d->m_mainWidget->windowFlags();
    d->updateWindowButtons();
}

bool FancyTitleBar::resizable() const
{
    return d && d->m_bWidgetResizable;
}

bool FancyTitleBar::eventFilter(QObject *watched, QEvent *event)
{
    if (!d || !event)
        return false;
    if (event->type() == QEvent::WindowStateChange) {
        d->windowStateChange(watched);
        // Consumed: the main widget's own handlers don't see it.
        return true;
    }
    return QObject::eventFilter(watched, event);
}
