#pragma once

#include "fancy/FancyBar.h"

#include <QColor>
#include <QList>
#include <QObject>

class QHBoxLayout;
class QIcon;
class QMenuBar;
class QMouseEvent;
class QSpacerItem;
class QToolButton;

class FancyBarPrivate : public QObject
{
    Q_OBJECT

public:
    explicit FancyBarPrivate(QObject *parent = nullptr);
    ~FancyBarPrivate() override;

    void registerWidget(QWidget *window);
    void init();
    void createTitleWidget();
    void createMenuWidget();

    FancyButton *createActionButton(QAction *action);
    void forgetMenuButton(QObject *gone);

    void showQuickAccessBar(bool on);
    void showMenuBar(bool on);
    void showMenuWidget(bool on);
    void setFancyStyle(FancyBar::FancyStyle style);
    void updateMenuColor();

public slots:
    void aboutToShowMenu();
    void aboutToHideMenu();
    void menuTriggered(QMouseEvent *event);
    void slotWindowIconChange(QIcon &icon);

public:
    FancyBar *q = nullptr;
    QHBoxLayout *m_logoLayout = nullptr;
    QWidget *m_titleWidget = nullptr;
    FancyTitleBar *m_titleBar = nullptr;
    QToolButton *m_logoButton = nullptr;
    QSpacerItem *m_leftSpacerItem = nullptr;
    QSpacerItem *m_rightSpacerItem = nullptr;
    QHBoxLayout *m_titleAdditionalControlArea = nullptr;
    QWidget *m_systemGroup = nullptr;
    QWidget *m_menuWidget = nullptr;
    QHBoxLayout *m_appButtonLayout = nullptr;
    QMenuBar *m_menuBar = nullptr;
    QHBoxLayout *m_menuAdditionalControlArea = nullptr;
    QHBoxLayout *m_menuBarArea = nullptr;
    QSpacerItem *m_middleSpacerItem = nullptr;
    QList<FancyButton *> m_additionalButtons;
    FancyButton *m_menuButton = nullptr;
    FancyBar::FancyStyle m_style = FancyBar::WindowStyle;
    QColor m_menuTextColor = QColor(250, 250, 250);
    QColor m_menuHoverColor = QColor(255, 255, 255, 50);
    QColor m_menuPressColor = QColor(255, 255, 255, 50);
    int m_titleBarHeight = 32;
    bool m_bQuickAccessVisible = false;
    bool m_bMenuBarVisible = false;
    bool m_bMenuWidgetVisible = false;
};
