#pragma once

#include <QPalette>

class QWidget;

/*!
    The palette of \a widget on the window's white page, whatever the desktop's own palette is:
    Fusion's light one, in text fields with a darker selection colour for contrast.
*/
QPalette pagePalette(const QWidget &widget);
