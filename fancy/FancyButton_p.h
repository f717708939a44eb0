#pragma once

#include <QColor>

class FancyButton;

struct FancyButtonPrivate
{
    FancyButton *q = nullptr;
    QColor m_hoverColor = QColor(255, 255, 255, 50);
    QColor m_pressColor = QColor(0, 0, 0, 50);
    QColor m_textColor = QColor(255, 255, 255);
    QColor m_normalColor;
    bool m_bMouseHover = false;
    bool m_bMousePress = false;
    bool m_hasBorder = true;
    bool m_bRound = false;
    bool m_hasMenu = false;
};
