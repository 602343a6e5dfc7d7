#pragma once

class QWidget;

// Sizes of forms are given in twips, 1/1440 inch, at the logical DPI of the screen that shows the widget.
int twips_to_pixels(int twips, const QWidget& on);
