#pragma once

#include <QString>
#include <QStringList>

class QWidget;

/*!
    What \a form holds as text, to compare with what it should hold: its size, its own properties,
    then its layout tree, a line an item, indented by depth, with class and object name of layouts
    and widgets and with size and policies of spacers.

    Only what differs from a fresh layout or widget is written behind a name: of a layout its
    spacing and contents margins, of an item its stretch and alignment, of a widget all of its
    stored properties but icons, fonts, palettes and accessible names, and that it is hidden.
*/
QString dumpForm(const QWidget &form);

//! The layout tree of \a widget likewise, of widgets class and object name only.
QString dumpLayout(const QWidget &widget);

//! The window title of \a form and the texts of its labels and buttons, in order of creation.
QStringList formTexts(const QWidget &form);
