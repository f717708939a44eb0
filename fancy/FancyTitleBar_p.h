#pragma once

#include <QIcon>
#include <QObject>
#include <QPoint>

class FancyButton;
class FancyTitleBar;
class QAction;
class QMenu;
class QMouseEvent;
class QWidget;

class FancyTitleBarPrivate : public QObject
{
    Q_OBJECT

public:
    FancyTitleBarPrivate();

    void installWidget(QWidget *widget);
    void init();

    void setWidgetResizable(bool resizable);
    void setWidgetMovable(bool movable);
    void setWidgetMaximizable(bool maximizable);

    void updateWindowButtons();
    void setIconDark(bool dark);

    void maximize();
    void restore();
    void minmize(); // sic

    void windowStateChange(QObject *watched);
    void restoreWidget(QWidget *widget);
    void maximizeWidget(QWidget *widget);

    void forgetTitleWidget(QObject *gone);

    bool eventFilter(QObject *watched, QEvent *event) override;

public slots:
    void slotSysButtonClicked();
    void systemMenuTriggered(QMouseEvent *event);

private:
    FancyButton *createButton(const QIcon &icon, const QString &toolTip, const QColor &color);
    void createActions();
    void createSystemGroup();

public:
    FancyTitleBar *q = nullptr;
    QWidget *m_mainWidget = nullptr;
    QWidget *m_titleWidget = nullptr;
    QWidget *m_systemGroup = nullptr;
    FancyButton *m_maximizeButton = nullptr;
    FancyButton *m_minimizeButton = nullptr;
    FancyButton *m_closeButton = nullptr;
    QMenu *m_menu = nullptr;
    QAction *m_maximizeAction = nullptr;
    QAction *m_minimizeAction = nullptr;
    QAction *m_restoreAction = nullptr;
    QAction *m_closeAction = nullptr;

    // NOLINTBEGIN(modernize-avoid-c-arrays)
    // Of each pair the first is the light variant, the second the dark one.
    QIcon m_closeIcon[2];
    QIcon m_minimizeIcon[2];
    QIcon m_maximizeIcon[2];
    QIcon m_normalIcon[2];
    // NOLINTEND(modernize-avoid-c-arrays)
    bool m_bDarkIcon = false;
    Qt::WindowFlags m_windowFlags;

    // Hooks for a window that moves and resizes itself. So far only m_bWidgetResizable is read.
    int m_currentScreen = 0;
    bool m_bLeftButtonPressed = false;
    bool m_bLeftButtonDbClicked = false;
    bool m_bLeftButtonTitlePressed = true; // unlike its neighbours
    bool m_bCursorShapeChanged = false;
    bool m_bWidgetMaximizable = false;
    bool m_bWidgetResizable = false;
    bool m_bWidgetMovable = true;
    QPoint m_movePoint;
    QMouseEvent *_eventContinous = nullptr;
};
