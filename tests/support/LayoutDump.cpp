#include "tests/support/LayoutDump.h"

#include <QAbstractButton>
#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QDebug>
#include <QFile>
#include <QIcon>
#include <QLabel>
#include <QMetaEnum>
#include <QMetaProperty>
#include <QProcess>
#include <QPushButton>
#include <QSpinBox>
#include <QStackedWidget>
#include <QStyle>
#include <QTabWidget>
#include <QTreeWidget>
#include <QWidget>

#include <initializer_list>
#include <memory>

namespace {

QString policyName(QSizePolicy::Policy policy)
{
    return QString::fromLatin1(QMetaEnum::fromType<QSizePolicy::Policy>().valueToKey(policy));
}

QString lengthText(int length)
{
    return length == QWIDGETSIZE_MAX ? QStringLiteral("max") : QString::number(length);
}

QString sizeText(const QSize &size)
{
    return lengthText(size.width()) + QStringLiteral("×") + lengthText(size.height());
}

template<typename Widget>
std::unique_ptr<QWidget> freshIf(const QWidget &widget)
{
    const bool isIt = widget.metaObject() == &Widget::staticMetaObject;
    return isIt ? std::make_unique<Widget>() : nullptr;
}

//! A new widget of the class of \a widget, or a plain one for a class that no form names.
std::unique_ptr<QWidget> freshLike(const QWidget &widget)
{
    using Make = std::unique_ptr<QWidget> (*)(const QWidget &);
    for (const Make make : std::initializer_list<Make> {
                 freshIf<QLabel>, freshIf<QFrame>, freshIf<QPushButton>, freshIf<QCheckBox>,
                 freshIf<QComboBox>, freshIf<QSpinBox>, freshIf<QTreeWidget>, freshIf<QTabWidget>,
                 freshIf<QStackedWidget>}) {
        if (std::unique_ptr<QWidget> fresh = make(widget))
            return fresh;
    }
    return std::make_unique<QWidget>();
}

//! \a text in quotes, each of its lines on one of its own, so that blanks at their ends show.
QString quoted(QString text, const QString &indent)
{
    text.replace(QLatin1Char('\\'), QStringLiteral("\\\\"));
    text.replace(QLatin1Char('"'), QStringLiteral("\\\""));
    text.replace(QLatin1Char('\t'), QStringLiteral("\\t"));
    const QString lineBreak = QLatin1Char('\n') + indent + QLatin1Char('"');
    const bool isOneLine = !text.contains(QLatin1Char('\n'));
    text.replace(QLatin1Char('\n'), QStringLiteral("\\n\"") + lineBreak);
    return (isOneLine ? QStringLiteral("\"") : lineBreak) + text + QLatin1Char('"');
}

QString valueText(const QMetaProperty &property, const QVariant &value, const QString &indent)
{
    if (property.isEnumType())
        return QString::fromLatin1(property.enumerator().valueToKeys(value.toInt()));
    if (value.canConvert<QSizePolicy>()) {
        const auto policy = value.value<QSizePolicy>();
        const QSize stretch(policy.horizontalStretch(), policy.verticalStretch());
        return policyName(policy.horizontalPolicy()) + QLatin1Char(',')
               + policyName(policy.verticalPolicy())
               + (stretch.isNull() ? QString() : QLatin1Char(',') + sizeText(stretch));
    }
    if (value.type() == QVariant::String)
        return quoted(value.toString(), indent);
    return value.type() == QVariant::Size ? sizeText(value.toSize()) : value.toString();
}

//! What is written of a layout tree: a form's, or only class and name of every widget.
enum class Detail { Form, Names };

QString nameText(const QObject &object)
{
    return QString::fromLatin1(object.metaObject()->className()) + QLatin1Char(' ')
           + object.objectName();
}

QString indentation(int depth)
{
    return {2 * depth, QLatin1Char(' ')};
}

QString describe(const QWidget &widget, int depth)
{
    static const QList<QByteArray> skipped = {"objectName", "geometry", "icon",
                                              "windowIcon", "font",     "palette"};
    // Beyond the items inside the widget.
    const QString indent = indentation(depth + 3);
    QString text = nameText(widget);
    QString linesOfText;
    const std::unique_ptr<QWidget> fresh = freshLike(widget);
    const QMetaObject *meta = fresh->metaObject();
    for (int i = 0; i < meta->propertyCount(); ++i) {
        const QMetaProperty property = meta->property(i);
        if (!property.isWritable() || !property.isStored() || skipped.contains(property.name()))
            continue;
        const QString value = valueText(property, property.read(&widget), indent);
        if (value != valueText(property, property.read(fresh.get()), indent))
            (value.contains(QLatin1Char('\n')) ? linesOfText : text) +=
                    QStringLiteral(" %1=%2").arg(QString::fromLatin1(property.name()), value);
    }
    if (!widget.isWindow() && widget.isHidden())
        text += QStringLiteral(" hidden");
    return text + linesOfText;
}

QString describe(const QLayout &layout)
{
    QString text = nameText(layout);

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

void dump(const QLayout &layout, Detail detail, int depth, QString &out);

void dump(const QWidget &widget, Detail detail, int depth, QString &out)
{
    // In a form a layout without a name is a widget's own.
    const QLayout *layout = widget.layout();
    if (layout && (detail == Detail::Names || !layout->objectName().isEmpty()))
        dump(*layout, detail, depth, out);
}

void dump(const QLayout &layout, Detail detail, int depth, QString &out)
{
    out += indentation(depth) + describe(layout) + QLatin1Char('\n');

    const auto *box = qobject_cast<const QBoxLayout *>(&layout);
    for (int i = 0; i < layout.count(); ++i) {
        QLayoutItem *item = layout.itemAt(i);
        if (const QLayout *child = item->layout()) {
            dump(*child, detail, depth + 1, out);
            continue;
        }

        QString text;
        if (const QWidget *child = item->widget()) {
            text = detail == Detail::Form ? describe(*child, depth + 1) : nameText(*child);
        } else if (const QSpacerItem *spacer = item->spacerItem()) {
            text = QStringLiteral("spacer %1 %2 %3")
                           .arg(sizeText(spacer->sizeHint()),
                                policyName(spacer->sizePolicy().horizontalPolicy()),
                                policyName(spacer->sizePolicy().verticalPolicy()));
        }
        if (box && box->stretch(i) != 0)
            text += QStringLiteral(" stretch %1").arg(box->stretch(i));
        if (item->alignment())
            text += QStringLiteral(" alignment %1").arg(int(item->alignment()));
        out += indentation(depth + 1) + text + QLatin1Char('\n');

        if (const QWidget *child = item->widget())
            dump(*child, detail, depth + 2, out);
    }
}

QString dumpForm(const QWidget &form)
{
    QString out = sizeText(form.size()) + QLatin1Char('\n') + describe(form, 0) + QLatin1Char('\n');
    dump(form, Detail::Form, 0, out);
    return out;
}

} // namespace

bool matchesDump(const QWidget &form, const QString &file)
{
    const QByteArray actual = dumpForm(form).toUtf8();
    const QString path = QStringLiteral(PANEL_TEST_FOLDER) + QLatin1Char('/') + file;

    QProcess diff;
    diff.start(QStringLiteral("diff"),
               {QStringLiteral("--unified"), QStringLiteral("--new-file"),
                QStringLiteral("--label=expected ") + file, QStringLiteral("--label=actual"), path,
                QStringLiteral("-")});
    diff.write(actual);
    diff.closeWriteChannel();
    if (!diff.waitForFinished() || diff.exitStatus() != QProcess::NormalExit)
        qFatal("diff: %s", qPrintable(diff.errorString()));
    if (diff.exitCode() == 0)
        return true;

    const QByteArray difference = diff.readAllStandardOutput() + diff.readAllStandardError();
    qWarning().noquote() << QString::fromUtf8(difference);
    if (qEnvironmentVariableIsSet("PANEL_TEST_WRITE_DUMPS")) {
        QFile dumped(path);
        if (!dumped.open(QIODevice::WriteOnly) || dumped.write(actual) != actual.size())
            qFatal("%s: %s", qPrintable(path), qPrintable(dumped.errorString()));
        qWarning("Written anew: %s", qPrintable(path));
    }
    return false;
}

QString dumpLayout(const QWidget &widget)
{
    QString out;
    dump(widget, Detail::Names, 0, out);
    return out;
}

QString otherSpacers(const QWidget &form, const QHash<QLayout *, QSpacerItem *> &spacers)
{
    QStringList names;
    const QList<QLayout *> layouts = form.findChildren<QLayout *>();
    for (QLayout *layout : layouts) {
        if (layout->itemAt(layout->count() - 1)->spacerItem() != spacers.value(layout))
            names.append(layout->objectName());
    }
    return names.join(QStringLiteral(", "));
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
