#pragma once

#include "fancy/FancyBar.h"
#include "fancy/FancyBar_p.h"
#include "fancy/FancyButton.h"
#include "fancy/FancyButton_p.h"
#include "fancy/FancyScreen.h"
#include "fancy/FancyTitleBar.h"
#include "fancy/FancyTitleBar_p.h"
#include "tests/support/PrivateMember.h"

// The private parts of the kit's classes, for tests: ButtonData::of(button)->m_bRound.
struct ButtonData : PrivateMember<ButtonData, FancyButtonPrivate *, FancyButton>
{
};
template struct ExposePrivateMember<ButtonData, &FancyButton::d>;

struct TitleBarData : PrivateMember<TitleBarData, FancyTitleBarPrivate *, FancyTitleBar>
{
};
template struct ExposePrivateMember<TitleBarData, &FancyTitleBar::d>;

struct BarData : PrivateMember<BarData, FancyBarPrivate *, FancyBar>
{
};
template struct ExposePrivateMember<BarData, &FancyBar::d>;

struct ScreenRects : PrivateMember<ScreenRects, QList<QRect>, FancyScreen>
{
};
template struct ExposePrivateMember<ScreenRects, &FancyScreen::m_screenRects>;
