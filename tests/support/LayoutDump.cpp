#include "tests/support/LayoutDump.h"

#include <QAbstractButton>
#include <QBoxLayout>
#include <QHash>
#include <QLabel>
#include <QMetaEnum>
#include <QStyle>
#include <QWidget>

namespace {

QString policyName(QSizePolicy::Policy policy)
{
    return QString::fromLatin1(QMetaEnum::fromType<QSizePolicy::Policy>().valueToKey(policy));
}

QString describe(const QLayout &layout)
{
    QString text = QStringLiteral("%1 %2").arg(
            QString::fromLatin1(layout.metaObject()->className()), layout.objectName());

    const QWidget *owner = layout.parentWidget();
    const bool isTopLayout = owner->layout() == &layout;
    const bool isVertical = qobject_cast<const QVBoxLayout *>(&layout) != nullptr;
    const auto metric =
            isVertical ? QStyle::PM_LayoutVerticalSpacing : QStyle::PM_LayoutHorizontalSpacing;
    if (layout.spacing() != owner->style()->pixelMetric(metric, nullptr, owner))
        text += QStringLiteral(" spacing %1").arg(layout.spacing());

    const QMargins margins = layout.contentsMargins();
    const QStyle *style = owner->style();
    const QMargins usual =
            isTopLayout
                    ? QMargins(style->pixelMetric(QStyle::PM_LayoutLeftMargin, nullptr, owner),
                               style->pixelMetric(QStyle::PM_LayoutTopMargin, nullptr, owner),
                               style->pixelMetric(QStyle::PM_LayoutRightMargin, nullptr, owner),
                               style->pixelMetric(QStyle::PM_LayoutBottomMargin, nullptr, owner))
                    : QMargins();
    if (margins != usual) {
        text += QStringLiteral(" margins %1,%2,%3,%4")
                        .arg(margins.left())
                        .arg(margins.top())
                        .arg(margins.right())
                        .arg(margins.bottom());
    }
    return text;
}

void dump(const QLayout &layout, int depth, QString &out);

void dump(const QWidget &widget, int depth, QString &out)
{
    if (widget.layout())
        dump(*widget.layout(), depth, out);
}

void dump(const QLayout &layout, int depth, QString &out)
{
    out += QString(2 * depth, QLatin1Char(' ')) + describe(layout) + QLatin1Char('\n');

    const auto *box = qobject_cast<const QBoxLayout *>(&layout);
    for (int i = 0; i < layout.count(); ++i) {
        QLayoutItem *item = layout.itemAt(i);
        if (const QLayout *child = item->layout()) {
            dump(*child, depth + 1, out);
            continue;
        }

        QString text;
        if (const QWidget *child = item->widget()) {
            text = QStringLiteral("%1 %2").arg(
                    QString::fromLatin1(child->metaObject()->className()), child->objectName());
        } else if (const QSpacerItem *spacer = item->spacerItem()) {
            text = QStringLiteral("spacer %1x%2 %3 %4")
                           .arg(spacer->sizeHint().width())
                           .arg(spacer->sizeHint().height())
                           .arg(policyName(spacer->sizePolicy().horizontalPolicy()),
                                policyName(spacer->sizePolicy().verticalPolicy()));
        }
        if (box && box->stretch(i) != 0)
            text += QStringLiteral(" stretch %1").arg(box->stretch(i));
        if (item->alignment())
            text += QStringLiteral(" alignment %1").arg(int(item->alignment()));
        out += QString(2 * (depth + 1), QLatin1Char(' ')) + text + QLatin1Char('\n');

        if (const QWidget *child = item->widget())
            dump(*child, depth + 2, out);
    }
}

} // namespace

QString dumpLayout(const QWidget &widget)
{
    QString out;
    dump(widget, 0, out);
    return out;
}

QStringList namedChildren(const QObject &object)
{
    QStringList names;
    for (const QObject *child : object.children()) {
        if (!child->objectName().isEmpty())
            names.append(child->objectName());
    }
    return names;
}

QStringList formTexts(const QWidget &form)
{
    QStringList texts(form.windowTitle());
    const QList<QWidget *> widgets = form.findChildren<QWidget *>();
    for (const QWidget *widget : widgets) {
        if (qobject_cast<const QLabel *>(widget) || qobject_cast<const QAbstractButton *>(widget))
            texts.append(widget->property("text").toString());
    }
    return texts;
}

QStringList formMembers(const void *ui, size_t size, const QWidget &form)
{
    QHash<const void *, QString> names;
    const QObjectList objects = form.findChildren<QObject *>();
    for (const QObject *object : objects)
        names.insert(object, object->objectName());
    QStringList members;
    const auto *pointers = static_cast<const void *const *>(ui);
    for (size_t i = 0; i < size / sizeof(void *); ++i)
        members.append(names.value(pointers[i], QStringLiteral("spacer")));
    return members;
}
