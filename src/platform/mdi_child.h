#pragma once

class QWidget;

// Brings a window that mdi_host::show_child has opened to the front, and gives it the focus.
void activate_mdi_child(QWidget& window);
