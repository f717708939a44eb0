#pragma once

#include "shell/MultiProjectsTabStyle.h"
#include "tests/support/pixels.h"

#include <QIcon>
#include <QStyleFactory>
#include <QStyleOptionTab>
#include <QTabBar>
#include <QVector>
#include <QWidget>

// What the tests of the tab style share.

//! What BaseStyle answers.
constexpr int HSpace = 30;
constexpr QRect TextRect(42, 3, 77, 28);

//! A base style with measures that tests can count on, and that records what it is asked for.
class BaseStyle : public QProxyStyle
{
public:
    BaseStyle()
        : QProxyStyle(QStyleFactory::create(QStringLiteral("fusion")))
    {
    }

    int pixelMetric(PixelMetric metric, const QStyleOption *option,
                    const QWidget *widget) const override
    {
        if (const auto *tab = qstyleoption_cast<const QStyleOptionTab *>(option))
            asked.append({metric, *tab, widget});
        return metric == PM_TabBarTabHSpace ? HSpace
                                            : QProxyStyle::pixelMetric(metric, option, widget);
    }
    QRect subElementRect(SubElement element, const QStyleOption *option,
                         const QWidget *widget) const override
    {
        return element == SE_TabBarTabText ? TextRect
                                           : QProxyStyle::subElementRect(element, option, widget);
    }
    QSize sizeFromContents(ContentsType type, const QStyleOption * /*option*/, const QSize &size,
                           const QWidget * /*widget*/) const override
    {
        return size + QSize(int(type), 1000);
    }
    using QProxyStyle::polish;
    using QProxyStyle::unpolish;
    void polish(QWidget *widget) override { polished.append(widget); }
    void unpolish(QWidget *widget) override { unpolished.append(widget); }
    void drawControl(ControlElement element, const QStyleOption * /*option*/,
                     QPainter * /*painter*/, const QWidget * /*widget*/) const override
    {
        drawn.append(element);
    }

    struct Question
    {
        PixelMetric metric;
        QStyleOptionTab option;
        const QWidget *widget;
    };

    QVector<QWidget *> polished;
    QVector<QWidget *> unpolished;
    mutable QVector<ControlElement> drawn;
    //! The metrics of tabs.
    mutable QVector<Question> asked;
};

//! A tab bar of its own in a parent, and the style that measures it.
struct Bar
{
    QWidget parent;
    QTabBar *bar = new QTabBar(&parent);
    BaseStyle *base = new BaseStyle;
    MultiProjectsTabStyle style {bar, base};

    void addTab(const QString &text, bool hasIcon = false)
    {
        bar->addTab(hasIcon ? QIcon(filledPixmap(Qt::red, 16)) : QIcon(), text);
    }
};
