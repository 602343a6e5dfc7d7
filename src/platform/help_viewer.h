#pragma once

class QWidget;

// Shows the help's contents in a window of its own, which is reused while it is open. It lives as long as `owner`.
void show_help_contents(QWidget* owner);
