#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

class QLayout;
class QSpacerItem;
class QWidget;

/*!
    Whether \a form is what the text file \a file holds, whose path starts from tests/. Where it
    isn't, a unified diff is logged; with PANEL_TEST_WRITE_DUMPS in the environment the file is then
    written anew, to be looked at with git diff, and the test fails this once.

    The file holds the size of the form, its own properties, then its layout tree, a line an item,
    indented by depth, with class and object name of layouts and widgets and with size and policies
    of spacers. Only what differs from a fresh layout or widget stands after a name: of a layout its
    spacing and contents margins, of an item its stretch and alignment, of a widget all of its
    stored properties but icons, fonts and palettes, and that it is hidden.
*/
bool matchesDump(const QWidget &form, const QString &file);

//! The layout tree of \a widget, of widgets class and object name only.
QString dumpLayout(const QWidget &widget);

//! The names of the layouts of \a form that end otherwise than with their spacer of \a spacers, or
//! with one that they have not there. A dump can't tell spacers apart.
QString otherSpacers(const QWidget &form, const QHash<QLayout *, QSpacerItem *> &spacers);

//! The window title of \a form and the texts of its labels and buttons, in order of creation.
QStringList formTexts(const QWidget &form);
