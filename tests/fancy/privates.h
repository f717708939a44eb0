#pragma once

#include "fancy/FancyBar.h"
#include "fancy/FancyBar_p.h"
#include "fancy/FancyButton.h"
#include "fancy/FancyButton_p.h"
#include "fancy/FancyScreen.h"
#include "fancy/FancyTitleBar.h"
#include "fancy/FancyTitleBar_p.h"
#include "tests/support/PrivateMember.h"

#include <QMetaMethod>
#include <QStringList>
#include <QVector>

#include <algorithm>
#include <functional>

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

//! The own methods of a class, of one kind, in meta-object order.
inline QStringList ownMethods(const QMetaObject &meta, QMetaMethod::MethodType type)
{
    QStringList signatures;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        if (meta.method(i).methodType() == type)
            signatures << QString::fromLatin1(meta.method(i).methodSignature());
    }
    return signatures;
}

//! Whether members at these addresses were declared in this order.
inline bool isDeclarationOrder(const QVector<const void *> &members)
{
    const std::less<> before;
    return std::adjacent_find(members.begin(), members.end(),
                              [before](const void *a, const void *b) { return !before(a, b); })
           == members.end();
}
